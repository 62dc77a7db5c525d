#include "rvlib/rvprt/lanner/block.h"

#include <array>
#include <cstdio>

#include "rvlib/rvprt/log.h"

namespace Lanner {

unsigned ToLogAddress(const std::uint8_t* pData) {
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pData));
}

std::uint32_t CheckBlock(const CBlockRule& rRule, const std::uint8_t* pData, std::uint32_t nSize) {
    if (pData == nullptr) {
        RV_ASSERT_AS(Protocols::g_pLog, false, "pData", rRule.m_pNullPointer, false);
        return 0;
    }
    // The texts below name CSetParams for plane blocks, too. They are meant to stay.
    if (nSize < rRule.m_Smallest) {
        std::array<char, 80> Text{};
        std::snprintf(Text.data(), Text.size(), "CSetParams::Decode: not enough data (pData=0x%X)!",
                      ToLogAddress(pData));
        RV_ASSERT_FAIL(Protocols::g_pLog, Text.data());
        return 0;
    }
    if (pData[0] != rRule.m_Type) {
        RV_ASSERT_FAIL(Protocols::g_pLog, "CSetParams::Decode: unknown type!");
        return 0;
    }
    const std::uint32_t nLength = pData[1];
    if (nLength < rRule.m_Smallest || nLength > nSize || (rRule.m_bReserved && pData[2] != 0)) {
        RV_ASSERT_FAIL(Protocols::g_pLog, "CSetParams::Decode: invalid message length!");
        return 0;
    }
    return nLength;
}

}  // namespace Lanner
