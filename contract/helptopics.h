#pragma once
#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "contract/prebalprogress.h"
#include "contract/warnings.h"

/// Topics of the help: each is a page of that name in every language. tools/check_help.sh holds them against
/// the pages.
namespace HelpTopics {

/// The pages of the configuration.
inline constexpr const char* SETTINGS_PAGE = "_PB001";
inline constexpr const char* SCREW_TABLE_PAGE = "_PB002";
inline constexpr std::array PAGES = {SETTINGS_PAGE, SCREW_TABLE_PAGE};

/// The properties of a configuration, by the help keys of their rows; PB_013 is the heading above them.
inline constexpr std::array PROPERTIES = {"PB_001", "PB_002", "PB_003", "PB_004", "PB_005",
                                          "PB_006", "PB_007", "PB_008", "PB_009", "PB_010",
                                          "PB_011", "PB_012", "PB_013"};

struct CStep {
    std::string_view m_State;  ///< of a sequence, without a leading "e"
    const char* m_pTopic;
};

/// The steps of a run, by the states of both sequences. What is the same to do with one plane and with two
/// has one topic.
inline constexpr std::array STEPS = {
    CStep{"FailureWithNoReturn", "RUN_STEP_01"},
    CStep{"FailureWithReset", "RUN_STEP_02"},
    CStep{"NeutralPosSpindleStop", "RUN_STEP_03"},
    CStep{"NeutralPosRemoveWeights", "RUN_STEP_04"},
    CStep{"NeutralPosRPMStart", "RUN_STEP_05"},
    CStep{"NeutralPosMeasurement", "RUN_STEP_06"},
    CStep{"TestUnbalanceSpindleStop", "RUN_STEP_07"},
    CStep{"TestUnbalanceSetWeights", "RUN_STEP_08"},
    CStep{"TestUnbalanceRPMStart", "RUN_STEP_09"},
    CStep{"TestUnbalanceMeasurement", "RUN_STEP_10"},
    CStep{"PreBalanceSpindleStop", "RUN_STEP_11"},
    CStep{"PreBalanceSetWeights", "RUN_STEP_12"},
    CStep{"PreBalanceRPMStart", "RUN_STEP_13"},
    CStep{"PreBalanceMeasurement", "RUN_STEP_14"},
    CStep{"ReBalanceCommitWeights", "RUN_STEP_15"},
    CStep{"ReBalanceRPMStart1", "RUN_STEP_16"},
    CStep{"ReBalanceMeasurement1", "RUN_STEP_17"},
    CStep{"ReBalanceSpindleStop", "RUN_STEP_18"},
    CStep{"ReBalanceSpindleStopCheckWeights", "RUN_STEP_19"},
    CStep{"ReBalanceSetWeights", "RUN_STEP_20"},
    CStep{"ReBalanceCheckWeights", "RUN_STEP_21"},
    CStep{"ReBalanceRPMStart2", "RUN_STEP_22"},
    CStep{"ReBalanceMeasurement2", "RUN_STEP_23"},
    // With two planes the test run is made twice.
    CStep{"Plane1TestUnbalanceSpindleStop", "RUN_STEP_24"},
    CStep{"Plane1TestUnbalanceSetWeights", "RUN_STEP_25"},
    CStep{"Plane1TestUnbalanceRPMStart", "RUN_STEP_26"},
    CStep{"Plane1TestUnbalanceMeasurement", "RUN_STEP_27"},
    CStep{"Plane2TestUnbalanceSpindleStop", "RUN_STEP_28"},
    CStep{"Plane2TestUnbalanceSetWeights", "RUN_STEP_29"},
    CStep{"Plane2TestUnbalanceRPMStart", "RUN_STEP_30"},
    CStep{"Plane2TestUnbalanceMeasurement", "RUN_STEP_31"},
};

/// By the number of the instruction; two of them are shown as one text.
inline constexpr std::array INSTRUCTIONS = {"RUN_INSTR_00", "RUN_INSTR_01", "RUN_INSTR_02", "RUN_INSTR_03",
                                            "RUN_INSTR_04", "RUN_INSTR_05", "RUN_INSTR_06", "RUN_INSTR_07",
                                            "RUN_INSTR_07", "RUN_INSTR_09"};

/// By the number of the warning; none needs no help.
inline constexpr std::array<const char*, Warnings::eCount> WARNINGS = {"",
                                                                       "RUN_WARN_01",
                                                                       "RUN_WARN_02",
                                                                       "RUN_WARN_03",
                                                                       "RUN_WARN_04",
                                                                       "RUN_WARN_05",
                                                                       "RUN_WARN_06",
                                                                       "RUN_WARN_07",
                                                                       "RUN_WARN_08",
                                                                       "RUN_WARN_09",
                                                                       "RUN_WARN_10",
                                                                       "RUN_WARN_11"};

/// Topic of a step by the name of the sequence's state; empty if there is none, as for an idle sequence.
constexpr const char* FindStep(std::string_view State) {
    // Some states have the "e" in their name, some not.
    if (State.size() > 1 && State[0] == 'e' && State[1] >= 'A' && State[1] <= 'Z') {
        State.remove_prefix(1);
    }
    const auto* const pFound = std::ranges::find(STEPS, State, &CStep::m_State);
    return pFound == STEPS.end() ? "" : pFound->m_pTopic;
}

constexpr const char* FindInstruction(std::uint32_t Mode) {
    return Mode < INSTRUCTIONS.size() ? INSTRUCTIONS[Mode] : "";
}

constexpr const char* FindWarning(std::uint32_t Mode) {
    return Mode < WARNINGS.size() ? WARNINGS[Mode] : "";
}

/// What helps where a run stands: with its warning if it has one, else with its step, else with what the
/// instruction says. Empty if nothing does.
constexpr const char* Find(std::string_view State, std::uint32_t Instruction, std::uint32_t Warning) {
    for (const char* const pTopic : {FindWarning(Warning), FindStep(State), FindInstruction(Instruction)}) {
        if (*pTopic != '\0') {
            return pTopic;
        }
    }
    return "";
}
inline const char* Find(const CPreBalProgress& rProgress) {
    return Find(rProgress.m_State, rProgress.m_InstructionMode, rProgress.m_WarningMode);
}

}  // namespace HelpTopics
