#include "rvlib/rvprt/lanner/statemachine/setstates.h"

namespace Lanner {

namespace {

constexpr const char* STATE_NAMES[] = {"eSetIdle", "eSet", "eSetQueryMinValues", "eSetQueryMaxValues",
                                       "eQueryDefaultValues"};
constexpr Comm::CStateTexts TEXTS{STATE_NAMES, "invalid state!", "NewState: %s (OldState: %s)"};

/// Of the active set, in both directions.
constexpr std::uint8_t ACTIVE_SET = 2;

}  // namespace

CSetStates::CSetStates() : CSetStatesT(TEXTS) {}

const Comm::CSetRules& CSetStates::GetRules() {
    static constexpr Comm::CSetRules RULES{
        .m_Query = {0x10, ACTIVE_SET, CProtocol::eSubCode, eSet, "QueryActiveSet() called",
                    "<-- Sending ActiveSet (0x10)"},
        .m_SmallestIndication = 8,
        .m_IndicationSubCode = ACTIVE_SET,
        .m_FailureSize = 6,
        .m_FailureOffset = 5,
    };
    return RULES;
}

std::span<const CSetStates::Row> CSetStates::GetRows() {
    // The closing parenthesis that the failures of the last three lack is meant to be missing.
    static constexpr Row ROWS[] = {
        {"--> SetFailure (Set: %d, Reason: %d (0x10))", "--> SetResponse (0x10)",
         "calling OnSetRequest(Reason=%s, pSet=NULL)", &CSetStates::OnSetRequest, true},
        {"--> QueryMinValues Failure (Set: %d, Reason: %d (0x10)", "--> QueryMinValuesResponse (0x10)",
         "calling OnMinSetValues(Reason=%s, pSet=NULL)", &CSetStates::OnMinSetValues, false},
        {"--> QueryMaxValues Failure (Set: %d, Reason: %d (0x10)", "--> QueryMaxValuesResponse (0x10)",
         "calling OnMaxSetValues(Reason=%s, pSet=NULL)", &CSetStates::OnMaxSetValues, false},
        {"--> QueryDefaultValues Failure (Set: %d, Reason: %d (0x10)",
         "--> QueryDefaultValuesResponse (0x10)", "calling OnDefaultSetValues(Reason=%s, pSet=NULL)",
         &CSetStates::OnDefaultSetValues, false},
    };
    return ROWS;
}

void CSetStates::AdoptSet(const CSet& rSet, std::uint8_t SubCode) {
    if (SubCode == ACTIVE_SET && rSet.GetSetParams() != nullptr) {
        SetSwap(rSet.GetSetParams()->Swap);
    }
}

}  // namespace Lanner
