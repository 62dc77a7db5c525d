// What a power failure, a full or broken disk, or a kill leaves of a run: the real console is run in an
// installation with a calibration and a run, and disturbed at each call in turn that changes something on the
// disk, or killed at moments by chance. After each the store is read: it must be old or new. Prints what was
// found.
//
//     kills --kind kill|torn|enospc|eio|short [--faults N] [--every N] [--from N] [--again N] [--new]
//     kills --clock 0,7200,-18000 [--real-time]
//     tools/with_postgresql.sh bash -c 'build/release/bench/kills --database "$ROTOR_TRIM_TEST_POSTGRESQL"
//     --kind server' kills --times 10000 [--seed N] [--new]
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <random>
#include <string>

#include "tests/faults/diskplan.h"
#include "tests/faults/faultseries.h"
#include "tests/faults/postgresseries.h"

namespace {

/// What was found, in numbers.
class CTally {
public:
    void Add(const CFaultSeries::COutcome& rOutcome, const std::string& rWhere) {
        ++m_nRuns;
        ++m_Left[rOutcome.m_Left];
        ++m_Ends[rOutcome.m_Program.m_Signal != 0 ? "killed"
                                                  : "status " + std::to_string(rOutcome.m_Program.m_Status)];
        if (!rOutcome.m_Call.empty()) {
            ++m_Calls[rOutcome.m_Call];
        }
        for (const std::string& rFault : rOutcome.m_Faults) {
            ++m_nFaults;
            std::printf("%s: %s (%s)\n", rWhere.c_str(), rFault.c_str(), rOutcome.m_Left.c_str());
            if (m_bVerbose) {
                std::printf("%s\n", rOutcome.m_Program.m_Output.c_str());
            }
        }
        std::fflush(stdout);
    }
    void Print() const {
        std::printf("\n%zu runs, %zu faults\n", m_nRuns, m_nFaults);
        Print("left", m_Left);
        Print("ended", m_Ends);
        Print("disturbed at", m_Calls);
    }
    bool HasFaults() const { return m_nFaults != 0; }
    bool m_bVerbose = false;

private:
    static void Print(const char* pTitle, const std::map<std::string, std::size_t>& rCounts) {
        std::printf("\n%s\n", pTitle);
        for (const auto& [rName, rCount] : rCounts) {
            std::printf("  %6zu  %s\n", rCount, rName.c_str());
        }
    }

    std::size_t m_nRuns = 0;
    std::size_t m_nFaults = 0;
    std::map<std::string, std::size_t> m_Left;
    std::map<std::string, std::size_t> m_Ends;
    std::map<std::string, std::size_t> m_Calls;
};

}  // namespace

int main(int argc, char** argv) {
    CLI::App App("What kills and failing disks leave of a run");
    std::string Kind = DiskPlan::KILL;
    unsigned long nFaults = 0;
    unsigned long nTimes = 0;
    unsigned long Every = 1;
    unsigned long From = 1;
    unsigned long Again = 10;
    unsigned long Seed = 1;
    bool bVerbose = false;
    bool bNew = false;
    bool bRealTime = false;
    std::string Clock;
    std::string Database;
    std::string ServerDirectory;
    if (const char* const pDirectory = std::getenv("ROTOR_TRIM_TEST_POSTGRESQL_DIR")) {
        ServerDirectory = pDirectory;
    }
    App.add_option("--kind", Kind, "kill | torn | enospc | eio | short | server");
    App.add_option("--faults", nFaults, "So many calls fail; all from the first one on, if not given");
    App.add_option("--times", nTimes, "So many runs are killed, at moments by chance");
    App.add_option("--every", Every, "Only each so many calls");
    App.add_option("--from", From, "The first call");
    App.add_option("--again", Again, "Each so many are followed by a run that has to succeed; 0: none");
    App.add_option("--seed", Seed, "Of the moments");
    App.add_option("--database", Database,
                   "postgresql://...: the store is a database of its own on that server");
    App.add_option("--server-directory", ServerDirectory, "Of its cluster, for the kind server");
    App.add_option("--clock", Clock, "By how many seconds the clock is wrong, in turns: 0,7200,-18000");
    App.add_flag("--real-time", bRealTime, "A run takes half a minute");
    App.add_flag("--new", bNew, "The runs begin without an installation");
    App.add_flag("--verbose", bVerbose, "What the program said, for each fault");
    CLI11_PARSE(App, argc, argv);

    std::optional<CFaultSeries> Made;
    if (Database.empty()) {
        Made.emplace(bNew);
    } else {
        Made.emplace(MakePostgresServer(Database, ServerDirectory), bNew);
    }
    CFaultSeries& Series = *Made;
    CTally Tally;
    Tally.m_bVerbose = bVerbose;
    std::printf("a run makes %zu calls that change something, in %.0f ms\n", Series.GetCalls().size(),
                static_cast<double>(Series.GetDuration().count()) / 1000.0);
    if (!Clock.empty()) {
        CFaultSeries::CFault Fault{DiskPlan::COUNT};
        Fault.m_ClockShifts = Clock;
        Fault.m_bRealTime = bRealTime;
        Tally.Add(Series.Run(Fault, false), "clock");
        Tally.Print();
        return Tally.HasFaults() ? 1 : 0;
    }
    const auto IsFollowed = [Again](unsigned long Number) { return Again != 0 && Number % Again == 0; };
    if (nTimes != 0) {
        std::mt19937_64 Generator(Seed);
        const auto Longest = static_cast<unsigned long>(Series.GetDuration().count()) * 5 / 4;
        for (unsigned long i = 1; i <= nTimes; ++i) {
            CFaultSeries::CFault Fault{DiskPlan::COUNT};
            Fault.m_Kill = std::chrono::microseconds(Generator() % Longest);
            Tally.Add(Series.Run(Fault, IsFollowed(i)),
                      "after " + std::to_string(Fault.m_Kill->count()) + " us");
        }
    } else {
        // A run's threads come in another order each time: until one ends before the call.
        for (unsigned long Number = From;; Number += Every) {
            const auto Outcome = Series.Run({Kind, Number, nFaults}, IsFollowed(Number));
            if (Outcome.m_Call.empty() && Number > Series.GetCalls().size()) {
                break;
            }
            Tally.Add(Outcome, std::to_string(Number) + " " + Outcome.m_Call);
        }
    }
    Tally.Print();
    return Tally.HasFaults() ? 1 : 0;
}
