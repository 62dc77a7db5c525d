// The machine console: loads the window module and gives it a host, with a screen or without.
#include <sys/stat.h>

#include <QApplication>
#include <QIcon>
#include <QScreen>
#include <QStyleFactory>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "console/command.h"
#include "console/companions.h"
#include "console/headlessrun.h"
#include "console/helpfiles.h"
#include "console/installation.h"
#include "console/language.h"
#include "console/log.h"
#include "console/logsettings.h"
#include "console/mainwindow.h"
#include "console/options.h"
#include "console/reportfile.h"
#include "console/runtimedirectory.h"
#include "console/session.h"
#include "console/touch.h"
#include "console/trainingsetup.h"
#include "console/trainingsituations.h"
#include "console/trainingticks.h"
#include "console/trainingview.h"
#include "platform/qt/endsignals.h"
#include "platform/qt/messageboxpresenter.h"
#include "platform/qt/qteventloop.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvlog/logcomponent.h"
#include "platform/system/temporarydirectory.h"
#include "platform/system/version.h"
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
        CReportInput NothingYet;
        NothingYet.m_bFixedDate = rOptions.IsVirtualTime();
        if (!ReportFile::Write(rOptions.m_ReportFile, NotRunYet, NothingYet)) {
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
    if (!rOptions.m_ReportFile.empty() && !Run.GetRecorder().WriteReport(rOptions.m_ReportFile)) {
        std::fprintf(stderr, "The report %s can't be written.\n", rOptions.m_ReportFile.c_str());
    }
    return Result;
}

void Show(CMainWindow& rWindow, const COptions& rOptions) {
    if (rOptions.m_bFullScreen) {
        rWindow.setGeometry(rWindow.screen()->geometry());  // a kiosk has nobody else who would
        rWindow.showFullScreen();
    } else {
        rWindow.show();
    }
}

int RunOnScreen(const COptions& rOptions, CConsoleSession& rSession, CCompanions* pCompanions,
                CLogSettings& rLog) {
    CMainWindow Window(rSession);
    Window.OfferTraces(rLog);
    const CMessageBoxPresenter Presenter(&Window);
    if (pCompanions != nullptr) {
        pCompanions->OnSay = [&rSession](const std::string& rText) { rSession.Say(rText); };
    }
    Show(Window, rOptions);
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

/// One situation after the other, each with a machine, a configuration and a window of its own, until the
/// window is closed.
int RunTraining(const COptions& rOptions, const CConsoleInstallation& rInstallation) {
    CTrainingTicks Ticks(rInstallation.GetConfigDirectory() / "training.json");
    QByteArray Place;
    std::optional<std::size_t> Next = Ticks.FindFirstOpen();
    while (Next && rOptions.GetEndRequest().empty()) {
        const std::size_t Current = *std::exchange(Next, std::nullopt);
        const CTrainingSituation& rSituation = GetTrainingSituations()[Current];
        const CTrainingSetup Setup(rSituation, rOptions);
        const CQtEventLoop Loop;
        CConsoleSession Session(Setup.GetOptions(), &Setup.GetRotor(), Setup.GetDatabaseFile());
        Setup.Begin(Session);
        CTrainingLesson Lesson(rSituation, Session);
        CMainWindow Window(Session);
        const CMessageBoxPresenter Presenter(&Window);
        auto* const pView = new CTrainingView(Lesson, Ticks, Current, &Window);
        pView->OnChosen = [&Next](std::size_t Chosen) {
            Next = Chosen;
            QApplication::quit();
        };
        Window.Train(*pView);
        Window.restoreGeometry(Place);
        Show(Window, rOptions);
        QApplication::exec();
        Place = Window.saveGeometry();
        Window.BreakOff();
    }
    return rOptions.GetEndRequest().empty() ? 0 : eExitFailed;
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
    CLogSettings Log(Options.m_LogLevel, Options.m_LogTopics);
    Log.Read();
    if (!Options.IsVirtualTime()) {
        Log.Watch();
    }
    const std::optional<CRotorFile> Rotor = ReadRotor(Options);
    CheckOutputs(Options);
    const CRotorFile* const pRotor = Rotor ? &*Rotor : nullptr;
    std::unique_ptr<CCompanions> pCompanions;
    if (Options.IsDrivenByNc() && !Options.m_Opc) {
        pCompanions = std::make_unique<CCompanions>(Options, pRotor);
        Options = pCompanions->Complete(Options);
    }
    RV_INFORMATION(Console::g_pLog, "console %s, %s: installation %s, link %s, %s, language %s",
                   GetProjectVersion(), Options.m_bHeadless ? "headless" : "with a window",
                   rInstallation.GetRoot().c_str(), Options.m_Link.c_str(),
                   Options.IsVirtualTime() ? "virtual time" : "real time", GetLanguage().c_str());
    CConsoleSession Session(Options, pRotor, rInstallation.GetDatabaseFile().string());
    const int Status = Options.m_bHeadless ? RunHeadless(Options, Session, pCompanions.get())
                                           : RunOnScreen(Options, Session, pCompanions.get(), Log);
    const std::string EndRequest = Options.GetEndRequest();
    RV_INFORMATION(Console::g_pLog, "ends with status %d%s%s", Status, EndRequest.empty() ? "" : " on ",
                   EndRequest.c_str());
    return Status;
}

}  // namespace

int main(int argc, char** argv) {
    // What this program makes is for its owner and group, whatever the session's own rule is: 0770 and 0660.
    constexpr mode_t OTHERS = 0007;
    ::umask(OTHERS);
    if (const std::optional<int> Status = RunCommand(argc, argv)) {
        return *Status;
    }
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
        const CConsoleInstallation Installation(Options->m_ConfigDirectory,
                                                Options->m_bHeadless || Options->m_bDemo);
        if (Options->m_Language.empty() && !Options->m_bHeadless) {
            Options->m_Language = ReadChosenLanguage(Installation.GetConfigDirectory());
        }
        // Before there is an application for the keyboard on the screen, which asks once, and behind it for
        // the toolkit's own texts.
        UseLanguage(Options->m_Language);
        if (Options->m_bTouch) {
            if (const std::string Reason = PrepareTouchKeyboard(); !Reason.empty()) {
                return Refuse(Reason);
            }
        }
        QApplication App(argc, argv);
        // By these a desktop knows whose window it is, once the program is installed.
        QGuiApplication::setDesktopFileName("rotor-trim");
        QApplication::setWindowIcon(QIcon::fromTheme("rotor-trim"));
        UseLanguage(GetLanguage());
        if (Options->m_bTouch) {
            FollowFocusWithKeyboard();
        }
        QApplication::setStyle(QStyleFactory::create("fusion"));
        Signals.Watch([bWindow = !Options->m_bHeadless] {
            if (bWindow) {
                QApplication::quit();
            }
        });
        const CInstallationLock Lock(Installation);
        ProvideHelp(Installation, GetHelpOfProgram());
        if (!CLogComponent::OpenFile(Installation.GetLogDirectory().string())) {
            return Refuse("The log can't be written in " + Installation.GetLogDirectory().string() + ".");
        }
        Options->m_Opc = ReadOpcSetup(Installation);
        return Options->m_bTraining ? RunTraining(*Options, Installation)
                                    : RunSession(*Options, Installation);
    } catch (const CBrokenOff& rError) {
        std::fprintf(stderr, "%s\n", rError.what());
        return eExitFailed;
    } catch (const std::exception& rError) {
        return Refuse(rError.what());
    }
}
