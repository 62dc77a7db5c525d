#include "console/runreport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

#include "platform/system/version.h"
#include "tests/support/jsonschema.h"
#include "tests/support/runrecords.h"
#include "tests/support/tempdirectory.h"

namespace {

/// The report as a program reads it from its file.
nlohmann::json ReadBack(const CRunReport& rReport) {
    const CTempDirectory Directory;
    EXPECT_TRUE(rReport.Write(Directory.At("report.json")));
    std::ifstream In(Directory.At("report.json"));
    return nlohmann::json::parse(In);
}

double GetAngleDeg(double X, double Y) {
    const double Angle = std::atan2(Y, X) * 180.0 / 3.141592653589793;
    return Angle < 0.0 ? Angle + 360.0 : Angle;
}

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

TEST(RunReport, WhatWaitsForItsServerIsSavedAndNotDelivered) {
    CRunReport Report;
    Report.SetFinished(true);
    Report.AddSituation(0, MakeSituation(7, 5));
    Report.SetDelivered(false);
    EXPECT_EQ(Report.ToJson()["delivered"], true) << "nothing was saved, and nothing waits";
    Report.SetSaved(true);
    EXPECT_EQ(Report.ToJson()["delivered"], false);
    EXPECT_EQ(Report.ToJson()["exit"], 0);
    Report.SetDelivered(true);
    EXPECT_EQ(Report.ToJson()["delivered"], true);
}

TEST(RunReport, FirstInitialReadingAndLastFinalReadingStand) {
    CRunReport Report;
    CSituation Situation = MakeSituation(3, 6);
    Report.SetInitial(Situation);
    Situation.m_Progress.m_Readings[0].m_Amplitude = 3.0;
    Report.SetInitial(Situation);
    Situation.m_Progress.m_TargetUnbalance = 7;
    Report.SetFinal(Situation);
    const auto Json = Report.ToJson();
    EXPECT_EQ(Json["initial"][0]["amplitude"], 12.5);
    EXPECT_EQ(Json["initial"].size(), 1U) << "only planes of the procedure";
    EXPECT_EQ(Json["final"][0]["amplitude"], 3.0);
    EXPECT_EQ(Json["target"], 7) << "of the verdict, whatever is stored by now";
}

TEST(RunReport, CalibrationAndPositions) {
    CRunReport Report;
    math::matrix<double> InvA(2, 2);
    InvA.Unit();
    math::matrix<double> UA(2, 1);
    UA(0, 0) = 0.5;
    UA(1, 0) = -0.25;
    Report.SetCalibration("Default", 3000, InvA, {UA});
    Report.SetWeights(0, {30, 150});
    const auto Json = Report.ToJson();
    EXPECT_EQ(Json["inv_a"], nlohmann::ordered_json::parse("[[1.0,0.0],[0.0,1.0]]"));
    EXPECT_EQ(Json["ua"], nlohmann::ordered_json::parse("[[0.5],[-0.25]]"));
    EXPECT_EQ(Json["positions"], nlohmann::ordered_json::parse(R"([{"weights":[30,150]}])"));
    EXPECT_EQ(Json["configuration"], "Default");
    EXPECT_EQ(Json["calibrated_rpm"], 3000);
}

TEST(RunReport, FileThatCantBeWrittenIsReported) {
    EXPECT_FALSE(CRunReport().Write("/nonexistent-directory/report.json"));
}

TEST(RunReport, EachReportIsAsItsSchemaSays) {
    EXPECT_EQ(CheckReport(ReadBack(CRunReport())), "") << "one of a run that never began";
    for (const CRunRecord& rRecord :
         {RunRecords::MakeWeights(), RunRecords::MakeScrews(), RunRecords::MakePublishedTwoPlane(),
          RunRecords::MakeBrokenOff(), RunRecords::MakeFailed(), CRunRecord()}) {
        CRunReport Report = CRunReport::FromRecord(rRecord);
        EXPECT_EQ(CheckReport(ReadBack(Report)), "") << rRecord.m_Result;
    }
}

TEST(RunReport, TheSchemaFindsWhatIsWrong) {
    nlohmann::json Report = ReadBack(CRunReport::FromRecord(RunRecords::MakeWeights()));
    Report["exit"] = 7;
    Report.erase("unit");
    Report["measurements"][0]["name"] = "second";
    Report["iso"]["reached"] = "G 1";
    Report["operator"] = "me";
    const std::string Errors = CheckReport(Report);
    EXPECT_NE(Errors.find("/exit: 7 is none of [0,1,2]"), std::string::npos) << Errors;
    EXPECT_NE(Errors.find("/: lacks \"unit\""), std::string::npos) << Errors;
    EXPECT_NE(Errors.find("/measurements/0/name: \"second\""), std::string::npos) << Errors;
    EXPECT_NE(Errors.find("/iso/reached: \"G 1\" is not of type"), std::string::npos) << Errors;
    EXPECT_NE(Errors.find("\"operator\", which nobody knows"), std::string::npos) << Errors;
}

TEST(RunReport, TellsWhoWhatWhenAndWhere) {
    const auto Json = CRunReport::FromRecord(RunRecords::MakeWeights()).ToJson();
    EXPECT_EQ(Json["version"], GetProjectVersion());
    EXPECT_EQ(Json["started"], "2026-03-14T09:26:00Z");
    EXPECT_EQ(Json["machine"], "0#1#255-0-486107-930938880-1");
    EXPECT_EQ(Json["module"].dump(), R"({"family":"kestrel","addresses":[5],"name":"486107-930938880"})");
    EXPECT_EQ(Json["set"].dump(), R"({"number":1,"mode":"plane1"})");
    EXPECT_EQ(Json["rotor"], "Spindle 12, wheel 400");
    EXPECT_EQ(Json["unit"], "µm/s");
    EXPECT_EQ(Json["exit"], 0);
    EXPECT_EQ(Json["measurements"].size(), 3U);
    EXPECT_EQ(Json["measurements"][1]["name"], "test1");
    EXPECT_EQ(Json["measurements"][1]["t_ms"], 41000);
    EXPECT_EQ(Json["measurements"][1]["planes"][0]["n"], 60);
    EXPECT_EQ(Json["prediction"].dump(), R"({"amplitude":[0.9],"at_most_95":[2.9]})");
    EXPECT_FALSE(Json.contains("quality")) << "nobody has said anything";
}

TEST(RunReport, AFixedDateStandsInPlaceOfTheRealOne) {
    CRunReport Report = CRunReport::FromRecord(RunRecords::MakeWeights());
    Report.SetFixedDate(true);
    EXPECT_EQ(Report.ToJson()["started"], "2026-01-01T00:00:00Z");
}

TEST(RunReport, AdviceIsToldIfThereIsSome) {
    CRunAdvice Advice;
    Advice.m_Quality.emplace();
    Advice.m_Quality->m_TestRun = CRunAdvice::CQuality::TestRun::eWeak;
    Advice.m_Quality->m_RelativeChange = 0.25;
    Advice.m_Quality->m_StandardErrors = 12.5;
    Advice.m_Quality->m_Condition = 1.5;
    Advice.m_Explanation = {false, "weight_not_moved", "as if weight 2 had stayed at 180°"};
    const auto Json = CRunReport::FromRecord(RunRecords::MakeWeights(), Advice).ToJson();
    EXPECT_EQ(CheckReport(Json), "");
    EXPECT_EQ(Json["quality"]["test_run"], "weak");
    EXPECT_EQ(Json["quality"]["condition"], 1.5);
    EXPECT_EQ(Json["explanation"]["mistake"], "weight_not_moved");
}

// 12 kg at 6000 rpm and G 6.3: 120.3 g·mm; 1.2 counts of 150 a weight of 45 g·mm are 0.36 g·mm.
TEST(RunReport, IsoIsToldIfTheRotorIsKnown) {
    const auto Json = CRunReport::FromRecord(RunRecords::MakeWeights()).ToJson();
    EXPECT_NEAR(Json["iso"]["permissible_gmm"].get<double>(), 120.32, 0.005);
    EXPECT_NEAR(Json["iso"]["residual_gmm"][0].get<double>(), 0.36, 1e-9);
    EXPECT_NEAR(Json["iso"]["reached"].get<double>(), 6.3 * 0.36 / 120.32, 1e-5);
    EXPECT_NEAR(Json["iso"]["target"].get<double>(), 120.32 / 45.0 * 150.0, 0.05);
    EXPECT_FALSE(CRunReport::FromRecord(RunRecords::MakeScrews()).ToJson().contains("iso"));
}

// The unit of a screw's compensation is the test screw: at 120 mm its 1.15 g are 138 g·mm.
TEST(RunReport, IsoOfScrewsCountsInTestScrewsAtTheirRadius) {
    CRunRecord Record = RunRecords::MakePublishedTwoPlane();
    // What is left by the rotor's own influence is what one gram in plane 2 alone makes.
    auto& rFinal = Record.m_Measurements.back().m_Planes;
    const auto Effect = (RunRecords::FromPolar(189, 115) - RunRecords::FromPolar(170, 112)) / 1.15;
    const auto Effect2 = (RunRecords::FromPolar(77, 104) - RunRecords::FromPolar(53, 78)) / 1.15;
    rFinal[0]->m_Smoothed = {Effect.real(), Effect.imag()};
    rFinal[1]->m_Smoothed = {Effect2.real(), Effect2.imag()};
    const auto Json = CRunReport::FromRecord(Record).ToJson();
    EXPECT_NEAR(Json["iso"]["residual_gmm"][0].get<double>(), 0.0, 1e-9);
    EXPECT_NEAR(Json["iso"]["residual_gmm"][1].get<double>(), 120.0, 1e-9);
}

TEST(RunReport, PublishedCorrectionsStandInTheReport) {
    const auto Two = CRunReport::FromRecord(RunRecords::MakePublishedTwoPlane()).ToJson();
    const auto Get = [&Two](std::size_t Row) { return 1.15 * Two["ua"][Row][0].get<double>(); };
    EXPECT_NEAR(std::hypot(Get(0), Get(1)), 1.956, 0.0005);
    EXPECT_NEAR(GetAngleDeg(Get(0), Get(1)), 237.44, 0.005);
    EXPECT_NEAR(std::hypot(Get(2), Get(3)), 1.073, 0.0005);
    EXPECT_NEAR(GetAngleDeg(Get(2), Get(3)), 121.09, 0.005);
}

// Holes are engraved in the sense of the scale: 2 and 5 of 12 clockwise are 12 and 9 counter-clockwise.
TEST(RunReport, PositionsOfARecordAreThoseOnTheRotor) {
    EXPECT_EQ(CRunReport::FromRecord(RunRecords::MakeScrews()).ToJson()["positions"].dump(),
              R"([{"screws":[{"hole":12,"grams":4.0},{"hole":9,"grams":1.0}]}])");
    EXPECT_EQ(CRunReport::FromRecord(RunRecords::MakeWeights()).ToJson()["positions"].dump(),
              R"([{"weights":[64,191]}])");
}

TEST(RunReport, ANameThatIsNoUtf8DoesNoHarm) {
    CRunRecord Record = RunRecords::MakeWeights();
    Record.m_Rotor = "\"<b>\xFF\xFE" + std::string(10000, 'x');
    EXPECT_EQ(CheckReport(ReadBack(CRunReport::FromRecord(Record))), "");
}

TEST(RunReport, RunsThatDidNotEndInOrderSaySo) {
    EXPECT_EQ(CRunReport::FromRecord(RunRecords::MakeBrokenOff()).ToJson()["exit"], 2);
    const auto Failed = CRunReport::FromRecord(RunRecords::MakeFailed()).ToJson();
    EXPECT_EQ(Failed["exit"], 2);
    EXPECT_EQ(Failed["result"], "Failure");
    EXPECT_EQ(Failed["measurements"].size(), 2U);
}
