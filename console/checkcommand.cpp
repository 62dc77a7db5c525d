#include "console/checkcommand.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "console/checklink.h"
#include "console/checkreport.h"
#include "console/command.h"
#include "console/databasecheck.h"
#include "console/linkcheck.h"
#include "console/nccheck.h"
#include "console/optionchecks.h"
#include "platform/rvldb/gettext.h"

namespace {

constexpr int READY = 0;
constexpr int NOT_READY = 1;

void PrintLine(const std::string& rText) {
    std::printf("%s\n", rText.c_str());
}

void PrintLines(const std::vector<CCheckReport>& rReports, bool bReady) {
    for (const CCheckReport& rReport : rReports) {
        for (const std::string& rLine : rReport.ToLines()) {
            PrintLine(rLine);
        }
    }
    PrintLine(GetText(bReady ? "CHECK_READY" : "CHECK_NOT_READY"));
}

void PrintJson(const std::vector<CCheckReport>& rReports, bool bReady) {
    nlohmann::ordered_json Checks = nlohmann::ordered_json::array();
    for (const CCheckReport& rReport : rReports) {
        Checks.push_back(rReport.ToJson());
    }
    const nlohmann::ordered_json All = {{"ready", bReady}, {"checks", std::move(Checks)}};
    // What came over a line may be no text.
    PrintLine(All.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

}  // namespace

int RunCheckCommand(int argc, const char* const* argv) {
    CCommandFrame Frame("check");
    Frame.OfferJson();
    CLinkRequest Link;
    CLI::App& rApp = Frame.GetApp();
    auto* const pLink =
        rApp.add_option("--link", Link.m_Link,
                        "Look at a line with modules: serial:PATH[:BAUD] | tcp:HOST:PORT | sim")
            ->check(RefuseEmpty)
            ->type_name("LINK");
    rApp.add_option("--addresses", Link.m_Addresses,
                    "A[,B], addresses at which modules should answer; without it the usual ones")
        ->delimiter(',')
        ->check(CLI::Range(1, 254))
        ->expected(1, 2)
        ->type_name("A[,B]")
        ->needs(pLink);
    rApp.add_option("--seconds", Link.m_Seconds,
                    "To look at a line, 10 unless told otherwise; where nothing is understood the search for "
                    "the cause takes up to " +
                        std::to_string(CLinkCheck::LONGEST_SEARCH / 1000) + " more")
        ->check(CLI::Range(4, 600))
        ->type_name("N")
        ->needs(pLink);
    bool bNc = false;
    rApp.add_flag("--nc", bNc, "Look at the NC that cnf/opc.json names; writes into no node");
    bool bDatabase = false;
    rApp.add_flag("--database", bDatabase, "Look at the store of configurations; changes nothing");
    return Frame.Run(argc, argv, [&](const CConsoleInstallation& rInstallation) {
        std::vector<CCheckReport> Reports;
        if (!Link.m_Link.empty()) {
            Reports.push_back(CheckLink(Link));
        }
        if (bNc) {
            Reports.push_back(CheckNc(rInstallation.GetConfigDirectory()));
        }
        if (bDatabase) {
            Reports.push_back(CheckDatabase(rInstallation.GetDatabaseConnection()));
        }
        if (Reports.empty()) {
            throw CCommandError(GetText("CHECK_WHAT"));
        }
        const bool bReady =
            std::ranges::all_of(Reports, [](const CCheckReport& rReport) { return rReport.IsReady(); });
        (Frame.IsJson() ? PrintJson : PrintLines)(Reports, bReady);
        return bReady ? READY : NOT_READY;
    });
}
