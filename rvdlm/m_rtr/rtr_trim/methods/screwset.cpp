#include "rvdlm/m_rtr/rtr_trim/methods/screwset.h"

void CScrewRange::Clip(double a, double b, double Low, double High, double Slack) {
    constexpr double PARALLEL = 1e-9;
    if (std::abs(b) < PARALLEL) {
        return;  // x has next to no influence here: what is lost is only some pruning
    }
    const double Inverse = 1.0 / b;
    const double First = (a - Low) * Inverse;
    const double Second = (a - High) * Inverse;
    AtLeast(std::min(First, Second) - Slack);
    AtMost(std::max(First, Second) + Slack);
}

void CScrewRange::Clip(double Along, double Missing) {
    constexpr double ACROSS = 1e-3;
    if (Along > ACROSS) {
        AtLeast(Missing / Along);
    } else if (Along < -ACROSS) {
        AtMost(Missing / Along);
    }
}

CScrewSet::CScrewSet(const std::array<CScrewVector, 3>& rDirections, CScrewVector Target) : m_Target(Target) {
    const double s12 = std::abs(Cross(rDirections[0], rDirections[1]));
    const double s13 = std::abs(Cross(rDirections[0], rDirections[2]));
    const double s23 = std::abs(Cross(rDirections[1], rDirections[2]));
    m_Roles = s23 >= s12 && s23 >= s13 ? CScrewRoles{0, 1, 2}
              : s13 >= s12             ? CScrewRoles{1, 0, 2}
                                       : CScrewRoles{2, 0, 1};
    m_A = rDirections[m_Roles.a];
    m_B = rDirections[m_Roles.b];
    m_C = rDirections[m_Roles.c];
    const double Inverse = 1.0 / Cross(m_B, m_C);
    m_Factor = std::abs(Inverse);
    m_OffsetB = Cross(Target, m_C) * Inverse;
    m_SlopeB = Cross(m_A, m_C) * Inverse;
    m_OffsetC = Cross(m_B, Target) * Inverse;
    m_SlopeC = Cross(m_B, m_A) * Inverse;
}

CScrewRange CScrewSet::GetRangeOfA(const CScrewBox& rBox, double Slack, double Rounding) const {
    CScrewRange Range{rBox.m_pA->m_Min, rBox.m_pA->m_Max};
    Range.Clip(m_OffsetB, m_SlopeB, rBox.m_pB->m_Min - Slack, rBox.m_pB->m_Max + Slack, Rounding);
    Range.Clip(m_OffsetC, m_SlopeC, rBox.m_pC->m_Min - Slack, rBox.m_pC->m_Max + Slack, Rounding);
    return Range;
}

CScrewAxis CScrewSet::MakeAxis(const CScrewBox& rBox, CScrewVector Direction) const {
    CScrewAxis Axis{.m_Direction = Direction,
                    .m_AlongA = Dot(Direction, m_A),
                    .m_AlongB = Dot(Direction, m_B),
                    .m_AlongC = Dot(Direction, m_C),
                    .m_Target = Dot(Direction, m_Target)};
    Axis.m_MaxB = CScrewAxis::GetMost(Axis.m_AlongB, *rBox.m_pB);
    Axis.m_MaxC = CScrewAxis::GetMost(Axis.m_AlongC, *rBox.m_pC);
    Axis.m_Gap = Axis.m_Target - CScrewAxis::GetMost(Axis.m_AlongA, *rBox.m_pA) - Axis.m_MaxB - Axis.m_MaxC;
    return Axis;
}

CScrewAxis CScrewSet::MakeAxis(const CScrewBox& rBox) const {
    const auto Middle = [](const CScrewWeights::CGroup& rGroup) {
        return (rGroup.m_Min + rGroup.m_Max) / 2.0;
    };
    // From the middle to the target.
    const CScrewVector Off =
        Less(Less(Less(m_Target, Middle(*rBox.m_pA), m_A), Middle(*rBox.m_pB), m_B), Middle(*rBox.m_pC), m_C);
    CScrewAxis Best;
    for (const CScrewVector Side : {m_A, m_B, m_C}) {
        const CScrewVector Normal =
            Cross(Side, Off) > 0.0 ? CScrewVector{-Side.y, Side.x} : CScrewVector{Side.y, -Side.x};
        const CScrewAxis Axis = MakeAxis(rBox, Normal);
        if (Axis.m_Gap > Best.m_Gap) {
            Best = Axis;
        }
    }
    if (Best.m_Gap <= 0.0) {
        return Best;
    }
    // The side's corner that is nearer to the target.
    const auto Farthest = [](double Along, double Tie, const CScrewWeights::CGroup& rGroup) {
        constexpr double ACROSS = 1e-9;
        return (std::abs(Along) > ACROSS ? Along : Tie) > 0.0 ? rGroup.m_Max : rGroup.m_Min;
    };
    const CScrewVector n = Best.m_Direction;
    CScrewVector Rest = m_Target;
    Rest = Less(Rest, Farthest(Dot(n, m_A), Dot(Off, m_A), *rBox.m_pA), m_A);
    Rest = Less(Rest, Farthest(Dot(n, m_B), Dot(Off, m_B), *rBox.m_pB), m_B);
    Rest = Less(Rest, Farthest(Dot(n, m_C), Dot(Off, m_C), *rBox.m_pC), m_C);
    const double Length = std::hypot(Rest.x, Rest.y);
    if (Length > 0.0) {
        const CScrewAxis Axis = MakeAxis(rBox, {Rest.x / Length, Rest.y / Length});
        if (Axis.m_Gap > Best.m_Gap) {
            Best = Axis;
        }
    }
    return Best;
}
