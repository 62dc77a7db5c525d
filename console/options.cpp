#include "console/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>

#include "console/command.h"
#include "console/linkoptions.h"
#include "console/logsettings.h"
#include "console/optionchecks.h"
#include "console/rotorname.h"
#include "platform/rvcom/endpoint.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/version.h"

namespace {

constexpr std::array PROCEDURES = {"prebalance", "rebalance", "prebalance+rebalance"};  // as Procedure
constexpr std::array NCS = {"panel", "opcua"};                                          // as Nc

constexpr const char* FOOTER =
    "Exit status: 0 within the target and saved (or the window was closed), 1 over the target, 2 failed, "
    "broken off (also by\n"
    "SIGINT, SIGTERM, SIGHUP) or not saved, 3 bad arguments, a link that can't be opened, or an installation "
    "that another\n"
    "console works in. The window opens without its link and keeps trying.\n"
    "\n"
    "Environment: DISPLAY or WAYLAND_DISPLAY, where the window opens; LANG, LC_ALL, the language unless "
    "--language or the\n"
    "window's own choice says otherwise; XDG_DATA_HOME, HOME, where the installation lies without "
    "--config-dir; TMPDIR,\n"
    "for what goes with the program.";

std::string MakeFooter() {
    constexpr std::size_t COLUMN = 18;
    std::string Footer = "Further commands, each with a --help of its own:\n";
    for (const CCommand& rCommand : GetCommands()) {
        std::string Name = rCommand.m_pName;
        Name.resize(std::max(COLUMN, Name.size() + 1), ' ');
        Footer += "  " + GetCommandName() + " " + Name + rCommand.m_pHelp + "\n";
    }
    return Footer + "\n" + FOOTER;
}

/// An option that takes one of the names of an enumeration, and nothing else.
template <typename Enum, std::size_t N>
CLI::Option* AddChoice(CLI::App& rApp, const char* pName, Enum& rValue,
                       const std::array<const char*, N>& rNames, const char* pHelp) {
    const auto Take = [&rValue, rNames](const std::string& rName) {
        rValue = static_cast<Enum>(std::find(rNames.begin(), rNames.end(), rName) - rNames.begin());
    };
    return rApp.add_option_function<std::string>(pName, Take, pHelp)
        ->check(OneOf(std::vector<std::string>(rNames.begin(), rNames.end())))
        ->type_name("NAME");
}

std::string CheckGrams(const std::string& rText) {
    double Grams = 0.0;
    const bool bNumber = CLI::detail::lexical_cast(rText, Grams);
    return bNumber && std::isfinite(Grams) && Grams > 0.0
               ? ""
               : "\"" + rText + "\" is no weight; give grams, more than 0, for example 2.5";
}

/// What fits together can only be said when all options are known. Empty if all is well.
std::string FindContradiction(const COptions& rOptions) {
    if (std::string Contradiction = FindLinkContradiction(rOptions); !Contradiction.empty()) {
        return Contradiction;
    }
    if (!rOptions.m_Machine.empty() && !rOptions.m_Machine.starts_with("tcp:")) {
        return "--machine " + rOptions.m_Machine + ": must be tcp:HOST:PORT";
    }
    if (!rOptions.m_Machine.empty() && rOptions.IsSimulated()) {
        return "--machine goes with an external link: with --link sim the machine is simulated in this "
               "process";
    }
    if (rOptions.m_bCommission && rOptions.m_RotorFile.empty() && !rOptions.IsSimulated()) {
        return "--commission goes with --rotor FILE: the configuration is set up from the rotor file";
    }
    if (rOptions.m_bDemo && rOptions.m_bTraining) {
        return "--demo and --training: choose one of them";
    }
    if (rOptions.IsLesson() && (rOptions.m_bHeadless || !rOptions.IsSimulated() || rOptions.IsDrivenByNc())) {
        return std::string(rOptions.m_bDemo ? "--demo" : "--training") +
               " goes with the window and a simulated machine: leave out --headless, --link and --nc";
    }
    if (rOptions.m_bHeadless && (rOptions.m_bFullScreen || rOptions.m_bTouch)) {
        return "--full-screen and --touch belong to the window, which --headless doesn't open";
    }
    if (rOptions.m_TestWeight != 0.0 && !rOptions.IsDrivenByNc()) {
        return "--test-weight goes with --nc opcua: at the panel the operator chooses the test screw";
    }
    return {};
}

}  // namespace

const char* ToString(COptions::Procedure Procedure) {
    return PROCEDURES.at(static_cast<std::size_t>(Procedure));
}

std::optional<COptions> ParseCommandLine(int argc, const char* const* argv, CCommandLineEnd& rEnd) {
    COptions Options;
    CLI::App App{"Machine console of the rotor pre-balancing module"};
    App.name(GetCommandName());
    App.footer(MakeFooter());
    App.add_flag("--headless", Options.m_bHeadless, "No display: the procedure is operated automatically");
    App.add_option("--rotor", Options.m_RotorFile, "The rotor to simulate (JSON); without it a built-in one")
        ->check(RefuseEmpty)
        ->type_name("FILE");
    AddLinkOptions(App, Options);
    App.add_option("--machine", Options.m_Machine, "Control link of an external machine: tcp:HOST:PORT")
        ->type_name("LINK");
    App.add_option("--method", Options.m_Methods, "weights | screws, per plane; default as configured")
        ->delimiter(',')
        ->check(OneOf({"weights", "screws"}))
        ->type_name("M[,M]");
    App.add_option("--screws", Options.m_nScrews, "2 | 3 screws for a correction; default as configured")
        ->check(OneOf(std::vector<int>{2, 3}))
        ->type_name("2|3");
    App.add_flag(
        "--commission", Options.m_bCommission,
        "Set the configuration up from the rotor file, also one that somebody has set; its calibration "
        "is cleared");
    const CLI::Option* const pProcedure =
        AddChoice(App, "--procedure", Options.m_Procedure, PROCEDURES,
                  "prebalance (default with --headless) | rebalance | prebalance+rebalance; the window "
                  "begins with it, or without it in the configuration");
    App.add_option("--config-dir", Options.m_ConfigDirectory,
                   "Installation root to use (database, settings, weight positions); one console at a time")
        ->check(RefuseEmpty)
        ->type_name("DIR");
    App.add_option("--report", Options.m_ReportFile,
                   "Write the report, by its ending .json, .html or .pdf; in the window one for each run, "
                   "the later ones numbered")
        ->check(CheckReportName)
        ->type_name("FILE");
    App.add_option("--screenshots", Options.m_ScreenshotDirectory, "PNG of the page at every step")
        ->check(RefuseEmpty)
        ->type_name("DIR");
    App.add_option_function<std::string>(
           "--rotor-name", [&Options](const std::string& rName) { Options.m_RotorName = CleanName(rName); },
           "Whose runs these are, for archive and report")
        ->type_name("TEXT");
    App.add_flag("--real-time", Options.m_bRealTime,
                 "Real clock; --headless on the simulator runs in virtual time");
    AddChoice(App, "--nc", Options.m_Nc, NCS,
              "Who drives: panel (default) | opcua, the NC that cnf/opc.json names, or one that is "
              "simulated along with the machine");
    App.add_option("--test-weight", Options.m_TestWeight,
                   "Grams of the test screw that the simulated NC asks for; with --nc opcua")
        ->check(CheckGrams)
        ->type_name("GRAMS");
    App.add_flag("--demo", Options.m_bDemo,
                 "A whole run plays by itself in the window and is explained step by step, in a directory of "
                 "its own");
    App.add_flag("--training", Options.m_bTraining,
                 "Twelve situations to master in the window, each in a directory of its own");
    App.add_option("--language", Options.m_Language,
                   "Of all output and the window: " + CLI::detail::join(GetLanguages(), " | ") +
                       "; default the one chosen last in the window, else the environment's")
        ->check(CheckLanguage)
        ->type_name("CODE");
    App.add_flag("--full-screen", Options.m_bFullScreen, "The window fills the screen, without a frame");
    App.add_flag("--touch", Options.m_bTouch,
                 "A keyboard on the screen for whatever can be typed, for panels without keys");
    App.add_option("--log-level", Options.m_LogLevel,
                   CLI::detail::join(LogNames::GetLevels(), " | ") +
                       ": what the log holds, with all before it; default as LogLevel in mcon.xdb says, else "
                       "information")
        ->check(OneOf(LogNames::GetLevels()))
        ->type_name("LEVEL");
    App.add_option("--log-topics", Options.m_LogTopics,
                   "Traces besides: " + CLI::detail::join(LogNames::GetTopics(), ", ") +
                       "; default as LogTopics in mcon.xdb says, else none")
        ->delimiter(',')
        ->check(OneOf(LogNames::GetTopics()))
        ->type_name("T[,T]");
    App.set_version_flag("--version", std::string("console ") + GetProjectVersion(), "The version");

    try {
        App.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        rEnd = {0, App.help()};
        return std::nullopt;
    } catch (const CLI::CallForVersion&) {
        rEnd = {0, App.version()};
        return std::nullopt;
    } catch (const CLI::ParseError& rError) {
        std::string Text = rError.what();
        std::replace(Text.begin(), Text.end(), '\n', ' ');
        rEnd = {3, Text + " (--help lists the options)"};
        return std::nullopt;
    }
    Options.m_bProcedureGiven = pProcedure->count() > 0 || Options.m_bDemo;
    if (const std::string Contradiction = FindContradiction(Options); !Contradiction.empty()) {
        rEnd = {3, Contradiction};
        return std::nullopt;
    }
    return Options;
}
