// What every configuration shows.
#include "rvdlm/m_rtr/rtr_trim/config/baseparamstree.h"

#include <stdlib.h>

#include "tests/rvdlm/m_rtr/rtr_trim/config/paramstreefixture.h"
#include "tests/support/scopedenvironment.h"

using namespace PreBalDB;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

class BaseParamsTree : public CParamsTreeFixture {
protected:
    /// 31 January 2026, 12:34:56 UTC.
    void Calibrate() {
        m_Entry.SetIsCalibrated(1);
        m_Entry.SetCalibrationDateTime(std::chrono::sys_seconds(std::chrono::seconds(1769862896)));
        m_Entry.SetCalibratedRPM(3000);
    }
    void ShowSamples(std::uint32_t nSamples) {
        m_Entry.SetNumberOfSamples(nSamples);
        ShowWeights();
    }
    std::uint32_t GetSamplesBack() {
        CPreBalBaseTableEntry Entry("machine", "Default");
        EXPECT_EQ(m_Page.GetConfig(Entry), nullptr);
        return Entry.GetNumberOfSamples();
    }
};

TEST_F(BaseParamsTree, RowsOfAnUncalibratedConfigurationInTheirOrder) {
    ShowWeights();
    EXPECT_THAT(GetLabels(), ElementsAre("Pre-balancing, one plane", "Speed tolerance", "Unbalance target",
                                         "Measuring time [s]", "Direction of rotation", "Sensor",
                                         "Speed input", "INV(0, 0)", "INV(0, 1)", "INV(1, 0)", "INV(1, 1)",
                                         "UA(0)", "UA(1)", "Balancing method", "Direction of the scale"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(BaseParamsTree, ACalibratedOneTellsDateTimeAndSpeedFirst) {
    const CScopedEnvironment Zone("TZ", "CET-1");
    Calibrate();
    ShowWeights();
    const std::vector<std::string> Labels = GetLabels();
    EXPECT_THAT(std::vector(Labels.begin(), Labels.begin() + 5),
                ElementsAre("Pre-balancing, one plane", "Calibrated on", "Calibrated at", "Calibrated speed",
                            "Speed tolerance"));
    EXPECT_EQ(GetValue("Calibrated on"), "31.01.2026");
    EXPECT_EQ(GetValue("Calibrated at"), "13:34:56");
    EXPECT_EQ(GetValue("Calibrated speed"), "3000");
}

TEST_F(BaseParamsTree, TheRowsOfTheCalibrationComeAndGoWithIt) {
    ShowWeights();
    const std::vector<std::string> Without = GetLabels();
    Calibrate();
    Show();
    EXPECT_EQ(GetLabels().size(), Without.size() + 3);
    EXPECT_EQ(GetLabels()[1], "Calibrated on");
    m_Entry.SetIsCalibrated(0);
    Show();
    EXPECT_EQ(GetLabels(), Without);
}

TEST_F(BaseParamsTree, HelpTopicsOfTheRows) {
    Calibrate();
    ShowWeights();
    const std::vector<std::pair<std::string, std::string>> Topics{{"Pre-balancing, one plane", "PB_013"},
                                                                  {"Calibrated on", "PB_001"},
                                                                  {"Calibrated at", "PB_002"},
                                                                  {"Calibrated speed", "PB_003"},
                                                                  {"Speed tolerance", "PB_004"},
                                                                  {"Unbalance target", "PB_005"},
                                                                  {"Measuring time [s]", "PB_012"},
                                                                  {"Direction of rotation", "PB_006"},
                                                                  {"Sensor", ""},
                                                                  {"Speed input", ""},
                                                                  {"INV(0, 0)", ""},
                                                                  {"UA(1)", ""},
                                                                  {"Balancing method", "PB_011"},
                                                                  {"Direction of the scale", "PB_007"}};
    for (const auto& [rLabel, rTopic] : Topics) {
        ASSERT_NE(Find(rLabel), nullptr) << rLabel;
        EXPECT_EQ(Find(rLabel)->GetHelpKey(), rTopic) << rLabel;
        EXPECT_FALSE(Find(rLabel)->GetInfoText().empty()) << rLabel;
    }
}

TEST_F(BaseParamsTree, TheHeadingTellsOneOrTwoPlanes) {
    ShowWeights();
    EXPECT_EQ(GetLabels()[0], GetText("PREBALANCING_HEADER"));
    CPreBalBaseTableEntry Entry("machine", "Two");
    Entry.CreateTwoPlane().CreatePlane1WeightCompensationTableEntry();
    Entry.CreateTwoPlane().CreatePlane2WeightCompensationTableEntry();
    m_Page.SetConfig(Entry, CPreBalDatabase::eModeTwoPlane, m_Tables);
    EXPECT_EQ(GetLabels()[0], GetText("PREBALANCING_HEADER_2LEVEL"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(BaseParamsTree, AnUnknownModeIsAsserted) {
    Single().CreateWeightCompensationTableEntry();
    Show(static_cast<CPreBalDatabase::BalancingMode>(3));
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible", "inconsistent configuration"));
}

TEST_F(BaseParamsTree, ValuesWithRangesStepsAndUnits) {
    m_Entry.SetRPMTolerance(40);
    m_Entry.SetTargetUnbalance(7);
    ShowSamples(100);
    EXPECT_EQ(GetValue("Speed tolerance"), "40 rpm");
    EXPECT_EQ(GetValue("Unbalance target"), "7 µm/s");
    EXPECT_EQ(GetValue("Measuring time [s]"), "5.0 s");
    EXPECT_EQ(Find("Speed tolerance")->GetRangeText(), "[1..100]");
    EXPECT_EQ(Find("Unbalance target")->GetRangeText(), "[1..100]");
    EXPECT_EQ(Find("Measuring time [s]")->GetRangeText(), "[1.5..15.0]");
    m_Page.GetTree().SetFocusedItem(Find("Measuring time [s]"));
    m_Page.GetTree().StartStepping(true);
    m_Page.GetTree().StopStepping();
    EXPECT_EQ(GetSamplesBack(), 102u);  // 0.1 s more
}

TEST_F(BaseParamsTree, SamplesGoToSecondsAndBack) {
    for (const std::uint32_t nSamples : {30u, 100u, 300u}) {
        ShowSamples(nSamples);
        EXPECT_EQ(GetSamplesBack(), nSamples);
    }
    TypeInto<double>("Measuring time [s]", "1.5");
    EXPECT_EQ(GetSamplesBack(), 30u);
}

// The seconds of a count have no exact double: none may lose a sample on the way.
TEST_F(BaseParamsTree, NoCountOfSamplesLosesOneByBeingShown) {
    for (std::uint32_t nSamples = 30; nSamples <= 300; ++nSamples) {
        ShowSamples(nSamples);
        ASSERT_EQ(GetSamplesBack(), nSamples);
    }
}

TEST_F(BaseParamsTree, NoStepOfTheMeasuringTimeLosesASample) {
    ShowSamples(30);
    m_Page.GetTree().SetFocusedItem(Find("Measuring time [s]"));
    for (std::uint32_t nSamples = 32; nSamples <= 300; nSamples += 2) {
        m_Page.GetTree().StartStepping(true);
        m_Page.GetTree().StopStepping();
        ASSERT_EQ(GetSamplesBack(), nSamples);
    }
}

TEST_F(BaseParamsTree, AStoredValueBeyondTheLimitsIsShownCorrectedWithANote) {
    m_Entry.SetRPMTolerance(200);
    ShowWeights();
    EXPECT_EQ(GetValue("Speed tolerance"), "100 rpm");
    EXPECT_THAT(Find("Speed tolerance")->GetInfoText(), HasSubstr("200"));
    EXPECT_THAT(m_Log.GetTexts("Warning"), Contains(HasSubstr("rpm_tolerance is stored as 200")));
    EXPECT_EQ(m_Entry.GetRPMTolerance(), 200u);  // showing writes nothing
    EXPECT_EQ(m_Page.GetConfig(m_Entry), nullptr);
    EXPECT_EQ(m_Entry.GetRPMTolerance(), 100u);
    Show();
    EXPECT_THAT(Find("Speed tolerance")->GetInfoText(), Not(HasSubstr("200")));
}

TEST_F(BaseParamsTree, WhatTheOperatorEntersIsWrittenOnDemandOnly) {
    ShowWeights();
    TypeInto<unsigned long>("Unbalance target", "12");
    EXPECT_EQ(m_Entry.GetTargetUnbalance(), 5u);
    EXPECT_EQ(m_Page.GetConfig(m_Entry), nullptr);
    EXPECT_EQ(m_Entry.GetTargetUnbalance(), 12u);
}

TEST_F(BaseParamsTree, TheCalibrationGoesWithTheFirstChangeAndIsWrittenOnDemandOnly) {
    Calibrate();
    ShowWeights();
    EXPECT_TRUE(StaysCalibrated());
    Choose("Direction of rotation", 1);
    EXPECT_FALSE(StaysCalibrated());
    EXPECT_EQ(m_Entry.IsCalibrated(), 1);
    EXPECT_EQ(m_Page.GetConfig(m_Entry), nullptr);
    EXPECT_EQ(m_Entry.IsCalibrated(), 0);
}

TEST_F(BaseParamsTree, ToleranceTargetAndTimeLeaveTheCalibration) {
    Calibrate();
    ShowWeights();
    TypeInto<unsigned long>("Speed tolerance", "12");
    TypeInto<unsigned long>("Unbalance target", "12");
    TypeInto<double>("Measuring time [s]", "12");
    EXPECT_TRUE(StaysCalibrated());
}

TEST_F(BaseParamsTree, AnUncalibratedConfigurationDoesntBecomeCalibratedByAChange) {
    ShowWeights();
    Choose("Direction of rotation", 1);
    Choose("Direction of rotation", 0);
    EXPECT_FALSE(StaysCalibrated());
}

TEST_F(BaseParamsTree, AnEntryWithoutPlanesIsAssertedAndGetsNoneOfAnotherOne) {
    ShowWeights();
    CPreBalBaseTableEntry Empty("machine", "Empty");
    m_Page.SetConfig(Empty, CPreBalDatabase::eModePlane1, m_Tables);
    m_Loop.RunPosted();
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("Invalid configuration"));
    EXPECT_EQ(m_Page.GetConfig(Empty), nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("Invalid configuration", "invalid configuration"));
    EXPECT_EQ(Empty.GetSinglePlane(), nullptr);
    EXPECT_EQ(GetLabels().size(), 4u);
}

TEST_F(BaseParamsTree, WithoutAConfigurationThereIsNoneToWrite) {
    EXPECT_EQ(m_Page.GetConfig(m_Entry), nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("invalid configuration"));
    EXPECT_FALSE(m_Page.HasScrewCompensation());
}

TEST_F(BaseParamsTree, ThePlanesOfTheEntryMustFitTheMode) {
    Single().CreateWeightCompensationTableEntry();
    Show(CPreBalDatabase::eModeTwoPlane);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("inconsistent configuration"));
    m_Log.Clear();
    CPreBalBaseTableEntry Entry("machine", "Two");
    Entry.CreateTwoPlane().CreatePlane1WeightCompensationTableEntry();
    Entry.CreateTwoPlane().CreatePlane2WeightCompensationTableEntry();
    m_Page.SetConfig(Entry, CPreBalDatabase::eModePlane2, m_Tables);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("inconsistent configuration", "invalid mode"));
}

TEST_F(BaseParamsTree, OneAndTwoPlanesReplaceEachOther) {
    ShowWeights();
    const std::size_t nSingle = GetRows().size();
    CPreBalBaseTableEntry Entry("machine", "Two");
    Entry.CreateTwoPlane().CreatePlane1WeightCompensationTableEntry();
    Entry.CreateTwoPlane().CreatePlane2WeightCompensationTableEntry();
    m_Page.SetConfig(Entry, CPreBalDatabase::eModeTwoPlane, m_Tables);
    m_Loop.RunPosted();
    EXPECT_THAT(GetLabels(), Contains("INV(3, 3)"));
    EXPECT_EQ(m_Page.GetConfig(Entry), nullptr);
    EXPECT_EQ(Entry.GetSinglePlane(), nullptr);
    Show();
    EXPECT_EQ(GetRows().size(), nSingle);
    EXPECT_THAT(GetLabels(), Not(Contains("INV(3, 3)")));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(BaseParamsTree, ItemsThatGoAreDeletedBehindTheEvent) {
    ShowWeights();
    const std::size_t nRows = GetRows().size();
    m_Page.DeleteItems();
    EXPECT_EQ(GetRows().size(), nRows);
    m_Loop.RunPosted();
    EXPECT_THAT(GetRows(), IsEmpty());
    Show();
    EXPECT_EQ(GetRows().size(), nRows);
}

TEST_F(BaseParamsTree, SwitchingAThousandTimesLeavesNothingBehind) {
    CPreBalBaseTableEntry Two("machine", "Two");
    Two.CreateTwoPlane().CreatePlane1ScrewCompensationTableEntry();
    Two.CreateTwoPlane().CreatePlane2WeightCompensationTableEntry();
    ShowWeights();
    const std::size_t nRows = GetRows().size();
    const std::size_t nWindows = m_Page.GetTree().GetList().GetChildren().size();
    for (int i = 0; i < 1000; ++i) {
        m_Page.SetConfig(Two, CPreBalDatabase::eModeTwoPlane, m_Tables);
        m_Loop.RunPosted();
        Show();
        auto* const pMethod = dynamic_cast<PropTree::CPropTreeItemCombo*>(Find("Balancing method"));
        ASSERT_NE(pMethod, nullptr);
        pMethod->Activate();
        pMethod->SelectByOperator(1);
        m_Loop.RunPosted();
        pMethod->SelectByOperator(0);
        m_Page.GetTree().EndEditing();
        m_Loop.RunPosted();
    }
    EXPECT_EQ(GetRows().size(), nRows);
    // The box of the method that is edited last stands until its item goes.
    EXPECT_LE(m_Page.GetTree().GetList().GetChildren().size(), nWindows + 1);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

}  // namespace
