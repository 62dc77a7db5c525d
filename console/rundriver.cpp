#include "console/rundriver.h"

#include <cstdio>
#include <utility>

#include "console/operatorrules.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/storetexts.h"
#include "platform/system/eventloop.h"

using PreBalDB::StoreTexts::Fill;

namespace {

std::string DescribeAngles(const std::vector<int>& rAngles) {
    std::string Text;
    for (const int Angle : rAngles) {
        Text += (Text.empty() ? "" : ", ") + std::to_string(Angle) + "°";
    }
    return Text;
}

std::string DescribeScrews(const std::vector<CRotorScrew>& rScrews) {
    std::string Text;
    for (const CRotorScrew& rScrew : rScrews) {
        char Grams[64];
        std::snprintf(Grams, sizeof Grams, "%g", rScrew.m_Grams);
        Text += (Text.empty() ? "" : ", ") + Fill("RUN_SCREW", {Grams, std::to_string(rScrew.m_Hole)});
    }
    return Text.empty() ? GetText("RUN_NO_SCREWS") : Text;
}

}  // namespace

std::string Describe(const CFitting& rFitting) {
    const std::string Plane = std::to_string(rFitting.m_Plane + 1);
    return rFitting.m_bScrews ? Fill("RUN_SCREWS", {Plane, DescribeScrews(rFitting.m_Screws)})
                              : Fill("RUN_WEIGHTS", {Plane, DescribeAngles(rFitting.m_Angles)});
}

nlohmann::json MakeRequest(const CFitting& rFitting) {
    const std::size_t Plane = rFitting.m_Plane + 1;
    if (!rFitting.m_bScrews) {
        return {{"weights", {{"plane", Plane}, {"angles", rFitting.m_Angles}}}};
    }
    nlohmann::json Screws = {{"plane", Plane}, {"fitted", nlohmann::json::array()}};
    for (const CRotorScrew& rScrew : rFitting.m_Screws) {
        Screws["fitted"].push_back({{"hole", rScrew.m_Hole}, {"grams", rScrew.m_Grams}});
    }
    return {{"screws", Screws}};
}

std::vector<CFitting> FindFittings(const CSituation& rSituation, const std::array<CHoleRing, 2>& rRings) {
    std::vector<CFitting> Fittings;
    for (std::size_t Plane = 0; Plane < rSituation.m_Progress.m_Readings.size(); ++Plane) {
        CFitting Fitting{Plane, rSituation.GetColumn(Plane), {}, rSituation.HasScrews(Plane), {}};
        if (Fitting.m_bScrews) {
            // No screw at all is a fitting too: those of the last run come out.
            Fitting.m_Screws = rSituation.GetScrews(Plane, rRings.at(Plane));
        } else {
            Fitting.m_Angles = rSituation.GetAngles(Plane);
        }
        if (Fitting.m_bScrews || !Fitting.m_Angles.empty()) {
            Fittings.push_back(std::move(Fitting));
        }
    }
    return Fittings;
}

void CRunDriver::Start() {
    m_Outcome = Outcome::eRunning;
    m_LastChange = IFEventLoop::Current().Now();
    m_LookTimer.StartPeriodic(LOOK_PERIOD, [this] { LookNow(); });
}

void CRunDriver::Stop() {
    m_LookTimer.Stop();
}

void CRunDriver::End(Outcome Result, std::string Reason) {
    m_Outcome = Result;
    m_Reason = std::move(Reason);
    Stop();
}

void CRunDriver::LookNow() {
    if (!m_LookTimer.IsRunning()) {
        return;
    }
    if (IsHeld && IsHeld()) {
        m_LastChange = IFEventLoop::Current().Now();
        return;
    }
    const CSituation Situation = m_Look();
    if (OnSeen) {
        OnSeen(Situation);
    }
    if (!m_LookTimer.IsRunning()) {
        return;  // what was seen was enough
    }
    const std::uint64_t Now = IFEventLoop::Current().Now();
    if (HasPanelChanged(Situation)) {
        m_LastChange = Now;
    } else if (IsImpatient() && Now - m_LastChange > PATIENCE) {
        const std::string Time = std::to_string(PATIENCE / 1000) + " s";
        End(Outcome::eStuck, Situation.m_bRunning
                                 ? Fill("RUN_STANDS_STILL", {Time, Situation.m_Progress.m_State,
                                                             Situation.m_Progress.m_Instruction})
                                 : Fill("RUN_NOTHING_STARTED", {Time}));
        return;
    }
    const bool bWasMeasured = std::exchange(m_bVerdictMeasured, IsMeasuredVerdict(Situation));
    if (m_bVerdictMeasured && !bWasMeasured && OnVerdictMeasured) {
        OnVerdictMeasured();
    }
    OnLook(Situation);
}

bool CRunDriver::HasPanelChanged(const CSituation& rSituation) {
    const bool bChanged = !m_LastSeen || m_LastSeen->m_Progress.m_State != rSituation.m_Progress.m_State ||
                          m_LastSeen->m_Menu != rSituation.m_Menu ||
                          !(m_LastSeen->m_Notification == rSituation.m_Notification);
    m_LastSeen = rSituation;
    return bChanged;
}
