#include "console/session.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include "archive/machinekey.h"
#include "console/commission.h"
#include "console/installation.h"
#include "console/log.h"
#include "console/offlinenotes.h"
#include "console/rotorname.h"
#include "contract/actions.h"
#include "contract/hostmessages.h"
#include "contract/initflags.h"
#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/rvcom.h"
#include "platform/rvmdb/offline.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/eventloop.h"
#include "platform/window/messages.h"
#include "simulator/machineclient.h"
#include "simulator/simulator.h"

namespace {

using PreBalDB::CPreBalDatabase;
using PreBalDB::CTypeBase;

/// A family as the console knows it.
struct CFamily {
    const char* m_pName;
    std::uint8_t m_Identification;
    std::vector<std::uint8_t> m_Addresses;
    /// What the family can balance; the first is what it does unless told otherwise.
    std::vector<CPreBalDatabase::BalancingMode> m_Modes;
};

const CFamily& GetFamily(CRotorFile::Modules Modules) {
    static const std::array FAMILIES = {
        // as CRotorFile::Modules
        CFamily{"kestrel", CInitFlags::KESTREL, {5}, {CPreBalDatabase::eModePlane1}},
        CFamily{"kestrel-pair", CInitFlags::KESTREL, {5, 6}, {CPreBalDatabase::eModeTwoPlane}},
        CFamily{"lanner",
                CInitFlags::LANNER,
                {9},
                {CPreBalDatabase::eModePlane1, CPreBalDatabase::eModePlane2, CPreBalDatabase::eModeTwoPlane}},
    };
    return FAMILIES.at(Modules);
}

CRotorFile::Modules ChooseModules(const COptions& rOptions, const CRotorFile* pRotor) {
    return CRotorFile::ModulesFromString(rOptions.m_Modules)
        .value_or(pRotor != nullptr ? pRotor->m_Modules : CRotorFile::eKestrel);
}

/// Refuses what the modules can't do.
CPreBalDatabase::BalancingMode ChooseMode(const COptions& rOptions, CRotorFile::Modules Modules) {
    const CFamily& rFamily = GetFamily(Modules);
    if (rOptions.m_Mode.empty()) {
        return rFamily.m_Modes.front();
    }
    std::string Names;
    for (const CPreBalDatabase::BalancingMode Mode : rFamily.m_Modes) {
        if (rOptions.m_Mode == BALANCING_MODE_NAMES.at(Mode)) {
            return Mode;
        }
        Names += (Names.empty() ? "" : ", ") + std::string(BALANCING_MODE_NAMES.at(Mode));
    }
    throw CSessionError("--mode " + rOptions.m_Mode + ": modules " + rFamily.m_pName + " balance " + Names);
}

/// What doesn't fit together, or this console can't do yet, is refused before anything is opened.
void RefuseWhatIsMissing(const COptions& rOptions, const CRotorFile* pRotor,
                         CPreBalDatabase::BalancingMode Mode) {
    const std::size_t nPlanesNeeded = Mode == CPreBalDatabase::eModePlane1 ? 1 : 2;
    if (pRotor != nullptr && pRotor->m_Planes.size() < nPlanesNeeded) {
        throw CSessionError(std::string("--mode ") + BALANCING_MODE_NAMES.at(Mode) +
                            ": the rotor has one plane; give a rotor file with two");
    }
    const std::size_t nPlanesBalanced = Mode == CPreBalDatabase::eModeTwoPlane ? 2 : 1;
    if (rOptions.m_Methods.size() > nPlanesBalanced) {
        throw CSessionError("--method: one plane takes one method");
    }
}

CHoleRing MakeHoleRing(const PreBalDB::CScrewCompensationTableEntry* pScrews) {
    return pScrews == nullptr ? CHoleRing()
                              : CHoleRing{pScrews->GetNumberOfHoles(),
                                          pScrews->GetScalingDirection() == CTypeBase::eCounterClockwise};
}

}  // namespace

CConsoleSession::CConsoleSession(const COptions& rOptions, const CRotorFile* pRotor,
                                 const std::string& rDatabaseFile)
    : m_Options(rOptions),
      m_Modules(ChooseModules(rOptions, pRotor)),
      m_Mode(ChooseMode(rOptions, m_Modules)),
      m_pRotor(pRotor),
      m_NcPanel(rOptions.m_Opc) {
    RefuseWhatIsMissing(rOptions, pRotor, m_Mode);
    const std::vector<std::uint8_t>& rDefaults = GetFamily(m_Modules).m_Addresses;
    if (m_Options.m_Addresses.empty()) {
        m_Options.m_Addresses = rDefaults;
    }
    if (m_Options.m_Addresses.size() != rDefaults.size()) {
        throw CSessionError("--addresses: modules " + std::string(GetFamily(m_Modules).m_pName) + " take " +
                            (rDefaults.size() == 1 ? "one address" : "two addresses, master and slave"));
    }
    PreBalDB::SetDatabaseConnection(ChooseDatabaseConnection(rDatabaseFile));
    OfflineNotes::Prepare(rOptions, std::filesystem::path(rDatabaseFile).parent_path().string());
    const auto Changed = [this] {
        if (OnChanged) {
            OnChanged();
        }
    };
    m_NcPanel.OnChanged = Changed;
    m_NcPanel.OnRotorName = [this](const std::string& rName) { SetRotorName(rName); };
    m_Host.OnChanged = [this, Changed] {
        if (m_Host.IsConfigured() && !std::exchange(m_bFound, true)) {
            LogMachine();
        }
        Changed();
    };
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

const char* CConsoleSession::GetModeName() const {
    return BALANCING_MODE_NAMES.at(m_Mode);
}

const char* CConsoleSession::GetFamilyName() const {
    return GetFamily(m_Modules).m_pName;
}

CConsoleSession::~CConsoleSession() {
    Close();
    rvCOM::SetLink(nullptr);
    PreBalDB::Offline::SetFile("");
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
        rvCOM::SetLink(m_Options.m_WrapLink ? m_Options.m_WrapLink(std::move(Pair.m_pFirst))
                                            : std::move(Pair.m_pFirst));
        // Opened through the loop: a question asked before would be lost.
        IFEventLoop::Current().RunUntil([] { return rvCOM::IsLinkOpen(); }, LINK_TIMEOUT);
        return;
    }
    std::unique_ptr<IFByteLink> pLink = MakeByteLink(m_Options.m_Link, Error);
    if (pLink == nullptr) {
        throw CSessionError("--link " + m_Options.m_Link + ": " + Error);
    }
    rvCOM::SetLink(std::move(pLink));
    if (m_Options.m_bHeadless && !RunUntil([] { return rvCOM::IsLinkOpen(); }, LINK_TIMEOUT)) {
        const std::string Reason = rvCOM::GetOutageReason();
        throw CSessionError("--link " + m_Options.m_Link + " can't be opened: " +
                            (Reason.empty() ? "nothing answers there; is the device on?" : Reason));
    }
    if (!m_Options.m_Machine.empty()) {
        ConnectMachine();
    }
}

void CConsoleSession::ConnectMachine() {
    std::string Error;
    m_pClient = CMachineClient::Create(m_Options.m_Machine, Error);
    if (m_pClient == nullptr) {
        throw CSessionError("--machine " + m_Options.m_Machine + ": " + Error);
    }
    if (m_Options.m_bHeadless && !RunUntil([this] { return m_pClient->IsConnected(); }, LINK_TIMEOUT)) {
        throw CSessionError("--machine " + m_Options.m_Machine +
                            " can't be reached: start the machine's control link, "
                            "or leave the option out to run the machine by hand");
    }
    m_pMachine = m_pClient.get();
}

bool CConsoleSession::RunUntil(const std::function<bool()>& rDone, std::uint32_t Timeout) const {
    std::string Request;
    const bool bDone = IFEventLoop::Current().RunUntil(
        [&] {
            Request = m_Options.GetEndRequest();
            return !Request.empty() || rDone();
        },
        Timeout);
    if (!Request.empty()) {
        throw CBrokenOff(Request);
    }
    return bDone;
}

void CConsoleSession::SendInit() {
    if (std::exchange(m_bInitSent, true)) {
        m_pModule->SendMessage(WM_RV_DESTROYPENDING);
    }
    const std::uint8_t Slave =
        m_Options.m_Addresses.size() > 1 ? m_Options.m_Addresses[1] : CInitFlags::NO_SLAVE;
    const CInitFlags Flags(m_Mode, Slave, GetFamily(m_Modules).m_Identification);
    m_pModule->SendMessage(WM_RV_INITWINDOW, m_Options.m_Addresses[0], Flags.GetValue());
}

bool CConsoleSession::Initialise() {
    m_Answers.emplace(m_Options.m_Addresses);
    m_Host.OnFrame = [this](std::span<const std::uint8_t> Frame) { m_Answers->OnFrame(Frame); };
    for (const std::uint8_t Address : m_Options.m_Addresses) {
        rvCOM::Notify(&m_Host, RV_NOTIFY_RAWDATA, Address);
    }
    // A module that is switched on later, or whose answer got lost or damaged, answers a later question.
    bool bFound = false;
    for (std::uint32_t Waited = 0; Waited < INIT_TIMEOUT && !bFound; Waited += INIT_REPEAT) {
        SendInit();
        bFound = RunUntil([this] { return m_Host.IsConfigured(); }, INIT_REPEAT);
    }
    rvCOM::Forget(&m_Host);
    m_Host.OnFrame = nullptr;
    return bFound;
}

std::string CConsoleSession::DescribeAnswers() const {
    const rvCOM::CStatistics Line = rvCOM::GetStatistics();
    return m_Answers
               ? m_Answers->Describe(Line.m_BadCrc + Line.m_TooShort + Line.m_TooLong, Line.m_NotAddressed)
               : std::string();
}

std::optional<CShownConfiguration> CConsoleSession::GetShownConfiguration() const {
    CShownConfiguration Shown;
    const bool bShown = m_pModule != nullptr && m_pModule->SendMessage(WM_RV_QUERYCONFIGURATION, 0,
                                                                       reinterpret_cast<LPARAM>(&Shown)) != 0;
    return bShown ? std::optional(Shown) : std::nullopt;
}

bool CConsoleSession::GetReadings(CArrivedReadings& rReadings) const {
    return m_pModule->SendMessage(WM_RV_QUERYREADINGS, 0, reinterpret_cast<LPARAM>(&rReadings)) != 0;
}

void CConsoleSession::LogMachine() const {
    const CShownConfiguration Shown = GetShownConfiguration().value_or(CShownConfiguration());
    std::string Addresses;
    for (const std::uint8_t Address : m_Options.m_Addresses) {
        Addresses += (Addresses.empty() ? "" : ", ") + std::to_string(Address);
    }
    RV_INFORMATION(Console::g_pLog, "found %s, address %s: machine %s, configuration %s, %s",
                   GetFamily(m_Modules).m_pName, Addresses.c_str(), Shown.m_Machine.c_str(),
                   Shown.m_Name.c_str(), Shown.m_bCalibrated ? "calibrated" : "not calibrated");
}

void CConsoleSession::SetRotorName(const std::string& rName) {
    m_Options.m_RotorName = CleanName(rName);
}

void CConsoleSession::Commission() {
    const std::optional<CShownConfiguration> Shown = GetShownConfiguration();
    if (m_pRotor == nullptr || !Shown) {
        return;
    }
    const CRotorFile& rRotor = m_Options.m_pCommissionAs ? *m_Options.m_pCommissionAs : *m_pRotor;
    const CCommission Commission(m_Options, rRotor, m_Mode);
    const CCommission::COutcome Outcome = Commission.SetUp(Shown->m_Machine, Shown->m_Name);
    if (!Outcome.m_Disagreement.empty()) {
        Say(Outcome.m_Disagreement);
    }
    if (Outcome.m_bWritten) {
        m_pModule->SendMessage(WM_RV_STORECHANGED);
    }
}

void CConsoleSession::VisitPlanes(
    const std::function<void(std::size_t Plane, const PreBalDB::CScrewCompensationTableEntry* pScrews)>&
        rVisit) const {
    const std::optional<CShownConfiguration> Shown = GetShownConfiguration();
    if (!Shown) {
        return;
    }
    // Kept open: with each change of the panel the planes are looked at again.
    if (m_pPlanes == nullptr || m_pPlanes->GetMachineName() != Shown->m_Machine) {
        m_pPlanes.reset();
        try {
            m_pPlanes = std::make_unique<CPreBalDatabase>(Shown->m_Machine);
        } catch (const PreBalDB::CDatabaseError&) {
            return;  // the module tells what becomes of its result
        }
    }
    const PreBalDB::CPreBalBaseTableEntry& rEntry = m_pPlanes->ReadConfiguration(Shown->m_Name);
    if (const auto* pPlanes = rEntry.GetTwoPlane();
        m_Mode == CPreBalDatabase::eModeTwoPlane && pPlanes != nullptr) {
        rVisit(0, pPlanes->GetPlane1ScrewCompensationTableEntry());
        rVisit(1, pPlanes->GetPlane2ScrewCompensationTableEntry());
    } else if (const auto* pPlane = rEntry.GetSinglePlane(); pPlane != nullptr) {
        rVisit(m_Mode == CPreBalDatabase::eModePlane2 ? 1 : 0, pPlane->GetScrewCompensationTableEntry());
    }
}

std::array<CHoleRing, 2> CConsoleSession::GetHoleRings() const {
    std::array<CHoleRing, 2> Rings;
    VisitPlanes([&Rings](std::size_t Plane, const PreBalDB::CScrewCompensationTableEntry* pScrews) {
        Rings.at(Plane) = MakeHoleRing(pScrews);
    });
    return Rings;
}

CMachineMeans CConsoleSession::GetMachineMeans() const {
    CMachineMeans Means;
    VisitPlanes([&Means](std::size_t Plane, const PreBalDB::CScrewCompensationTableEntry* pScrews) {
        CPlaneMeans& rMeans = Means.at(Plane);
        rMeans.m_bUsed = true;
        if (pScrews == nullptr) {
            return;
        }
        rMeans.m_bScrews = true;
        for (const PreBalDB::CScrew& rScrew : pScrews->GetScrewTable()) {
            rMeans.m_Choices.push_back({rScrew.GetScrewName(), rScrew.GetWeight()});
        }
    });
    return Means;
}

bool CConsoleSession::StartProcedure(Actions::Action Start) {
    SendAction(Start, Actions::eNone);
    return Look().m_bRunning;
}

void CConsoleSession::Close() {
    if (m_pModule == nullptr) {
        return;
    }
    m_pPlanes.reset();
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

LRESULT CConsoleSession::SendAction(Actions::Action Wanted, std::int32_t Flag) {
    return m_pModule->SendMessage(WM_RV_MODULEACTION, static_cast<WPARAM>(Wanted), Flag);
}

void CConsoleSession::PressKey(const MenuKeys::CKey& rKey) {
    SendAction(rKey.m_Action, rKey.m_Flag);
    if (rKey.m_bRepeats) {
        SendAction(rKey.m_Action, Actions::eNone);
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
