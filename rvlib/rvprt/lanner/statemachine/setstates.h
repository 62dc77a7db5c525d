#pragma once
#include "rvlib/rvprt/lanner/set.h"
#include "rvlib/rvprt/lanner/statemachine/statebase.h"
#include "rvlib/rvprt/statemachine/setstates.h"

namespace Lanner {

/// The active set. Its limits and defaults, which the system doesn't ask for, would come here, too.
class CSetStates : public Comm::CSetStatesT<CSetStates, CStateBase, CSet> {
public:
    /// Behind the states that both families have.
    enum FurtherStates : std::uint32_t {
        eSetQueryMinValues = 2,
        eSetQueryMaxValues = 3,
        eQueryDefaultValues = 4
    };

    CSetStates();

    /// Null in a failure.
    virtual void OnMinSetValues(Reason /*Why*/, const CSet* /*pSet*/) {}
    virtual void OnMaxSetValues(Reason /*Why*/, const CSet* /*pSet*/) {}
    virtual void OnDefaultSetValues(Reason /*Why*/, const CSet* /*pSet*/) {}

private:
    friend Comm::CSetStatesT<CSetStates, CStateBase, CSet>;

    static const Comm::CSetRules& GetRules();
    static std::span<const Row> GetRows();
    /// Learns from the active set whether planes are exchanged. A set without params leaves that as it was.
    void AdoptSet(const CSet& rSet, std::uint8_t SubCode);
};

}  // namespace Lanner
