// What a configuration for one plane and one for two planes show.
#include <map>

#include "rvdlm/m_rtr/rtr_trim/config/singleplanebalancingtree.h"
#include "rvdlm/m_rtr/rtr_trim/config/twoplanebalancingtree.h"
#include "tests/rvdlm/m_rtr/rtr_trim/config/paramstreefixture.h"

using namespace PreBalDB;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* METHOD = "Balancing method";
constexpr const char* SCALE = "Direction of the scale";
constexpr const char* METHOD1 = "Balancing method Plane 1";
constexpr const char* METHOD2 = "Balancing method Plane 2";
constexpr int WEIGHTS = 0;
constexpr int SCREWS = 1;

class SinglePlaneTree : public CParamsTreeFixture {
protected:
    void ShowCalibrated(Type::Direction Scale = Type::eClockwise) {
        Single().CreateWeightCompensationTableEntry().SetScalingDirection(Scale);
        m_Entry.SetIsCalibrated(1);
        Show();
    }
};

TEST_F(SinglePlaneTree, ValuesOfTheEntry) {
    math::matrix<double> InvA(2, 2);
    math::matrix<double> UA(2, 1);
    InvA(0, 0) = 0.25;
    InvA(0, 1) = -1.5;
    InvA(1, 0) = 1.5;
    InvA(1, 1) = 2.0;
    UA(0, 0) = -0.125;
    UA(1, 0) = 3.0;
    Single().SetInvA(InvA);
    Single().SetUA(UA);
    Single().SetRotationDirection(Type::eCounterClockwise);
    Single().SetSensorAdaption(3);
    Single().SetProximitySwitchInput(Type::ePlane1);
    Single().CreateWeightCompensationTableEntry().SetScalingDirection(Type::eCounterClockwise);
    Show();
    EXPECT_EQ(GetValue("Direction of rotation"), "Counter-clockwise");
    EXPECT_EQ(GetValue("Sensor"), "Div1");
    EXPECT_EQ(GetValue("Speed input"), "Plane 1");
    EXPECT_EQ(GetValue("INV(0, 0)"), "0.250000");
    EXPECT_EQ(GetValue("INV(0, 1)"), "-1.500000");
    EXPECT_EQ(GetValue("INV(1, 0)"), "1.500000");
    EXPECT_EQ(GetValue("INV(1, 1)"), "2.000000");
    EXPECT_EQ(GetValue("UA(0)"), "-0.125000");
    EXPECT_EQ(GetValue("UA(1)"), "3.000000");
    EXPECT_EQ(GetValue(METHOD), "Movable weights");
    EXPECT_EQ(GetValue(SCALE), "Counter-clockwise");
}

TEST_F(SinglePlaneTree, TheSecondSpeedInputReadsOneToo) {
    Single().SetProximitySwitchInput(Type::ePlane2);
    ShowWeights();
    EXPECT_EQ(GetValue("Speed input"), "Plane 1");
    Single().SetProximitySwitchInput(Type::eUnknownPlane);
    Show();
    EXPECT_EQ(GetValue("Speed input"), "unknown plane");
}

TEST_F(SinglePlaneTree, AMissingEntryIsAsserted) {
    CSinglePlaneBalancingTree Tree(m_Page.GetTree());
    Tree.SetConfig(nullptr, nullptr, m_Tables);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("inconstistent"));
    EXPECT_THAT(GetRows(), IsEmpty());
}

TEST_F(SinglePlaneTree, AMethodThatIsntChosenIsAsserted) {
    Single();
    Show();
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible", "impossible"));
    m_Log.Clear();
    // Nothing can be saved with it: the method is the item that isn't valid.
    EXPECT_EQ(m_Page.GetConfig(m_Entry), Find(METHOD));
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("no compensation"));
    m_Log.Clear();
    m_Page.UpdateChangedConfig(m_Entry);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("inconsistent"));
}

TEST_F(SinglePlaneTree, WithoutItemsThereIsNoMethod) {
    const CSinglePlaneBalancingTree Tree(m_Page.GetTree());
    EXPECT_FALSE(Tree.HasScrewCompensation());
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(SinglePlaneTree, ARotationThatIsNoneIsShownByItsNumberAndRefused) {
    Single().SetRotationDirection(static_cast<Type::Direction>(3));
    ShowWeights();
    EXPECT_EQ(GetValue("Direction of rotation"), "<3>");
    EXPECT_EQ(m_Page.GetConfig(m_Entry), Find("Direction of rotation"));
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("inconsistent"));
    EXPECT_EQ(Single().GetRotationDirection(), 3);
}

TEST_F(SinglePlaneTree, AScaleThatIsNoneIsAsserted) {
    Single().CreateWeightCompensationTableEntry().SetScalingDirection(static_cast<Type::Direction>(2));
    Show();
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(SinglePlaneTree, TheRowsOfTheMethodFollowItsChoice) {
    ShowWeights();
    Choose(METHOD, SCREWS);
    const std::vector<std::string> Labels = GetLabels();
    EXPECT_THAT(
        std::vector(Labels.end() - 6, Labels.end()),
        ElementsAre(METHOD, "Screw table", "Number of holes", "Number of screws", SCALE, "Reference weight"));
    EXPECT_TRUE(m_Page.HasScrewCompensation());
    Choose(METHOD, WEIGHTS);
    EXPECT_EQ(GetLabels().back(), SCALE);
    EXPECT_EQ(GetLabels().size(), Labels.size() - 4);
    EXPECT_FALSE(m_Page.HasScrewCompensation());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(SinglePlaneTree, AChangedMethodIsWrittenOnDemandOnly) {
    ShowWeights();
    Choose(METHOD, SCREWS);
    EXPECT_EQ(Single().GetUsedCompensationMethod(), CCompensationTableEntry::eWeights);
    EXPECT_EQ(m_Page.GetConfig(m_Entry), nullptr);
    EXPECT_EQ(Single().GetUsedCompensationMethod(), CCompensationTableEntry::eScrews);
    EXPECT_EQ(Single().GetScrewCompensationTableEntry()->GetScrewTableName(), "Default");
    EXPECT_EQ(Single().GetScrewCompensationTableEntry()->GetNumberOfHoles(), 12u);
    EXPECT_EQ(Single().GetScrewCompensationTableEntry()->GetNumberOfScrews(), 2);
}

TEST_F(SinglePlaneTree, MethodScaleAndRotationClearTheCalibrationAndChangingBackBringsItBack) {
    for (const char* const pLabel : {METHOD, SCALE, "Direction of rotation"}) {
        ShowCalibrated();
        Choose(pLabel, 1);
        EXPECT_FALSE(StaysCalibrated()) << pLabel;
        Choose(pLabel, 0);
        EXPECT_TRUE(StaysCalibrated()) << pLabel;
    }
}

// New items begin with the default sense: that isn't the one of this entry.
TEST_F(SinglePlaneTree, ChangingTheMethodBackKeepsTheCalibrationOfAnyScale) {
    ShowCalibrated(Type::eCounterClockwise);
    Choose(METHOD, SCREWS);
    EXPECT_FALSE(StaysCalibrated());
    Choose(METHOD, WEIGHTS);
    EXPECT_TRUE(StaysCalibrated());
    EXPECT_EQ(GetValue(SCALE), "Counter-clockwise");
}

TEST_F(SinglePlaneTree, TableHolesAndScrewsLeaveTheCalibration) {
    m_Entry.SetIsCalibrated(1);
    ShowScrews();
    Choose("Screw table", 1);
    TypeInto<unsigned long>("Number of holes", "18");
    TypeInto<unsigned char>("Number of screws", "3");
    EXPECT_TRUE(StaysCalibrated());
}

TEST_F(SinglePlaneTree, AnEntryWithoutThePartIsNotCalibrated) {
    ShowCalibrated();
    CPreBalBaseTableEntry Other("machine", "Other");
    Other.SetIsCalibrated(1);
    m_Page.UpdateChangedConfig(Other);
    EXPECT_FALSE(StaysCalibrated());
}

class TwoPlaneTree : public CParamsTreeFixture {
protected:
    void ShowTwo() { Show(CPreBalDatabase::eModeTwoPlane); }
    void ShowTwoWeights() {
        Two().CreatePlane1WeightCompensationTableEntry();
        Two().CreatePlane2WeightCompensationTableEntry();
        ShowTwo();
    }
};

TEST_F(TwoPlaneTree, RowsInTheirOrder) {
    ShowTwoWeights();
    std::vector<std::string> Expected{
        "Pre-balancing, two planes",     "Speed tolerance", "Unbalance target", "Measuring time [s]",
        "Direction of rotation Plane 1", "Sensor Plane 1",  "Sensor Plane 2",   "Speed input"};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            Expected.push_back("INV(" + std::to_string(i) + ", " + std::to_string(j) + ")");
        }
    }
    for (const char* const pLabel : {"UA(0)", "UA(1)", "UA(2)", "UA(3)", METHOD1, SCALE, METHOD2, SCALE}) {
        Expected.emplace_back(pLabel);
    }
    EXPECT_EQ(GetLabels(), Expected);
    EXPECT_EQ(Find(METHOD1)->GetHelpKey(), "PB_011");
    EXPECT_EQ(Find(METHOD2)->GetHelpKey(), "PB_011");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(TwoPlaneTree, FiguresOfBothPlanes) {
    math::matrix<double> InvA(4, 4);
    InvA.Null();
    InvA(2, 3) = 0.5;
    math::matrix<double> UA1(2, 1);
    math::matrix<double> UA2(2, 1);
    UA1(0, 0) = 1.0;
    UA1(1, 0) = 2.0;
    UA2(0, 0) = 3.0;
    UA2(1, 0) = 4.0;
    Two().SetInvA(InvA);
    Two().SetUAPlane1(UA1);
    Two().SetUAPlane2(UA2);
    Two().SetPlane1SensorAdaption(3);
    Two().SetPlane2SensorAdaption(255);
    ShowTwoWeights();
    EXPECT_EQ(GetValue("INV(2, 3)"), "0.500000");
    EXPECT_EQ(GetValue("INV(3, 2)"), "0.000000");
    EXPECT_EQ(GetValue("UA(0)"), "1.000000");
    EXPECT_EQ(GetValue("UA(1)"), "2.000000");
    EXPECT_EQ(GetValue("UA(2)"), "3.000000");
    EXPECT_EQ(GetValue("UA(3)"), "4.000000");
    EXPECT_EQ(GetValue("Sensor Plane 1"), "Div1");
    EXPECT_EQ(GetValue("Sensor Plane 2"), "UnknownAdaption");
}

TEST_F(TwoPlaneTree, AMissingEntryAndAnotherModeAreAsserted) {
    CTwoPlaneBalancingTree Tree(m_Page.GetTree());
    Tree.SetConfig(nullptr, CPreBalDatabase::eModePlane1, nullptr, m_Tables);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("invalid mode", "inconstistent"));
}

TEST_F(TwoPlaneTree, EitherPlanesScrewsCount) {
    ShowTwoWeights();
    EXPECT_FALSE(m_Page.HasScrewCompensation());
    Choose(METHOD2, SCREWS);
    EXPECT_TRUE(m_Page.HasScrewCompensation());
    Choose(METHOD1, SCREWS);
    Choose(METHOD2, WEIGHTS);
    EXPECT_TRUE(m_Page.HasScrewCompensation());
    Choose(METHOD1, WEIGHTS);
    EXPECT_FALSE(m_Page.HasScrewCompensation());
}

TEST_F(TwoPlaneTree, EachMethodsRowsStandBelowIt) {
    ShowTwoWeights();
    Choose(METHOD1, SCREWS);
    const std::vector<std::string> Labels = GetLabels();
    EXPECT_THAT(std::vector(Labels.end() - 8, Labels.end()),
                ElementsAre(METHOD1, "Screw table", "Number of holes", "Number of screws", SCALE,
                            "Reference weight", METHOD2, SCALE));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(TwoPlaneTree, WhatIsShownOfTheOtherPlaneOutlastsAChangeOfMethod) {
    Two().CreatePlane1WeightCompensationTableEntry();
    CScrewCompensationTableEntry& rScrews = Two().CreatePlane2ScrewCompensationTableEntry();
    rScrews.SetScrewTableName("Default");
    rScrews.SetReferenceWeight(2.5);
    ShowTwo();
    // Not saved.
    Choose("Screw table", 1);
    TypeInto<unsigned long>("Number of holes", "18");
    Choose(SCALE, 1, 1);
    Choose(METHOD1, SCREWS);
    EXPECT_EQ(GetValue("Screw table", 1), "Brass");
    EXPECT_EQ(GetValue("Number of holes", 1), "18 ");
    EXPECT_EQ(GetValue(SCALE, 1), "Counter-clockwise");
    EXPECT_EQ(GetValue("Reference weight", 1), "2.500000 g");
    EXPECT_EQ(GetValue("Screw table", 0), "Default");
    EXPECT_EQ(GetValue("Number of holes", 0), "12 ");
    // The entry knows nothing of it.
    EXPECT_EQ(rScrews.GetScrewTableName(), "Default");
    EXPECT_EQ(rScrews.GetNumberOfHoles(), 12u);
    EXPECT_EQ(Two().GetPlane1UsedCompensationMethod(), CCompensationTableEntry::eWeights);
}

TEST_F(TwoPlaneTree, ATableThatIsGoneStaysToldWhenTheOtherPlanesMethodChanges) {
    Two().CreatePlane1WeightCompensationTableEntry();
    Two().CreatePlane2ScrewCompensationTableEntry().SetScrewTableName("Gone");
    ShowTwo();
    Choose(METHOD1, SCREWS);
    EXPECT_EQ(GetValue("Screw table", 1), "<Gone>");
    EXPECT_EQ(m_Page.GetConfig(m_Entry), Find("Screw table", 1));
}

TEST_F(TwoPlaneTree, EachPlanesMethodAndScaleAndTheRotationCountForTheCalibration) {
    m_Entry.SetIsCalibrated(1);
    Two().CreatePlane1WeightCompensationTableEntry().SetScalingDirection(Type::eCounterClockwise);
    Two().CreatePlane2WeightCompensationTableEntry();
    const std::vector<std::tuple<const char*, int, int, int>> Changes{
        {METHOD1, 0, 1, 0},
        {METHOD2, 0, 1, 0},
        {SCALE, 0, 0, 1},
        {SCALE, 1, 1, 0},
        {"Direction of rotation Plane 1", 0, 1, 0}};
    ShowTwo();
    for (const auto& [pLabel, n, There, Back] : Changes) {
        EXPECT_TRUE(StaysCalibrated()) << pLabel;
        Choose(pLabel, There, n);
        EXPECT_FALSE(StaysCalibrated()) << pLabel;
        Choose(pLabel, Back, n);
        EXPECT_TRUE(StaysCalibrated()) << pLabel;
    }
}

TEST_F(TwoPlaneTree, BothPlanesAreWritten) {
    ShowTwoWeights();
    Choose(SCALE, 1, 0);
    Choose(METHOD2, SCREWS);
    Choose("Direction of rotation Plane 1", 1);
    EXPECT_EQ(m_Page.GetConfig(m_Entry), nullptr);
    EXPECT_EQ(Two().GetRotationDirection(), Type::eCounterClockwise);
    EXPECT_EQ(Two().GetPlane1WeightCompensationTableEntry()->GetScalingDirection(), Type::eCounterClockwise);
    EXPECT_EQ(Two().GetPlane2UsedCompensationMethod(), CCompensationTableEntry::eScrews);
    EXPECT_EQ(m_Entry.GetSinglePlane(), nullptr);
}

TEST_F(TwoPlaneTree, TheFirstInvalidItemIsTold) {
    Two().CreatePlane1ScrewCompensationTableEntry().SetScrewTableName("Gone");
    Two().CreatePlane2ScrewCompensationTableEntry().SetScrewTableName("Gone too");
    ShowTwo();
    EXPECT_EQ(m_Page.GetConfig(m_Entry), Find("Screw table", 0));
    Choose("Screw table", 0, 0);
    EXPECT_EQ(m_Page.GetConfig(m_Entry), Find("Screw table", 1));
    Choose("Screw table", 0, 1);
    EXPECT_EQ(m_Page.GetConfig(m_Entry), nullptr);
}

class ScrewTree : public CParamsTreeFixture {};

TEST_F(ScrewTree, ValuesRangesAndHelp) {
    CScrewCompensationTableEntry& rScrews = Single().CreateScrewCompensationTableEntry();
    rScrews.SetScrewTableName("Brass");
    rScrews.SetNumberOfHoles(18);
    rScrews.SetNumberOfScrews(3);
    rScrews.SetScalingDirection(Type::eCounterClockwise);
    rScrews.SetReferenceWeight(2.25);
    Show();
    EXPECT_EQ(GetValue("Screw table"), "Brass");
    EXPECT_EQ(GetValue("Number of holes"), "18 ");
    EXPECT_EQ(GetValue("Number of screws"), "3 ");
    EXPECT_EQ(GetValue(SCALE), "Counter-clockwise");
    EXPECT_EQ(GetValue("Reference weight"), "2.250000 g");
    EXPECT_EQ(Find("Number of holes")->GetRangeText(), "[3..24]");
    EXPECT_EQ(Find("Number of screws")->GetRangeText(), "[2..3]");
    EXPECT_EQ(Find("Screw table")->GetHelpKey(), "PB_008");
    EXPECT_EQ(Find("Number of holes")->GetHelpKey(), "PB_009");
    EXPECT_EQ(Find("Number of screws")->GetHelpKey(), "PB_010");
    EXPECT_EQ(Find(SCALE)->GetHelpKey(), "PB_007");
    EXPECT_EQ(Find("Reference weight")->GetHelpKey(), "");
}

TEST_F(ScrewTree, ATooSmallNumberOfHolesIsCorrected) {
    Single().CreateScrewCompensationTableEntry().SetNumberOfHoles(2);
    Show();
    EXPECT_EQ(GetValue("Number of holes"), "3 ");
}

TEST_F(ScrewTree, TooFewAndTooManyScrewsAreCorrected) {
    Single().CreateScrewCompensationTableEntry().SetNumberOfScrews(0);
    Show();
    EXPECT_EQ(GetValue("Number of screws"), "2 ");
    Single().CreateScrewCompensationTableEntry().SetNumberOfScrews(255);
    Show();
    EXPECT_EQ(GetValue("Number of screws"), "3 ");
}

TEST_F(ScrewTree, ATableThatIsGoneIsToldAndKeepsTheConfigurationFromBeingSaved) {
    Single().CreateScrewCompensationTableEntry().SetScrewTableName("Gone");
    Show();
    EXPECT_EQ(GetValue("Screw table"), "<Gone>");
    EXPECT_EQ(Find("Screw table")->GetInfoText(), GetText("PB_TABLE_MISSING"));
    EXPECT_EQ(m_Page.GetConfig(m_Entry), Find("Screw table"));
    EXPECT_EQ(Single().GetScrewCompensationTableEntry()->GetScrewTableName(), "Gone");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    m_Tables.Add("Gone");  // it comes back
    Show();
    EXPECT_EQ(GetValue("Screw table"), "Gone");
    EXPECT_NE(Find("Screw table")->GetInfoText(), GetText("PB_TABLE_MISSING"));
    EXPECT_EQ(m_Page.GetConfig(m_Entry), nullptr);
}

TEST_F(ScrewTree, WithoutTablesThereIsAnErrorToSee) {
    m_Tables.RemoveAll();
    ShowScrews();
    EXPECT_EQ(GetValue("Screw table"), GetText("ERROR"));
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
    EXPECT_EQ(m_Page.GetConfig(m_Entry), Find("Screw table"));
    EXPECT_EQ(Single().GetScrewCompensationTableEntry()->GetScrewTableName(), "Default");
}

TEST_F(ScrewTree, TheTablesFollowTheList) {
    ShowScrews();
    m_Tables = {"Aluminium", "Default"};
    Show();
    EXPECT_EQ(GetValue("Screw table"), "Default");
    Choose("Screw table", 0);
    EXPECT_EQ(GetValue("Screw table"), "Aluminium");
    EXPECT_EQ(m_Page.GetConfig(m_Entry), nullptr);
    EXPECT_EQ(Single().GetScrewCompensationTableEntry()->GetScrewTableName(), "Aluminium");
}

TEST_F(ScrewTree, AChosenMethodBeginsWithTheFirstTable) {
    ShowWeights();
    Choose(METHOD, SCREWS);
    EXPECT_EQ(GetValue("Screw table"), "Default");
    EXPECT_EQ(GetValue("Number of holes"), "12 ");
    EXPECT_EQ(GetValue("Number of screws"), "2 ");
    EXPECT_EQ(GetValue(SCALE), "Clockwise");
    EXPECT_EQ(GetValue("Reference weight"), "0 g");
}

}  // namespace
