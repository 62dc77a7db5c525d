#pragma once
#include "rvlib/rvprt/lanner/statemachine/commonstates.h"
#include "rvlib/rvprt/lanner/statemachine/modulestates.h"
#include "rvlib/rvprt/lanner/statemachine/setstates.h"
#include "rvlib/rvprt/statemachine/moduleprotocol.h"

namespace Lanner {

/// The conversation with one Lanner module, which serves two planes.
class CLannerProtocol : public Comm::CModuleProtocol<CModuleStates, CSetStates, CCommonStates> {
public:
    explicit CLannerProtocol(std::uint8_t ModuleAddress) : CModuleProtocol(ModuleAddress, "PreBal") {}

    std::uint32_t GetSwap() const override { return m_Swap; }
    void SetSwap(std::uint32_t Swap) override {
        m_Swap = Swap;
        RV_PROTOCOL_DETAIL("Lanner Swap: %d", static_cast<int>(m_Swap));
    }

private:
    std::uint32_t m_Swap = 0;  ///< as the last set with params said
};

}  // namespace Lanner
