#pragma once
#include "rvlib/rvprt/kestrel/set.h"
#include "rvlib/rvprt/kestrel/statemachine/statebase.h"
#include "rvlib/rvprt/statemachine/setstates.h"

namespace Kestrel {

/// The active set.
class CSetStates : public Comm::CSetStatesT<CSetStates, CStateBase, CSet> {
public:
    CSetStates();

private:
    friend Comm::CSetStatesT<CSetStates, CStateBase, CSet>;

    static const Comm::CSetRules& GetRules();
    static std::span<const Row> GetRows();
};

}  // namespace Kestrel
