#include "console/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>

#include "platform/rvcom/endpoint.h"
#include "platform/system/version.h"

namespace {

constexpr std::array PROCEDURES = {"prebalance", "rebalance", "prebalance+rebalance"};  // as Procedure
constexpr std::array NCS = {"panel", "opcua"};                                          // as Nc

/// An option that takes one of the names of an enumeration, and nothing else.
template <typename Enum, std::size_t N>
CLI::Option* AddChoice(CLI::App& rApp, const char* pName, Enum& rValue,
                       const std::array<const char*, N>& rNames, const char* pHelp) {
    const auto Take = [&rValue, rNames](const std::string& rName) {
        rValue = static_cast<Enum>(std::find(rNames.begin(), rNames.end(), rName) - rNames.begin());
    };
    return rApp.add_option_function<std::string>(pName, Take, pHelp)
        ->check(CLI::IsMember(std::vector<std::string>(rNames.begin(), rNames.end())));
}

/// For what names a file or a directory: an empty text comes from a script whose variable isn't set.
std::string RefuseEmpty(const std::string& rText) {
    return rText.empty() ? "must not be empty; leave the option out for the default" : "";
}

std::string CheckAddress(const std::string& rText) {
    constexpr std::uint32_t eHighest = 254;
    const std::optional<std::uint32_t> Address = ToNumber(rText);
    return Address && *Address >= 1 && *Address <= eHighest
               ? ""
               : "\"" + rText + "\" is no module address; give 1 to 254";
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
    const bool bLink = rOptions.IsSimulated() || rOptions.m_Link.starts_with("serial:") ||
                       rOptions.m_Link.starts_with("tcp:");
    if (!bLink) {
        return "--link " + rOptions.m_Link + ": must be sim, serial:PATH[:BAUD] or tcp:HOST:PORT";
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
    if (rOptions.m_TestWeight != 0.0 && !rOptions.IsDrivenByNc()) {
        return "--test-weight goes with --nc opcua: at the panel the operator chooses the test screw";
    }
    // Modules that only the rotor file tells are known when it is read.
    const bool bPair =
        rOptions.m_Modules == "kestrel-pair" || (rOptions.m_Modules.empty() && !rOptions.m_RotorFile.empty());
    if (rOptions.m_Addresses.size() > 2 || (rOptions.m_Addresses.size() == 2 && !bPair)) {
        return "--addresses: one address, or two with --modules kestrel-pair";
    }
    if (rOptions.m_Addresses.size() == 2 && rOptions.m_Addresses[0] == rOptions.m_Addresses[1]) {
        return "--addresses: master and slave must differ";
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
    App.name("run");
    App.footer(
        "Exit status: 0 within the target, 1 over it, 2 failed or broken off (also by SIGINT, SIGTERM, "
        "SIGHUP), "
        "3 bad arguments,\na link that can't be opened, or an installation that another console works in. "
        "The "
        "window opens without its link and\nkeeps trying; it ends with 0, or with 2 when a signal ends it.");
    App.add_flag("--headless", Options.m_bHeadless, "No display: the procedure is operated automatically");
    App.add_option("--rotor", Options.m_RotorFile, "The rotor to simulate (JSON); without it a built-in one")
        ->check(RefuseEmpty);
    App.add_option("--link", Options.m_Link, "sim | serial:PATH[:BAUD] | tcp:HOST:PORT")
        ->capture_default_str();
    App.add_option("--machine", Options.m_Machine, "Control link of an external machine: tcp:HOST:PORT");
    App.add_option("--modules", Options.m_Modules, "kestrel | kestrel-pair | lanner")
        ->check(CLI::IsMember({"kestrel", "kestrel-pair", "lanner"}));
    App.add_option("--addresses", Options.m_Addresses, "Module addresses A[,B]")
        ->delimiter(',')
        ->check(CheckAddress);
    App.add_option("--mode", Options.m_Mode, "plane1 | plane2 | two-plane")
        ->check(CLI::IsMember({"plane1", "plane2", "two-plane"}));
    App.add_option("--method", Options.m_Methods, "weights | screws, per plane; default as configured")
        ->delimiter(',')
        ->check(CLI::IsMember({"weights", "screws"}));
    App.add_option("--screws", Options.m_nScrews, "2 | 3 screws for a correction; default as configured")
        ->check(CLI::IsMember({2, 3}));
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
        ->check(RefuseEmpty);
    App.add_option("--report", Options.m_ReportFile,
                   "Write the report (JSON); in the window that of the run that ended last")
        ->check(RefuseEmpty);
    App.add_option("--screenshots", Options.m_ScreenshotDirectory, "PNG of the page at every step")
        ->check(RefuseEmpty);
    App.add_flag("--real-time", Options.m_bRealTime,
                 "Real clock; --headless on the simulator runs in virtual time");
    AddChoice(App, "--nc", Options.m_Nc, NCS,
              "Who drives: panel (default) | opcua, the NC that cnf/opc.json names, or one that is "
              "simulated along with the machine");
    App.add_option("--test-weight", Options.m_TestWeight,
                   "Grams of the test screw that the simulated NC asks for; with --nc opcua")
        ->check(CheckGrams);
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
    Options.m_bProcedureGiven = pProcedure->count() > 0;
    if (const std::string Contradiction = FindContradiction(Options); !Contradiction.empty()) {
        rEnd = {3, Contradiction};
        return std::nullopt;
    }
    return Options;
}
