// What the window makes of the module's answers and reports.
#include <gmock/gmock.h>

#include "platform/rvldb/gettext.h"
#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

namespace {

class CMainWndQueryChainTest : public CMainWndFixture {
protected:
    void Start(LPARAM Flags = eKestrelPlane1) {
        Create();
        Init(Flags);
        Forget();
    }
    void ReportXY(const std::uint32_t* pPlane, std::uint32_t x, std::uint32_t y,
                  Reason Why = Comm::eIndication) {
        m_pWnd->OnUnbalanceXYValues(Why, pPlane, &x, &y);
    }
};

TEST_F(CMainWndQueryChainTest, EachAnswerAsksTheNextQuestion) {
    Start();
    Identify(Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("set"));
    ReportSet(MakeSet(), Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("set", "state"));
    ReportState(0, 0, 0, Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("set", "state", "rpm"));
    ReportRPM(0, 3000, Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("set", "state", "rpm", "xy"));
    const std::uint32_t Plane = 0;
    ReportXY(&Plane, 1, 2, Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("set", "state", "rpm", "xy"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMainWndQueryChainTest, ReportsAreUsedButAskNothing) {
    Start();
    Identify(Comm::eIndication);
    ReportSet(MakeSet());
    ReportState(0, 0);
    ReportRPM(0, 3000);
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
    EXPECT_NE(m_pWnd->GetTabs().GetCurrentBaseEntry(), nullptr);
    Act(102);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("StartPreBalancing 3000 0 0"));
}

TEST_F(CMainWndQueryChainTest, ATimeoutDoesNothingMore) {
    Start();
    for (const Reason Why : {Comm::eTimeout, Comm::eError}) {
        m_pWnd->OnQueryModuleIdentification(Why, nullptr, nullptr);
        m_pWnd->OnSetRequest(Why, nullptr);
        m_pWnd->OnModuleState(Why, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        m_pWnd->OnRPMData(Why, nullptr, nullptr);
        m_pWnd->OnUnbalanceXYValues(Why, nullptr, nullptr, nullptr);
        // Data that come with a failure don't count either.
        Identify(Why);
        ReportSet(MakeSet(), Why);
        ReportRPM(0, 3000, Why);
    }
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    EXPECT_EQ(m_pWnd->GetMachineName(), "");
}

TEST_F(CMainWndQueryChainTest, AnAnswerWithoutDataIsIgnored) {
    Start();
    const std::string Article = "123456";
    m_pWnd->OnQueryModuleIdentification(Comm::eSuccess, &Article, nullptr);
    m_pWnd->OnSetRequest(Comm::eSuccess, nullptr);
    m_pWnd->OnRPMData(Comm::eSuccess, nullptr, nullptr);
    m_pWnd->OnUnbalanceXYValues(Comm::eSuccess, nullptr, nullptr, nullptr);
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
    EXPECT_EQ(m_pWnd->GetMachineName(), "");
}

TEST_F(CMainWndQueryChainTest, FailingQueriesAreAsserted) {
    Start();
    m_Module.m_Sent = 0;
    Identify();
    ReportSet(MakeSet(), Comm::eSuccess);
    ReportState(0, 0, 0, Comm::eSuccess);
    ReportRPM(0, 0, Comm::eSuccess);
    EXPECT_THAT(m_Log.GetAssertions(),
                ElementsAre("QueryActiveSet() failed!", "QueryModuleState() failed!",
                            "QueryRPMData() failed!", "QueryUnbalanceXYValues() failed!"));
    EXPECT_THAT(TakeShownMessages(), IsEmpty()) << "for the log, not for the operator";
}

TEST_F(CMainWndQueryChainTest, IdentificationBeginsTheMachineName) {
    Start();
    Identify(Comm::eSuccess, "123456", 4711);
    EXPECT_EQ(m_pWnd->GetMachineName(), "123456-4711");
    Identify(Comm::eSuccess, "654321", 1);
    EXPECT_EQ(m_pWnd->GetMachineName(), "123456-4711");
}

// The key of a module whose serial fills both halves: written as a signed number.
TEST_F(CMainWndQueryChainTest, SerialNumbersArePrintedSigned) {
    Start();
    Identify(Comm::eSuccess, "123456", 0xFFFF0001);
    EXPECT_EQ(m_pWnd->GetMachineName(), "123456--65535");
}

TEST_F(CMainWndQueryChainTest, AnIdentificationWithTheSetKnownAsksNothing) {
    Open();
    Identify(Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
}

// input # sensor 1 # sensor 2 - mode - article - serial - set
TEST_F(CMainWndQueryChainTest, TheFirstSetCompletesTheMachineNameForPlaneOne) {
    Start();
    Identify();
    ReportSet(MakeSet());
    EXPECT_EQ(m_pWnd->GetMachineName(), "0#3#255-0-123456-4711-2");
}

TEST_F(CMainWndQueryChainTest, TheFirstSetCompletesTheMachineNameForPlaneTwo) {
    Start(eLannerPlane2);
    Identify();
    ReportSet(MakeSet());
    EXPECT_EQ(m_pWnd->GetMachineName(), "1#4#255-1-123456-4711-2");
}

TEST_F(CMainWndQueryChainTest, TheFirstSetCompletesTheMachineNameForTwoPlanes) {
    Start(eKestrelTwoPlane);
    Identify();
    ReportSet(MakeSet());
    EXPECT_EQ(m_pWnd->GetMachineName(), "0#3#4-2-123456-4711-2");
}

TEST_F(CMainWndQueryChainTest, ASwappedSetIsMarkedInTheMachineName) {
    Start();
    Identify();
    CSet Set = MakeSet(11);
    Set.Swap = 1;
    ReportSet(Set);
    EXPECT_EQ(m_pWnd->GetMachineName(), "0#3#255-0s-123456-4711-11");
}

TEST_F(CMainWndQueryChainTest, ASetThatLacksASensorIsAssertedAndUsed) {
    Start();
    Identify();
    CSet Set = MakeSet();
    Set.SensorAdaptionPlane1 = 255;
    ReportSet(Set);
    EXPECT_THAT(m_Log.GetAssertions(),
                Contains("current set configuration does not fit with balancing mode!"));
    EXPECT_EQ(m_pWnd->GetMachineName(), "0#255#255-0-123456-4711-2");
    EXPECT_TRUE(m_pWnd->GetTabs().HasDatabase());
}

// A mode needs the sensors of its planes and the speed of the first of them; what it doesn't use may be
// unknown.
TEST_F(CMainWndQueryChainTest, AModeNeedsItsOwnSensorsAndInputOnly) {
    using Field = std::uint8_t CSet::*;
    constexpr std::array<Field, 4> Fields{&CSet::RPMInputPlane1, &CSet::SensorAdaptionPlane1,
                                          &CSet::RPMInputPlane2, &CSet::SensorAdaptionPlane2};
    struct CNeed {
        LPARAM m_Flags;
        std::array<bool, 4> m_bNeeded;
    };
    for (const CNeed& rNeed :
         {CNeed{eKestrelPlane1, {true, true, false, false}}, CNeed{eLannerPlane2, {false, false, true, true}},
          CNeed{eKestrelTwoPlane, {true, true, false, true}}}) {
        for (std::size_t i = 0; i <= Fields.size(); ++i) {
            Start(rNeed.m_Flags);
            Identify();
            CSet Set = MakeSet();
            if (i < Fields.size()) {
                Set.*Fields[i] = 255;
            }
            ReportSet(Set);
            const std::vector<std::string> Assertions = m_Log.GetAssertions();
            EXPECT_EQ(
                std::ranges::count(Assertions, "current set configuration does not fit with balancing mode!"),
                i < Fields.size() && rNeed.m_bNeeded[i] ? 1 : 0)
                << "flags " << rNeed.m_Flags << ", field " << i;
        }
    }
}

TEST_F(CMainWndQueryChainTest, ASetBeforeTheIdentificationOpensNothing) {
    Start();
    ReportSet(MakeSet());
    EXPECT_EQ(m_pWnd->GetMachineName(), "");
    EXPECT_FALSE(m_pWnd->GetTabs().HasDatabase());
}

TEST_F(CMainWndQueryChainTest, TheFirstSetShowsItsNumberInTheTitle) {
    Start();
    Identify();
    ReportSet(MakeSet(7));
    EXPECT_EQ(m_pWnd->GetTabs().GetConfigDlg().GetTitle(),
              GetText("PREBAL_CONFIG") + " (" + GetText("SET") + " 7)");
}

TEST_F(CMainWndQueryChainTest, TheHostLearnsOfTheConfiguration) {
    LinkOpc();
    Start();
    Identify();
    ReportSet(MakeSet());
    EXPECT_THAT(m_Host.Get(1124), ElementsAre(Message{1124, 0, 0}));
    EXPECT_EQ(GetStep(), 1);
    EXPECT_EQ(GetAnswer(), COpcValue(0));
}

TEST_F(CMainWndQueryChainTest, TheHostLearnsOfACalibratedConfiguration) {
    LinkOpc();
    OpenCalibrated();
    m_pWnd->SendMessage(WM_RV_DBINITDONE);
    m_Loop.RunPosted();
    EXPECT_THAT(m_Host.Get(1124), ElementsAre(Message{1124, 0, 1}));
    EXPECT_EQ(GetStep(), 2);
}

TEST_F(CMainWndQueryChainTest, ASetThatDiffersOnlyInItsNameDoesNotAbort) {
    Open();
    Act(102);
    Forget();
    CSet Set = MakeSet();
    Set.Name = "OTHER";
    ReportSet(Set);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
}

class CChangedSetTest : public CMainWndFixture, public testing::WithParamInterface<int> {};

// Each of the fields that count.
TEST_P(CChangedSetTest, Aborts) {
    Open();
    Act(102);
    Forget();
    CSet Set = MakeSet();
    const std::array<std::uint8_t*, 8> Fields{&Set.Number,
                                              &Set.Mode,
                                              &Set.RPMInputPlane1,
                                              &Set.RPMInputPlane2,
                                              &Set.RPMFactorPlane1,
                                              &Set.RPMFactorPlane2,
                                              &Set.SensorAdaptionPlane1,
                                              &Set.SensorAdaptionPlane2};
    const auto Field = static_cast<std::size_t>(GetParam());
    if (Field < Fields.size()) {
        *Fields[Field] = 77;
    } else {
        Set.Swap = 1;
    }
    m_pWnd->OnSetRequest(Comm::eIndication, &Set);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("AbortBalancing 1"));
    EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre("Set has been changed! calling AbortBalancing()..."));
}

INSTANTIATE_TEST_SUITE_P(Fields, CChangedSetTest, testing::Range(0, 9));

TEST_F(CMainWndQueryChainTest, TheChainGoesOnAfterAChangedSet) {
    Open();
    Act(102);
    Forget();
    ReportSet(MakeSet(3), Comm::eSuccess);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("AbortBalancing 1"));
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("state"));
}

TEST_F(CMainWndQueryChainTest, AChangedSetWithoutProcedureStartsOneToShowTheFailure) {
    Open();
    ReportSet(MakeSet(3));
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("AbortBalancing 1"));
    EXPECT_FALSE(m_pWnd->GetTabs().IsWindowVisible());
}

// The window keeps the first set: the same other one aborts again, and the first one is welcome.
TEST_F(CMainWndQueryChainTest, EveryLaterReportOfAnotherSetAbortsAgain) {
    Open();
    ReportSet(MakeSet(3));
    ReportSet(MakeSet(3));
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("AbortBalancing 1", "AbortBalancing 1"));
    ReportSet(MakeSet(2));
    EXPECT_EQ(GetSequenceCalls().size(), 2U);
}

TEST_F(CMainWndQueryChainTest, ASetWithARPMFactorIsRefusedByAnAbortedRun) {
    Start();
    Identify();
    CSet Set = MakeSet();
    Set.RPMFactorPlane1 = 2;
    ReportSet(Set);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("AbortBalancing 9", "StartPreBalancing 65535 1 1"));
}

TEST_F(CMainWndQueryChainTest, ARPMFactorOfPlaneTwoCountsToo) {
    Start();
    Identify();
    CSet Set = MakeSet();
    Set.RPMFactorPlane2 = 0;
    ReportSet(Set);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("AbortBalancing 9", "StartPreBalancing 65535 1 1"));
}

TEST_F(CMainWndQueryChainTest, AWrongModuleStateAborts) {
    Open();
    Act(102);
    Forget();
    ReportState(0, 0, 1, Comm::eSuccess);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("AbortBalancing 11"));
    EXPECT_THAT(m_Log.GetTexts("Error"),
                ElementsAre("Module state has been changed! calling AbortBalancing()..."));
    // The chain goes on all the same.
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("rpm"));
}

TEST_F(CMainWndQueryChainTest, AWrongModuleStateWithoutProcedureStartsOneToShowTheFailure) {
    Open();
    ReportState(0, 0, 1);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("AbortBalancing 11"));
}

TEST_F(CMainWndQueryChainTest, AWrongModuleStateWithoutConfigurationIsAsserted) {
    Start();
    ReportState(0, 0, 1);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(CMainWndQueryChainTest, FlagsOfPlaneOneReachTheProcedure) {
    Open();
    Act(102);
    Forget();
    const std::uint32_t Zero = 0;
    const std::uint32_t One = 1;
    m_pWnd->OnModuleState(Comm::eIndication, &Zero, &One, &Zero, &Zero, &One, &Zero);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("OutOfLock 1", "InvalidRPM 0"));
}

TEST_F(CMainWndQueryChainTest, FlagsOfPlaneTwoReachTheProcedure) {
    Open(eLannerPlane2);
    Act(102);
    Forget();
    const std::uint32_t Zero = 0;
    const std::uint32_t One = 1;
    m_pWnd->OnModuleState(Comm::eIndication, &Zero, &One, &Zero, &Zero, &One, &Zero);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("OutOfLock 0", "InvalidRPM 1"));
}

TEST_F(CMainWndQueryChainTest, FlagsOfTwoPlanesAreJoined) {
    Open(eKestrelTwoPlane);
    Act(102);
    Forget();
    const std::uint32_t Zero = 0;
    const std::uint32_t One = 1;
    m_pWnd->OnModuleState(Comm::eIndication, &Zero, &One, &Zero, &Zero, &Zero, &Zero);
    m_pWnd->OnModuleState(Comm::eIndication, &Zero, &Zero, &Zero, &Zero, &One, &Zero);
    m_pWnd->OnModuleState(Comm::eIndication, &Zero, &Zero, &Zero, &Zero, &Zero, &Zero);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("OutOfLock 1", "InvalidRPM 0", "OutOfLock 0", "InvalidRPM 1",
                                                "OutOfLock 0", "InvalidRPM 0"));
}

TEST_F(CMainWndQueryChainTest, MissingFlagsAreAsserted) {
    Open();
    Act(102);
    Forget();
    const std::uint32_t Zero = 0;
    m_pWnd->OnModuleState(Comm::eIndication, nullptr, &Zero, nullptr, nullptr, nullptr, nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
    // Plane 2 and the lock of the panel aren't looked at here.
    m_pWnd->OnModuleState(Comm::eIndication, nullptr, &Zero, &Zero, nullptr, nullptr, nullptr);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("OutOfLock 0", "InvalidRPM 0"));
}

TEST_F(CMainWndQueryChainTest, TheChainGoesOnAfterMissingFlags) {
    Open();
    m_pWnd->OnModuleState(Comm::eSuccess, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("rpm"));
}

TEST_F(CMainWndQueryChainTest, SpeedReachesTheProcedureAndTheStatusLine) {
    Open();
    Act(102);
    m_Sequence.m_Calls.clear();
    ReportRPM(0, 2999);
    EXPECT_THAT(m_Sequence.m_Calls, ElementsAre("CurrentRPM 2999", "Paint 4"));
}

TEST_F(CMainWndQueryChainTest, SpeedOfTheOtherPlaneIsIgnored) {
    Open();
    Act(102);
    Forget();
    ReportRPM(1, 2999);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
}

TEST_F(CMainWndQueryChainTest, SpeedOfPlaneOneIsIgnoredWithTwoPlanes) {
    Open(eKestrelTwoPlane);
    Act(102);
    Forget();
    ReportRPM(1, 2999);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
    ReportRPM(0, 3000);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("CurrentRPM 3000"));
}

TEST_F(CMainWndQueryChainTest, SpeedOfPlaneTwoRulesInItsMode) {
    Open(eLannerPlane2);
    Act(102);
    Forget();
    ReportRPM(0, 2999);
    ReportRPM(1, 3000);
    EXPECT_THAT(GetSequenceCalls(), ElementsAre("CurrentRPM 3000"));
}

// 0xFFFF is -1 in the low 16 bits.
TEST_F(CMainWndQueryChainTest, ReadingsAreSignedAndGoToTheirPlane) {
    Open();
    Act(102);
    Forget();
    const std::uint32_t First = 0;
    const std::uint32_t Second = 1;
    const std::uint32_t Third = 2;
    ReportXY(&First, 0xFFFF, 5);
    ReportXY(&Second, 0x8000, 0x7FFF);
    ReportXY(&Third, 1, 1);
    EXPECT_THAT(GetSequenceCalls(),
                ElementsAre("CurrentXYValuePlane1 -1 5", "CurrentXYValuePlane2 -32768 32767"));
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(CMainWndQueryChainTest, ReadingsAreAskedForOnDemand) {
    Open();
    m_pWnd->PleaseQueryXYValuesNOW();
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("xy"));
    m_Module.m_Sent = 0;
    m_pWnd->PleaseQueryXYValuesNOW();
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("QueryUnbalanceXYValues() failed!"));
}

}  // namespace
