#pragma once
#include <cstdint>
#include <functional>
#include <optional>

#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequenceplanes.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencepositions.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencetables.h"

namespace Sequence {

/// Where a run stands in the count of its steps.
struct CStepCount {
    std::uint32_t m_Step = 0;
    std::uint32_t m_nSteps = 0;
    bool m_bStepOneAlready = false;  ///< CStepRule::eFirstOrNext found step 1, which is odd

    friend bool operator==(const CStepCount&, const CStepCount&) = default;
};

/// The count behind the entry of a state with that rule.
CStepCount CountStep(const CStepRule& rRule, CStepCount Now);

}  // namespace Sequence

/// What the tables say on entering a state: what the planes show, which menu comes up. Window thread only.
class CSequenceEntry {
public:
    using GetActive = std::function<CPlaneBalancingMethod&()>;

    /// rPlanes and rPositions must outlive this. Active: the plane's means that the keys move.
    CSequenceEntry(CSequencePlanes& rPlanes, const CSequencePositions& rPositions, GetActive Active)
        : m_rPlanes(rPlanes), m_rPositions(rPositions), m_GetActive(std::move(Active)) {}

    /// The state's display, at that step of the run.
    void Show(const Sequence::CState& rState, std::uint32_t Step);
    /// Display of the first plane's means, which the operator may change now; all other planes are inactive.
    void ShowForChange(const Sequence::CShow& rShow, std::uint32_t Step);
    /// The state's menu; none if it has none of its own.
    std::optional<std::int32_t> ChooseMenu(const Sequence::CState& rState) const;
    /// The menus of the means are asked for with the number of planes.
    std::uint8_t GetMenuPlanes() const { return static_cast<std::uint8_t>(m_rPlanes.GetCount()); }

private:
    void ShowOnPlane(CPlaneBalancingMethod& rMethod, const Sequence::CShow& rShow, std::uint32_t Step) const;

    CSequencePlanes& m_rPlanes;
    const CSequencePositions& m_rPositions;
    GetActive m_GetActive;
};
