#include "console/runreport.h"

#include <gtest/gtest.h>

namespace {

CSituation MakeSituation(std::int32_t Step, std::int32_t Action) {
    CSituation Situation;
    Situation.m_bRunning = true;
    Situation.m_Menu = 5;
    Situation.m_Warning = 8;
    Situation.m_Progress.m_State = "eState";
    Situation.m_Progress.m_Step = 2;
    Situation.m_Progress.m_NumberOfSteps = 11;
    Situation.m_Progress.m_Instruction = "Measure";
    Situation.m_Progress.m_Readings[0] = {true, true, 12.5, 270.0};
    Situation.m_Notification.m_Values = {Step, Action, 0, -1, 180, -1, -1, -1, -1, -1, -1, -1, -1, -1};
    return Situation;
}

}  // namespace

TEST(RunReport, RepeatedSituationIsRecordedOnce) {
    CRunReport Report;
    EXPECT_TRUE(Report.AddSituation(10, MakeSituation(3, 4)));
    EXPECT_FALSE(Report.AddSituation(20, MakeSituation(3, 4)));
    EXPECT_TRUE(Report.AddSituation(30, MakeSituation(3, 5)));
    const auto Json = Report.ToJson();
    ASSERT_EQ(Json["steps"].size(), 2U);
    EXPECT_EQ(Json["steps"][1]["t_ms"], 30);
    EXPECT_EQ(Json["steps"][0]["step"], 2);
    EXPECT_EQ(Json["steps"][0]["of"], 11);
    EXPECT_EQ(Json["steps"][0]["warning"], 8);
    EXPECT_EQ(Json["steps"][0]["menu"], 5);
    EXPECT_EQ(Json["steps"][0]["notification"].size(), 14U);
}

TEST(RunReport, ResultAndExitFollowTheLastStep) {
    const struct {
        std::int32_t m_Step;
        const char* m_pName;
        int m_Exit;
    } Cases[] = {{7, "SetupSuccess", 0},     {8, "RebalSuccess", 0}, {9, "SetupOverTarget", 1},
                 {10, "RebalOverTarget", 1}, {5, "Failure", 2},      {3, "Setup", 2}};
    for (const auto& rCase : Cases) {
        CRunReport Report;
        Report.SetSaved(true);
        Report.AddSituation(0, MakeSituation(rCase.m_Step, 5));
        Report.SetFinished(true);
        EXPECT_EQ(Report.GetResult(), rCase.m_pName);
        EXPECT_EQ(Report.GetExitCode(), rCase.m_Exit) << rCase.m_pName;
    }
}

// The NC may end a run as soon as the first sample was judged.
TEST(RunReport, RunThatDidNotComeToItsEndHasFailedWhateverItsLastStep) {
    CRunReport Report;
    Report.SetSaved(true);
    Report.AddSituation(0, MakeSituation(7, 5));
    EXPECT_EQ(Report.GetExitCode(), eExitFailed);
    Report.SetFinished(true);
    EXPECT_EQ(Report.GetExitCode(), eExitWithinTarget);
    Report.SetFinished(false);
    EXPECT_EQ(Report.GetExitCode(), eExitFailed);
    EXPECT_EQ(Report.ToJson()["exit"], 2);
    EXPECT_EQ(Report.ToJson()["result"], "SetupSuccess") << "the step stays what it was";
}

TEST(RunReport, AResultThatIsNotSavedIsAFailure) {
    CRunReport Report;
    Report.SetFinished(true);
    Report.AddSituation(0, MakeSituation(7, 5));
    EXPECT_EQ(Report.GetExitCode(), eExitFailed);
    EXPECT_EQ(Report.ToJson()["saved"], false);
    EXPECT_EQ(Report.ToJson()["exit"], 2);
    EXPECT_EQ(Report.GetResult(), "SetupSuccess");
    Report.SetSaved(true);
    EXPECT_EQ(Report.ToJson()["saved"], true);
    EXPECT_EQ(Report.ToJson()["exit"], 0);
}

TEST(RunReport, FirstInitialReadingAndLastFinalReadingStand) {
    CRunReport Report;
    CSituation Situation = MakeSituation(3, 6);
    Report.SetInitial(Situation);
    Situation.m_Progress.m_Readings[0].m_Amplitude = 3.0;
    Report.SetInitial(Situation);
    Report.SetFinal(Situation);
    const auto Json = Report.ToJson();
    EXPECT_EQ(Json["initial"][0]["amplitude"], 12.5);
    EXPECT_EQ(Json["initial"].size(), 1U) << "only planes of the procedure";
    EXPECT_EQ(Json["final"][0]["amplitude"], 3.0);
}

TEST(RunReport, CalibrationAndPositions) {
    CRunReport Report;
    math::matrix<double> InvA(2, 2);
    InvA.Unit();
    math::matrix<double> UA(2, 1);
    UA(0, 0) = 0.5;
    UA(1, 0) = -0.25;
    Report.SetCalibration("Default", 3000, 5, InvA, {UA});
    Report.SetWeights(0, {30, 150});
    const auto Json = Report.ToJson();
    EXPECT_EQ(Json["inv_a"], nlohmann::ordered_json::parse("[[1.0,0.0],[0.0,1.0]]"));
    EXPECT_EQ(Json["ua"], nlohmann::ordered_json::parse("[[0.5],[-0.25]]"));
    EXPECT_EQ(Json["positions"], nlohmann::ordered_json::parse(R"([{"weights":[30,150]}])"));
    EXPECT_EQ(Json["configuration"], "Default");
    EXPECT_EQ(Json["calibrated_rpm"], 3000);
    EXPECT_EQ(Json["target"], 5);
}

TEST(RunReport, FileThatCantBeWrittenIsReported) {
    EXPECT_FALSE(CRunReport().Write("/nonexistent-directory/report.json"));
}
