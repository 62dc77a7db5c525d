#include "console/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>

namespace {

const std::map<std::string, COptions::Procedure> PROCEDURES = {
    {"prebalance", COptions::Procedure::ePrebalance},
    {"rebalance", COptions::Procedure::eRebalance},
    {"prebalance+rebalance", COptions::Procedure::ePrebalanceAndRebalance},
};

const std::map<std::string, COptions::Nc> NCS = {
    {"panel", COptions::Nc::ePanel},
    {"opcua", COptions::Nc::eOpcUa},
};

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
    if (rOptions.m_TestWeight != 0.0 && !rOptions.IsDrivenByNc()) {
        return "--test-weight goes with --nc opcua: at the panel the operator chooses the test screw";
    }
    const bool bPair = rOptions.m_Modules == "kestrel-pair";
    if (rOptions.m_Addresses.size() > 2 || (rOptions.m_Addresses.size() == 2 && !bPair)) {
        return "--addresses: one address, or two with --modules kestrel-pair";
    }
    for (const std::uint8_t Address : rOptions.m_Addresses) {
        if (Address == 0 || Address == 255) {
            return "--addresses " + std::to_string(Address) + ": a module address is 1 to 254";
        }
    }
    if (rOptions.m_Addresses.size() == 2 && rOptions.m_Addresses[0] == rOptions.m_Addresses[1]) {
        return "--addresses: master and slave must differ";
    }
    return {};
}

}  // namespace

std::optional<COptions> ParseCommandLine(int argc, const char* const* argv, CCommandLineEnd& rEnd) {
    COptions Options;
    CLI::App App{"Machine console of the rotor pre-balancing module"};
    App.name("run");
    App.add_flag("--headless", Options.m_bHeadless, "No display: the procedure is operated automatically");
    App.add_option("--rotor", Options.m_RotorFile, "The rotor to simulate (JSON); without it a built-in one");
    App.add_option("--link", Options.m_Link, "sim | serial:PATH[:BAUD] | tcp:HOST:PORT")
        ->capture_default_str();
    App.add_option("--machine", Options.m_Machine, "Control link of an external machine: tcp:HOST:PORT");
    App.add_option("--modules", Options.m_Modules, "kestrel | kestrel-pair | lanner")
        ->check(CLI::IsMember({"kestrel", "kestrel-pair", "lanner"}));
    App.add_option("--addresses", Options.m_Addresses, "Module addresses A[,B]")->delimiter(',');
    App.add_option("--mode", Options.m_Mode, "plane1 | plane2 | two-plane")
        ->check(CLI::IsMember({"plane1", "plane2", "two-plane"}));
    App.add_option("--method", Options.m_Methods, "weights | screws, per plane")
        ->delimiter(',')
        ->check(CLI::IsMember({"weights", "screws"}));
    App.add_option("--screws", Options.m_nScrews, "2 | 3 screws for a correction; default as configured")
        ->check(CLI::IsMember({2, 3}));
    App.add_option("--procedure", Options.m_Procedure,
                   "prebalance (default) | rebalance | prebalance+rebalance")
        ->transform(CLI::CheckedTransformer(PROCEDURES));
    App.add_option("--config-dir", Options.m_ConfigDirectory,
                   "Installation root to use (database, settings, weight positions)");
    App.add_option("--report", Options.m_ReportFile, "Write the report (JSON)");
    App.add_option("--screenshots", Options.m_ScreenshotDirectory, "PNG of the page at every step");
    App.add_flag("--real-time", Options.m_bRealTime,
                 "Real clock; --headless on the simulator runs in virtual time");
    App.add_option("--nc", Options.m_Nc,
                   "Who drives: panel (default) | opcua, the NC that cnf/opc.json names, or one that is "
                   "simulated along with the machine")
        ->transform(CLI::CheckedTransformer(NCS));
    App.add_option("--test-weight", Options.m_TestWeight,
                   "Grams of the test screw that the simulated NC asks for; with --nc opcua")
        ->check(CLI::PositiveNumber);

    try {
        App.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        rEnd = {0, App.help()};
        return std::nullopt;
    } catch (const CLI::ParseError& rError) {
        std::string Text = rError.what();
        std::replace(Text.begin(), Text.end(), '\n', ' ');
        rEnd = {3, Text + " (--help lists the options)"};
        return std::nullopt;
    }
    if (const std::string Contradiction = FindContradiction(Options); !Contradiction.empty()) {
        rEnd = {3, Contradiction};
        return std::nullopt;
    }
    return Options;
}
