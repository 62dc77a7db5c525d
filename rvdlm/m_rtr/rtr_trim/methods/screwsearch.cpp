// The argument, for the search to give what the enumeration gives.
//
// The enumeration has one state: the squared deviation S of its best placement, at first START. It takes a
// placement of deviation D if S - D > MARGIN, as computed. Rounding is monotonic, so:
//
// (1) Once a placement of deviation D has been met, S - D <= MARGIN. So a later one of deviation D or more
//     is never taken. Of equal weights only the table's first entry can matter: exchanging an entry for the
//     first of its weight gives the same sum earlier.
// (2) A walk in the order of the enumeration keeps a number Low with S >= Low, first unknown S: all
//     placements met of deviation less than Low have been considered. A placement with D >= Low leaves that
//     true whether it is taken or not, so it needs no look at all. One with Low - D > MARGIN is surely
//     taken, since S >= Low; from there on S = D is known, and the rest is the enumeration's own rule. One in
//     between may be taken or not; either way S >= D, so Low becomes D.
// (3) So a walk may begin with any Low = Bound in place of the unknown past, if it looks at every placement
//     of deviation less than Low, in order. If it ends without a sure acceptance (a chain of near-ties), it
//     is repeated with a larger Bound; with Bound >= START the state is known from the start.
// (4) With S known and S <= MARGIN nothing is better by the margin, and the walk ends.
// (5) Low may be lowered at any time: S >= Low stays true. What is lost is the knowledge of S, until the next
//     sure acceptance. So as soon as a placement of deviation D is met, wherever in its set, Low becomes D +
//     m_Window if it was more: the crowd of placements between is never looked at. m_Window is several times
//     MARGIN, so that placement is surely taken when its turn comes, unless a chain of near-ties precedes
//     it; then (3) repeats the walk with a larger m_Window, which in the end lowers nothing any more.
// (6) Within a set of holes placements are found in another order. They are sorted into the enumeration's
//     before the rule is applied, and by (1) those that an earlier one equals or beats may be dropped.
// (7) If those left are more than there is room for, the set is searched anew in two slices, the placements
//     of the enumeration's first half and then those of its second; and so on. Each slice is decided before
//     the next is searched, so the order stays that of the enumeration.
//
// A good Bound makes the search fast, but has no part in its being right. EstimateBest finds one by rounding
// the real-valued solutions of sets of holes that are spread over the walk; and of all sets that can come
// nearer than the best so far, if that is still farther away than the weights are apart.
//
// What isn't looked at lies outside the disc of radius sqrt(Low) around the target. All sums computed here
// err by less than some 30 units in the last place of the largest length that occurs (three weights and the
// target); so does the deviation that the enumeration computes. m_Rounding is more than ten times that, and
// is added to the radius twice. The candidates that remain are judged by the enumeration's own expressions in
// their own order of operations; the project is compiled without contraction of floating-point expressions.
//
// Geometry: the sums that a set of holes reaches lie in a hexagon, the meeting of three strips, each the
// range of the sum's cross product with one of the directions. With one weight fixed the other two follow
// from the target by Cramer's rule, up to reach / |sin| of the angle between them. If the weights come in
// groups with wide gaps between them, the hexagon is nearly empty: then the set is taken apart into boxes, a
// group for each screw, and each box is a hexagon of its own. A hexagon is left out if along some axis the
// target lies farther beyond all of its sums than the disc reaches; and along that axis the screws must bring
// what is missing to the disc's near side, which bounds each of them by what the others bring at most.
#include "rvdlm/m_rtr/rtr_trim/methods/screwsearch.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

using CVector = CScrewSearch::CVector;

constexpr double PI = 3.141592653589793;

}  // namespace

CScrewSearch::CScrewSearch(std::span<const double> Table, bool bThreeScrews, int nHoles, std::size_t nRoom)
    : m_Weights(Table.first(std::min<std::size_t>(Table.size(), std::numeric_limits<std::uint16_t>::max()))),
      m_bThree(bThreeScrews),
      m_nHoles(nHoles > 0 ? static_cast<std::uint16_t>(nHoles) : 0),
      m_Table(Table.begin(), Table.end()),
      m_nRoom(nRoom) {
    if (m_Weights.GetSize() == 0 || m_nHoles == 0) {
        return;
    }
    m_Largest = std::max(std::abs(m_Weights.GetMin()), std::abs(m_Weights.GetMax()));
    for (std::size_t i = 0; i < m_nHoles; ++i) {
        const double Angle = static_cast<double>(i) * (360.0 / static_cast<double>(m_nHoles)) * PI / 180;
        m_Directions.push_back({std::cos(Angle), std::sin(Angle)});
        const double AtMin = m_Directions[i].y * m_Weights.GetMin();
        const double AtMax = m_Directions[i].y * m_Weights.GetMax();
        m_CrossLow.push_back(std::min(AtMin, AtMax));
        m_CrossHigh.push_back(std::max(AtMin, AtMax));
    }
    m_Cross.resize(m_nHoles);
    m_MaxAlong.resize(m_nHoles);
}

CVector CScrewSearch::GetSum(const CHoles& rHoles, const std::array<double, MAX_SCREWS>& rWeights) const {
    const CVector u1 = m_Directions[rHoles[0]];
    const CVector u2 = m_Directions[rHoles[1]];
    CVector Sum{rWeights[1] * u2.x + rWeights[0] * u1.x, rWeights[1] * u2.y + rWeights[0] * u1.y};
    if (m_bThree) {
        const CVector u3 = m_Directions[rHoles[2]];
        Sum.x += rWeights[2] * u3.x;
        Sum.y += rWeights[2] * u3.y;
    }
    return Sum;
}

double CScrewSearch::GetDeviation(CVector Sum) const {
    const double DeltaX = Sum.x - m_Target.x;
    const double DeltaY = Sum.y - m_Target.y;
    return DeltaX * DeltaX + DeltaY * DeltaY;
}

void CScrewSearch::SetTarget(CVector Target) {
    m_Target = Target;
    m_Length = std::hypot(Target.x, Target.y);
    const CVector Axis =
        m_Length > 0.0 ? CVector{Target.x / m_Length, Target.y / m_Length} : CVector{1.0, 0.0};
    const double Scale = 3.0 * m_Largest + m_Length;
    // The bounds work with squares and need finite numbers. Far beyond all tons that a machine can turn, the
    // enumeration itself is good enough.
    constexpr double ABSURD = 1e12;
    m_bPlain = !(Scale < ABSURD);
    m_Rounding = 1e-13 * Scale;
    for (std::size_t i = 0; i < m_nHoles; ++i) {
        m_Cross[i] = Cross(m_Directions[i], Target);
        const double Along = Dot(m_Directions[i], Axis);
        m_MaxAlong[i] = std::max(Along * m_Weights.GetMin(), Along * m_Weights.GetMax());
    }
}

std::optional<CScrewSearch::CPlacement> CScrewSearch::Find(CVector Target) {
    const std::size_t nScrews = m_bThree ? 3 : 2;
    if (m_Weights.GetSize() == 0 || m_nHoles < nScrews || !std::isfinite(Target.x) ||
        !std::isfinite(Target.y)) {
        return std::nullopt;  // no placement, or none with a deviation that is a number
    }
    SetTarget(Target);
    const double Estimate = m_bPlain ? START : EstimateBest();
    // Clear of the margin, and of rounding where the estimate is large.
    m_Window = 4.0 * MARGIN + 1e-14 * Estimate;
    while (!Walk(Estimate + m_Window)) {
        m_Window *= 8.0;
    }
    return m_Best;
}

template <typename F>
void CScrewSearch::ForEachSet(std::size_t n, F Visit) const {
    for (std::size_t h1 = 0; h1 < n; ++h1) {
        for (std::size_t h2 = h1 + 1; h2 < n; ++h2) {
            const std::size_t nLast = m_bThree ? n : h2 + 2;  // two screws: one pass, whatever h3
            for (std::size_t h3 = h2 + 1; h3 < nLast; ++h3) {
                if (!Visit(CHoles{h1, h2, h3})) {
                    return;
                }
            }
        }
    }
}

double CScrewSearch::EstimateBest() {
    // Sets of holes at regular distances through the walk.
    constexpr std::size_t SAMPLES = 64;
    const std::size_t n = m_nHoles;
    const std::size_t nSets = m_bThree ? n * (n - 1) / 2 * (n - 2) / 3 : n * (n - 1) / 2;
    const std::size_t nStride = nSets / SAMPLES + 1;
    // Farther away is no placement.
    const double Scale = 3.0 * m_Largest + m_Length;
    m_Low = Scale * Scale;
    m_Reach = Scale + 2.0 * m_Rounding;
    std::size_t nUntilSample = nStride / 2;
    ForEachSet(n, [&](const CHoles& rHoles) {
        if (nUntilSample-- == 0) {
            nUntilSample = nStride - 1;
            EstimateInSet(rHoles);
        }
        return true;
    });
    double Ranges = 0.0;
    for (const auto& rGroup : m_Weights.GetGroups()) {
        Ranges += rGroup.m_Max - rGroup.m_Min;
    }
    const double Spacing = Ranges / static_cast<double>(m_Weights.GetSize());
    if (m_Low <= Spacing * Spacing) {
        return m_Low;
    }
    // Few sets get near the target. If it is out of reach, those do whose holes are nearest to its direction.
    constexpr std::size_t NEAR = 6;
    const double Turns = std::atan2(m_Target.y, m_Target.x) / (2.0 * PI);
    const auto Nearest = static_cast<std::size_t>(std::floor((Turns + 1.0) * static_cast<double>(n)));
    const std::size_t nNear = std::min(NEAR, n);
    std::array<std::size_t, NEAR> Near{};
    for (std::size_t i = 0; i < nNear; ++i) {
        Near[i] = (Nearest + n * NEAR + i - (nNear / 2 - 1)) % n;
    }
    std::sort(Near.begin(), Near.begin() + nNear);
    ForEachSet(nNear, [&](const CHoles& rPlaces) {
        EstimateInSet({Near[rPlaces[0]], Near[rPlaces[1]], m_bThree ? Near[rPlaces[2]] : 0});
        return true;
    });
    ForEachSet(n, [&](const CHoles& rHoles) {
        EstimateInSet(rHoles);
        return true;
    });
    return m_Low;
}

void CScrewSearch::EstimateInSet(const CHoles& rHoles) {
    if (!CanReach(rHoles)) {
        return;
    }
    if (m_bThree) {
        const CScrewSet Set = MakeSet(rHoles);
        Set.ForEachBox(m_Weights, m_Reach, [&](const CScrewBox& rBox) { EstimateInBox(rHoles, Set, rBox); });
        return;
    }
    std::array<double, MAX_SCREWS> Weights{};
    for (const auto& rB : m_Weights.GetGroups()) {
        for (const auto& rC : m_Weights.GetGroups()) {
            EstimatePair(rHoles, {0, 0, 1}, {&rB, &rB, &rC}, Weights, m_Target);
        }
    }
}

void CScrewSearch::EstimateInBox(const CHoles& rHoles, const CScrewSet& rSet, const CScrewBox& rBox) {
    const CScrewAxis Axis = rSet.MakeAxis(rBox);
    CScrewRange Range = rSet.GetRangeOfA(rBox, m_Reach * rSet.GetFactor(), m_Rounding);
    Range.Clip(Axis.m_AlongA, Axis.m_Target - m_Reach - Axis.m_MaxB - Axis.m_MaxC);
    if (Axis.m_Gap > m_Reach || Range.IsEmpty()) {
        return;
    }
    constexpr std::size_t TRIES = 16;
    const auto [From, To] = m_Weights.Find(*rBox.m_pA, Range.m_Low, Range.m_High);
    const std::size_t nStep = (To - From) / TRIES + 1;
    std::array<double, MAX_SCREWS> Weights{};
    for (std::size_t i = From; i < To; i += nStep) {
        // From the heaviest downwards: it counts most where the target is hardly in reach.
        Weights[rSet.GetRoles().a] = m_Weights.GetWeight(To - 1 - (i - From));
        EstimatePair(rHoles, rSet.GetRoles(), rBox, Weights,
                     Less(m_Target, Weights[rSet.GetRoles().a], rSet.GetA()));
    }
}

void CScrewSearch::EstimatePair(const CHoles& rHoles, CScrewRoles Roles, const CScrewBox& rBox,
                                std::array<double, MAX_SCREWS>& rWeights, CVector Rest) {
    // One of the two from the real-valued solution, the other then as near as it gets; and the other way
    // round, since out of reach only one of the two limits may be the right one.
    for (const bool bTurned : {false, true}) {
        const std::size_t First = bTurned ? Roles.c : Roles.b;
        const std::size_t Second = bTurned ? Roles.b : Roles.c;
        const CScrewWeights::CGroup& rFirst = bTurned ? *rBox.m_pC : *rBox.m_pB;
        const CScrewWeights::CGroup& rSecond = bTurned ? *rBox.m_pB : *rBox.m_pC;
        const CVector u1 = GetDirection(rHoles[First]);
        const CVector u2 = GetDirection(rHoles[Second]);
        const double Sine = Cross(u1, u2);
        const double Exact = Sine != 0.0 ? Cross(Rest, u2) / Sine : 0.0;
        rWeights[First] = m_Weights.GetWeight(m_Weights.FindNearest(rFirst, Exact));
        const CVector Remainder = Less(Rest, rWeights[First], u1);
        rWeights[Second] = m_Weights.GetWeight(m_Weights.FindNearest(rSecond, Dot(Remainder, u2)));
        const double Deviation = GetDeviation(GetSum(rHoles, rWeights));
        if (Deviation < m_Low) {
            SetLow(Deviation);
        }
    }
}

void CScrewSearch::SetLow(double Low) {
    m_Low = Low;
    m_Reach = std::sqrt(Low) + 2.0 * m_Rounding;
}

void CScrewSearch::SetFilter() {
    // Sets of holes as they usually are, two of them at a good angle, go through the filter. It is marked
    // anew when much of it would be idle.
    const double Usual = 2.0 * m_Reach;
    const double Present = m_Weights.GetTolerance();
    if (!(Present >= Usual && Present < 4.0 * Usual)) {
        m_Weights.SetTolerance(2.0 * Usual);
    }
}

bool CScrewSearch::Walk(double Bound) {
    m_Best.reset();
    m_bKnown = m_bPlain || Bound >= START;
    SetLow(m_bKnown ? START : Bound);
    SetFilter();
    ForEachSet(m_nHoles, [this](const CHoles& rHoles) {
        if (m_bPlain || CanReach(rHoles)) {
            SearchSet(rHoles);
        }
        return !IsDecided();
    });
    return m_bKnown;
}

bool CScrewSearch::CanReach(const CHoles& rHoles) const {
    // Cross products of the sum with each of the directions; direction i x direction j is the sine for j - i.
    const std::size_t d12 = rHoles[1] - rHoles[0];
    const double* pLow = m_CrossLow.data();
    const double* pHigh = m_CrossHigh.data();
    const double t1 = m_Cross[rHoles[0]];
    const double t2 = m_Cross[rHoles[1]];
    const double Most = m_MaxAlong[rHoles[0]] + m_MaxAlong[rHoles[1]];
    if (!m_bThree) {
        return t1 >= pLow[d12] - m_Reach && t1 <= pHigh[d12] + m_Reach && t2 >= -pHigh[d12] - m_Reach &&
               t2 <= -pLow[d12] + m_Reach && Most >= m_Length - m_Reach;
    }
    const std::size_t d13 = rHoles[2] - rHoles[0];
    const std::size_t d23 = rHoles[2] - rHoles[1];
    const double t3 = m_Cross[rHoles[2]];
    return t1 >= pLow[d12] + pLow[d13] - m_Reach && t1 <= pHigh[d12] + pHigh[d13] + m_Reach &&
           t2 >= pLow[d23] - pHigh[d12] - m_Reach && t2 <= pHigh[d23] - pLow[d12] + m_Reach &&
           t3 >= -pHigh[d13] - pHigh[d23] - m_Reach && t3 <= -pLow[d13] - pLow[d23] + m_Reach &&
           Most + m_MaxAlong[rHoles[2]] >= m_Length - m_Reach;
}

CScrewSet CScrewSearch::MakeSet(const CHoles& rHoles) const {
    return {{m_Directions[rHoles[0]], m_Directions[rHoles[1]], m_Directions[rHoles[2]]}, m_Target};
}

void CScrewSearch::SearchSet(const CHoles& rHoles) {
    const double Low = m_Low;
    SearchSlice(rHoles, 0, (std::uint64_t{m_Table.size()} << 32U) - 1);
    if (m_Low < Low) {
        SetFilter();
    }
}

void CScrewSearch::SearchSlice(const CHoles& rHoles, std::uint64_t First, std::uint64_t Last) {
    m_First = First;
    m_Last = Last;
    m_bFull = false;
    if (m_bPlain) {
        SearchEverything(rHoles);
    } else if (m_bThree) {
        const CScrewSet Set = MakeSet(rHoles);
        Set.ForEachBox(m_Weights, m_Reach, [&](const CScrewBox& rBox) { SearchBox(rHoles, Set, rBox); });
    } else {
        SearchTwo(rHoles);
    }
    if (!m_bFull) {
        Decide(rHoles);
        return;
    }
    m_Candidates.clear();
    const std::uint64_t Middle = First + (Last - First) / 2;
    SearchSlice(rHoles, First, Middle);
    if (!IsDecided()) {
        SearchSlice(rHoles, Middle + 1, Last);
    }
}

void CScrewSearch::SearchTwo(const CHoles& rHoles) {
    std::array<std::size_t, MAX_SCREWS> Indices{};
    for (const auto& rB : m_Weights.GetGroups()) {
        for (const auto& rC : m_Weights.GetGroups()) {
            SearchPair(rHoles, {2, 0, 1}, {&rB, &rB, &rC}, {}, Indices, m_Target);
        }
    }
}

void CScrewSearch::SearchBox(const CHoles& rHoles, const CScrewSet& rSet, const CScrewBox& rBox) {
    const double Slack = m_Reach * rSet.GetFactor();
    CScrewRange Range = rSet.GetRangeOfA(rBox, Slack, m_Rounding);
    if (Range.IsEmpty()) {
        return;
    }
    const bool bFilter = Slack <= rBox.m_pB->m_Tolerance;
    const CScrewAxis Axis = bFilter ? CScrewAxis{} : rSet.MakeAxis(rBox);
    Range.Clip(Axis.m_AlongA, Axis.m_Target - m_Reach - Axis.m_MaxB - Axis.m_MaxC);
    if (Axis.m_Gap > m_Reach || Range.IsEmpty()) {
        return;
    }
    const auto [From, To] = m_Weights.Find(*rBox.m_pA, Range.m_Low, Range.m_High);
    std::array<std::size_t, MAX_SCREWS> Indices{};
    const auto SolveFor = [&](std::size_t Index) {
        Indices[rSet.GetRoles().a] = Index;
        SearchPair(rHoles, rSet.GetRoles(), rBox, Axis, Indices,
                   Less(m_Target, m_Weights.GetWeight(Index), rSet.GetA()));
    };
    if (bFilter) {
        m_Weights.Filter(rSet.GetOffsetB(), rSet.GetSlopeB(), *rBox.m_pB, *rBox.m_pA, From, To, SolveFor);
        return;
    }
    for (std::size_t i = From; i < To; ++i) {
        SolveFor(i);
    }
}

void CScrewSearch::SearchPair(const CHoles& rHoles, CScrewRoles Roles, const CScrewBox& rBox,
                              const CScrewAxis& rAxis, std::array<std::size_t, MAX_SCREWS>& rIndices,
                              CVector Rest) {
    const CVector ub = GetDirection(rHoles[Roles.b]);
    const CVector uc = GetDirection(rHoles[Roles.c]);
    const CScrewWeights::CGroup& rGroupC = *rBox.m_pC;
    CScrewRange Range{rBox.m_pB->m_Min, rBox.m_pB->m_Max};
    constexpr double OPPOSITE = 1e-6;
    const double Sine = Cross(ub, uc);
    if (std::abs(Sine) > OPPOSITE) {
        const double Inverse = 1.0 / Sine;
        const double Exact = Cross(Rest, uc) * Inverse;
        const double Slack = m_Reach * std::abs(Inverse);
        Range.AtLeast(Exact - Slack);
        Range.AtMost(Exact + Slack);
    }
    // Along the axis the two must bring what is missing to the disc's near side.
    Range.Clip(rAxis.m_AlongB, Dot(Rest, rAxis.m_Direction) - m_Reach - rAxis.m_MaxC);
    if (Range.IsEmpty()) {
        return;
    }
    const auto [FromB, ToB] = m_Weights.Find(*rBox.m_pB, Range.m_Low, Range.m_High);
    for (std::size_t b = FromB; b < ToB; ++b) {
        const CVector Remainder = Less(Rest, m_Weights.GetWeight(b), ub);
        const double Off = Cross(uc, Remainder);
        const double Room = m_Reach * m_Reach - Off * Off;
        if (Room < 0.0) {
            continue;
        }
        const double Middle = Dot(uc, Remainder);
        const double Half = std::sqrt(Room) + m_Rounding;
        if (Middle + Half < rGroupC.m_Min || Middle - Half > rGroupC.m_Max) {
            continue;
        }
        const auto [FromC, ToC] = m_Weights.Find(rGroupC, Middle - Half, Middle + Half);
        rIndices[Roles.b] = b;
        for (std::size_t c = FromC; c < ToC; ++c) {
            rIndices[Roles.c] = c;
            Consider(rHoles, rIndices);
        }
    }
}

void CScrewSearch::SearchEverything(const CHoles& rHoles) {
    const std::size_t n = m_Weights.GetSize();
    std::array<std::size_t, MAX_SCREWS> i{};
    for (i[0] = 0; i[0] < n; ++i[0]) {
        for (i[1] = 0; i[1] < n; ++i[1]) {
            for (i[2] = 0; i[2] < (m_bThree ? n : 1); ++i[2]) {
                Consider(rHoles, i);
            }
        }
    }
}

void CScrewSearch::Consider(const CHoles& rHoles, const std::array<std::size_t, MAX_SCREWS>& rIndices) {
    const std::array<double, MAX_SCREWS> Weights = {
        m_Weights.GetWeight(rIndices[0]), m_Weights.GetWeight(rIndices[1]), m_Weights.GetWeight(rIndices[2])};
    const double Deviation = GetDeviation(GetSum(rHoles, Weights));
    if (!(Deviation < m_Low) || m_bFull) {
        return;
    }
    std::uint64_t Key = 0;
    for (const std::size_t Index : rIndices) {
        Key = Key << 16U | m_Weights.GetEntry(Index);
    }
    if (Key < m_First || Key > m_Last) {
        return;
    }
    m_Candidates.push_back({Deviation, Key});
    if (Deviation + m_Window < m_Low && !m_bPlain) {
        SetLow(Deviation + m_Window);
        m_bKnown = false;
    }
    if (m_Candidates.size() >= m_nRoom) {
        Compact();
        // Half of it must be free again, or there would be next to nothing but sorting.
        m_bFull = m_Candidates.size() > m_nRoom / 2;
    }
}

void CScrewSearch::Compact() {
    std::sort(m_Candidates.begin(), m_Candidates.end(),
              [](const CCandidate& rLeft, const CCandidate& rRight) { return rLeft.m_Key < rRight.m_Key; });
    double Record = std::numeric_limits<double>::infinity();
    std::erase_if(m_Candidates, [&Record](const CCandidate& rCandidate) {
        if (rCandidate.m_Deviation < Record) {
            Record = rCandidate.m_Deviation;
            return false;
        }
        return true;
    });
}

void CScrewSearch::Decide(const CHoles& rHoles) {
    if (m_Candidates.empty()) {
        return;
    }
    Compact();
    double Low = m_Low;
    for (const CCandidate& rCandidate : m_Candidates) {
        if (Low - rCandidate.m_Deviation > MARGIN) {
            m_bKnown = true;
            CPlacement Placement;
            std::array<double, MAX_SCREWS> Weights{};
            for (std::size_t i = 0; i < MAX_SCREWS; ++i) {
                Placement.m_Holes[i] = static_cast<std::uint16_t>(rHoles[i]);
                Placement.m_Entries[i] = static_cast<std::uint16_t>(rCandidate.m_Key >> (16 * (2 - i)));
                Weights[i] = m_Table[Placement.m_Entries[i]];
            }
            Placement.m_Sum = GetSum(rHoles, Weights);
            Placement.m_Delta = {Placement.m_Sum.x - m_Target.x, Placement.m_Sum.y - m_Target.y};
            m_Best = Placement;
            Low = rCandidate.m_Deviation;
        } else if (!m_bKnown && rCandidate.m_Deviation < Low) {
            Low = rCandidate.m_Deviation;
        }
    }
    m_Candidates.clear();
    if (Low < m_Low) {
        SetLow(Low);
    }
}
