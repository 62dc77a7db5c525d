// One measuring tick of a running procedure, and repaints of the page by size and mask: 15 everything, 8 the
// live measurement, 4 the status line. While a measurement runs, the page is repainted with mask 8 every 250
// ms; "share_percent" says what part of that time it takes.
#include <ctime>
#include <memory>

#include "bench/qtmain.h"
#include "contract/prebalprogress.h"
#include "platform/rvmdb/prebalbasetableentry.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/dc.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancing.h"
#include "tests/support/fakemainwnd.h"

namespace {

/// A pre-balancing in its first measurement.
class CMeasuring {
public:
    CMeasuring() : m_Entry("0#1#255-0-ABCDEF-1-2", "Default") {
        m_Entry.CreateSinglePlane().CreateWeightCompensationTableEntry();
        m_pSequence = std::make_unique<CSinglePlaneBalancing>(&m_Window, 0, m_Entry, "");
        m_pSequence->StartPreBalancing(0, 1, 1);
        m_pSequence->KeyPressed(CPreBalancing::eNext);
        m_pSequence->CurrentRPM(3000);
        m_pSequence->OutOfLock(0);
        m_pSequence->InvalidRPM(0);
        m_pSequence->KeyPressed(CPreBalancing::eNext);
        m_pSequence->CurrentXYValuePlane1(120, -35);
        m_Loop.Advance(3500);
    }

    /// In the measuring state, past the settling, with a window of samples filling.
    bool IsMeasuring() const {
        CPreBalProgress Progress;
        m_pSequence->GetProgress(Progress);
        return Progress.m_State == "eNeutralPosMeasurement" && Progress.m_Readings[0].m_Amplitude > 100.0;
    }

    CVirtualEventLoop m_Loop;
    CFakeMainWnd m_Window;
    PreBalDB::CPreBalBaseTableEntry m_Entry;
    std::unique_ptr<CSinglePlaneBalancing> m_pSequence;
};

void BM_MeasuringTick(benchmark::State& rState) {
    CMeasuring Measuring;
    if (!Measuring.IsMeasuring()) {
        rState.SkipWithError("the procedure does not measure");
        return;
    }
    for (auto _ : rState) {
        Measuring.m_pSequence->OnMeasurementTick();
    }
}
BENCHMARK(BM_MeasuringTick);

/// Processor time of a benchmark's iterations as a percentage of the time between two live values.
class CShareOfPeriod {
public:
    explicit CShareOfPeriod(benchmark::State& rState) : m_rState(rState) {}
    ~CShareOfPeriod() {
        constexpr double PERIOD = 0.250;  // s
        const double Seconds = static_cast<double>(std::clock() - m_Start) / CLOCKS_PER_SEC;
        m_rState.counters["share_percent"] =
            100.0 * Seconds / PERIOD / static_cast<double>(m_rState.iterations());
    }
    CShareOfPeriod(const CShareOfPeriod&) = delete;
    CShareOfPeriod& operator=(const CShareOfPeriod&) = delete;

private:
    benchmark::State& m_rState;
    std::clock_t m_Start = std::clock();
};

void BM_Repaint(benchmark::State& rState) {
    CMeasuring Measuring;
    const CRect Page(0, 0, static_cast<int>(rState.range(0)), static_cast<int>(rState.range(1)));
    CBitmap Bitmap(Page.Size());
    CDC DC(Bitmap);
    Measuring.m_pSequence->Paint(&DC, Page, 15);
    const auto Mask = static_cast<unsigned>(rState.range(2));
    const CShareOfPeriod Share(rState);
    for (auto _ : rState) {
        Measuring.m_pSequence->Paint(&DC, Page, Mask);
    }
}
BENCHMARK(BM_Repaint)
    ->ArgNames({"width", "height", "mask"})
    ->Args({600, 440, 15})
    ->Args({600, 440, 8})
    ->Args({600, 440, 4})
    ->Args({1920, 1080, 15})
    ->Args({1920, 1080, 8})
    ->Args({1920, 1080, 4})
    ->Unit(benchmark::kMillisecond);

/// What the window does around a repaint: a bitmap of its own, the screen copied into it (for less than
/// everything) or cleared, and copied back.
void BM_RepaintInWindow(benchmark::State& rState) {
    CMeasuring Measuring;
    const CRect Page(0, 0, static_cast<int>(rState.range(0)), static_cast<int>(rState.range(1)));
    CBitmap Screen(Page.Size());
    CDC ScreenDC(Screen);
    Measuring.m_pSequence->Paint(&ScreenDC, Page, 15);
    const auto Mask = static_cast<unsigned>(rState.range(2));
    const CShareOfPeriod Share(rState);
    for (auto _ : rState) {
        CBitmap Memory(Page.Size());
        {
            CDC DC(Memory);
            if (Mask == 15) {
                DC.FillSolidRect(Page, RGB(236, 233, 216));
            } else {
                DC.BitBlt(Page, Screen, CPoint());
            }
            Measuring.m_pSequence->Paint(&DC, Page, Mask);
        }
        ScreenDC.BitBlt(Page, Memory, CPoint());
    }
}
BENCHMARK(BM_RepaintInWindow)
    ->ArgNames({"width", "height", "mask"})
    ->Args({600, 440, 15})
    ->Args({600, 440, 8})
    ->Args({1920, 1080, 15})
    ->Args({1920, 1080, 8})
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_QT_MAIN()
