#include "rvlib/rvprt/kestrel/statemachine/setstates.h"

namespace Kestrel {

namespace {

constexpr const char* STATE_NAMES[] = {"eSetIdle", "eSet"};
constexpr Comm::CStateTexts TEXTS{STATE_NAMES, "invalid state!", "NewState: %s (OldState: %s)"};

}  // namespace

CSetStates::CSetStates() : CSetStatesT(TEXTS) {}

const Comm::CSetRules& CSetStates::GetRules() {
    static constexpr Comm::CSetRules RULES{
        .m_Query = {0x10, std::uint8_t{0}, CProtocol::eSubCode, eSet, "QueryActiveSet() called",
                    "<-- Sending QuerySet (0x10)"},
        .m_SmallestIndication = 5,
        .m_IndicationSubCode = 0,
        .m_FailureSize = 4,
        .m_FailureOffset = 3,
    };
    return RULES;
}

std::span<const CSetStates::Row> CSetStates::GetRows() {
    static constexpr Row ROWS[] = {
        {"--> SetFailure (Set: %d, Reason: %d (0x10))", "--> SetResponse (0x10)",
         "calling OnSetRequest(Reason=%s, pSet=NULL)", &CSetStates::OnSetRequest, true},
    };
    return ROWS;
}

}  // namespace Kestrel
