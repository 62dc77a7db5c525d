#pragma once
#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "contract/hostmessages.h"
#include "platform/rvcom/rvcom.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/messagebox.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"
#include "tests/rvdlm/m_rtr/rtr_trim/fakemodule.h"
#include "tests/rvdlm/m_rtr/rtr_trim/fakesequence.h"
#include "tests/support/logcapture.h"
#include "tests/support/lookingpeer.h"
#include "tests/support/opcstate.h"
#include "tests/support/recordinghost.h"
#include "tests/support/testinstallation.h"

/// The module's window in a recording host, with an installation of its own, under virtual time, a mapper
/// without module and procedures without steps. OPC items are linked by LinkOpc before Create.
class CMainWndFixture : public testing::Test {
protected:
    static constexpr LPARAM KESTREL_PLANE1 = 0x010000;
    static constexpr LPARAM KESTREL_TWO_PLANE = 0x010602;  ///< slave 6
    static constexpr LPARAM LANNER_PLANE2 = 0x090001;
    static constexpr WPARAM ADDRESS = 5;

    CMainWndFixture() {
        PreBalDB::SetDatabaseConnection("");
        TakeShownMessages();
    }
    ~CMainWndFixture() override {
        m_pWnd.reset();
        PreBalDB::SetDatabaseConnection("");
    }

    static void LinkOpc() {
        for (const char* pKey :
             {"PreBalInterfaceFromNC", "PreBalInterfaceToNC", "PreBalInterfaceToNCWarnings"}) {
            COpcDatabase::GetInstance()->SetOpcLinkItem(pKey, pKey);
        }
    }

    CMainWndMakers FakeMakers() {
        CMainWndMakers Makers;
        Makers.m_Now = [this] {
            return CDisplayRate::CClock::time_point(std::chrono::milliseconds(m_Loop.Now()));
        };
        Makers.m_MakeMapper = [this](IFFromCommunication&, std::uint32_t Address, const CInitFlags&) {
            m_MapperAddresses.push_back(Address);
            return std::make_unique<CFakeModule>(m_Module);
        };
        Makers.m_MakeProcedure = [this](PreBalDB::CPreBalDatabase::BalancingMode Mode,
                                        CPreBalMainWndInterface* pMainWnd,
                                        PreBalDB::CPreBalBaseTableEntry& rEntry,
                                        const std::string& rSetName) -> std::unique_ptr<CPreBalancing> {
            if (m_bNoProcedure) {
                return nullptr;
            }
            m_ProcedureModes.push_back(Mode);
            return std::make_unique<CFakeSequence>(m_Sequence, pMainWnd, rEntry, rSetName);
        };
        return Makers;
    }

    void Create(std::optional<CMainWndMakers> Makers = std::nullopt) {
        m_pWnd = std::make_unique<CPreBalancingMainWnd>(Makers ? *Makers : FakeMakers());
        ASSERT_TRUE(m_pWnd->Create(&m_Host, CRect(0, 0, 601, 440), 1));
        m_Loop.RunPosted();
    }
    LRESULT Init(LPARAM Flags = KESTREL_PLANE1) {
        return m_pWnd->SendMessage(WM_RV_INITWINDOW, ADDRESS, Flags);
    }
    void Identify(Reason Why = Comm::eSuccess, const std::string& rArticle = "123456",
                  std::uint32_t Serial = 4711) {
        m_pWnd->OnQueryModuleIdentification(Why, &rArticle, &Serial);
    }
    void ReportSet(const CSet& rSet, Reason Why = Comm::eIndication) {
        m_pWnd->OnSetRequest(Why, &rSet);
        m_Loop.RunPosted();
    }
    void ReportState(std::uint32_t OutOfLock, std::uint32_t InvalidRPM, std::uint32_t WrongState = 0,
                     Reason Why = Comm::eIndication) {
        const std::uint32_t Unlocked = 0;
        m_pWnd->OnModuleState(Why, &Unlocked, &OutOfLock, &InvalidRPM, &OutOfLock, &InvalidRPM, &WrongState);
    }
    void ReportRPM(std::uint32_t Plane, std::uint32_t RPM, Reason Why = Comm::eIndication) {
        m_pWnd->OnRPMData(Why, &Plane, &RPM);
    }
    /// The way to a configuration: window, identification, set, database.
    void Open(LPARAM Flags = KESTREL_PLANE1) {
        Create();
        Init(Flags);
        Identify();
        ReportSet(MakeSet());
        Forget();
    }
    /// The same, and a calibrated configuration.
    void OpenCalibrated(LPARAM Flags = KESTREL_PLANE1) {
        Open(Flags);
        ChangeOnPage([](PreBalDB::CPreBalBaseTableEntry& rEntry) { rEntry.SetIsCalibrated(1); });
        Forget();
    }
    /// Changes the configuration in memory, and what the page shows of it: nothing is saved by that.
    void ChangeOnPage(const std::function<void(PreBalDB::CPreBalBaseTableEntry&)>& rChange) {
        auto& rTabs = dynamic_cast<CPreBalConfigTabs&>(*m_pWnd->GetDlgItem(101));
        rChange(*rTabs.GetCurrentBaseEntry());
        rTabs.GetConfigDlg().SetConfiguration(*rTabs.GetCurrentBaseEntry(), rTabs.GetBalancingMode(),
                                              {"Default"});
        m_Loop.RunPosted();
    }
    /// Drops what was recorded so far.
    void Forget() {
        m_Loop.RunPosted();
        m_Host.Clear();
        m_Log.Clear();
        m_Module.m_Calls.clear();
        m_Sequence.m_Calls.clear();
    }
    LRESULT Act(int Action, int Flag = 0) {
        const LRESULT Result = m_pWnd->SendMessage(WM_RV_MODULEACTION, static_cast<WPARAM>(Action), Flag);
        m_Loop.RunPosted();
        return Result;
    }
    LRESULT SetState(int State) {
        const LRESULT Result = m_pWnd->SendMessage(WM_RV_PREBALANCINGSTATE, static_cast<WPARAM>(State));
        m_Loop.RunPosted();
        return Result;
    }
    /// What the NC sees.
    COpcValue GetAnswer() const { return m_Opc.GetServer().Read("PreBalInterfaceFromNC").value_or(-999); }
    std::int32_t GetStep() const {
        const auto Value = m_Opc.GetServer().Read("PreBalInterfaceToNC");
        return Value ? std::get<std::vector<std::int32_t>>(*Value).front() : -999;
    }
    void Request(std::int32_t Value) {
        m_Opc.GetServer().Write("PreBalInterfaceFromNC", Value);
        m_Loop.RunPosted();
    }
    /// The calls of the procedure but for its painting.
    std::vector<std::string> GetSequenceCalls() const {
        std::vector<std::string> Calls = m_Sequence.m_Calls;
        std::erase_if(Calls, [](const std::string& rCall) { return rCall.starts_with("Paint"); });
        return Calls;
    }
    /// What the store holds of a configuration now.
    bool IsStoredCalibrated(const std::string& rMachineName, const std::string& rName = "Default") const {
        PreBalDB::CPreBalDatabase Database(rMachineName);
        return Database.ReadConfiguration(rName).IsCalibrated() != 0;
    }

    using Message = CRecordingHost::CMessage;

    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CCleanOpcState m_Opc;
    CLogCapture m_Log{true};
    CRecordingHost m_Host;
    CLookingPeer m_Screen{m_Host};
    CFakeModuleRecord m_Module;
    CFakeSequenceRecord m_Sequence;
    std::vector<std::uint32_t> m_MapperAddresses;
    std::vector<int> m_ProcedureModes;
    bool m_bNoProcedure = false;
    std::unique_ptr<CPreBalancingMainWnd> m_pWnd;
};
