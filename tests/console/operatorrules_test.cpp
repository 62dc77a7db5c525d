#include "console/operatorrules.h"

#include <gtest/gtest.h>

namespace {

CSituation MakeSituation(std::int32_t Step, std::int32_t Action, std::int32_t Menu) {
    CSituation Situation;
    Situation.m_bRunning = true;
    Situation.m_Menu = Menu;
    Situation.m_Notification.m_Values[0] = Step;
    Situation.m_Notification.m_Values[1] = Action;
    return Situation;
}

struct CRuleCase {
    const char* m_pName;
    std::int32_t m_Step;
    std::int32_t m_Action;
    std::int32_t m_Menu;
    Deed m_Expected;
};

class OperatorRulesTest : public testing::TestWithParam<CRuleCase> {};

}  // namespace

TEST_P(OperatorRulesTest, DoesWhatThePanelAsksFor) {
    const CRuleCase& rCase = GetParam();
    EXPECT_EQ(ChooseDeed(MakeSituation(rCase.m_Step, rCase.m_Action, rCase.m_Menu)), rCase.m_Expected);
}

INSTANTIATE_TEST_SUITE_P(AllSteps, OperatorRulesTest,
                         testing::Values(CRuleCase{"StopsTheSpindle", 3, 3, 28, Deed::eStopSpindle},
                                         CRuleCase{"FitsWeights", 3, 4, 30, Deed::eFitAndConfirm},
                                         CRuleCase{"FitsTestWeights", 3, 4, 32, Deed::eFitAndConfirm},
                                         CRuleCase{"StartsAtOwnSpeed", 3, 0, 4, Deed::eStartSpindle},
                                         CRuleCase{"ConfirmsTheSpeed", 3, 1, 0, Deed::eConfirm},
                                         CRuleCase{"WaitsForTheKey", 3, 1, 4, Deed::eWait},
                                         CRuleCase{"StartsTheSpindle", 3, 2, 4, Deed::eStartSpindle},
                                         CRuleCase{"WaitsWhileMeasuring", 3, 5, 4, Deed::eWait},
                                         CRuleCase{"ConfirmsGoodValues", 3, 6, 0, Deed::eConfirm},
                                         CRuleCase{"ConfirmsGoodValuesOfARebalancing", 4, 6, 8,
                                                   Deed::eConfirm},
                                         CRuleCase{"GivesUpOnFailure", 5, 0, 7, Deed::eGiveUp},
                                         CRuleCase{"JudgesSuccess", 7, 5, 5, Deed::eJudge},
                                         CRuleCase{"JudgesOverTarget", 10, 5, 5, Deed::eJudge},
                                         CRuleCase{"IgnoresUnknownActions", 3, 17, 0, Deed::eWait}),
                         [](const auto& rInfo) { return rInfo.param.m_pName; });

TEST(OperatorRules, VerdictStandsOnlyWhenTheAverageIsComplete) {
    CSituation Situation = MakeSituation(CPreBalCodes::eSetupSuccess, CPreBalCodes::eMeasure, 5);
    Situation.m_Progress.m_Readings[0].m_bShown = true;
    EXPECT_EQ(ChooseDeed(Situation), Deed::eWait);
    Situation.m_Progress.m_Readings[0].m_bComplete = true;
    EXPECT_EQ(ChooseDeed(Situation), Deed::eJudge);
}

TEST(OperatorRules, NothingIsDoneWithoutAProcedure) {
    CSituation Situation = MakeSituation(CPreBalCodes::eSetup, CPreBalCodes::eSpindleStop, -1);
    Situation.m_bRunning = false;
    EXPECT_EQ(ChooseDeed(Situation), Deed::eWait);
}
