// The window's life, its messages and what is on the screen.
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"

#include <gmock/gmock.h>

#include "contract/arrivedreadings.h"
#include "contract/hostmessages.h"
#include "contract/prebalprogress.h"
#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/linediscipline.h"
#include "platform/rvcom/rvcom.h"
#include "platform/rvldb/gettext.h"
#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"
#include "tests/support/textfiles.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr COLORREF PANEL = RGB(0xEC, 0xE9, 0xD8);

/// A window that keeps the buffers of its frames.
class CBufferKeeper : public CWnd {
public:
    std::vector<std::pair<std::uint8_t*, LPARAM>> m_Buffers;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override {
        if (Message == WM_RV_RAWDATA_FIRST) {
            // NOLINTNEXTLINE(performance-no-int-to-ptr): a message's parameters are whole numbers
            m_Buffers.emplace_back(reinterpret_cast<std::uint8_t*>(wParam), lParam);
        }
        return CWnd::WindowProc(Message, wParam, lParam);
    }
};

class CPreBalancingMainWndTest : public CMainWndFixture {
protected:
    /// A frame as the transport hands it over: an unknown handle, one unused byte, the frame.
    LRESULT Deliver(UINT Number, std::vector<std::uint8_t> Frame) {
        Frame.insert(Frame.begin(), {0xFE, 0xFF, 0});
        return m_pWnd->SendMessage(Number, reinterpret_cast<WPARAM>(Frame.data()),
                                   static_cast<LPARAM>(Frame.size()));
    }
};

TEST_F(CPreBalancingMainWndTest, CreationMakesTabsAndBrowser) {
    Create();
    ASSERT_NE(m_pWnd->GetDlgItem(101), nullptr);
    ASSERT_NE(m_pWnd->GetDlgItem(103), nullptr);
    EXPECT_TRUE(m_pWnd->GetDlgItem(101)->IsWindowVisible());
    EXPECT_EQ(m_pWnd->GetModuleAddress(), 0xFFFFFFFFU);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// 601 pixels: half of an odd width is rounded towards zero.
TEST_F(CPreBalancingMainWndTest, TabsAndBrowserShareTheWidth) {
    Create();
    EXPECT_EQ(m_pWnd->GetTabs().GetRect(), CRect(0, 0, 300, 440));
    EXPECT_EQ(m_pWnd->GetBrowser().GetRect(), CRect(300, 0, 600, 440));
    m_pWnd->MoveWindow(CRect(0, 0, 400, 100));
    EXPECT_EQ(m_pWnd->GetTabs().GetRect(), CRect(0, 0, 200, 100));
    EXPECT_EQ(m_pWnd->GetBrowser().GetRect(), CRect(200, 0, 400, 100));
}

TEST_F(CPreBalancingMainWndTest, InitWindowStoresTheAddressAndAsksForTheIdentification) {
    Create();
    EXPECT_EQ(Init(), 1);
    EXPECT_EQ(m_pWnd->GetModuleAddress(), 5U);
    EXPECT_THAT(m_MapperAddresses, ElementsAre(5U));
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("identification"));
    EXPECT_EQ(m_pWnd->GetTabs().GetCurSel(), 0);
    EXPECT_EQ(m_pWnd->GetTabs().GetConfigDlg().GetPlane(), 0);
}

TEST_F(CPreBalancingMainWndTest, InitWindowShowsTheFirstPage) {
    Create();
    auto& rTabs = dynamic_cast<CPreBalConfigTabs&>(*m_pWnd->GetDlgItem(101));
    rTabs.SetCurSel(1);
    rTabs.UpdateTabSelection();
    ASSERT_FALSE(rTabs.GetConfigDlg().IsWindowVisible());
    Init();
    EXPECT_EQ(rTabs.GetCurSel(), 0);
    EXPECT_TRUE(rTabs.GetConfigDlg().IsWindowVisible());
}

TEST_F(CPreBalancingMainWndTest, HardwareTypeFiveIsPlaneTwo) {
    Create();
    Init(KESTREL_PLANE1 | (LPARAM{5} << 24));
    EXPECT_EQ(m_pWnd->GetTabs().GetConfigDlg().GetPlane(), 1);
    Init(KESTREL_PLANE1 | (LPARAM{6} << 24));
    EXPECT_EQ(m_pWnd->GetTabs().GetConfigDlg().GetPlane(), 0);
}

TEST_F(CPreBalancingMainWndTest, AQueryThatCannotBeSentIsAsserted) {
    Create();
    m_Module.m_Sent = 0;
    EXPECT_EQ(Init(), 1);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("QueryModuleIdentification() failed!"));
}

TEST_F(CPreBalancingMainWndTest, AnotherInitWindowBeforeTheIdentificationUsesTheSameMapper) {
    Create();
    Init();
    Init();
    EXPECT_THAT(m_MapperAddresses, ElementsAre(5U));
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("identification", "identification"));
    EXPECT_THAT(m_Log.GetTexts("Information"), Contains("using existing mapper."));
}

TEST_F(CPreBalancingMainWndTest, InitWindowWithAKnownMachineTouchesNothingButTheSpeedSettings) {
    Open();
    WriteTestFile(m_Installation.GetRoot() / "cnf" / "speedctrl.ini",
                  "[Configuration]\nRPM=1000\nINCREMENT=15\nINCREMENT_BELOW=45\n");
    const std::string Key = m_pWnd->GetMachineName();
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_INITWINDOW, 77, LANNER_PLANE2), 1);
    m_Loop.RunPosted();
    EXPECT_EQ(m_pWnd->GetModuleAddress(), 5U);
    EXPECT_EQ(m_pWnd->GetMachineName(), Key);
    EXPECT_EQ(m_pWnd->GetTabs().GetBalancingMode(), PreBalDB::CPreBalDatabase::eModePlane1);
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
    EXPECT_THAT(m_MapperAddresses, ElementsAre(5U));
    EXPECT_EQ(m_pWnd->GetWeightPositionStore().m_IncrementRPM, 1000);
    EXPECT_EQ(m_pWnd->GetWeightPositionStore().m_Increment, 15);
    EXPECT_EQ(m_pWnd->GetWeightPositionStore().m_IncrementBelow, 45);
}

TEST_F(CPreBalancingMainWndTest, AWindowWithoutMapperStartsNoQueriesAndLives) {
    Create();
    m_pWnd->PleaseQueryXYValuesNOW();
    Deliver(WM_RV_RAWDATA_FIRST, {0x1C, 5, 1});
    EXPECT_EQ(Act(102), 1);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
}

// With the real mappers: an identification that nobody knows is tried as a Lanner module, frame by frame.
TEST_F(CPreBalancingMainWndTest, AnUnknownModuleIsTriedAsALannerModule) {
    Create(CMainWndMakers());
    EXPECT_EQ(Init(0), 1);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("Unknown module! Trying to use Lanner mapper..."));
    m_Log.Clear();
    std::vector<std::uint8_t> Identification{0x11, 5, 1, 8, 0, 0, 0, 0, 0, 0x12, 0xAB, 0x0F, 1, 0, 0, 0};
    Identification.resize(49);
    Deliver(WM_RV_RAWDATA_FIRST, Identification);
    EXPECT_EQ(m_pWnd->GetMachineName(), "12AB0F-1");
    EXPECT_THAT(m_Log.GetTexts("Protocol"), Contains("<-- Sending ActiveSet (0x10)"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CPreBalancingMainWndTest, FramesGoToTheMapperWithoutTheirHead) {
    Create();
    Init();
    m_Module.m_Calls.clear();
    for (UINT Number = 1035; Number <= 1040; ++Number) {
        Deliver(Number, {static_cast<std::uint8_t>(Number - 1000), 5, 1});
    }
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("frame 35 5 1", "frame 36 5 1", "frame 37 5 1", "frame 38 5 1",
                                              "frame 39 5 1", "frame 40 5 1"));
    m_Module.m_Calls.clear();
    Deliver(1041, {1, 2, 3});
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
}

TEST_F(CPreBalancingMainWndTest, FramesThatBeginWithFourAreDropped) {
    Create();
    Init();
    m_Module.m_Calls.clear();
    Deliver(1035, {4, 5, 1});
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
}

TEST_F(CPreBalancingMainWndTest, FramesWithoutContentsAreDropped) {
    Create();
    Init();
    m_Module.m_Calls.clear();
    Deliver(1035, {});
    m_pWnd->SendMessage(1035, 0, 20);
    const std::uint8_t Short[2] = {0, 0};
    m_pWnd->SendMessage(1035, reinterpret_cast<WPARAM>(Short), 2);
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
}

// Over the transport: the window is registered for its module's address, and every buffer comes back.
TEST_F(CPreBalancingMainWndTest, FramesOfTheModuleArriveAndTheirBuffersComeBack) {
    CLinkPair Pair = MakeLinkPair();
    rvCOM::SetLink(std::move(Pair.m_pFirst));
    Pair.m_pSecond->Open();
    m_Loop.RunPosted();
    Create();
    Init(KESTREL_TWO_PLANE);
    m_Module.m_Calls.clear();
    for (const std::uint8_t Source : std::initializer_list<std::uint8_t>{5, 6, 7}) {
        Pair.m_pSecond->Write(LineDiscipline::Encode(std::vector<std::uint8_t>{0x1C, Source, 1, 2}));
    }
    m_Loop.RunPosted();
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("frame 28 5 1 2", "frame 28 6 1 2"));
    EXPECT_EQ(rvCOM::GetBuffersOut(), 0U);

    std::vector<std::uint8_t> Sent;
    LineDiscipline::CDecoder Decoder(
        [&](std::span<const std::uint8_t> Frame) { Sent.assign(Frame.begin(), Frame.end()); });
    Pair.m_pSecond->OnBytes = [&](std::span<const std::uint8_t> Bytes) { Decoder.Put(Bytes); };
    const std::uint8_t Frame[] = {9, 1, 5, 8};
    m_pWnd->SendRawData(Frame, sizeof(Frame));
    m_Loop.RunPosted();
    EXPECT_THAT(Sent, ElementsAre(9, 1, 5, 8));

    m_pWnd.reset();
    Pair.m_pSecond->Write(LineDiscipline::Encode(std::vector<std::uint8_t>{0x1C, 5, 1, 2}));
    m_Loop.RunPosted();
    EXPECT_EQ(rvCOM::GetBuffersOut(), 0U);
    rvCOM::SetLink(nullptr);
}

TEST_F(CPreBalancingMainWndTest, NobodyButTheModuleAndAKestrelsSlaveIsListenedTo) {
    constexpr LPARAM SLAVE_SIX = LPARAM{6} << 8;
    for (const LPARAM Flags : {KESTREL_PLANE1, LANNER_PLANE2 | SLAVE_SIX}) {
        CLinkPair Pair = MakeLinkPair();
        rvCOM::SetLink(std::move(Pair.m_pFirst));
        Pair.m_pSecond->Open();
        m_Loop.RunPosted();
        Create();
        Init(Flags);
        m_Module.m_Calls.clear();
        for (const std::uint8_t Source : std::initializer_list<std::uint8_t>{0, 5, 6, 255}) {
            Pair.m_pSecond->Write(LineDiscipline::Encode(std::vector<std::uint8_t>{0x1C, Source, 1, 2}));
        }
        m_Loop.RunPosted();
        EXPECT_THAT(m_Module.m_Calls, ElementsAre("frame 28 5 1 2"));
        m_pWnd.reset();
        rvCOM::SetLink(nullptr);
    }
}

TEST_F(CPreBalancingMainWndTest, BuffersOfFramesThatGoNowhereComeBackToo) {
    CLinkPair Pair = MakeLinkPair();
    rvCOM::SetLink(std::move(Pair.m_pFirst));
    Pair.m_pSecond->Open();
    m_Loop.RunPosted();
    CBufferKeeper Keeper;
    Keeper.CreateMessageOnly();
    rvCOM::Notify(&Keeper, RV_NOTIFY_RAWDATA, 5);
    for (int i = 0; i < 2; ++i) {
        Pair.m_pSecond->Write(LineDiscipline::Encode(std::vector<std::uint8_t>{0x1C, 5, 1, 2}));
    }
    m_Loop.RunPosted();
    ASSERT_EQ(rvCOM::GetBuffersOut(), 2U);
    const auto HandOver = [&](std::size_t i) {
        const auto& [pBytes, nLength] = Keeper.m_Buffers.at(i);
        m_pWnd->SendMessage(WM_RV_RAWDATA_FIRST, reinterpret_cast<WPARAM>(pBytes), nLength);
    };
    Create();
    HandOver(0);
    EXPECT_EQ(rvCOM::GetBuffersOut(), 1U) << "without a mapper";
    Init();
    m_Module.m_Calls.clear();
    Keeper.m_Buffers[1].first[3] = 4;
    HandOver(1);
    EXPECT_EQ(rvCOM::GetBuffersOut(), 0U) << "the reserved command";
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
    rvCOM::SetLink(nullptr);
}

TEST_F(CPreBalancingMainWndTest, HelpFormatKeepsLanguageAndTopicOpen) {
    Create();
    EXPECT_THAT(m_pWnd->GetHelpFormat(), testing::StartsWith("mk:@MSITStore:"));
    EXPECT_THAT(m_pWnd->GetHelpFormat(), testing::EndsWith("\\ctrl\\help\\%s_Falconet.chm::/%s.htm"));
}

TEST_F(CPreBalancingMainWndTest, HelpIsShownAfterAWhileAndOnlyTheLastTopic) {
    Create();
    m_pWnd->SetHelpTopic("_PB001");
    m_Loop.Advance(300);
    m_pWnd->SetHelpTopic("_PB002");
    m_Loop.Advance(349);
    EXPECT_EQ(m_pWnd->GetBrowser().GetLocationURL(), "");
    EXPECT_EQ(m_pWnd->GetHelpTopic(), "_PB002");
    m_Loop.Advance(1);
    EXPECT_THAT(
        m_pWnd->GetBrowser().GetLocationURL(),
        testing::EndsWith("\\ctrl\\help\\" + GetText("ONLINE_HELP_PREFIX") + "_Falconet.chm::/_PB002.htm"));
    // The timer has ended.
    EXPECT_FALSE(m_pWnd->KillTimer(1));
}

TEST_F(CPreBalancingMainWndTest, AProcedureEndsAPendingHelp) {
    Open();
    m_Loop.Advance(350);
    const std::string Shown = m_pWnd->GetBrowser().GetLocationURL();
    m_pWnd->SetHelpTopic("_PB009");
    Act(102);
    m_Loop.Advance(1000);
    EXPECT_EQ(m_pWnd->GetBrowser().GetLocationURL(), Shown);
}

TEST_F(CPreBalancingMainWndTest, PaintFillsThePaneWithThePanelColour) {
    Create();
    m_pWnd->SendMessage(WM_PAINT);
    EXPECT_EQ(m_pWnd->GetSurface().GetPixel(0, 0), PANEL);
    EXPECT_EQ(m_pWnd->GetSurface().GetPixel(600, 439), PANEL);
}

// A repaint of all begins with a clear pane; a part is drawn over what is on the screen.
TEST_F(CPreBalancingMainWndTest, RepaintsOfAPartKeepTheRestOfTheScreen) {
    Open();
    Act(102);
    m_pWnd->RepaintAll();
    EXPECT_EQ(m_pWnd->GetSurface().GetPixel(5, 5), m_Sequence.m_Color);
    EXPECT_EQ(m_pWnd->GetSurface().GetPixel(50, 50), PANEL);
    m_Sequence.m_Calls.clear();
    m_pWnd->RepaintMeasurement();
    EXPECT_THAT(m_Sequence.m_Calls, ElementsAre("Paint 8"));
    EXPECT_EQ(m_pWnd->GetSurface().GetPixel(5, 5), m_Sequence.m_Color);
    m_Sequence.m_Color = RGB(9, 9, 9);
    m_Sequence.m_Calls.clear();
    m_pWnd->SendMessage(WM_PAINT);
    EXPECT_THAT(m_Sequence.m_Calls, ElementsAre("Paint 15"));
    EXPECT_EQ(m_pWnd->GetSurface().GetPixel(5, 5), RGB(9, 9, 9));
}

TEST_F(CPreBalancingMainWndTest, SetMenuRemembersRepaintsAndPosts) {
    Open();
    Act(102);
    Forget();
    m_pWnd->SetMenu(30);
    EXPECT_EQ(m_pWnd->GetMenu(), 30);
    EXPECT_THAT(m_Sequence.m_Calls, ElementsAre("Paint 15"));
    EXPECT_THAT(m_Host.Get(1075), IsEmpty());
    m_Loop.RunPosted();
    EXPECT_THAT(m_Host.Get(1075), ElementsAre(Message{1075, 30, 0}));
}

TEST_F(CPreBalancingMainWndTest, ActivitiesOneAndTwoAreTold) {
    Create();
    Forget();
    m_pWnd->SetBalancingActivity(1);
    m_pWnd->SetBalancingActivity(2);
    m_pWnd->SetBalancingActivity(0);
    m_Loop.RunPosted();
    EXPECT_THAT(m_Host.Get(1124), ElementsAre(Message{1124, 1, 0}, Message{1124, 2, 0}));
}

TEST_F(CPreBalancingMainWndTest, ProgressIsThatOfTheProcedureWithTheMenu) {
    Open();
    CPreBalProgress Progress;
    Progress.m_State = "unchanged";
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_QUERYPROGRESS, 0, reinterpret_cast<LPARAM>(&Progress)), 0);
    EXPECT_EQ(Progress.m_State, "unchanged");
    Act(102);
    m_pWnd->SetMenu(8);
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_QUERYPROGRESS, 0, reinterpret_cast<LPARAM>(&Progress)), 1);
    EXPECT_EQ(Progress.m_State, "eFake");
    EXPECT_EQ(Progress.m_Menu, 8);
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_QUERYPROGRESS, 0, 0), 0);
}

TEST_F(CPreBalancingMainWndTest, ReadingsAreToldOfAProcedureThatRuns) {
    Open();
    CArrivedReadings Readings;
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_QUERYREADINGS, 0, reinterpret_cast<LPARAM>(&Readings)), 0);
    Act(102);
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_QUERYREADINGS, 0, reinterpret_cast<LPARAM>(&Readings)), 1);
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_QUERYREADINGS, 0, 0), 0);
}

TEST_F(CPreBalancingMainWndTest, AnExceptionNeverReachesTheHost) {
    Open();
    Act(102);
    Forget();
    m_Sequence.m_Throw = "no such thing";
    EXPECT_EQ(Act(4500), 0);
    EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre("OnModuleAction failed: no such thing"));
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
    EXPECT_EQ(Act(4501), 1);
    EXPECT_EQ(m_pWnd->GetSequence(), nullptr);
}

// Deleted by the host in the middle of a run, with messages still under way.
TEST_F(CPreBalancingMainWndTest, DestructionEndsARunningProcedure) {
    Open();
    Act(102);
    Forget();
    m_pWnd->PostMessage(WM_RV_MODULEACTION, 4500);
    m_pWnd.reset();
    EXPECT_FALSE(m_Sequence.m_bAlive);
    m_Loop.RunPosted();
    EXPECT_THAT(m_Host.Get(1075), ElementsAre(Message{1075, -1, 0}));
}

TEST_F(CPreBalancingMainWndTest, AWindowWithoutParentWorksAlone) {
    m_pWnd = std::make_unique<CPreBalancingMainWnd>(FakeMakers());
    ASSERT_TRUE(m_pWnd->Create(nullptr, CRect(0, 0, 600, 440), 1));
    Init();
    Identify();
    ReportSet(MakeSet());
    Act(102);
    m_pWnd->SetMenu(4);
    EXPECT_NE(m_pWnd->GetSequence(), nullptr);
    EXPECT_EQ(m_pWnd->SendMessage(WM_RV_DESTROYPENDING), 1);
}

}  // namespace
