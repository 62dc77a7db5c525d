#pragma once
#include "rvlib/rvprt/statemachine/statebase.h"

namespace Lanner {

/// Base of the family's machines: what they need besides is whether the module's planes are exchanged. They
/// learn it from the set, and map the planes of every frame before they reach the rest of the system.
class CStateBase : public Comm::CStateBase {
public:
    /// Not 0 if planes are exchanged.
    virtual std::uint32_t GetSwap() const = 0;
    virtual void SetSwap(std::uint32_t Swap) = 0;

protected:
    using Comm::CStateBase::CStateBase;
};

}  // namespace Lanner
