#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

/// The different weights of a screw table in rising order, with quick answers to "which weights lie in this
/// range" and "may any weight lie near this value". Of equal weights it holds the first entry of the table.
/// Weights that aren't finite are left out.
class CScrewWeights {
public:
    /// The table's weights in grams, in its order; 65535 at most.
    explicit CScrewWeights(std::span<const double> Table);

    std::size_t GetSize() const { return m_Weights.size(); }
    double GetWeight(std::size_t Index) const { return m_Weights[Index]; }
    /// Number of the table's entry.
    std::uint16_t GetEntry(std::size_t Index) const { return m_Entries[Index]; }
    double GetMin() const { return m_Weights.front(); }
    double GetMax() const { return m_Weights.back(); }

    /// Indices, from and up to but excluding, among which all weights of the range are; a few outside may be
    /// there too. The bounds may be infinite, but not NaN.
    std::pair<std::size_t, std::size_t> Find(double Low, double High) const {
        return {m_Starts[GetBucket(Low)], m_Starts[GetBucket(High) + 1]};
    }
    /// Index of the weight nearest to Value.
    std::size_t FindNearest(double Value) const;

    /// Brings the filter to a tolerance in grams: CanFilter and Filter go by it.
    void SetTolerance(double Tolerance);
    double GetTolerance() const { return m_Tolerance; }
    /// Calls Hit(i) for every index i in [From, To) for which a weight may lie within the tolerance of A - B
    /// * GetWeight(i), and for some others. |B| must not be above 1.
    template <typename F>
    void Filter(double A, double B, std::size_t From, std::size_t To, F Hit) const;

private:
    static constexpr std::size_t eBuckets = 4096;
    static constexpr std::size_t eMarks = 8192;
    /// Marks beyond both ends. Values further out are brought there, where nothing is marked.
    static constexpr std::size_t ePadding = 64;
    /// Values that Filter computes in a go.
    static constexpr std::size_t eBlock = 64;
    static constexpr std::size_t eLanes = 4;

    std::size_t GetBucket(double Weight) const {
        const double Bucket = (Weight - m_Weights.front()) * m_BucketsPerGram;
        return !(Bucket > 0.0) ? 0 : Bucket >= eBuckets ? eBuckets - 1 : static_cast<std::size_t>(Bucket);
    }

    std::vector<double> m_Weights;
    std::vector<std::uint16_t> m_Entries;
    std::vector<float> m_Offsets;  ///< weights less the smallest, with a few more behind them
    double m_BucketsPerGram = 0.0;
    std::vector<std::uint16_t> m_Starts;  ///< per bucket the number of weights in the buckets before it
    double m_MarksPerGram = 0.0;
    std::vector<std::uint8_t> m_Marks;  ///< nonzero where a weight may be within the tolerance
    double m_Tolerance = -1.0;
};

template <typename F>
void CScrewWeights::Filter(double A, double B, std::size_t From, std::size_t To, F Hit) const {
    // In single precision, so that four values are computed at once; SetTolerance marks wide enough for it.
    const auto Start = static_cast<float>((A - B * m_Weights.front() - m_Weights.front()) * m_MarksPerGram +
                                          static_cast<double>(ePadding));
    const auto Slope = static_cast<float>(B * m_MarksPerGram);
    constexpr auto eLast = static_cast<float>(eMarks + 2 * ePadding - 1);
    const std::uint8_t* pMarks = m_Marks.data();
    std::int32_t Places[eBlock];
    for (std::size_t Block = From; Block < To; Block += eBlock) {
        const std::size_t nLeft = To - Block;
        const std::size_t nValues = nLeft < eBlock ? (nLeft + eLanes - 1) / eLanes * eLanes : eBlock;
        const float* pOffsets = m_Offsets.data() + Block;
        for (std::size_t i = 0; i < nValues; ++i) {
            float Place = Start - Slope * pOffsets[i];
            Place = Place > 0.0F ? Place : 0.0F;
            Place = Place < eLast ? Place : eLast;
            Places[i] = static_cast<std::int32_t>(Place);
        }
        for (std::size_t i = 0; i < nValues; i += eLanes) {
            // nValues is a multiple of eLanes, so all four have been set above.
            // NOLINTNEXTLINE(clang-analyzer-core.uninitialized.ArraySubscript)
            if ((pMarks[Places[i]] | pMarks[Places[i + 1]] | pMarks[Places[i + 2]] | pMarks[Places[i + 3]]) ==
                0) {
                continue;
            }
            for (std::size_t j = i; j < i + eLanes && Block + j < To; ++j) {
                if (pMarks[Places[j]] != 0) {
                    Hit(Block + j);
                }
            }
        }
    }
}
