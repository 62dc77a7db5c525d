#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/methods/screwset.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screwvector.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screwweights.h"

/// Finds the placement of two or three screws of a table in a ring of equally spaced holes whose vector sum
/// comes closest to a target.
///
/// The result is by definition, and in every bit, that of this enumeration of all placements: holes h1 < h2 <
/// h3 from the outermost loop inwards, then the table's entries s1, s2, s3; a placement replaces the best so
/// far only if its squared deviation is less by more than MARGIN, beginning from START. How the search gets
/// there without the enumeration is told, with the proof, in the .cpp.
///
/// Memory: the table and what is prepared of it (some 20 KB and 40 bytes an entry), and room for candidates
/// (192 KB while it grows), which is used in full only by tables of less than a microgram.
class CScrewSearch {
public:
    /// Squared grams by which a placement must be better.
    static constexpr double MARGIN = 2.220446049250313e-13;
    /// A placement with a deviation from (100000, 100000) on is none.
    static constexpr double START = 100000.0 * 100000.0 + 100000.0 * 100000.0;
    static constexpr std::size_t MAX_SCREWS = 3;
    /// Candidates that are kept at a time.
    static constexpr std::size_t ROOM = 8192;

    using CVector = CScrewVector;
    struct CPlacement {
        std::array<std::uint16_t, MAX_SCREWS> m_Holes{};    ///< from 0, hole 0 on the x axis
        std::array<std::uint16_t, MAX_SCREWS> m_Entries{};  ///< of the table
        CVector m_Sum;                                      ///< grams
        CVector m_Delta;                                    ///< sum less target
    };

    /// Weights of the table in grams, in its order. bThreeScrews false: two. Table and holes count in 16
    /// bits. nRoom, 2 or more, limits the memory and not the result.
    CScrewSearch(std::span<const double> Table, bool bThreeScrews, int nHoles, std::size_t nRoom = ROOM);

    /// The placement for a target in grams; none if there is none, or all are too far away.
    std::optional<CPlacement> Find(CVector Target);

private:
    using CHoles = std::array<std::size_t, MAX_SCREWS>;

    /// A placement in the present set of holes that may count.
    struct CCandidate {
        double m_Deviation;   ///< squared
        std::uint64_t m_Key;  ///< the three entries; rises in the order of the enumeration
    };

    CVector GetDirection(std::size_t Hole) const { return m_Directions[Hole]; }
    /// Sum and squared deviation by the expressions of the definition.
    CVector GetSum(const CHoles& rHoles, const std::array<double, MAX_SCREWS>& rWeights) const;
    double GetDeviation(CVector Sum) const;

    void SetTarget(CVector Target);
    /// Calls Visit for every set out of n holes in the order of the enumeration, until it returns false.
    template <typename F>
    void ForEachSet(std::size_t n, F Visit) const;
    /// A squared deviation that some placement has.
    double EstimateBest();
    void EstimateInSet(const CHoles& rHoles);
    void EstimateInBox(const CHoles& rHoles, const CScrewSet& rSet, const CScrewBox& rBox);
    /// Tries the real-valued solution, rounded to weights of the table.
    void EstimatePair(const CHoles& rHoles, CScrewRoles Roles, const CScrewBox& rBox,
                      std::array<double, MAX_SCREWS>& rWeights, CVector Rest);
    /// One walk over all sets of holes. False if the walk can't tell the result.
    bool Walk(double Bound);
    /// Placements are looked for within the square root of Low.
    void SetLow(double Low);
    void SetFilter();
    bool IsDecided() const { return m_bKnown && m_Low <= MARGIN; }
    bool CanReach(const CHoles& rHoles) const;
    CScrewSet MakeSet(const CHoles& rHoles) const;
    void SearchSet(const CHoles& rHoles);
    /// The same for the keys from First to Last.
    void SearchSlice(const CHoles& rHoles, std::uint64_t First, std::uint64_t Last);
    void SearchTwo(const CHoles& rHoles);
    void SearchBox(const CHoles& rHoles, const CScrewSet& rSet, const CScrewBox& rBox);
    void SearchPair(const CHoles& rHoles, CScrewRoles Roles, const CScrewBox& rBox, const CScrewAxis& rAxis,
                    std::array<std::size_t, MAX_SCREWS>& rIndices, CVector Rest);
    void SearchEverything(const CHoles& rHoles);
    void Consider(const CHoles& rHoles, const std::array<std::size_t, MAX_SCREWS>& rIndices);
    void Compact();
    void Decide(const CHoles& rHoles);

    CScrewWeights m_Weights;
    bool m_bThree;
    std::size_t m_nHoles;
    std::vector<double> m_Table;
    std::vector<CVector> m_Directions;  ///< per hole
    /// Per distance d of two holes: range of weight * sin(angle between them).
    std::vector<double> m_CrossLow;
    std::vector<double> m_CrossHigh;
    double m_Largest = 0.0;  ///< absolute weight

    // Of a Find.
    CVector m_Target;
    double m_Length = 0.0;           ///< of the target
    std::vector<double> m_Cross;     ///< per hole: its direction x target
    std::vector<double> m_MaxAlong;  ///< per hole: the most that a screw adds towards the target
    double m_Rounding = 0.0;         ///< well above the rounding error of any length
    bool m_bPlain = false;           ///< numbers too large for the bounds: nothing is pruned

    // Of a walk.
    double m_Low = 0.0;     ///< the enumeration's state is at least this, and exactly this if it is known
    bool m_bKnown = false;  ///< the enumeration's state is known
    double m_Window = 0.0;  ///< how much more than the best placement met so far is looked at
    double m_Reach = 0.0;   ///< radius around the target in which placements count, rounding included
    std::optional<CPlacement> m_Best;

    // Of a slice.
    std::size_t m_nRoom;
    std::uint64_t m_First = 0;
    std::uint64_t m_Last = 0;
    std::vector<CCandidate> m_Candidates;
    bool m_bFull = false;  ///< candidates were left out
};
