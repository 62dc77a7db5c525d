#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacefromnc.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

std::int32_t ToRequest(const COpcValue& rValue) {
    constexpr std::int32_t UNKNOWN_REQUEST = std::numeric_limits<std::int32_t>::max();
    const double Number = OpcValueToNumber(rValue).value_or(UNKNOWN_REQUEST);
    if (Number != std::trunc(Number) || std::abs(Number) > UNKNOWN_REQUEST) {
        return UNKNOWN_REQUEST;
    }
    return static_cast<std::int32_t>(Number);
}

}  // namespace

CPreBalInterfaceFromNC::CPreBalInterfaceFromNC(std::shared_ptr<COPCGroup> pGroup, std::string Name,
                                               CPreBalFromNCInterface* pTarget)
    : COpcItem(std::move(pGroup), std::move(Name), KEY), m_pTarget(pTarget) {
    Subscribe([this](const COpcValue* pValue) { OnChange(pValue); });
}

int CPreBalInterfaceFromNC::SetValueFromNC(std::int32_t Value) {
    const int Result = Write(Value);
    if (Result != 0) {
        m_Echoes.push_back(Value);
    }
    return Result;
}

void CPreBalInterfaceFromNC::OnChange(const COpcValue* pValue) {
    if (pValue == nullptr) {
        return;
    }
    const std::int32_t Request = ToRequest(*pValue);
    const auto Echo = std::ranges::find(m_Echoes, Request);
    if (Echo != m_Echoes.end()) {
        m_Echoes.erase(m_Echoes.begin(), Echo + 1);
        return;
    }
    m_pTarget->OnValueFromNCChanged(Request);
}
