#include "rvlib/rvprt/kestrel/set.h"

#include <array>

#include "rvlib/rvprt/logblock.h"
#include "rvlib/rvprt/names.h"

namespace Kestrel {

namespace {

constexpr std::array ADAPTION_NAMES{"Div6", "Div3", "Div2", "Div1", "5Div6", "5Div3", "5Div2", "5Div1"};

}  // namespace

int CSet::Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed) {
    *pUsed = 0;
    if (pData == nullptr || nSize < SIZE) {
        return 0;
    }
    m_Set = pData[0];
    m_RPMFactor = pData[1];
    m_SensorAdaption = pData[4];
    *pUsed = SIZE;
    return 1;
}

void CSet::Log() const {
    const Protocols::CLogBlock Block("Kestrel::CSet");
    RV_PROTOCOL_DETAIL("Set: %d", m_Set);
    RV_PROTOCOL_DETAIL("RPMFactor: %d", m_RPMFactor);
    RV_PROTOCOL_DETAIL("SensorAdaption: %s", SensorAdaptionToString(m_SensorAdaption).c_str());
}

std::string CSet::SensorAdaptionToString(std::uint32_t Adaption) {
    if (const auto Name = Comm::AdaptionName(ADAPTION_NAMES, "Value", Adaption)) {
        return *Name;
    }
    if (Adaption == UNKNOWN_ADAPTION) {
        return "UnknownAdaption";
    }
    RV_ASSERT_FAIL(Protocols::g_pLog, "impossible");
    return "invalid";
}

}  // namespace Kestrel
