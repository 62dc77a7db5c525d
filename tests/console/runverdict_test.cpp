#include "console/runverdict.h"

#include <gtest/gtest.h>

#include "contract/actions.h"
#include "platform/rvldb/gettext.h"

namespace {

using Kind = CSentence::Kind;

/// Sees what anybody at the panel sees, a step after the other.
class RunVerdictTest : public testing::Test {
protected:
    RunVerdictTest() {
        SetLanguage("en");
        m_Now.m_bRunning = true;
        m_Now.m_Progress.m_Step = 4;
        m_Now.m_Progress.m_NumberOfSteps = 11;
        m_Now.m_Progress.m_TargetUnbalance = 5;
        m_Now.m_Progress.m_CurrentRPM = 3000;
        m_Now.m_Progress.m_Measuring = {Measurement::eNone, 3000, 50, true, true, true, 0, 100, 50};
        SetCodes(CPreBalCodes::eSetup, CPreBalCodes::eMeasure);
    }
    ~RunVerdictTest() override { SetLanguage("en"); }

    void SetCodes(std::int32_t Step, std::int32_t Action) {
        m_Now.m_Notification.m_Values[0] = Step;
        m_Now.m_Notification.m_Values[1] = Action;
    }
    void Read(std::size_t Plane, double Amplitude, double AngleDeg = 45.0) {
        m_Now.m_Progress.m_Readings.at(Plane) = {true, false, Amplitude, AngleDeg};
    }
    CPreBalProgress::CMeasuring& GetMeasuring() { return m_Now.m_Progress.m_Measuring; }
    CSentence See() {
        m_Verdict.Look(m_Now);
        return m_Verdict.GetSentence();
    }
    void MeasureFirst(const std::vector<double>& rAmplitudes) {
        GetMeasuring().m_Which = Measurement::eFirst;
        for (std::size_t i = 0; i < rAmplitudes.size(); ++i) {
            Read(i, rAmplitudes[i]);
        }
        SetCodes(CPreBalCodes::eSetup, CPreBalCodes::eMeasurementValuesOK);
        See();
        GetMeasuring().m_Which = Measurement::eNone;
        SetCodes(CPreBalCodes::eSetup, CPreBalCodes::eSpindleStop);
        See();
    }
    CSentence MeasureFinal(const std::vector<double>& rAmplitudes, std::int32_t Step) {
        GetMeasuring().m_Which = Measurement::eFinal;
        for (std::size_t i = 0; i < rAmplitudes.size(); ++i) {
            Read(i, rAmplitudes[i]);
            m_Now.m_Progress.m_Readings.at(i).m_bComplete = true;
        }
        SetCodes(Step, CPreBalCodes::eMeasure);
        return See();
    }
    void End() {
        m_Now.m_bRunning = false;
        See();
    }
    CSavedResult MakeSaved(bool bSaved) const {
        return {bSaved, std::chrono::sys_seconds(std::chrono::seconds(1700000000)), "Wheel 7",
                "/data/prebal.db"};
    }

    CSituation m_Now;
    CRunVerdict m_Verdict;
};

}  // namespace

TEST_F(RunVerdictTest, WithoutARunThereIsNothingToSay) {
    m_Now.m_bRunning = false;
    EXPECT_EQ(See().m_Kind, Kind::eNothing);
    EXPECT_TRUE(See().m_Text.empty());
}

TEST_F(RunVerdictTest, BetweenMeasurementsTheStepIsTold) {
    EXPECT_EQ(See().m_Text, "Step 4 of 11");
    EXPECT_TRUE(See().m_Detail.empty());
    MeasureFirst({120.4});
    EXPECT_EQ(See().m_Detail, "Last measured: 120 µm/s at 45°");
}

TEST_F(RunVerdictTest, BehindATestRunItIsToldHowGoodItWasAndWhatComesNext) {
    MeasureFirst({120.0});
    CRunAdvice Advice;
    Advice.m_Suggestion = "Suggested: 40°.";
    m_Verdict.SetAdvice(Advice);
    EXPECT_EQ(See().m_Detail, "Suggested: 40°.");
    Advice = {};
    Advice.m_Quality.emplace().m_Text = "Good test.";
    Advice.m_Quality->m_ConditionText = "Condition 1.2.";
    m_Verdict.SetAdvice(Advice);
    EXPECT_EQ(See().m_Detail, "Good test.") << "a condition that is no matter needs no words";
    Advice.m_Quality->m_ConditionLight = CRunAdvice::CQuality::Light::eYellow;
    Advice.m_Influence.emplace().m_Text = "Another influence.";
    m_Verdict.SetAdvice(Advice);
    EXPECT_EQ(See().m_Detail, "Good test. Condition 1.2.");
    Advice.m_Influence->m_bDiffers = true;
    m_Verdict.SetAdvice(Advice);
    EXPECT_EQ(See().m_Detail, "Good test. Condition 1.2. Another influence.");
    Advice.m_Prediction.emplace().m_Text = "Expected: 1.4.";
    m_Verdict.SetAdvice(Advice);
    EXPECT_EQ(See().m_Detail, "Expected: 1.4.");
}

TEST_F(RunVerdictTest, WhileAveragingReadingsAndTimeAreCounted) {
    GetMeasuring().m_Which = Measurement::eFirst;
    GetMeasuring().m_nAveraged = 62;
    Read(0, 88.04, 303.0);
    EXPECT_EQ(See().m_Kind, Kind::eProgress);
    EXPECT_EQ(See().m_Text, "Averaging, 62 of 100, 1.9 s left");
    EXPECT_EQ(See().m_Detail, "First measurement: 88.0 µm/s at 303°");
}

TEST_F(RunVerdictTest, ConditionsThatHoldButNotLongEnoughAreWaitedFor) {
    GetMeasuring().m_Which = Measurement::eTest1;
    GetMeasuring().m_bSampling = false;
    EXPECT_EQ(See().m_Kind, Kind::eProgress);
    EXPECT_EQ(See().m_Text, "Waiting for steady speed");
    EXPECT_EQ(See().m_Detail, "Test measurement");
}

TEST_F(RunVerdictTest, OutOfLockIsTold) {
    GetMeasuring().m_Which = Measurement::eFinal;
    GetMeasuring().m_bSampling = GetMeasuring().m_bLocked = false;
    EXPECT_EQ(See().m_Kind, Kind::eWaiting);
    EXPECT_EQ(See().m_Text, "Out of lock");
}

TEST_F(RunVerdictTest, AWrongSpeedIsToldWithWhatWouldBeRight) {
    GetMeasuring().m_Which = Measurement::eFirst;
    GetMeasuring().m_bSampling = GetMeasuring().m_bAtSpeed = false;
    m_Now.m_Progress.m_CurrentRPM = 2890;
    EXPECT_EQ(See().m_Text, "Speed 2890 rpm is outside 3000 ± 50 rpm");
    const std::string Detail = See().m_Detail;
    GetMeasuring().m_bLocked = false;
    EXPECT_EQ(See().m_Text, "Speed 2890 rpm is outside 3000 ± 50 rpm");
    EXPECT_NE(See().m_Detail, Detail) << "the lock is lost, too";
}

TEST_F(RunVerdictTest, ACompleteMeasurementIsTheOperatorsTurn) {
    GetMeasuring().m_Which = Measurement::eTest2;
    Read(0, 60.0, 10.0);
    Read(1, 150.2, 359.6);
    SetCodes(CPreBalCodes::eSetup, CPreBalCodes::eMeasurementValuesOK);
    EXPECT_EQ(See().m_Kind, Kind::eReady);
    EXPECT_EQ(See().m_Text, "Measured: press Next");
    EXPECT_EQ(See().m_Detail,
              "Test measurement of plane 2: plane 1: 60.0 µm/s at 10°, plane 2: 150 µm/s at 0°");
}

TEST_F(RunVerdictTest, WithinTheTarget) {
    MeasureFirst({120.0});
    const CSentence Sentence = MeasureFinal({1.1}, CPreBalCodes::eSetupSuccess);
    EXPECT_EQ(Sentence.m_Kind, Kind::eWithin);
    EXPECT_EQ(Sentence.m_Text, "Within target: 1.1 of 5 µm/s (was 120)");
}

TEST_F(RunVerdictTest, OverTheTarget) {
    MeasureFirst({120.0});
    const CSentence Sentence = MeasureFinal({7.3}, CPreBalCodes::eSetupOverTarget);
    EXPECT_EQ(Sentence.m_Kind, Kind::eOver);
    EXPECT_EQ(Sentence.m_Text, "Over target: 7.3 of 5 µm/s (was 120)");
}

TEST_F(RunVerdictTest, ExactlyTheTargetIsWithin) {
    EXPECT_EQ(MeasureFinal({5.0}, CPreBalCodes::eSetupSuccess).m_Text, "Within target: 5.0 of 5 µm/s");
}

TEST_F(RunVerdictTest, RoundingNeverContradictsTheVerdict) {
    EXPECT_EQ(MeasureFinal({5.04}, CPreBalCodes::eSetupOverTarget).m_Text, "Over target: 5.04 of 5 µm/s");
    EXPECT_EQ(MeasureFinal({5.004}, CPreBalCodes::eSetupOverTarget).m_Text, "Over target: 5.004 of 5 µm/s");
    EXPECT_EQ(MeasureFinal({4.96}, CPreBalCodes::eSetupSuccess).m_Text, "Within target: 5.0 of 5 µm/s");
}

TEST_F(RunVerdictTest, BothPlanesAreNamed) {
    MeasureFirst({120.0, 80.0});
    EXPECT_EQ(MeasureFinal({1.1, 2.0}, CPreBalCodes::eSetupSuccess).m_Text,
              "Within target: plane 1: 1.1 of 5 µm/s (was 120); plane 2: 2.0 of 5 µm/s (was 80.0)");
    EXPECT_EQ(MeasureFinal({7.3, 2.0}, CPreBalCodes::eSetupOverTarget).m_Text,
              "Over target: plane 1: 7.3 of 5 µm/s (was 120); plane 2: 2.0 of 5 µm/s (was 80.0), within "
              "target");
    EXPECT_EQ(MeasureFinal({7.3, 2.0}, CPreBalCodes::eSetupOverTarget).m_Kind, Kind::eOver);
}

TEST_F(RunVerdictTest, AVerdictOnAnAverageThatHasJustBegunIsNone) {
    MeasureFirst({120.0});
    GetMeasuring().m_nAveraged = 3;
    GetMeasuring().m_Which = Measurement::eFinal;
    Read(0, 1.0);
    SetCodes(CPreBalCodes::eSetupSuccess, CPreBalCodes::eMeasure);
    EXPECT_EQ(See().m_Text, "Averaging, 3 of 100, 4.8 s left");
}

TEST_F(RunVerdictTest, AVerdictIsWithdrawnWhenTheLockIsLost) {
    MeasureFinal({1.1}, CPreBalCodes::eSetupSuccess);
    m_Now.m_Progress.m_Readings[0].m_bComplete = false;
    GetMeasuring().m_bSampling = GetMeasuring().m_bLocked = false;
    EXPECT_EQ(See().m_Text, "Out of lock");
    End();
    EXPECT_EQ(m_Verdict.GetSentence().m_Text, "Ended before the final measurement was complete");
}

TEST_F(RunVerdictTest, TheFirstReadingIsThatOfTheRebalancingThatGoesOn) {
    MeasureFirst({120.0});
    MeasureFinal({7.3}, CPreBalCodes::eSetupOverTarget);
    MeasureFirst({7.2});
    EXPECT_EQ(MeasureFinal({1.1}, CPreBalCodes::eRebalSuccess).m_Text,
              "Within target: 1.1 of 5 µm/s (was 7.2)");
}

TEST_F(RunVerdictTest, WhatIsSavedIsToldWithTimeAndPlace) {
    MeasureFirst({120.0});
    MeasureFinal({1.1}, CPreBalCodes::eSetupSuccess);
    m_Verdict.SetSaved(MakeSaved(true));
    End();
    const CSentence Sentence = m_Verdict.GetSentence();
    EXPECT_EQ(Sentence.m_Kind, Kind::eWithin);
    EXPECT_EQ(Sentence.m_Text, "Saved. Within target: 1.1 of 5 µm/s (was 120)");
    EXPECT_NE(Sentence.m_Detail.find("2023"), std::string::npos) << Sentence.m_Detail;
    EXPECT_NE(Sentence.m_Detail.find(", configuration \"Wheel 7\" in /data/prebal.db"), std::string::npos)
        << Sentence.m_Detail;
    EXPECT_EQ(m_Verdict.GetConclusion(),
              "Within target: 1.1 of 5 µm/s (was 120); saved " + Sentence.m_Detail);
}

TEST_F(RunVerdictTest, WhatWaitsForItsServerIsSavedOnTheConsolesDisk) {
    MeasureFirst({120.0});
    MeasureFinal({1.1}, CPreBalCodes::eSetupSuccess);
    CSavedResult Saved = MakeSaved(true);
    Saved.m_bDelivered = false;
    m_Verdict.SetSaved(Saved);
    End();
    EXPECT_EQ(m_Verdict.GetSentence().m_Kind, Kind::eWithin);
    EXPECT_NE(
        m_Verdict.GetConclusion().find(
            "configuration \"Wheel 7\" on this console's disk, to be delivered to /data/prebal.db when"),
        std::string::npos)
        << m_Verdict.GetConclusion();
}

TEST_F(RunVerdictTest, AResultThatIsNotSavedIsNoSuccessWhateverItSays) {
    MeasureFirst({120.0});
    MeasureFinal({1.1}, CPreBalCodes::eSetupSuccess);
    m_Verdict.SetSaved(MakeSaved(false));
    const CSentence Sentence = m_Verdict.GetSentence();
    EXPECT_EQ(Sentence.m_Kind, Kind::eFailed);
    EXPECT_EQ(Sentence.m_Text, "Not saved. Within target: 1.1 of 5 µm/s (was 120)");
    EXPECT_NE(Sentence.m_Detail.find("press Finish once more"), std::string::npos);
    End();
    EXPECT_EQ(m_Verdict.GetSentence().m_Kind, Kind::eFailed);
    EXPECT_EQ(m_Verdict.GetSentence().m_Detail.find("Finish"), std::string::npos)
        << "there is no such key now";
}

TEST_F(RunVerdictTest, AFailedRunTellsWhyAndThatNothingIsSaved) {
    SetCodes(CPreBalCodes::eFailure, CPreBalCodes::eNone);
    m_Now.m_Progress.m_Warning = "Cannot be balanced: test weights without effect.";
    EXPECT_EQ(See().m_Kind, Kind::eFailed);
    EXPECT_EQ(See().m_Text, "Failed: Cannot be balanced: test weights without effect");
    End();
    EXPECT_EQ(m_Verdict.GetConclusion(),
              "Failed: Cannot be balanced: test weights without effect; nothing is saved");
}

TEST_F(RunVerdictTest, ARunThatIsEndedEarlyHasNothingSaved) {
    MeasureFirst({120.0});
    End();
    EXPECT_EQ(m_Verdict.GetSentence().m_Kind, Kind::eWaiting);
    EXPECT_EQ(m_Verdict.GetConclusion(), "Ended before the final measurement was complete; nothing is saved");
}

TEST_F(RunVerdictTest, ARunThatIsBrokenOffBehindItsVerdictTellsBoth) {
    MeasureFinal({1.1}, CPreBalCodes::eSetupSuccess);
    m_Verdict.SetBrokenOff("SIGTERM");
    End();
    EXPECT_EQ(m_Verdict.GetConclusion(),
              "Broken off by SIGTERM; Within target: 1.1 of 5 µm/s; nothing is saved");
}

TEST_F(RunVerdictTest, AProcedureThatWasRefusedTellsWhy) {
    m_Now.m_bRunning = false;
    See();
    m_Verdict.SetReason("not calibrated.");
    EXPECT_EQ(m_Verdict.GetConclusion(), "Failed: not calibrated");
}

TEST_F(RunVerdictTest, ANewRunKnowsNothingOfTheOneBefore) {
    MeasureFirst({120.0});
    MeasureFinal({1.1}, CPreBalCodes::eSetupSuccess);
    m_Verdict.SetSaved(MakeSaved(true));
    End();
    m_Now.m_bRunning = true;
    GetMeasuring().m_Which = Measurement::eNone;
    SetCodes(CPreBalCodes::eSetup, CPreBalCodes::eSpindleStop);
    EXPECT_EQ(See().m_Text, "Step 4 of 11");
    EXPECT_TRUE(See().m_Detail.empty());
}

TEST_F(RunVerdictTest, ALanguageThatIsSwitchedCountsAtOnce) {
    MeasureFirst({120.0});
    MeasureFinal({1.1}, CPreBalCodes::eSetupSuccess);
    ASSERT_TRUE(SetLanguage("de"));
    EXPECT_EQ(m_Verdict.GetSentence().m_Text, "Im Ziel: 1.1 von 5 µm/s (vorher 120)");
}
