// Opening a list of an archive of 100,000 runs, of all and by each filter: what an operator waits for.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "archive/runstore.h"
#include "bench/qtmain.h"
#include "platform/system/temporarydirectory.h"

namespace {

constexpr int RUNS = 100000;

/// The archive, made once; a path in BENCH_ARCHIVE keeps it for the next time.
const std::string& GetConnection() {
    static const CTemporaryDirectory ms_Directory;
    static const std::string ms_Connection = [] {
        const char* const pKept = std::getenv("BENCH_ARCHIVE");
        const std::string File =
            pKept != nullptr ? std::string(pKept) : (ms_Directory.GetPath() / "archive.db").string();
        const bool bThere = std::filesystem::exists(File);
        std::string Connection = "sqlite:" + File;
        CRunStore Store(Connection);
        PreBalDB::CDirectSQL Fast(Connection);
        for (int Done = bThere ? RUNS : 0; Done < RUNS;) {
            PreBalDB::CTransaction Transaction(Fast, PreBalDB::CTransaction::eWriting);
            for (int i = 0; i < 1000; ++i, ++Done) {
                const std::string Id = std::to_string(Done + 1);
                Fast.Execute("INSERT INTO run VALUES (" + Id + ", '" + Id + "', 'machine-" +
                             std::to_string(Done % 20) + "', 'Default', 'plane1', 'rotor " +
                             std::to_string(Done % 500) + "', " + std::to_string(1700000000 + Done * 60) +
                             ", 0, 0, '0.9.0', 'kestrel', '5', 0, " + (Done % 50 == 0 ? "3" : "1") +
                             ", 'SetupSuccess', 1)");
                Fast.Execute("INSERT INTO run_setup VALUES (" + Id + ", '" + std::string(900, 'x') + "')");
                for (const char* const pPosition : {"0", "1", "2"}) {
                    const std::string Key = Id + ", " + pPosition;
                    Fast.Execute("INSERT INTO run_measurement VALUES (" + Key + ", " +
                                 (*pPosition == '0'   ? "1"
                                  : *pPosition == '1' ? "2"
                                                      : "4") +
                                 ", 1000, 3000, 3000, 3000)");
                    Fast.Execute("INSERT INTO run_plane VALUES (" + Key +
                                 ", 0, 30, 40, 40, 30, 40, 1, 1, 0, '{}', '" + std::string(200, 'A') + "')");
                }
            }
            Transaction.Commit();
        }
        return Connection;
    }();
    return ms_Connection;
}

void ListRuns(benchmark::State& rState, const CRunFilter& rFilter) {
    CRunStore Store(GetConnection());
    std::size_t nFound = 0;
    for (auto _ : rState) {
        nFound = Store.List(rFilter).size();
    }
    rState.counters["runs"] = static_cast<double>(nFound);
}

void BM_Open(benchmark::State& rState) {
    GetConnection();
    for (auto _ : rState) {
        CRunStore Store(GetConnection());
        benchmark::DoNotOptimize(Store.List({}));
    }
}
BENCHMARK(BM_Open)->Unit(benchmark::kMillisecond);

BENCHMARK_CAPTURE(ListRuns, Newest200, CRunFilter{.m_nLimit = 200})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ListRuns, OfAMachine, CRunFilter{.m_Machine = "machine-7", .m_nLimit = 200})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ListRuns, OfARotor, CRunFilter{.m_Rotor = "rotor 77", .m_nLimit = 200})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ListRuns, Failed, CRunFilter{.m_Result = CRunFilter::Result::eFailed, .m_nLimit = 200})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ListRuns, NoneInterrupted,
                  CRunFilter{.m_Result = CRunFilter::Result::eInterrupted, .m_nLimit = 200})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ListRuns, OfAMachineFailed,
                  CRunFilter{
                      .m_Machine = "machine-7", .m_Result = CRunFilter::Result::eOver, .m_nLimit = 200})
    ->Unit(benchmark::kMillisecond);

void BM_Rotors(benchmark::State& rState) {
    CRunStore Store(GetConnection());
    for (auto _ : rState) {
        benchmark::DoNotOptimize(Store.GetRotors());
    }
}
BENCHMARK(BM_Rotors)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_QT_MAIN()
