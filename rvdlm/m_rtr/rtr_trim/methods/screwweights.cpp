#include "rvdlm/m_rtr/rtr_trim/methods/screwweights.h"

#include <algorithm>
#include <cmath>

CScrewWeights::CScrewWeights(std::span<const double> Table) {
    for (std::size_t i = 0; i < Table.size(); ++i) {
        if (std::isfinite(Table[i])) {
            m_Entries.push_back(static_cast<std::uint16_t>(i));
        }
    }
    std::stable_sort(m_Entries.begin(), m_Entries.end(),
                     [Table](std::uint16_t Left, std::uint16_t Right) { return Table[Left] < Table[Right]; });
    const auto Last =
        std::unique(m_Entries.begin(), m_Entries.end(),
                    [Table](std::uint16_t Left, std::uint16_t Right) { return Table[Left] == Table[Right]; });
    m_Entries.erase(Last, m_Entries.end());
    if (m_Entries.empty()) {
        return;
    }
    for (const std::uint16_t Entry : m_Entries) {
        m_Weights.push_back(Table[Entry]);
    }
    Group();
    MakeGrids();
}

void CScrewWeights::Group() {
    // The widest gaps, as long as they are wide in comparison with the mean of those that are left.
    constexpr double WIDE = 8.0;
    const std::size_t n = m_Weights.size();
    std::vector<std::size_t> Ends;  // of the groups; first by the gap that follows
    for (std::size_t i = 1; i < n; ++i) {
        Ends.push_back(i);
    }
    const auto nCandidates = static_cast<std::ptrdiff_t>(std::min(Ends.size(), GROUPS - 1));
    const auto GetGap = [this](std::size_t i) { return m_Weights[i] - m_Weights[i - 1]; };
    std::partial_sort(Ends.begin(), Ends.begin() + nCandidates, Ends.end(),
                      [&](std::size_t Left, std::size_t Right) { return GetGap(Left) > GetGap(Right); });
    double Left = GetMax() - GetMin();
    auto Last = Ends.begin();
    while (Last != Ends.begin() + nCandidates && GetGap(*Last) * static_cast<double>(n) > WIDE * Left) {
        Left -= GetGap(*Last);
        ++Last;
    }
    Ends.erase(Last, Ends.end());
    std::sort(Ends.begin(), Ends.end());
    Ends.push_back(n);
    std::size_t From = 0;
    for (const std::size_t To : Ends) {
        m_Groups.push_back(
            {.m_From = From, .m_To = To, .m_Min = m_Weights[From], .m_Max = m_Weights[To - 1]});
        From = To;
    }
}

void CScrewWeights::MakeGrids() {
    // The cells are shared out by the number of weights.
    const auto GetShare = [this](std::size_t nCells, const CGroup& rGroup) {
        return std::max<std::size_t>(1, nCells * (rGroup.m_To - rGroup.m_From) / m_Weights.size());
    };
    const double Largest = std::max(std::abs(GetMin()), std::abs(GetMax()));
    std::size_t nBuckets = 0;
    std::size_t nMarks = 0;
    for (CGroup& rGroup : m_Groups) {
        rGroup.m_FirstBucket = nBuckets;
        rGroup.m_nBuckets = GetShare(BUCKETS, rGroup);
        rGroup.m_FirstMark = nMarks;
        rGroup.m_nMarks = GetShare(MARKS, rGroup);
        nBuckets += rGroup.m_nBuckets;
        nMarks += rGroup.m_nMarks + 2 * PADDING;
        const double Range = rGroup.m_Max - rGroup.m_Min;
        if (Range > 1e-9 * Largest && Range < 1e100) {
            rGroup.m_BucketsPerGram = static_cast<double>(rGroup.m_nBuckets) / Range;
            rGroup.m_MarksPerGram = static_cast<double>(rGroup.m_nMarks) / Range;
        }
    }
    m_Marks.resize(nMarks);
    m_Starts.assign(nBuckets + 1, 0);
    for (const CGroup& rGroup : m_Groups) {
        for (std::size_t i = rGroup.m_From; i < rGroup.m_To; ++i) {
            m_Offsets.push_back(static_cast<float>(m_Weights[i] - rGroup.m_Min));
            ++m_Starts[GetBucket(rGroup, m_Weights[i]) + 1];
        }
    }
    m_Offsets.insert(m_Offsets.end(), LANES, m_Offsets.back());
    for (std::size_t i = 0; i < nBuckets; ++i) {
        m_Starts[i + 1] = static_cast<std::uint16_t>(m_Starts[i + 1] + m_Starts[i]);
    }
}

std::size_t CScrewWeights::FindNearest(const CGroup& rGroup, double Value) const {
    // The first weight from Value on is in Value's bucket or first in a later one.
    std::size_t Index = m_Starts[GetBucket(rGroup, Value)];
    while (Index < rGroup.m_To && m_Weights[Index] < Value) {
        ++Index;
    }
    if (Index == rGroup.m_To) {
        return Index - 1;
    }
    return Index > rGroup.m_From && Value - m_Weights[Index - 1] < m_Weights[Index] - Value ? Index - 1
                                                                                            : Index;
}

void CScrewWeights::SetTolerance(double Tolerance) {
    m_Tolerance = Tolerance;
    std::fill(m_Marks.begin(), m_Marks.end(), std::uint8_t{0});
    for (CGroup& rGroup : m_Groups) {
        // A mark of half the padding keeps the ends of the marks clear; the rest of a mark is well above what
        // single precision loses (0.01 marks).
        constexpr double WIDEST = PADDING / 2.0;
        constexpr double ROUNDING = 0.05;
        rGroup.m_Tolerance = -1.0;
        if (!(Tolerance * rGroup.m_MarksPerGram < WIDEST) || rGroup.m_MarksPerGram == 0.0) {
            continue;
        }
        rGroup.m_Tolerance = Tolerance;
        const double Width = Tolerance * rGroup.m_MarksPerGram + ROUNDING;
        const auto Begin = m_Marks.begin() + static_cast<std::ptrdiff_t>(rGroup.m_FirstMark);
        for (std::size_t i = rGroup.m_From; i < rGroup.m_To; ++i) {
            const double Place =
                (m_Weights[i] - rGroup.m_Min) * rGroup.m_MarksPerGram + static_cast<double>(PADDING);
            const auto First = static_cast<std::ptrdiff_t>(Place - Width);
            const auto Last = static_cast<std::ptrdiff_t>(Place + Width);
            std::fill(Begin + First, Begin + Last + 1, std::uint8_t{1});
        }
    }
}
