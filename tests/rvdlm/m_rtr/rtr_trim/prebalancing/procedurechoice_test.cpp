#include "rvdlm/m_rtr/rtr_trim/prebalancing/procedurechoice.h"

#include <gmock/gmock.h>

#include <limits>

#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/messagebox.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancing.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanebalancing.h"
#include "tests/rvdlm/m_rtr/rtr_trim/screwentry.h"
#include "tests/support/fakemainwnd.h"
#include "tests/support/logcapture.h"
#include "tests/support/testinstallation.h"

using PreBalDB::CPreBalDatabase;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class CProcedureChoiceTest : public testing::Test {
protected:
    CProcedureChoiceTest() : m_Entry("0#3#255-0-123456-4711-2", "Default") {
        m_Entry.CreateSinglePlane().CreateWeightCompensationTableEntry();
    }
    std::unique_ptr<CPreBalancing> Make(CPreBalDatabase::BalancingMode Mode) {
        return MakeProcedure(Mode, &m_MainWnd, m_Entry, "WHEEL");
    }

    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CLogCapture m_Log;
    CFakeMainWnd m_MainWnd;
    PreBalDB::CPreBalBaseTableEntry m_Entry;
};

TEST_F(CProcedureChoiceTest, OnePlaneIsASinglePlaneProcedure) {
    for (const auto Mode : {CPreBalDatabase::eModePlane1, CPreBalDatabase::eModePlane2}) {
        const auto pProcedure = Make(Mode);
        EXPECT_NE(dynamic_cast<CSinglePlaneBalancing*>(pProcedure.get()), nullptr);
        EXPECT_EQ(pProcedure->GetSetText(), "2");
        EXPECT_EQ(pProcedure->GetSetName(), "WHEEL");
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CProcedureChoiceTest, TwoPlanesHaveAProcedureOfTheirOwn) {
    m_Entry.CreateTwoPlane().CreatePlane1WeightCompensationTableEntry();
    m_Entry.CreateTwoPlane().CreatePlane2WeightCompensationTableEntry();
    const auto pProcedure = Make(CPreBalDatabase::eModeTwoPlane);
    EXPECT_NE(dynamic_cast<CTwoPlaneBalancing*>(pProcedure.get()), nullptr);
    EXPECT_EQ(pProcedure->GetSetText(), "2");
    EXPECT_EQ(pProcedure->GetSetName(), "WHEEL");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CProcedureChoiceTest, AnUnknownModeIsPlaneOneAfterAWarning) {
    const auto pProcedure = Make(static_cast<CPreBalDatabase::BalancingMode>(7));
    EXPECT_NE(dynamic_cast<CSinglePlaneBalancing*>(pProcedure.get()), nullptr);
    EXPECT_THAT(m_Log.GetTexts("Warning"),
                ElementsAre("no valid pointer, creating default: CSinglePlaneBalancing(...)!"));
}

// The screws are the test's own, so that the table is what the message names.
TEST_F(CProcedureChoiceTest, AScrewTableThatCantBeUsedIsRefusedAndTheOperatorIsTold) {
    using Table = Base::CWDArray<PreBalDB::CScrew>;
    const std::pair<Table, std::string> Cases[] = {
        {{}, "PB_SCREW_TABLE_EMPTY"},
        {{{"", 1.0}, {"", -0.5}}, "PB_SCREW_TABLE_BAD_WEIGHT"},
        {{{"", std::numeric_limits<double>::infinity()}}, "PB_SCREW_TABLE_BAD_WEIGHT"},
    };
    for (const auto& [rTable, rKey] : Cases) {
        CScrewEntry Entry(rTable);
        TakeShownMessages();
        m_Log.Clear();
        EXPECT_FALSE(CanBalance(CPreBalDatabase::eModePlane1, Entry.Base()));
        const std::string Text = GetText(rKey) + " (table)";
        const std::vector<CShownMessage> Shown = TakeShownMessages();
        ASSERT_EQ(Shown.size(), 1U);
        EXPECT_EQ(Shown.front().m_Text, Text);
        EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre(HasSubstr(Text)));
        EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    }
}

TEST_F(CProcedureChoiceTest, FewerHolesThanScrewsAreRefusedAndTheOperatorIsTold) {
    struct CCase {
        std::uint32_t m_nHoles;
        std::uint8_t m_nScrews;
        std::string m_Numbers;
    };
    // Any number of screws but 3 stands for 2.
    const CCase Cases[] = {{0, 2, " (0 / 2)"}, {1, 2, " (1 / 2)"}, {0, 3, " (0 / 3)"},
                           {2, 3, " (2 / 3)"}, {1, 0, " (1 / 2)"}, {1, 7, " (1 / 2)"}};
    for (const CCase& rCase : Cases) {
        CScrewEntry Entry({{"one", 1.0}}, rCase.m_nHoles, rCase.m_nScrews);
        TakeShownMessages();
        m_Log.Clear();
        EXPECT_FALSE(CanBalance(CPreBalDatabase::eModePlane1, Entry.Base()));
        const std::string Text = GetText("PB_TOO_FEW_HOLES") + rCase.m_Numbers;
        const std::vector<CShownMessage> Shown = TakeShownMessages();
        ASSERT_EQ(Shown.size(), 1U);
        EXPECT_EQ(Shown.front().m_Text, Text);
        EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre(HasSubstr(Text)));
        EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    }
}

TEST_F(CProcedureChoiceTest, TooFewHolesInEitherOfTwoPlanesAreRefused) {
    for (const bool bSecond : {false, true}) {
        CScrewEntry Entry({{"one", 1.0}});
        auto& rPlanes = Entry.Base().CreateTwoPlane();
        auto& rScrews1 = rPlanes.CreatePlane1ScrewCompensationTableEntry();
        auto& rScrews2 = rPlanes.CreatePlane2ScrewCompensationTableEntry();
        rScrews1.SetScrewTableName("table");
        rScrews2.SetScrewTableName("table");
        EXPECT_TRUE(CanBalance(CPreBalDatabase::eModeTwoPlane, Entry.Base()));
        EXPECT_THAT(TakeShownMessages(), IsEmpty());
        (bSecond ? rScrews2 : rScrews1).SetNumberOfHoles(1);
        EXPECT_FALSE(CanBalance(CPreBalDatabase::eModeTwoPlane, Entry.Base()));
        EXPECT_EQ(TakeShownMessages().size(), 1U);
    }
}

// With as many holes as screws there is a placement, the only one.
TEST_F(CProcedureChoiceTest, ScrewsThatCanBeUsedAreNotRefused) {
    for (const std::uint8_t nScrews : {std::uint8_t{2}, std::uint8_t{3}}) {
        CScrewEntry Entry({{"nothing", 0.0}, {"one", 1.0}}, nScrews, nScrews);
        EXPECT_TRUE(CanBalance(CPreBalDatabase::eModePlane1, Entry.Base()));
        EXPECT_THAT(TakeShownMessages(), IsEmpty());
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// An abort is shown by a procedure, whatever it would have been balanced with.
TEST_F(CProcedureChoiceTest, AnAbortIsShownAlsoWithScrewsThatCantBeUsed) {
    using Table = Base::CWDArray<PreBalDB::CScrew>;
    for (const std::uint32_t Warning : {1U, 9U, 11U}) {
        for (const auto& [rTable, nHoles] :
             {std::pair<Table, std::uint32_t>({}, 12), {{{"one", 1.0}}, 1}, {{}, 0}}) {
            CScrewEntry Entry(rTable, nHoles);
            const auto pProcedure = MakeProcedure(CPreBalDatabase::eModePlane1, &m_MainWnd, Entry.Base(), "");
            ASSERT_NE(pProcedure, nullptr);
            pProcedure->AbortBalancing(Warning);
            EXPECT_TRUE(pProcedure->IsFailureWithNoReturn());
            EXPECT_EQ(m_MainWnd.m_WarningModes.back(), Warning);
            EXPECT_THAT(TakeShownMessages(), IsEmpty());
        }
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

}  // namespace
