#pragma once
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

/// The different weights of a screw table in rising order, with quick answers to "which weights lie in this
/// range" and "may any weight lie near this value". Of equal weights it holds the first entry of the table.
/// Weights that aren't finite are left out.
///
/// The weights are parted into groups at the gaps that are wide among their neighbours. Each group has a grid
/// of its own, as fine as its weights are dense, so that a far weight doesn't make the others one.
class CScrewWeights {
public:
    /// Weights that follow each other.
    struct CGroup {
        std::size_t m_From = 0;  ///< index of the first
        std::size_t m_To = 0;    ///< behind the last
        double m_Min = 0.0;
        double m_Max = 0.0;

        // Its part of the grids.
        std::size_t m_FirstBucket = 0;
        std::size_t m_nBuckets = 0;
        double m_BucketsPerGram = 0.0;
        std::size_t m_FirstMark = 0;
        std::size_t m_nMarks = 0;
        double m_MarksPerGram = 0.0;
        double m_Tolerance = -1.0;  ///< by which its marks go
    };

    /// The table's weights in grams, in its order; 65535 at most.
    explicit CScrewWeights(std::span<const double> Table);

    std::size_t GetSize() const { return m_Weights.size(); }
    double GetWeight(std::size_t Index) const { return m_Weights[Index]; }
    /// Number of the table's entry.
    std::uint16_t GetEntry(std::size_t Index) const { return m_Entries[Index]; }
    double GetMin() const { return m_Weights.front(); }
    double GetMax() const { return m_Weights.back(); }
    /// In rising order; few.
    std::span<const CGroup> GetGroups() const { return m_Groups; }

    /// Indices, from and up to but excluding, among which all weights of the group in the range are; a few
    /// outside may be there too. The bounds may be infinite, but not NaN.
    std::pair<std::size_t, std::size_t> Find(const CGroup& rGroup, double Low, double High) const {
        return {m_Starts[GetBucket(rGroup, Low)], m_Starts[GetBucket(rGroup, High) + 1]};
    }
    /// Index of the group's weight nearest to Value.
    std::size_t FindNearest(const CGroup& rGroup, double Value) const;

    /// Brings the filter to a tolerance in grams, in the groups whose grid is fine enough for it.
    void SetTolerance(double Tolerance);
    /// The last one set.
    double GetTolerance() const { return m_Tolerance; }
    /// Calls Hit(i) for every index i in [From, To) of a group for which a weight of rFound may lie within
    /// the tolerance of rFound (which must have one) of A - B * GetWeight(i), and for some others.
    template <typename F>
    void Filter(double A, double B, const CGroup& rFound, const CGroup& rGroup, std::size_t From,
                std::size_t To, F Hit) const;

private:
    static constexpr std::size_t GROUPS = 16;
    static constexpr std::size_t BUCKETS = 4096;
    static constexpr std::size_t MARKS = 8192;
    /// Marks beyond both ends of a group. Values further out are brought there, where nothing is marked.
    static constexpr std::size_t PADDING = 64;
    /// Values that Filter computes in a go.
    static constexpr std::size_t BLOCK = 64;
    static constexpr std::size_t LANES = 4;

    void Group();
    void MakeGrids();

    static std::size_t GetBucket(const CGroup& rGroup, double Weight) {
        const double Bucket = (Weight - rGroup.m_Min) * rGroup.m_BucketsPerGram;
        const std::size_t nLast = rGroup.m_nBuckets - 1;
        return rGroup.m_FirstBucket + (!(Bucket > 0.0) ? 0
                                       : Bucket >= static_cast<double>(nLast)
                                           ? nLast
                                           : static_cast<std::size_t>(Bucket));
    }

    std::vector<double> m_Weights;
    std::vector<std::uint16_t> m_Entries;
    std::vector<CGroup> m_Groups;
    std::vector<float> m_Offsets;  ///< weights less their group's smallest, with a few more behind them
    std::vector<std::uint16_t> m_Starts;  ///< per bucket the number of weights in the buckets before it
    std::vector<std::uint8_t> m_Marks;    ///< nonzero where a weight may be within the tolerance
    double m_Tolerance = -1.0;
};

template <typename F>
void CScrewWeights::Filter(double A, double B, const CGroup& rFound, const CGroup& rGroup, std::size_t From,
                           std::size_t To, F Hit) const {
    // In single precision, so that four values are computed at once; SetTolerance marks wide enough for it as
    // long as the numbers are below FINE.
    constexpr double FINE = 32768.0;
    const double Begin = (A - B * rGroup.m_Min - rFound.m_Min) * rFound.m_MarksPerGram;
    const double Travel = B * (rGroup.m_Max - rGroup.m_Min) * rFound.m_MarksPerGram;
    if (!(std::abs(Begin) + std::abs(Travel) < FINE)) {
        for (std::size_t i = From; i < To; ++i) {
            Hit(i);
        }
        return;
    }
    const auto Start = static_cast<float>(Begin + static_cast<double>(PADDING));
    const auto Slope = static_cast<float>(B * rFound.m_MarksPerGram);
    const auto Last = static_cast<float>(rFound.m_nMarks + 2 * PADDING - 1);
    const std::uint8_t* pMarks = m_Marks.data() + rFound.m_FirstMark;
    std::int32_t Places[BLOCK];
    for (std::size_t Block = From; Block < To; Block += BLOCK) {
        const std::size_t nLeft = To - Block;
        const std::size_t nValues = nLeft < BLOCK ? (nLeft + LANES - 1) / LANES * LANES : BLOCK;
        const float* pOffsets = m_Offsets.data() + Block;
        for (std::size_t i = 0; i < nValues; ++i) {
            float Place = Start - Slope * pOffsets[i];
            Place = Place > 0.0F ? Place : 0.0F;
            Place = Place < Last ? Place : Last;
            Places[i] = static_cast<std::int32_t>(Place);
        }
        for (std::size_t i = 0; i < nValues; i += LANES) {
            // nValues is a multiple of LANES, so all four have been set above.
            // NOLINTNEXTLINE(clang-analyzer-core.uninitialized.ArraySubscript)
            if ((pMarks[Places[i]] | pMarks[Places[i + 1]] | pMarks[Places[i + 2]] | pMarks[Places[i + 3]]) ==
                0) {
                continue;
            }
            for (std::size_t j = i; j < i + LANES && Block + j < To; ++j) {
                if (pMarks[Places[j]] != 0) {
                    Hit(Block + j);
                }
            }
        }
    }
}
