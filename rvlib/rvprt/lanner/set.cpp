#include "rvlib/rvprt/lanner/set.h"

#include <cstdio>

#include "rvlib/rvprt/lanner/block.h"
#include "rvlib/rvprt/logblock.h"

namespace Lanner {

int CSet::Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed) {
    *pUsed = 0;
    if (pData == nullptr || nSize == 0) {
        std::array<char, 80> Text{};
        std::snprintf(Text.data(), Text.size(), "CSet::Decode: Null pointer! (pData=0x%X, nSize=%d)!",
                      ToLogAddress(pData), static_cast<int>(nSize));
        RV_ASSERT_AS(Protocols::g_pLog, false, "pData && nSize", Text.data(), false);
        return 0;
    }
    m_SetParams.reset();
    m_Planes = {};
    m_Set = pData[0];
    std::uint32_t nUsed = 1;
    while (nUsed < nSize) {
        const std::uint32_t nBlock = DecodeBlock(pData + nUsed, nSize - nUsed);
        if (nBlock == 0) {
            return 0;
        }
        nUsed += nBlock;
    }
    *pUsed = nUsed;
    return 1;
}

std::uint32_t CSet::DecodeBlock(const std::uint8_t* pData, std::uint32_t nSize) {
    std::uint32_t nUsed = 0;
    switch (pData[0]) {
        case CSetParams::TYPE: {
            CSetParams Params(m_LogID.c_str());
            if (Params.Decode(pData, nSize, &nUsed) != 0) {
                m_SetParams = Params;
            }
            return nUsed;
        }
        case CPlane::TYPE: {
            CPlane Plane(m_LogID.c_str());
            if (Plane.Decode(pData, nSize, &nUsed) == 0) {
                return 0;
            }
            if (Plane.ID < m_Planes.size()) {
                m_Planes[Plane.ID] = Plane;
                return nUsed;
            }
            RV_WARNING(Protocols::g_pLog, "invalid PlaneID");
            break;
        }
        default:
            RV_ASSERT_FAIL(Protocols::g_pLog, "CSet::Decode: unknown type!");
            break;
    }
    // A block of a known type that fails to decode has said why by itself and doesn't come here.
    RV_ASSERT_FAIL(Protocols::g_pLog, "No bytes decoded!");
    return 0;
}

void CSet::Log() const {
    const Protocols::CLogBlock Block("Lanner::CSet");
    RV_PROTOCOL_DETAIL("Set: %d", m_Set);
    if (m_SetParams) {
        m_SetParams->Log();
    }
    for (std::size_t nPlane = 0; nPlane < m_Planes.size(); ++nPlane) {
        if (const CPlane* const pPlane = FindPlane(nPlane)) {
            pPlane->Log();
        }
    }
}

const CPlane* CSet::GetPlane(std::size_t nPlane) const {
    RV_ASSERT_AS(Protocols::g_pLog, m_SetParams.has_value(), "m_pSetParams", "no set params!", true);
    return FindPlane(nPlane);
}

const CPlane* CSet::FindPlane(std::size_t nPlane) const {
    const bool bSwap = m_SetParams && m_SetParams->Swap != 0;
    const auto& rPlane = m_Planes[bSwap ? 1 - nPlane : nPlane];
    return rPlane ? &*rPlane : nullptr;
}

}  // namespace Lanner
