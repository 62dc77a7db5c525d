// A complete pre-balancing under virtual time, over real frames, from the link to the stored calibration; and
// the start of a session up to the end of the query chain.
#include <memory>

#include "bench/qtmain.h"
#include "console/headlessrun.h"
#include "console/installation.h"
#include "console/session.h"
#include "platform/system/virtualeventloop.h"

namespace {

COptions MakeOptions(COptions::Procedure Procedure) {
    COptions Options;
    Options.m_bHeadless = true;
    Options.m_Procedure = Procedure;
    Options.m_ModuleLibrary = BENCH_BIN_DIR "/librtr_trim.so";
    return Options;
}

void RunOnce(benchmark::State& rState, COptions::Procedure Procedure,
             const CRotorFile& rRotor = CRotorFile::GetBuiltIn()) {
    const COptions Options = MakeOptions(Procedure);
    std::uint64_t VirtualMs = 0;
    for (auto _ : rState) {
        const CConsoleInstallation Installation("", true);
        CVirtualEventLoop Loop;
        CConsoleSession Session(Options, &rRotor, Installation.GetDatabaseFile().string());
        CHeadlessRun Run(Session, Options);
        Run.OnProgress = [](const std::string&) {};
        if (!Session.Initialise() || Run.Run() != eExitWithinTarget) {
            rState.SkipWithError("the run did not balance the rotor");
            break;
        }
        VirtualMs = Loop.Now();
    }
    rState.counters["virtual_s"] = static_cast<double>(VirtualMs) / 1000.0;
}

void BM_Prebalance(benchmark::State& rState) {
    RunOnce(rState, COptions::Procedure::ePrebalance);
}
BENCHMARK(BM_Prebalance)->Unit(benchmark::kMillisecond);

void BM_PrebalanceAndRebalance(benchmark::State& rState) {
    RunOnce(rState, COptions::Procedure::ePrebalanceAndRebalance);
}
BENCHMARK(BM_PrebalanceAndRebalance)->Unit(benchmark::kMillisecond);

/// Two coupled planes over a pair of modules: two test legs, and twice the frames and the drawing.
CRotorFile MakeTwoPlaneRotor() {
    CRotorFile Rotor = CRotorFile::GetBuiltIn(CRotorFile::eKestrelPair);
    Rotor.m_Influence[0][1] = {45.0, 75.0};
    Rotor.m_Influence[1][0] = {38.0, 10.0};
    return Rotor;
}

void BM_PrebalanceTwoPlanes(benchmark::State& rState) {
    RunOnce(rState, COptions::Procedure::ePrebalance, MakeTwoPlaneRotor());
}
BENCHMARK(BM_PrebalanceTwoPlanes)->Unit(benchmark::kMillisecond);

void BM_PrebalanceAndRebalanceTwoPlanes(benchmark::State& rState) {
    RunOnce(rState, COptions::Procedure::ePrebalanceAndRebalance, MakeTwoPlaneRotor());
}
BENCHMARK(BM_PrebalanceAndRebalanceTwoPlanes)->Unit(benchmark::kMillisecond);

void BM_StartToEndOfQueryChain(benchmark::State& rState) {
    const COptions Options = MakeOptions(COptions::Procedure::ePrebalance);
    const CRotorFile Rotor = CRotorFile::GetBuiltIn();
    for (auto _ : rState) {
        const CConsoleInstallation Installation("", true);
        CVirtualEventLoop Loop;
        CConsoleSession Session(Options, &Rotor, Installation.GetDatabaseFile().string());
        if (!Session.Initialise()) {
            rState.SkipWithError("the module did not answer");
            break;
        }
    }
}
BENCHMARK(BM_StartToEndOfQueryChain)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_QT_MAIN()
