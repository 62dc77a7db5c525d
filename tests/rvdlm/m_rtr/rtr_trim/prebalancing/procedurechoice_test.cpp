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
TEST_F(CProcedureChoiceTest, AScrewTableThatCantBeUsedStartsNothingAndTheOperatorIsTold) {
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
        EXPECT_EQ(MakeProcedure(CPreBalDatabase::eModePlane1, &m_MainWnd, Entry.Base(), ""), nullptr);
        const std::string Text = GetText(rKey) + " (table)";
        const std::vector<CShownMessage> Shown = TakeShownMessages();
        ASSERT_EQ(Shown.size(), 1U);
        EXPECT_EQ(Shown.front().m_Text, Text);
        EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre(HasSubstr(Text)));
        EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    }
}

TEST_F(CProcedureChoiceTest, ScrewsThatCanBeUsedMakeAProcedure) {
    CScrewEntry Entry({{"nothing", 0.0}, {"one", 1.0}});
    EXPECT_NE(MakeProcedure(CPreBalDatabase::eModePlane1, &m_MainWnd, Entry.Base(), ""), nullptr);
    EXPECT_THAT(TakeShownMessages(), IsEmpty());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

}  // namespace
