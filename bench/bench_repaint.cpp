// One measuring tick of a running procedure, and repaints of the page by mask: 15 everything, 8 the live
// measurement, 4 the status line.
#include <memory>

#include "bench/qtmain.h"
#include "platform/rvmdb/prebalbasetableentry.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/dc.h"
#include "platform/window/prebalprogress.h"
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

void BM_Repaint(benchmark::State& rState) {
    CMeasuring Measuring;
    const CRect Page(0, 0, 600, 440);
    CBitmap Bitmap(Page.Size());
    CDC DC(Bitmap);
    Measuring.m_pSequence->Paint(&DC, Page, 15);
    const auto Mask = static_cast<unsigned>(rState.range(0));
    for (auto _ : rState) {
        Measuring.m_pSequence->Paint(&DC, Page, Mask);
    }
}
BENCHMARK(BM_Repaint)->ArgName("mask")->Arg(15)->Arg(8)->Arg(4)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_QT_MAIN()
