#include "console/companions.h"

#include <sys/prctl.h>

#include <QProcess>
#include <QRandomGenerator>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <span>
#include <utility>

#include "console/processwork.h"
#include "console/session.h"
#include "contract/ncitems.h"
#include "platform/system/eventloop.h"
#include "platform/system/files.h"
#include "platform/system/linesplitter.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

/// Between two looks whether a program that starts, or ends, still works for it, ms.
constexpr std::uint32_t START_LOOK = 30000;
constexpr int END_LOOK = 2000;
/// A start takes about 3 s of processor time; a program that has used so much, in ms, never will be ready.
constexpr std::uint64_t MOST_WORK = 120000;
constexpr const char* ANY_PORT = "tcp:127.0.0.1:0";
constexpr const char* USER = "balancing";

/// Link items by the NC simulator's names for them.
struct CLinkItem {
    const char* m_pKey;
    const char* m_pItem;
};
constexpr CLinkItem LINK_ITEMS[] = {
    {NcItems::REQUEST, "Request"},
    {NcItems::NOTIFICATION, "Notification"},
    {NcItems::WARNING, "Warning"},
    {NcItems::TEST_WEIGHT, "TestWeight"},
    {NcItems::TARGET_UNBALANCE, "TargetUnbalance"},
    {NcItems::ROTATION_DIRECTION, "RotationDirection"},
    {NcItems::ROTOR_NAME, "RotorName"},
};

std::string MakePassword() {
    std::string Password;
    for (int i = 0; i < 4; ++i) {
        Password += QString::number(QRandomGenerator::system()->generate64(), 36).toStdString();
    }
    return Password;
}

void WritePrivateFile(const fs::path& rFile, const std::string& rText) {
    std::ofstream(rFile).close();
    fs::permissions(rFile, fs::perms::owner_read | fs::perms::owner_write);
    std::ofstream(rFile) << rText;
}

}  // namespace

/// A child process whose lines are taken from its standard output. Its complaints are kept.
class CCompanions::CProcess {
public:
    CProcess(const char* pName, const QStringList& rArguments, std::function<void(const std::string&)> OnLine)
        : m_Name(pName), m_Lines(std::move(OnLine), [] {}) {
        // Nothing of ours is to be left running, however this process ends.
        m_Process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
        QObject::connect(&m_Process, &QProcess::readyReadStandardOutput, &m_Process, [this] { Take(); });
        m_Process.start(QString::fromStdString(Files::GetBesideProgram(pName)), rArguments);
    }
    ~CProcess() {
        m_Process.disconnect();
        m_Process.closeWriteChannel();
        m_Process.terminate();
        while (IsRunning() && !m_Process.waitForFinished(END_LOOK)) {
            if (!m_Work.HasWorked(m_Process.processId())) {
                m_Process.kill();
                m_Process.waitForFinished(END_LOOK);
                break;
            }
        }
    }
    CProcess(const CProcess&) = delete;
    CProcess& operator=(const CProcess&) = delete;

    bool IsRunning() const { return m_Process.state() != QProcess::NotRunning; }
    int GetExitCode() const { return m_Process.exitCode(); }
    /// Runs the loop until then. Throws CSessionError if the process ends before, or hangs, and CBrokenOff.
    void WaitUntil(const COptions& rOptions, const std::function<bool()>& rReady) {
        std::string Request;
        const auto Done = [&] {
            Request = rOptions.GetEndRequest();
            return !Request.empty() || rReady() || !IsRunning();
        };
        while (!IFEventLoop::Current().RunUntil(Done, START_LOOK) &&
               m_Work.HasWorked(m_Process.processId()) && m_Work.GetTotal() < MOST_WORK) {
        }
        if (!Request.empty()) {
            throw CBrokenOff(Request);
        }
        if (!rReady()) {
            const std::string Complaint = m_Process.readAllStandardError().trimmed().toStdString();
            throw CSessionError("--nc opcua: " + m_Name + " did not start: " +
                                (Complaint.empty() && IsRunning() ? "it hangs" : Complaint));
        }
    }

private:
    void Take() {
        const QByteArray Bytes = m_Process.readAllStandardOutput();
        m_Lines.Put(std::span(reinterpret_cast<const std::uint8_t*>(Bytes.constData()),
                              static_cast<std::size_t>(Bytes.size())));
    }

    std::string m_Name;
    QProcess m_Process;
    CLineSplitter m_Lines;
    CProcessWork m_Work;
};

CCompanions::CCompanions(const COptions& rOptions, const CRotorFile* pRotor) {
    if (pRotor == nullptr) {
        throw CSessionError(
            "--nc opcua: --rotor must say what the machine carries, or the NC doesn't know it");
    }
    m_RotorFile = WriteRotorFile(rOptions);
    if (rOptions.IsSimulated()) {
        StartMachine(rOptions);
    }
    StartNc(rOptions);
}

CCompanions::~CCompanions() = default;

std::string CCompanions::WriteRotorFile(const COptions& rOptions) const {
    if (!rOptions.m_RotorFile.empty()) {
        return rOptions.m_RotorFile;
    }
    // The built-in rotor is what a file without any field means.
    const fs::path File = m_Directory.GetPath() / "rotor.json";
    std::ofstream(File) << json{{"modules", rOptions.m_Modules.empty() ? "kestrel" : rOptions.m_Modules}};
    return File.string();
}

void CCompanions::StartMachine(const COptions& rOptions) {
    QStringList Arguments{"--frames", ANY_PORT,  "--machine",
                          ANY_PORT,   "--rotor", QString::fromStdString(m_RotorFile)};
    if (!rOptions.m_Modules.empty()) {
        Arguments << "--modules" << QString::fromStdString(rOptions.m_Modules);
    }
    if (!rOptions.m_Addresses.empty()) {
        QStringList Addresses;
        for (const std::uint8_t Address : rOptions.m_Addresses) {
            Addresses << QString::number(Address);
        }
        Arguments << "--addresses" << Addresses.join(',');
    }
    m_pMachine = std::make_unique<CProcess>("simulator", Arguments, [this](const std::string& rLine) {
        constexpr std::string_view FRAMES = "frames on ";
        constexpr std::string_view MACHINE = "machine on ";
        if (rLine.starts_with(FRAMES)) {
            m_Frames = rLine.substr(FRAMES.size());
        } else if (rLine.starts_with(MACHINE)) {
            m_Machine = rLine.substr(MACHINE.size());
        }
    });
    m_pMachine->WaitUntil(rOptions, [this] { return !m_Machine.empty(); });
}

void CCompanions::StartNc(const COptions& rOptions) {
    const fs::path& Directory = m_Directory.GetPath();
    m_Password = MakePassword();
    WritePrivateFile(Directory / "password", m_Password);
    const std::string Machine = m_Machine.empty() ? rOptions.m_Machine : m_Machine;
    if (Machine.empty()) {
        throw CSessionError("--nc opcua with --link: --machine must name the machine's control link");
    }
    QStringList Arguments{"--json",
                          "--port",
                          "0",
                          "--pki",
                          QString::fromStdString((Directory / "nc").string()),
                          "--user",
                          USER,
                          "--password-file",
                          QString::fromStdString((Directory / "password").string()),
                          "--machine",
                          QString::fromStdString(Machine),
                          "--rotor",
                          QString::fromStdString(m_RotorFile),
                          "--procedure",
                          ToString(rOptions.m_Procedure)};
    if (rOptions.m_TestWeight != 0.0) {
        Arguments << "--test-weight" << QString::number(rOptions.m_TestWeight);
    }
    if (rOptions.m_Mode == "plane2") {
        Arguments << "--plane"
                  << "2";
    }
    m_pNc = std::make_unique<CProcess>("nc-simulator", Arguments,
                                       [this](const std::string& rLine) { TakeNcLine(rLine); });
    m_pNc->WaitUntil(rOptions, [this] { return m_Opc.has_value(); });
    fs::remove(Directory / "password");  // it has been read; should we be killed, it is not left behind
}

void CCompanions::TakeNcLine(const std::string& rLine) {
    const json Line = json::parse(rLine, nullptr, false);
    if (!Line.is_object()) {
        return;
    }
    if (const auto pListening = Line.find("listening"); pListening != Line.end()) {
        COpcSetup Setup;
        COpcConfiguration& rConfiguration = Setup.m_Configuration;
        rConfiguration.m_Server = pListening->value("url", "");
        rConfiguration.m_Fingerprint = pListening->value("fingerprint", "");
        rConfiguration.m_User = USER;
        rConfiguration.m_Password = m_Password;
        for (const CLinkItem& rItem : LINK_ITEMS) {
            rConfiguration.m_LinkItems[rItem.m_pKey] =
                pListening->value("items", json::object()).value(rItem.m_pItem, "");
        }
        Setup.m_PkiDirectory = (m_Directory.GetPath() / "opcua").string();
        Setup.m_GatewayProgram = COpcSetup::GetDefaultGateway();
        m_Opc = std::move(Setup);
    } else if (const auto pSaid = Line.find("said"); pSaid != Line.end() && pSaid->is_string() && OnSay) {
        OnSay("NC: " + pSaid->get<std::string>());
    }
}

COptions CCompanions::Complete(COptions Options) const {
    if (m_pMachine != nullptr) {
        Options.m_Link = m_Frames;
        Options.m_Machine = m_Machine;
    }
    Options.m_Opc = m_Opc;
    return Options;
}

std::string CCompanions::GetNcLoss() const {
    if (m_pMachine != nullptr && !m_pMachine->IsRunning()) {
        return "the rotor simulator has ended";
    }
    if (!m_pNc->IsRunning()) {
        return "the NC simulator has ended with status " + std::to_string(m_pNc->GetExitCode());
    }
    return {};
}
