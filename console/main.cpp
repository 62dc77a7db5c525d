// The machine console: loads the window module and gives it a host, with a screen or without.
#include <QApplication>
#include <QStyleFactory>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>

#include "console/companions.h"
#include "console/headlessrun.h"
#include "console/helpfiles.h"
#include "console/installation.h"
#include "console/mainwindow.h"
#include "console/options.h"
#include "console/session.h"
#include "platform/qt/endsignals.h"
#include "platform/qt/messageboxpresenter.h"
#include "platform/qt/qteventloop.h"
#include "platform/rvlog/logcomponent.h"
#include "platform/system/temporarydirectory.h"
#include "platform/system/virtualeventloop.h"
#include "simulator/rotorfile.h"

namespace {

int Refuse(const std::string& rText) {
    std::fprintf(stderr, "%s\n", rText.c_str());
    return eExitBadArguments;
}

bool HasDisplay() {
    return qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

/// The toolkit complains about a session without a runtime directory. Sockets go there, so that it is this
/// user's alone; null if there is one.
std::unique_ptr<CTemporaryDirectory> ProvideRuntimeDirectory() {
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        CTemporaryDirectory::RemoveLeftovers(qEnvironmentVariable("XDG_RUNTIME_DIR").toStdString());
        return nullptr;
    }
    auto pDirectory = std::make_unique<CTemporaryDirectory>();
    qputenv("XDG_RUNTIME_DIR", pDirectory->GetPath().c_str());
    return pDirectory;
}

/// The rotor to simulate, or that the external machine is said to carry; nothing if it isn't known. Throws
/// CSessionError.
std::optional<CRotorFile> ReadRotor(const COptions& rOptions) {
    const auto Family = CRotorFile::ModulesFromString(rOptions.m_Modules);
    if (rOptions.m_RotorFile.empty()) {
        return rOptions.IsSimulated()
                   ? std::optional(CRotorFile::GetBuiltIn(Family.value_or(CRotorFile::eKestrel)))
                   : std::nullopt;
    }
    std::string Error;
    std::optional<CRotorFile> Rotor = CRotorFile::Read(rOptions.m_RotorFile, Error, Family);
    if (!Rotor) {
        throw CSessionError("--rotor: " + Error);
    }
    return Rotor;
}

/// Output that can't be written is to be known before a run of minutes, not after it.
void CheckOutputs(const COptions& rOptions) {
    if (!rOptions.m_ScreenshotDirectory.empty()) {
        std::error_code Error;
        std::filesystem::create_directories(rOptions.m_ScreenshotDirectory, Error);
        if (Error) {
            throw CSessionError("--screenshots " + rOptions.m_ScreenshotDirectory +
                                ": the directory can't be made (" + Error.message() + ")");
        }
    }
    if (!rOptions.m_ReportFile.empty()) {
        CRunReport NotRunYet;
        NotRunYet.SetProcedure(ToString(rOptions.m_Procedure));
        if (!NotRunYet.Write(rOptions.m_ReportFile)) {
            throw CSessionError("--report " + rOptions.m_ReportFile +
                                ": the file can't be written; name a file in a directory that exists");
        }
    }
}

int RunHeadless(const COptions& rOptions, CConsoleSession& rSession, CCompanions* pCompanions) {
    CHeadlessRun Run(rSession, rOptions);
    if (pCompanions != nullptr) {
        pCompanions->OnSay = [&rSession](const std::string& rText) { rSession.Say(rText); };
        Run.GetNcLoss = [pCompanions] { return pCompanions->GetNcLoss(); };
    }
    ExitCode Result = eExitFailed;
    if (rSession.Initialise()) {
        try {
            rSession.Commission();
            Result = Run.Run();
        } catch (const CSessionError& rError) {
            Result = eExitBadArguments;
            std::fprintf(stderr, "%s\n", rError.what());
        } catch (const std::runtime_error& rError) {
            // The report is written all the same.
            std::fprintf(stderr, "%s\n", rError.what());
        }
    } else {
        std::fprintf(stderr, "The machine can't be found on %s: %s.\n", rOptions.m_Link.c_str(),
                     rSession.DescribeAnswers().c_str());
    }
    rSession.Close();
    if (!rOptions.m_ReportFile.empty() && !Run.GetReport().Write(rOptions.m_ReportFile)) {
        std::fprintf(stderr, "The report %s can't be written.\n", rOptions.m_ReportFile.c_str());
    }
    return Result;
}

int RunOnScreen(const COptions& rOptions, CConsoleSession& rSession, CCompanions* pCompanions) {
    CMainWindow Window(rSession);
    const CMessageBoxPresenter Presenter(&Window);
    if (pCompanions != nullptr) {
        pCompanions->OnSay = [&rSession](const std::string& rText) { rSession.Say(rText); };
    }
    Window.show();
    // A request from before couldn't end a loop that wasn't running yet.
    const int Result = rOptions.GetEndRequest().empty() ? QApplication::exec() : 0;
    if (!Window.GetRefusal().empty()) {
        return Refuse(Window.GetRefusal());
    }
    if (rOptions.GetEndRequest().empty()) {
        return Result;
    }
    Window.BreakOff();
    return eExitFailed;
}

/// The NC that the installation is configured for. Throws CSessionError.
std::optional<COpcSetup> ReadOpcSetup(const CConsoleInstallation& rInstallation) {
    std::string Error;
    auto Configuration = COpcSetup::Read((rInstallation.GetConfigDirectory() / "opc.json").string(), Error);
    if (!Error.empty()) {
        throw CSessionError(Error);
    }
    if (!Configuration) {
        return std::nullopt;
    }
    return COpcSetup{*Configuration, (rInstallation.GetConfigDirectory() / "opcua").string(),
                     COpcSetup::GetDefaultGateway()};
}

/// A session from the loop on. Throws CSessionError.
int RunSession(COptions Options, const CConsoleInstallation& rInstallation) {
    std::unique_ptr<IFEventLoop> pLoop;
    if (Options.IsVirtualTime()) {
        pLoop = std::make_unique<CVirtualEventLoop>();
    } else {
        pLoop = std::make_unique<CQtEventLoop>();
    }
    const std::optional<CRotorFile> Rotor = ReadRotor(Options);
    CheckOutputs(Options);
    const CRotorFile* const pRotor = Rotor ? &*Rotor : nullptr;
    std::unique_ptr<CCompanions> pCompanions;
    if (Options.IsDrivenByNc() && !Options.m_Opc) {
        pCompanions = std::make_unique<CCompanions>(Options, pRotor);
        Options = pCompanions->Complete(Options);
    }
    CConsoleSession Session(Options, pRotor, rInstallation.GetDatabaseFile().string());
    return Options.m_bHeadless ? RunHeadless(Options, Session, pCompanions.get())
                               : RunOnScreen(Options, Session, pCompanions.get());
}

}  // namespace

int main(int argc, char** argv) {
    CCommandLineEnd End;
    std::optional<COptions> Options = ParseCommandLine(argc, argv, End);
    if (!Options) {
        std::fprintf(End.m_ExitCode == 0 ? stdout : stderr, "%s\n", End.m_Text.c_str());
        return End.m_ExitCode;
    }
    if (Options->m_bHeadless) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    } else if (!HasDisplay()) {
        return Refuse(
            "There is no display: set DISPLAY, or run the procedure automatically with --headless.");
    }
    try {
        CEndSignals Signals;
        Options->m_GetEndRequest = CEndSignals::GetName;
        CTemporaryDirectory::RemoveLeftovers();
        const auto pRuntimeDirectory = ProvideRuntimeDirectory();
        QApplication App(argc, argv);
        QApplication::setStyle(QStyleFactory::create("fusion"));
        Signals.Watch([bWindow = !Options->m_bHeadless] {
            if (bWindow) {
                QApplication::quit();
            }
        });
        const CConsoleInstallation Installation(Options->m_ConfigDirectory, Options->m_bHeadless);
        const CInstallationLock Lock(Installation);
        ProvideHelp(Installation, GetHelpOfProgram());
        if (!CLogComponent::OpenFile(Installation.GetLogDirectory().string())) {
            return Refuse("The log can't be written in " + Installation.GetLogDirectory().string() + ".");
        }
        Options->m_Opc = ReadOpcSetup(Installation);
        return RunSession(*Options, Installation);
    } catch (const CBrokenOff& rError) {
        std::fprintf(stderr, "%s\n", rError.what());
        return eExitFailed;
    } catch (const std::exception& rError) {
        return Refuse(rError.what());
    }
}
