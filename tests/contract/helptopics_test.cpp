#include "contract/helptopics.h"

#include <gtest/gtest.h>

namespace {

TEST(HelpTopicsTest, AStateIsFoundWithAndWithoutTheLeadingLetter) {
    EXPECT_STREQ(HelpTopics::FindStep("eNeutralPosRPMStart"), "RUN_STEP_05");
    EXPECT_STREQ(HelpTopics::FindStep("NeutralPosRPMStart"), "RUN_STEP_05");
    EXPECT_STREQ(HelpTopics::FindStep("Plane2TestUnbalanceSetWeights"), "RUN_STEP_29");
    for (const char* pState : {"", "e", "eIdle", "Idle", "no state", "eeNeutralPosRPMStart"}) {
        EXPECT_STREQ(HelpTopics::FindStep(pState), "") << pState;
    }
}

TEST(HelpTopicsTest, NumbersBeyondTheListsHaveNone) {
    EXPECT_STREQ(HelpTopics::FindInstruction(9), "RUN_INSTR_09");
    EXPECT_STREQ(HelpTopics::FindInstruction(10), "");
    EXPECT_STREQ(HelpTopics::FindWarning(Warnings::eNone), "");
    EXPECT_STREQ(HelpTopics::FindWarning(Warnings::eModuleStateChanged), "RUN_WARN_11");
    EXPECT_STREQ(HelpTopics::FindWarning(Warnings::eCount), "");
}

TEST(HelpTopicsTest, EachWarningHasItsOwn) {
    for (std::uint32_t Mode = 1; Mode < Warnings::eCount; ++Mode) {
        const std::string Number = (Mode < 10 ? "0" : "") + std::to_string(Mode);
        EXPECT_EQ(HelpTopics::FindWarning(Mode), "RUN_WARN_" + Number);
    }
}

/// In the way first, then where the run stands, then what the page says.
TEST(HelpTopicsTest, ARunIsHelpedWithItsWarningThenItsStepThenItsInstruction) {
    CPreBalProgress Progress;
    EXPECT_STREQ(HelpTopics::Find(Progress), "RUN_INSTR_00");
    Progress.m_InstructionMode = 6;
    EXPECT_STREQ(HelpTopics::Find(Progress), "RUN_INSTR_06");
    Progress.m_State = "ePreBalanceMeasurement";
    EXPECT_STREQ(HelpTopics::Find(Progress), "RUN_STEP_14");
    Progress.m_WarningMode = Warnings::eOverTarget;
    EXPECT_STREQ(HelpTopics::Find(Progress), "RUN_WARN_08");
    EXPECT_STREQ(HelpTopics::Find("", 99, 99), "");
}

}  // namespace
