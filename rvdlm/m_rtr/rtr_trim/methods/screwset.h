#pragma once
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "rvdlm/m_rtr/rtr_trim/methods/screwvector.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screwweights.h"

/// A range that is narrowed by bounds.
struct CScrewRange {
    double m_Low;
    double m_High;

    void AtLeast(double Value) { m_Low = std::max(m_Low, Value); }
    void AtMost(double Value) { m_High = std::min(m_High, Value); }
    bool IsEmpty() const { return m_Low > m_High; }
    /// x such that Low <= a - b * x <= High. Slack for the rounding of the quotients.
    void Clip(double a, double b, double Low, double High, double Slack);
    /// x such that x * Along is at least Missing. Does nothing if x hardly counts along the axis.
    void Clip(double Along, double Missing);
};

/// How the screws of a set of holes share the work: a is fixed, b and c follow from it.
struct CScrewRoles {
    std::size_t a, b, c;  ///< number of the hole in its set
};

/// A group of weights for each of a, b and c.
struct CScrewBox {
    const CScrewWeights::CGroup* m_pA;
    const CScrewWeights::CGroup* m_pB;
    const CScrewWeights::CGroup* m_pC;
};

/// A direction, and how far the screws of a box get along it.
struct CScrewAxis {
    CScrewVector m_Direction;  ///< a unit vector; or nothing, which excludes nothing
    double m_AlongA = 0.0;     ///< of the direction of a's hole; so the others
    double m_AlongB = 0.0;
    double m_AlongC = 0.0;
    double m_Target = 0.0;  ///< place of the target
    double m_MaxB = 0.0;    ///< the most that b adds
    double m_MaxC = 0.0;
    double m_Gap = 0.0;  ///< how far the target lies beyond all sums; 0 if no axis shows that it does

    /// The most that a weight of the group adds.
    static double GetMost(double Along, const CScrewWeights::CGroup& rGroup) {
        return Along * (Along > 0.0 ? rGroup.m_Max : rGroup.m_Min);
    }
};

/// Three holes and a target: what the weights in two of them must be, given the third.
class CScrewSet {
public:
    /// Directions of the holes. The widest angle is that of b and c, so that the coefficients of the solution
    /// are at most 1.
    CScrewSet(const std::array<CScrewVector, 3>& rDirections, CScrewVector Target);

    const CScrewRoles& GetRoles() const { return m_Roles; }
    CScrewVector GetA() const { return m_A; }
    /// By how much b and c may be off, in units of the sum's distance from the target.
    double GetFactor() const { return m_Factor; }
    double GetOffsetB() const { return m_OffsetB; }
    double GetSlopeB() const { return m_SlopeB; }

    /// Range of a in which b and c can be in their groups, each at most Slack beside.
    CScrewRange GetRangeOfA(const CScrewBox& rBox, double Slack, double Rounding) const;
    /// The axis along which the target is farthest from the sums of the box, of the few that can be it: the
    /// normals of the hexagon's sides, and the direction of the target from one of its corners.
    CScrewAxis MakeAxis(const CScrewBox& rBox) const;
    /// Calls Visit for every box in which a placement may come within Reach of the target.
    template <typename F>
    void ForEachBox(const CScrewWeights& rWeights, const double& rReach, F Visit) const;

private:
    CScrewAxis MakeAxis(const CScrewBox& rBox, CScrewVector Direction) const;

    CScrewRoles m_Roles{};
    CScrewVector m_A, m_B, m_C;
    CScrewVector m_Target;
    double m_Factor = 0.0;
    // Real-valued weights of b and c by the weight of a: Offset - Slope * a.
    double m_OffsetB = 0.0;
    double m_SlopeB = 0.0;
    double m_OffsetC = 0.0;
    double m_SlopeC = 0.0;
};

template <typename F>
void CScrewSet::ForEachBox(const CScrewWeights& rWeights, const double& rReach, F Visit) const {
    const auto Groups = rWeights.GetGroups();
    if (Groups.size() == 1) {
        Visit(CScrewBox{Groups.data(), Groups.data(), Groups.data()});
        return;
    }
    // Where the target is beyond all sums, only the groups count that reach out to it.
    const CScrewWeights::CGroup Whole{.m_Min = rWeights.GetMin(), .m_Max = rWeights.GetMax()};
    const CScrewAxis Axis = MakeAxis({&Whole, &Whole, &Whole});
    for (const auto& rA : Groups) {
        const double MissingA = Axis.m_Target - CScrewAxis::GetMost(Axis.m_AlongA, rA);
        if (MissingA - Axis.m_MaxB - Axis.m_MaxC > rReach) {
            continue;
        }
        const auto [LowB, HighB] =
            std::minmax({m_OffsetB - m_SlopeB * rA.m_Min, m_OffsetB - m_SlopeB * rA.m_Max});
        const auto [LowC, HighC] =
            std::minmax({m_OffsetC - m_SlopeC * rA.m_Min, m_OffsetC - m_SlopeC * rA.m_Max});
        for (const auto& rB : Groups) {
            const double MissingB = MissingA - CScrewAxis::GetMost(Axis.m_AlongB, rB);
            if (rB.m_Max < LowB - rReach * m_Factor || rB.m_Min > HighB + rReach * m_Factor ||
                MissingB - Axis.m_MaxC > rReach) {
                continue;
            }
            for (const auto& rC : Groups) {
                if (rC.m_Max < LowC - rReach * m_Factor || rC.m_Min > HighC + rReach * m_Factor ||
                    MissingB - CScrewAxis::GetMost(Axis.m_AlongC, rC) > rReach) {
                    continue;
                }
                Visit(CScrewBox{&rA, &rB, &rC});
            }
        }
    }
}
