#include "rvdlm/m_rtr/rtr_trim/methods/screwbalancingmethod.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/system/virtualeventloop.h"
#include "platform/window/dc.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacefromnctestweight.h"
#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"
#include "rvlib/math/vector.h"
#include "tests/rvdlm/m_rtr/rtr_trim/screwentry.h"
#include "tests/support/logcapture.h"
#include "tests/support/opcstate.h"
#include "tests/support/pagecolors.h"
#include "tests/support/testinstallation.h"

namespace {

using math::MakeVector;
using PreBalDB::CTypeBase;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Key = CKeyActions;
using Method = CScrewBalancingMethod;
using Table = Base::CWDArray<PreBalDB::CScrew>;
using Fitted = Base::CWDArray<CScrew>;

Table MakeTable(int nScrews) {
    Table Result;
    for (int i = 1; i <= nScrews; ++i) {
        Result.Add({"M" + std::to_string(i), static_cast<double>(i)});
    }
    return Result;
}

class ScrewBalancingMethod : public testing::Test {
protected:
    std::unique_ptr<Method> Make(const Table& rTable, unsigned Plane = 0, std::uint32_t nHoles = 12,
                                 std::uint8_t nScrews = 2) {
        m_pEntry.reset();
        m_pEntry = std::make_unique<CScrewEntry>(rTable, nHoles, nScrews);
        return std::make_unique<Method>(m_pEntry->Screws(), Plane, 3);
    }
    /// Name of the test screw that a new method offers.
    std::string GetTestScrew(const Table& rTable) {
        const auto pMethod = Make(rTable);
        pMethod->SetDisplayMode(Method::eTestUnbalance);
        EXPECT_EQ(pMethod->GetScrews()->GetSize(), 1U);
        EXPECT_EQ((*pMethod->GetScrews())[0].m_Hole, 1);
        EXPECT_EQ(m_pEntry->Screws().GetReferenceWeight(), (*pMethod->GetScrews())[0].m_Weight);
        return (*pMethod->GetScrews())[0].m_Name;
    }
    void LinkTestWeight(const COpcValue& rValue) {
        COpcDatabase::GetInstance()->SetOpcLinkItem(CPreBalInterfaceFromNcTestWeight::KEY, "weight");
        COPCConnection::CreateInstance()->Connect("", 0);
        m_Opc.GetServer().Write("weight", rValue);
    }

    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CCleanOpcState m_Opc;
    CLogCapture m_Log{true};
    std::unique_ptr<CScrewEntry> m_pEntry;
};

TEST_F(ScrewBalancingMethod, StartsWithTheMiddleOfTheTable) {
    EXPECT_EQ(GetTestScrew(MakeTable(5)), "M3");
    EXPECT_EQ(GetTestScrew(MakeTable(4)), "M3");
    EXPECT_EQ(GetTestScrew(MakeTable(1)), "M1");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(ScrewBalancingMethod, TheNCPresetsTheFirstScrewThatIsHeavyEnough) {
    const std::pair<double, const char*> Cases[] = {{2.5, "M3"},       {3.000001, "M3"}, {10.0, "M3"},
                                                    {0.0, "M1"},       {2.00002, "M3"},  {2.000009, "M2"},
                                                    {2.0 + 1e-5, "M2"}};
    for (const auto& [Wanted, pName] : Cases) {
        LinkTestWeight(Wanted);
        EXPECT_EQ(GetTestScrew(MakeTable(3)), pName) << Wanted;
    }
    EXPECT_THAT(m_Log.GetTexts("Information"), Contains("Setting OPC TestWeight: 2/3g"));
    EXPECT_THAT(m_Log.GetTexts("Information"),
                Contains("CScrewBalancingMethod::PreBalInterfaceFromNcTestWeight is the item weight, updated "
                         "every 100 ms"));
    EXPECT_EQ(COpcDatabase::GetInstance()->GetRefCount(), 0U);
}

TEST_F(ScrewBalancingMethod, WithoutAReadableLinkTheMiddleStays) {
    EXPECT_EQ(GetTestScrew(MakeTable(5)), "M3");  // no connection
    COPCConnection::CreateInstance()->Connect("", 0);
    EXPECT_EQ(GetTestScrew(MakeTable(5)), "M3");  // no link
    LinkTestWeight(std::string("heavy"));
    EXPECT_EQ(GetTestScrew(MakeTable(5)), "M3");  // no number
    EXPECT_EQ(COpcDatabase::GetInstance()->GetRefCount(), 0U);
}

TEST_F(ScrewBalancingMethod, KeysChangeTheTestScrewAndWrapAround) {
    const auto pMethod = Make(MakeTable(3));
    pMethod->SetDisplayMode(Method::eTestUnbalance);
    const auto Press = [&](Key::KeyAction Action) {
        EXPECT_TRUE(pMethod->KeyPressed(Action, 7));
        EXPECT_EQ(pMethod->GetScrews()->GetSize(), 1U);
        EXPECT_EQ(m_pEntry->Screws().GetReferenceWeight(), (*pMethod->GetScrews())[0].m_Weight);
        return (*pMethod->GetScrews())[0].m_Name;
    };
    EXPECT_EQ(Press(Key::eIncrement), "M3");
    EXPECT_EQ(Press(Key::eIncrement), "M1");
    EXPECT_EQ(Press(Key::eDecrement), "M3");
    EXPECT_EQ(Press(Key::eDecrement), "M2");
    EXPECT_EQ(Press(Key::eNeutralPosition), "M2");  // any other key
    EXPECT_EQ(Press(Key::eDecrement), "M1");
    EXPECT_EQ(Press(Key::eNeutralPosition), "M1");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// Plain: the mode comes without its screw.
TEST_F(ScrewBalancingMethod, ATestModeWithoutItsScrewIsAsserted) {
    const auto pMethod = Make(MakeTable(3));
    pMethod->SetPlainDisplayMode(Method::eTestUnbalance);
    EXPECT_TRUE(pMethod->KeyPressed(Key::eIncrement, 0));
    EXPECT_TRUE(pMethod->GetScrews()->IsEmpty());
    EXPECT_EQ(m_pEntry->Screws().GetReferenceWeight(), 1.0);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("more than one screw in testmode"));
}

TEST_F(ScrewBalancingMethod, TheNeutralKeyTakesComputedScrewsOut) {
    const auto pMethod = Make(MakeTable(3));
    pMethod->SetUA(MakeVector(2.0, 1.0), nullptr, true);
    pMethod->SetDisplayMode(Method::eUACompensation);
    EXPECT_EQ(pMethod->GetScrews()->GetSize(), 2U);
    EXPECT_TRUE(pMethod->KeyPressed(Key::eIncrement, 0));
    EXPECT_EQ(pMethod->GetScrews()->GetSize(), 2U);
    EXPECT_TRUE(pMethod->KeyPressed(Key::eNeutralPosition, 0));
    EXPECT_TRUE(pMethod->GetScrews()->IsEmpty());
    EXPECT_TRUE(pMethod->GetUA() == MakeVector(0.0, 0.0));
}

TEST_F(ScrewBalancingMethod, KeysInOtherModesAreAsserted) {
    const auto pMethod = Make(MakeTable(3));
    pMethod->SetDisplayMode(Method::eInactive);
    EXPECT_TRUE(pMethod->KeyPressed(Key::eIncrement, 0));
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(ScrewBalancingMethod, DisplayModesBringTheScrewsToTheirPosition) {
    const auto pMethod = Make(MakeTable(3));
    pMethod->SetUA(MakeVector(2.0, 1.0), nullptr, true);
    pMethod->AddMeasurementValue(100, 0);
    pMethod->SetDisplayMode(Method::eInactive);
    EXPECT_EQ(pMethod->GetScrews()->GetSize(), 2U);
    double Magnitude = -1.0;
    pMethod->m_MovingAverage.GetValues(&Magnitude, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(Magnitude, 0.0);  // a new mode begins a new average
    pMethod->SetPlainDisplayMode(Method::eNeutralPosition);
    EXPECT_EQ(pMethod->GetScrews()->GetSize(), 2U);
    pMethod->SetDisplayMode(Method::eNeutralPosition);
    EXPECT_TRUE(pMethod->GetScrews()->IsEmpty());
    EXPECT_TRUE(pMethod->GetUA() == MakeVector(0.0, 0.0));
}

TEST_F(ScrewBalancingMethod, AVectorOfNothingNeedsNoSearch) {
    const auto pMethod = Make(MakeTable(3));
    pMethod->SetUA(MakeVector(2.0, 1.0), nullptr, true);
    double Percent = 42.0;
    EXPECT_TRUE(pMethod->SetUA(MakeVector(0.0, 0.0), &Percent, true));
    EXPECT_TRUE(pMethod->GetScrews()->IsEmpty());
    EXPECT_EQ(Percent, 42.0);
    EXPECT_TRUE(pMethod->GetUA() == MakeVector(0.0, 0.0));
}

TEST_F(ScrewBalancingMethod, AVectorAlongAnAxisIsNotNothing) {
    const auto pMethod = Make(MakeTable(3));
    for (const auto& rUA : {MakeVector(0.0, 1.0), MakeVector(1.0, 0.0)}) {
        EXPECT_TRUE(pMethod->SetUA(rUA, nullptr, true));
        EXPECT_FALSE(pMethod->GetScrews()->IsEmpty());
        EXPECT_LT((pMethod->GetUA() - rUA).Norm(), 0.5);
    }
}

// With a reference weight of 2 g: 3 g in hole 1, and 1 g in hole 4, which is at 90 degrees.
TEST_F(ScrewBalancingMethod, SetUAPlacesScrewsForTheReferenceWeight) {
    const auto pMethod = Make(MakeTable(3));
    m_pEntry->Screws().SetReferenceWeight(2.0);
    double Percent = -1.0;
    EXPECT_TRUE(pMethod->SetUA(MakeVector(1.5, 0.5), &Percent, true));
    EXPECT_EQ(*pMethod->GetScrews(), (Fitted{{1, 3.0, "M3"}, {4, 1.0, "M1"}}));
    EXPECT_EQ(Percent, 0.0);
    const math::matrix<double> UA = pMethod->GetUA();
    EXPECT_NEAR(UA(0, 0), 1.5, 1e-15);
    EXPECT_NEAR(UA(1, 0), 0.5, 1e-15);
}

TEST_F(ScrewBalancingMethod, AShortageShowsInThePercentageOnly) {
    const auto pMethod = Make(MakeTable(5));
    double Percent = 0.0;
    EXPECT_TRUE(pMethod->SetUA(MakeVector(20.0, 0.0), &Percent, true));
    EXPECT_NEAR(Percent, (20.0 / 9.659258262890683 - 1.0) * 100, 1e-9);  // 2 * 5 * cos(15 degrees)
    EXPECT_EQ(pMethod->GetScrews()->GetSize(), 2U);
}

TEST_F(ScrewBalancingMethod, MenusOfTheSteps) {
    const auto pMethod = Make(MakeTable(3));
    EXPECT_EQ(pMethod->GetTestUnbalanceMenu(), 33);
    EXPECT_EQ(pMethod->GetTestUnbalanceChangeMenu(), 3);
    EXPECT_EQ(pMethod->GetCommitChangeMenu(1), 12);
    EXPECT_EQ(pMethod->GetCommitChangeMenu(2), 13);
    EXPECT_EQ(pMethod->GetCheckWeightsMenu(1), 12);
    EXPECT_EQ(pMethod->GetCheckWeightsMenu(2), 13);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    EXPECT_EQ(pMethod->GetNeutralPositionMenu(1), 0);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(ScrewBalancingMethod, WhatIsForWeightsOnlyDoesNothing) {
    const auto pMethod = Make(MakeTable(3));
    EXPECT_EQ(pMethod->GetTestUnbalanceVectorInDeg(), nullptr);
    pMethod->SetTestUnbalanceVectorInDeg(MakeVector(10.0, 20.0));
    int Angle1 = 5;
    int Angle2 = 6;
    pMethod->GetWeightPositions(Angle1, Angle2);
    EXPECT_EQ(Angle1, 5);
    EXPECT_EQ(Angle2, 6);
}

TEST_F(ScrewBalancingMethod, TheScaleIsClockwiseWhateverTheConfigurationSays) {
    Make(MakeTable(3));
    m_pEntry->Screws().SetScalingDirection(CTypeBase::eCounterClockwise);
    Method CounterClockwise(m_pEntry->Screws(), 0, 3);
    EXPECT_EQ(CounterClockwise.GetScalingDirection(), CTypeBase::eClockwise);
}

TEST_F(ScrewBalancingMethod, TheNotificationHasAnglesAndHundredthsOfAGram) {
    const auto pMethod = Make({{"", 1.25}, {"", 2.5}});
    pMethod->SetUA(MakeVector(2.5, 1.25), nullptr, true);
    ASSERT_EQ(*pMethod->GetScrews(), (Fitted{{1, 2.5, ""}, {4, 1.25, ""}}));
    CPreBalNotification Notification;
    Notification.m_WeightsPlane2 = {7, 7, 7};
    pMethod->FillNotification(Notification);
    EXPECT_THAT(Notification.m_AnglesPlane1, ElementsAre(0, 90, -1));
    EXPECT_THAT(Notification.m_WeightsPlane1, ElementsAre(250, 125, 0));
    EXPECT_THAT(Notification.m_WeightsPlane2, ElementsAre(7, 7, 7));
}

TEST_F(ScrewBalancingMethod, AnglesAndWeightsAreRounded) {
    // 7 holes are 51.43 degrees apart; 1.125 g is exact in binary, its hundredths round up.
    const auto pMethod = Make({{"", 1.125}}, 1, 7, 3);
    pMethod->SetUA(MakeVector(1.0, 0.0), nullptr, true);
    CPreBalNotification Notification;
    pMethod->FillNotification(Notification);
    for (std::size_t i = 0; i < 3; ++i) {
        const int nHole = (*pMethod->GetScrews())[i].m_Hole;
        constexpr int ANGLES[] = {0, 51, 103, 154, 206, 257, 309};
        EXPECT_EQ(Notification.m_AnglesPlane2[i], ANGLES[nHole - 1]);
        EXPECT_EQ(Notification.m_WeightsPlane2[i], 113);
    }
}

TEST_F(ScrewBalancingMethod, WithoutHolesTheNotificationStays) {
    const auto pMethod = Make(MakeTable(3), 0, 0);
    CPreBalNotification Notification;
    Notification.m_AnglesPlane1 = {1, 2, 3};
    pMethod->FillNotification(Notification);
    EXPECT_THAT(Notification.m_AnglesPlane1, ElementsAre(1, 2, 3));
}

TEST_F(ScrewBalancingMethod, AnEmptyTableIsAnInvalidArgumentWhereAScrewIsNeeded) {
    const auto pMethod = Make({});
    EXPECT_THROW(pMethod->SetDisplayMode(Method::eTestUnbalance), std::invalid_argument);
    EXPECT_THROW(pMethod->SetUA(MakeVector(1.0, 0.0), nullptr, true), std::invalid_argument);
    EXPECT_TRUE(pMethod->SetUA(MakeVector(0.0, 0.0), nullptr, true));
}

// Square of 280 at (10, 10), the 8 holes on a circle of 122 around its middle, each 22 wide. The number
// stands in the middle of a hole, so the pixels looked at lie 8 beside it.
TEST_F(ScrewBalancingMethod, TheScrewsAreDrawnInTheirHoles) {
    const auto PaintOn = [this](CTypeBase::Direction Scaling) {
        Make(MakeTable(3), 0, 8);
        m_pEntry->Screws().SetScalingDirection(Scaling);
        Method Screws(m_pEntry->Screws(), 0, 3);
        Screws.SetUA(MakeVector(3.0, 1.0), nullptr, true);
        EXPECT_EQ(*Screws.GetScrews(), (Fitted{{1, 3.0, "M3"}, {3, 1.0, "M1"}}));
        Screws.SetPlainDisplayMode(Method::eUACompensation);
        CBitmap Bitmap(CSize(300, 300));
        CDC DC(Bitmap);
        Screws.Paint(&DC, CRect(0, 0, 300, 300), true);
        EXPECT_EQ(Bitmap.GetPixel(150 - 8, 150 - 122), PageColors::INK) << "1 at the top";
        EXPECT_EQ(Bitmap.GetPixel(150 + 86 - 8, 150 - 86), PageColors::PANEL) << "the next is empty";
        EXPECT_EQ(Bitmap.GetPixel(150 + 122 - 8, 150), PageColors::INK) << "3 to the right";
        EXPECT_EQ(Bitmap.GetPixel(150 - 8, 150 + 122), PageColors::PANEL) << "5 is empty";
        EXPECT_EQ(Bitmap.GetPixel(150 - 122 - 8, 150), PageColors::PANEL) << "7 is empty";
        return Bitmap;
    };
    const CBitmap Clockwise = PaintOn(CTypeBase::eClockwise);
    EXPECT_FALSE(PaintOn(CTypeBase::eCounterClockwise) == Clockwise)
        << "the holes are numbered the other way round";
}

TEST_F(ScrewBalancingMethod, TheArrowShowsTheRotation) {
    const auto pMethod = Make(MakeTable(3));
    pMethod->SetPlainDisplayMode(Method::eNeutralPosition);
    const auto PaintArrow = [&](CTypeBase::Direction Rotation) {
        pMethod->SetRotationDirection(Rotation);
        CBitmap Bitmap(CSize(300, 300));
        CDC DC(Bitmap);
        pMethod->Paint(&DC, CRect(0, 0, 300, 300), true);
        EXPECT_EQ(Bitmap.GetPixel(150, 150 - 24), PageColors::INK);
        return Bitmap;
    };
    EXPECT_FALSE(PaintArrow(CTypeBase::eClockwise) == PaintArrow(CTypeBase::eCounterClockwise));
}

TEST_F(ScrewBalancingMethod, OnlyTheMeasurementMayBePaintedWithoutTheRest) {
    const auto pMethod = Make(MakeTable(3));
    const auto Paint = [&](bool bRedrawAll) {
        CBitmap Bitmap(CSize(300, 300));
        CDC DC(Bitmap);
        pMethod->Paint(&DC, CRect(0, 0, 300, 300), bRedrawAll);
        return Bitmap;
    };
    for (const auto Mode : {Method::eEmpty, Method::eNeutralPosition, Method::eInactive,
                            Method::eTestUnbalance, Method::eUACompensation}) {
        pMethod->SetPlainDisplayMode(Mode);
        const CBitmap Whole = Paint(true);
        EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
        EXPECT_TRUE(Paint(false) == Whole) << Mode;
        EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("must be TRUE!")) << Mode;
        m_Log.Clear();
    }
    pMethod->SetDisplayMode(Method::eMeasurementValues);
    constexpr CPoint RING(150, 14);
    EXPECT_EQ(Paint(false).GetPixel(RING.x, RING.y), PageColors::WHITE) << "not drawn";
    EXPECT_EQ(Paint(true).GetPixel(RING.x, RING.y), PageColors::RING);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

}  // namespace
