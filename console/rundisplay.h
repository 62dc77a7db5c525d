#pragma once
#include <cstdint>
#include <functional>
#include <optional>

#include "console/livedata.h"
#include "console/runverdict.h"
#include "contract/arrivedreadings.h"
#include "platform/system/timer.h"

class CConsoleSession;
class CLiveView;
class CVerdictBand;

/// Shows beside the page what there is to say of a session's runs, and how they go: follows the session, and
/// hands plain values to the widgets.
class CRunDisplay {
public:
    /// The widgets must outlive this.
    CRunDisplay(CConsoleSession& rSession, CVerdictBand& rBand, CLiveView& rLive)
        : m_rSession(rSession), m_rBand(rBand), m_rLive(rLive) {}

    /// What computation says of the run.
    std::function<CRunAdvice()> GetAdvice;

    /// To be called when the panel may have changed, and regularly. While a run measures it also looks by
    /// itself.
    void Look();

private:
    /// Between two looks while a run measures, ms: quick enough for the eye, at a few percent of a processor.
    static constexpr std::uint32_t MEASURING_PERIOD = 200;

    CConsoleSession& m_rSession;
    CVerdictBand& m_rBand;
    CLiveView& m_rLive;
    CRunVerdict m_Verdict;
    CLiveData m_LiveData;
    CArrivedReadings m_Arrived;
    CTimer m_Timer;
    std::optional<bool> m_ResultSaved;  ///< at the last look
};
