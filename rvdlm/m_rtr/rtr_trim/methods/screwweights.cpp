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
        m_Offsets.push_back(static_cast<float>(Table[Entry] - m_Weights.front()));
    }
    m_Offsets.insert(m_Offsets.end(), eLanes, m_Offsets.back());

    const double Range = GetMax() - GetMin();
    const double Largest = std::max(std::abs(GetMin()), std::abs(GetMax()));
    if (Range > 1e-9 * Largest && Range < 1e100) {
        m_BucketsPerGram = eBuckets / Range;
        m_MarksPerGram = eMarks / Range;
    }
    m_Starts.assign(eBuckets + 1, 0);
    for (const double Weight : m_Weights) {
        ++m_Starts[GetBucket(Weight) + 1];
    }
    for (std::size_t i = 0; i < eBuckets; ++i) {
        m_Starts[i + 1] = static_cast<std::uint16_t>(m_Starts[i + 1] + m_Starts[i]);
    }
    m_Marks.resize(eMarks + 2 * ePadding);
}

std::size_t CScrewWeights::FindNearest(double Value) const {
    // The first weight from Value on is in Value's bucket or first in a later one.
    std::size_t Index = m_Starts[GetBucket(Value)];
    while (Index < m_Weights.size() && m_Weights[Index] < Value) {
        ++Index;
    }
    if (Index == m_Weights.size()) {
        return Index - 1;
    }
    return Index > 0 && Value - m_Weights[Index - 1] < m_Weights[Index] - Value ? Index - 1 : Index;
}

void CScrewWeights::SetTolerance(double Tolerance) {
    // A mark of half the padding keeps the ends of the marks clear; the rest of a mark is well above what
    // single precision loses (0.003 marks).
    constexpr double eWidest = ePadding / 2.0;
    constexpr double eRounding = 0.05;
    if (!(Tolerance * m_MarksPerGram < eWidest) || m_MarksPerGram == 0.0) {
        m_Tolerance = -1.0;
        return;
    }
    m_Tolerance = Tolerance;
    std::fill(m_Marks.begin(), m_Marks.end(), std::uint8_t{0});
    const double Width = Tolerance * m_MarksPerGram + eRounding;
    for (const double Weight : m_Weights) {
        const double Place = (Weight - GetMin()) * m_MarksPerGram + static_cast<double>(ePadding);
        const auto First = static_cast<std::size_t>(Place - Width);
        const auto Last = static_cast<std::size_t>(Place + Width);
        std::fill(m_Marks.begin() + static_cast<std::ptrdiff_t>(First),
                  m_Marks.begin() + static_cast<std::ptrdiff_t>(Last) + 1, std::uint8_t{1});
    }
}
