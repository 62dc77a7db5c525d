// Bytes on the link to the procedure: how many frames a second the whole way up carries, as a multiple of
// what a line of 115200 baud can deliver. The window's procedure runs and measures meanwhile.
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "bench/qtmain.h"
#include "console/headlessrun.h"
#include "console/installation.h"
#include "console/session.h"
#include "contract/actions.h"
#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/linediscipline.h"
#include "platform/rvcom/rvcom.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/wnd.h"
#include "tests/support/lookingpeer.h"

namespace {

/// 8 data bits, start and stop bit.
constexpr double BYTES_PER_SECOND = 115200.0 / 10.0;

/// A link whose bytes the benchmark supplies.
class CFeedLink : public IFByteLink {
public:
    void Open() override {
        m_bOpen = true;
        IFEventLoop::Current().Post([this] {
            if (OnOpened) {
                OnOpened();
            }
        });
    }
    void Close() override { m_bOpen = false; }
    bool IsOpen() const override { return m_bOpen; }
    bool Write(std::span<const std::uint8_t>) override { return true; }
    std::string GetName() const override { return "feed"; }

private:
    bool m_bOpen = false;
};

std::vector<std::uint8_t> MakeTraffic(std::size_t nFrames) {
    std::vector<std::uint8_t> Bytes;
    for (std::size_t i = 0; i < nFrames; ++i) {
        // Two readings to one speed, as a module reports.
        const auto Low = static_cast<std::uint8_t>(i);
        const std::vector<std::uint8_t> Frame = i % 3 == 0
                                                    ? std::vector<std::uint8_t>{0x1C, 5, 0, 0xB8, 0x0B}
                                                    : std::vector<std::uint8_t>{0x1E, 5, 0, Low, 0, 0x20, 0};
        const std::vector<std::uint8_t> Encoded = LineDiscipline::Encode(Frame);
        Bytes.insert(Bytes.end(), Encoded.begin(), Encoded.end());
    }
    return Bytes;
}

void BM_BytesToProcedure(benchmark::State& rState) {
    COptions Options;
    Options.m_bHeadless = true;
    Options.m_ModuleLibrary = BENCH_BIN_DIR "/librtr_trim.so";
    const CRotorFile Rotor = CRotorFile::GetBuiltIn();
    const CConsoleInstallation Installation("", true);
    CVirtualEventLoop Loop;
    CConsoleSession Session(Options, &Rotor, Installation.GetDatabaseFile().string());
    if (!Session.Initialise() || Session.SendAction(Actions::eStart, Actions::eNone) == 0) {
        rState.SkipWithError("the procedure did not start");
        return;
    }
    std::optional<CLookingPeer> Screen;
    if (rState.range(0) != 0) {
        Screen.emplace(Session.GetHost());
    }
    // The simulator's link makes room for the benchmark's bytes; the module's window stays registered.
    auto pLink = std::make_unique<CFeedLink>();
    CFeedLink* pFeed = pLink.get();
    rvCOM::SetLink(std::move(pLink));
    rvCOM::Notify(&Session.GetModule(), RV_NOTIFY_RAWDATA, 5);
    Loop.RunPosted();

    constexpr std::size_t FRAMES = 999;
    const std::vector<std::uint8_t> Traffic = MakeTraffic(FRAMES);
    std::size_t nFrames = 0;
    for (auto _ : rState) {
        pFeed->OnBytes(Traffic);
        Loop.RunPosted();
        nFrames += FRAMES;
    }
    if (Screen) {
        rState.counters["pictures/s"] =
            benchmark::Counter(static_cast<double>(Screen->m_nChanges), benchmark::Counter::kIsRate);
    }
    rState.counters["frames/s"] =
        benchmark::Counter(static_cast<double>(nFrames), benchmark::Counter::kIsRate);
    rState.counters["line_rates"] = benchmark::Counter(
        static_cast<double>(nFrames) / FRAMES * static_cast<double>(Traffic.size()) / BYTES_PER_SECOND,
        benchmark::Counter::kIsRate);
}
BENCHMARK(BM_BytesToProcedure)->Arg(0)->ArgName("looked_at")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BytesToProcedure)->Arg(1)->ArgName("looked_at")->Unit(benchmark::kMillisecond);

/// The plain alternative: the line discipline alone.
void BM_LineDisciplineAlone(benchmark::State& rState) {
    constexpr std::size_t FRAMES = 999;
    const std::vector<std::uint8_t> Traffic = MakeTraffic(FRAMES);
    std::size_t nFrames = 0;
    LineDiscipline::CDecoder Decoder([&nFrames](std::span<const std::uint8_t>) { ++nFrames; });
    for (auto _ : rState) {
        Decoder.Put(Traffic);
    }
    rState.counters["frames/s"] =
        benchmark::Counter(static_cast<double>(nFrames), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_LineDisciplineAlone)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_QT_MAIN()
