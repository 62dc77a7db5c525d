// Hours of virtual time in one process: sessions of all kinds of machines, one after the other, with runs
// that a panel or an NC drives, and with somebody at the window who does anything; while line, module, NC,
// store and window go wrong by lot. Prints what was done, what came of it, and what the process holds, each
// beside its limit; the same figures each time but for the memory. Ends with 1 when a promise is broken.
//
//     endurance [--hours 24] [--seed 1]      all of it
//     endurance --shift SEED                 one session again: the seed that a broken promise names
//     endurance --runs 10000                 one session without faults: what a process holds after so many
#include <unistd.h>
#include <CLI/CLI.hpp>

#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <set>

#include "platform/rvlog/logcomponent.h"
#include "platform/system/temporarydirectory.h"
#include "tests/endurance/endurance.h"
#include "tests/endurance/shift.h"

namespace {

constexpr double MEGABYTE = 1048576.0;
/// What a process may hold more at the end than after half of its hours, or its first hundred runs.
constexpr double HEAP_GROWTH = 1.0;       // MB
constexpr double RESIDENT_GROWTH = 10.0;  // MB: what the heap has given back may stay with the process
constexpr double LOG_FILES = 10.5;        // MB: five files of two, and the line that filled each

double InMegabytes(std::size_t nBytes) {
    return static_cast<double>(nBytes) / MEGABYTE;
}

double GetProcessorSeconds() {
    timespec Now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &Now);
    return static_cast<double>(Now.tv_sec) + static_cast<double>(Now.tv_nsec) * 1e-9;
}

void PrintFootprintHead(const char* pWhen) {
    std::printf(
        "| %s | runs | heap in use, MB | resident, MB | handles | threads | log files, MB | log records |\n",
        pWhen);
    std::printf("|---:|---:|---:|---:|---:|---:|---:|---:|\n");
}

void PrintFootprint(std::size_t nWhen, int nRuns, const CFootprint& rPrint, std::uint64_t nLogged) {
    std::printf("| %zu | %d | %.2f | %.1f | %zu | %zu | %.2f | %llu |\n", nWhen, nRuns,
                InMegabytes(rPrint.m_Heap), InMegabytes(rPrint.m_Resident), rPrint.m_nHandles,
                rPrint.m_nThreads, InMegabytes(rPrint.m_LogFiles), static_cast<unsigned long long>(nLogged));
    std::fflush(stdout);
}

/// A figure beside its limit; whether it keeps it.
bool Compare(const char* pWhat, double Is, double Limit) {
    const bool bKept = Is <= Limit;
    std::printf("| %s | %.2f | %.2f | %s |\n", pWhat, Is, Limit, bKept ? "kept" : "BROKEN");
    return bKept;
}

bool CompareFootprints(const CFootprint& rEarly, const CFootprint& rLate) {
    const auto Growth = [](std::size_t Early, std::size_t Late) {
        return InMegabytes(Late) - InMegabytes(Early);
    };
    std::printf("\n| figure | is | limit | |\n|---|---:|---:|---|\n");
    bool bKept = Compare("heap in use: growth, MB", Growth(rEarly.m_Heap, rLate.m_Heap), HEAP_GROWTH);
    bKept &= Compare("resident: growth, MB", Growth(rEarly.m_Resident, rLate.m_Resident), RESIDENT_GROWTH);
    bKept &= Compare("handles: growth",
                     static_cast<double>(rLate.m_nHandles) - static_cast<double>(rEarly.m_nHandles), 0.0);
    bKept &= Compare("log files, MB", InMegabytes(rLate.m_LogFiles), LOG_FILES);
    return bKept;
}

void PrintTally(const CTally& rTally) {
    std::printf("\n| runs of | begun | with a saved result | ended and told |\n|---|---:|---:|---:|\n");
    CTally::CRuns All;
    for (const auto& [rName, rRuns] : rTally.m_Runs) {
        std::printf("| %s | %d | %d | %d |\n", rName.c_str(), rRuns.m_nBegun, rRuns.m_nSaved, rRuns.m_nTold);
        All.m_nBegun += rRuns.m_nBegun;
        All.m_nSaved += rRuns.m_nSaved;
        All.m_nTold += rRuns.m_nTold;
    }
    std::printf("| all | %d | %d | %d |\n", All.m_nBegun, All.m_nSaved, All.m_nTold);
    std::printf("| of those told, %d with a right calibration in the store | | | |\n", rTally.m_nKept);
    std::printf("| at the window, %d things done | %d | | |\n", rTally.m_nWindowActions,
                rTally.m_nWindowRuns);
    std::printf("\n| result | runs |\n|---|---:|\n");
    for (const auto& [rResult, nTimes] : rTally.m_Results) {
        std::printf("| %s | %d |\n", rResult.c_str(), nTimes);
    }
    std::printf("\n| fault | runs with it |\n|---|---:|\n");
    for (const auto& [What, nTimes] : rTally.m_Troubles) {
        std::printf("| %s | %d |\n", CTroubles::GetName(What), nTimes);
    }
    std::printf("\n| assertion | times | explained by |\n|---|---:|---|\n");
    for (const auto& [rText, rAssertion] : rTally.m_Assertions) {
        std::string By;
        for (const CTroubles::Kind What : rAssertion.m_Explained) {
            By += (By.empty() ? "" : ", ") + std::string(CTroubles::GetName(What));
        }
        std::printf("| %s | %d | %s |\n", rText.c_str(), rAssertion.m_nTimes, By.empty() ? "-" : By.c_str());
    }
    std::printf("\npromises broken: %zu, allowed: 0\n", rTally.m_Broken.size());
    for (const std::string& rBroken : rTally.m_Broken) {
        std::printf("%s\n", rBroken.c_str());
    }
}

int WorkHours(double Hours, std::uint64_t Seed, const std::string& rLogDirectory) {
    CEndurance Endurance(Seed, rLogDirectory);
    std::printf("%.1f hours of virtual time, seed %llu\n\n", Hours, static_cast<unsigned long long>(Seed));
    PrintFootprintHead("hour");
    Endurance.WorkHours(Hours, [&](const CEndurance::CHour& rHour) {
        PrintFootprint(Endurance.GetHours().size(), rHour.m_nRuns, rHour.m_Print, rHour.m_nLogged);
    });
    PrintTally(Endurance.GetTally());
    bool bKept = Endurance.GetTally().m_Broken.empty();
    // By then every kind of run, page and window has been there.
    if (const auto& rHours = Endurance.GetHours(); rHours.size() > 1) {
        bKept &= CompareFootprints(rHours[(rHours.size() - 1) / 2].m_Print, rHours.back().m_Print);
    }
    std::printf("\nprocessor time: %.0f s\n", GetProcessorSeconds());
    return bKept ? 0 : 1;
}

int WorkShift(std::uint64_t Seed, const std::string& rLogDirectory) {
    CEndurance Endurance(1, rLogDirectory);
    Endurance.WorkShift(Seed);
    PrintTally(Endurance.GetTally());
    return Endurance.GetTally().m_Broken.empty() ? 0 : 1;
}

int WorkRuns(int nRuns, std::uint64_t Seed, const std::string& rLogDirectory) {
    constexpr int SETTLED = 100;
    CTally Tally;
    CFootprint Early;
    CFootprint Late;
    PrintFootprintHead("after run");
    CShift Shift({Seed, false, nRuns}, Tally);
    Shift.Work([&](int nRun) {
        const double Digits = std::log10(nRun);
        if (std::abs(Digits - std::round(Digits)) > 1e-9 && nRun != nRuns) {
            return;
        }
        Late = CFootprint::Measure(rLogDirectory);
        Early = nRun <= SETTLED ? Late : Early;
        PrintFootprint(static_cast<std::size_t>(nRun), nRun, Late, Tally.m_nLogged);
    });
    PrintTally(Tally);
    const bool bKept = CompareFootprints(Early, Late);
    std::printf("\nprocessor time: %.0f s\n", GetProcessorSeconds());
    return bKept && Tally.m_Broken.empty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    double Hours = 24.0;
    std::uint64_t Seed = 1;
    std::uint64_t Shift = 0;
    int nRuns = 0;
    CLI::App App("Hours of virtual time with faults of all kinds, and what they leave");
    App.add_option("--hours", Hours, "virtual ones")->capture_default_str();
    App.add_option("--seed", Seed, "of all that is drawn by lot")->capture_default_str();
    App.add_option("--runs", nRuns, "of one session without faults, in place of the hours");
    const CLI::Option* const pShift = App.add_option("--shift", Shift, "this one alone");
    CLI11_PARSE(App, argc, argv);

    // Temporary files in memory, where there is such a place: it isn't the disk that is measured.
    if (!qEnvironmentVariableIsSet("TMPDIR") && access("/dev/shm", W_OK | X_OK) == 0) {
        qputenv("TMPDIR", "/dev/shm");
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication Application(argc, argv);
    QApplication::setStyle("fusion");
    const CTemporaryDirectory Log;
    CLogComponent::OpenFile(Log.GetPath().string());
    if (pShift->count() > 0) {
        return WorkShift(Shift, Log.GetPath().string());
    }
    return nRuns > 0 ? WorkRuns(nRuns, Seed, Log.GetPath().string())
                     : WorkHours(Hours, Seed, Log.GetPath().string());
}
