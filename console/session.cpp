#include "console/session.h"

#include <cstdio>
#include <utility>

#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/rvcom.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/eventloop.h"
#include "platform/window/messages.h"
#include "simulator/machineclient.h"
#include "simulator/simulator.h"

namespace {

using PreBalDB::CPreBalDatabase;
using PreBalDB::CTypeBase;

/// Identification and hardware bits of message 1045.
constexpr LPARAM MODE_SHIFT = 0;
constexpr LPARAM SLAVE_SHIFT = 8;
constexpr LPARAM IDENTIFICATION_SHIFT = 16;
constexpr LPARAM IDENTIFICATION_KESTREL = 1;

constexpr std::uint8_t DEFAULT_KESTREL_ADDRESS = 5;
/// Child window id of the module's configuration tabs.
constexpr UINT CONFIG_TABS_ID = 101;
constexpr const char* CONFIGURATION = "Default";

/// What this console can't do yet is refused before anything is opened.
void RefuseWhatIsMissing(const COptions& rOptions, const CRotorFile* pRotor) {
    const bool bKestrel =
        rOptions.m_Modules == "kestrel" ||
        (rOptions.m_Modules.empty() && (pRotor == nullptr || pRotor->m_Modules == CRotorFile::eKestrel));
    if (!bKestrel) {
        throw CSessionError("--modules: this version balances over one kestrel module only");
    }
    if (!rOptions.m_Mode.empty() && rOptions.m_Mode != "plane1") {
        throw CSessionError("--mode " + rOptions.m_Mode + ": one kestrel module serves plane1 only");
    }
    for (const std::string& rMethod : rOptions.m_Methods) {
        if (rMethod != "weights") {
            throw CSessionError("--method " + rMethod + ": this version knows weights only");
        }
    }
    if (rOptions.m_Methods.size() > 1) {
        throw CSessionError("--method: one plane takes one method");
    }
}

CTypeBase::Direction ToDirection(CRotorFile::Sense Value) {
    return Value == CRotorFile::eClockwise ? CTypeBase::eClockwise : CTypeBase::eCounterClockwise;
}

}  // namespace

CConsoleSession::CConsoleSession(const COptions& rOptions, const CRotorFile* pRotor,
                                 const std::string& rDatabaseFile)
    : m_Options(rOptions), m_pRotor(pRotor) {
    RefuseWhatIsMissing(rOptions, pRotor);
    if (m_Options.m_Addresses.empty()) {
        m_Options.m_Addresses = {DEFAULT_KESTREL_ADDRESS};
    }
    PreBalDB::SetDatabaseConnection("sqlite:" + rDatabaseFile);
    const auto Changed = [this] {
        if (OnChanged) {
            OnChanged();
        }
    };
    m_NcPanel.OnChanged = Changed;
    m_Host.OnChanged = Changed;
    OpenLink(pRotor);
    try {
        m_pLibrary = std::make_unique<CModuleLibrary>(
            m_Options.m_ModuleLibrary.empty() ? CModuleLibrary::GetDefaultPath() : m_Options.m_ModuleLibrary);
    } catch (const std::runtime_error& rError) {
        throw CSessionError(rError.what());
    }
    m_Host.Open(m_pLibrary->GetPreferredSize().Size());
    m_Host.ShowWindow(m_Options.m_bShowPage);
    m_pModule = m_pLibrary->GetWindow();
    m_pModule->Create(&m_Host, m_Host.GetClientRect(), 1);
}

CConsoleSession::~CConsoleSession() {
    Close();
    rvCOM::SetLink(nullptr);
}

void CConsoleSession::OpenLink(const CRotorFile* pRotor) {
    std::string Error;
    if (m_Options.IsSimulated()) {
        CLinkPair Pair = MakeLinkPair();
        m_pSimulator = CSimulator::Create(*pRotor, std::move(Pair.m_pSecond), m_Options.m_Addresses, Error);
        if (m_pSimulator == nullptr) {
            throw CSessionError("--rotor: " + Error);
        }
        m_pSimulator->Open();
        m_pMachine = m_pSimulator.get();
        rvCOM::SetLink(std::move(Pair.m_pFirst));
        // Opened through the loop: a question asked before would be lost.
        IFEventLoop::Current().RunUntil([] { return rvCOM::IsLinkOpen(); }, eLinkTimeout);
        return;
    }
    std::unique_ptr<IFByteLink> pLink = MakeByteLink(m_Options.m_Link, Error);
    if (pLink == nullptr) {
        throw CSessionError("--link " + m_Options.m_Link + ": " + Error);
    }
    rvCOM::SetLink(std::move(pLink));
    if (!IFEventLoop::Current().RunUntil([] { return rvCOM::IsLinkOpen(); }, eLinkTimeout)) {
        throw CSessionError("--link " + m_Options.m_Link + " can't be opened: " + rvCOM::GetOutageReason());
    }
    if (!m_Options.m_Machine.empty()) {
        m_pClient = CMachineClient::Create(m_Options.m_Machine, Error);
        if (m_pClient == nullptr) {
            throw CSessionError("--machine " + m_Options.m_Machine + ": " + Error);
        }
        if (!IFEventLoop::Current().RunUntil([this] { return m_pClient->IsConnected(); }, eLinkTimeout)) {
            throw CSessionError("--machine " + m_Options.m_Machine +
                                " can't be reached: start the machine's control link, "
                                "or leave the option out to run the machine by hand");
        }
        m_pMachine = m_pClient.get();
    }
}

void CConsoleSession::SendInit() {
    const LPARAM Slave = m_Options.m_Addresses.size() > 1 ? m_Options.m_Addresses[1] : 0xFF;
    m_pModule->SendMessage(WM_RV_INITWINDOW, m_Options.m_Addresses[0],
                           (LPARAM{CPreBalDatabase::eModePlane1} << MODE_SHIFT) | (Slave << SLAVE_SHIFT) |
                               (IDENTIFICATION_KESTREL << IDENTIFICATION_SHIFT));
}

bool CConsoleSession::Initialise() {
    // A module that is switched on later answers a later question.
    for (std::uint32_t Waited = 0; Waited < eInitTimeout; Waited += eInitRepeat) {
        SendInit();
        if (IFEventLoop::Current().RunUntil([this] { return m_Host.IsConfigured(); }, eInitRepeat)) {
            return true;
        }
    }
    return false;
}

std::string CConsoleSession::GetMachineName() const {
    const std::vector<std::string> Names = CPreBalDatabase::GetOpenMachineNames();
    return Names.empty() ? std::string() : Names.front();
}

void CConsoleSession::Commission() {
    const std::string MachineName = GetMachineName();
    if (m_pRotor == nullptr || MachineName.empty()) {
        return;
    }
    const CTypeBase::Direction Rotation = ToDirection(m_pRotor->m_Rotation);
    const CTypeBase::Direction Scale = ToDirection(m_pRotor->m_Planes.front().m_Scale);
    {
        CPreBalDatabase Database(MachineName);
        PreBalDB::CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration(CONFIGURATION);
        PreBalDB::CSinglePlaneBalancingTableEntry& rPlane = rEntry.CreateSinglePlane();
        PreBalDB::CWeightCompensationTableEntry& rWeights = rPlane.CreateWeightCompensationTableEntry();
        if (rPlane.GetRotationDirection() == Rotation && rWeights.GetScalingDirection() == Scale) {
            return;
        }
        rPlane.SetRotationDirection(Rotation);
        rWeights.SetScalingDirection(Scale);
        rEntry.SetIsCalibrated(0);
        Database.WriteConfiguration();
    }
    if (CWnd* pTabs = m_pModule->GetDlgItem(CONFIG_TABS_ID)) {
        pTabs->SendMessage(WM_RV_UPDATECONFIGURATION);
    }
}

void CConsoleSession::Close() {
    if (m_pModule == nullptr) {
        return;
    }
    m_pModule->SendMessage(WM_RV_DESTROYPENDING);
    m_pModule->DestroyWindow();
    m_pLibrary->DeleteDllWindow(std::exchange(m_pModule, nullptr));
    m_Host.DestroyWindow();
}

CSituation CConsoleSession::Look() {
    CSituation Situation;
    Situation.m_bRunning =
        m_pModule->SendMessage(WM_RV_QUERYPROGRESS, 0, reinterpret_cast<LPARAM>(&Situation.m_Progress)) != 0;
    Situation.m_Menu = m_Host.GetMenu();
    Situation.m_Notification = m_NcPanel.GetNotification();
    Situation.m_Warning = m_NcPanel.GetWarning();
    return Situation;
}

LRESULT CConsoleSession::SendAction(Softkeys::Action Wanted, std::int32_t Flag) {
    return m_pModule->SendMessage(WM_RV_MODULEACTION, static_cast<WPARAM>(Wanted), Flag);
}

void CConsoleSession::PressKey(const Softkeys::CKey& rKey) {
    SendAction(rKey.m_Action, rKey.m_Flag);
    if (rKey.m_bRepeats) {
        SendAction(rKey.m_Action, Softkeys::eFlagNone);
    }
}

void CConsoleSession::Say(const std::string& rText) {
    if (OnSay) {
        OnSay(rText);
    } else {
        std::printf("%s\n", rText.c_str());
        std::fflush(stdout);
    }
}

std::uint32_t CConsoleSession::GetWorkingSpeed() const {
    return static_cast<std::uint32_t>(m_pRotor != nullptr ? m_pRotor->m_SpeedRpm : CRotorFile().m_SpeedRpm);
}
