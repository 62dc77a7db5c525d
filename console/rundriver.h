#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "console/situation.h"
#include "platform/system/timer.h"

/// What is fitted to a plane of the machine, in place of what is there: weights or screws.
struct CFitting {
    std::size_t m_Plane = 0;    ///< of the machine, from 0
    std::size_t m_Column = 0;   ///< its place among the planes of the procedure, from 0
    std::vector<int> m_Angles;  ///< of the weights
    bool m_bScrews = false;
    std::vector<CRotorScrew> m_Screws;
};

/// "weights of plane 1 to 30°, 150°" or "screws of plane 1: 2.5 g in hole 1".
std::string Describe(const CFitting& rFitting);

/// The same for the control link of a machine.
nlohmann::json MakeRequest(const CFitting& rFitting);

/// What the situation asks to be fitted, for each plane that it asks anything of.
std::vector<CFitting> FindFittings(const CSituation& rSituation, const std::array<CHoleRing, 2>& rRings);

/// Somebody who brings a procedure to its end, and tells of it on the way.
class CRunDriver {
public:
    enum class Outcome { eRunning, eFinished, eFailed, eStuck };
    /// Between two looks at the panel, ms.
    static constexpr std::uint32_t LOOK_PERIOD = 250;
    /// Nothing new on the panel for so long means that the run is stuck, ms.
    static constexpr std::uint64_t PATIENCE = 180000;

    virtual ~CRunDriver() = default;
    CRunDriver(const CRunDriver&) = delete;
    CRunDriver& operator=(const CRunDriver&) = delete;

    /// Begins to look at the panel.
    void Start();
    void Stop();
    /// Looks at the panel between two of the regular looks: something has changed that may be gone by then.
    void LookNow();
    /// Whoever looks on doesn't want it to go on, for this reason.
    void GiveUp(std::string Reason) { End(Outcome::eFailed, std::move(Reason)); }
    Outcome GetOutcome() const { return m_Outcome; }
    /// Why the run failed or got stuck.
    const std::string& GetReason() const { return m_Reason; }
    /// The rings of holes of the machine's planes, for screws.
    void SetHoleRings(const std::array<CHoleRing, 2>& rRings) { m_Rings = rRings; }

    /// While this is so nothing is done, and no time counts as standing still.
    std::function<bool()> IsHeld;
    /// What a look has seen, before anything is done about it.
    std::function<void(const CSituation&)> OnSeen;
    /// Just before a measurement is accepted, and before the final verdict is.
    std::function<void(const CSituation&)> OnMeasurementAccepted;
    std::function<void(const CSituation&)> OnVerdictAccepted;
    /// The verdict on the page has become one on a whole measurement.
    std::function<void()> OnVerdictMeasured;
    std::function<void(const CFitting&)> OnFitted;

protected:
    explicit CRunDriver(std::function<CSituation()> Look) : m_Look(std::move(Look)) {}

    /// A look at the panel.
    virtual void OnLook(const CSituation& rSituation) = 0;
    /// Whether the run may get stuck at all: not if a person takes the time that it takes.
    virtual bool IsImpatient() const { return true; }
    CSituation Look() const { return m_Look(); }
    const std::array<CHoleRing, 2>& GetHoleRings() const { return m_Rings; }
    /// Stops.
    void End(Outcome Result, std::string Reason = {});

private:
    bool HasPanelChanged(const CSituation& rSituation);

    std::function<CSituation()> m_Look;
    CTimer m_LookTimer;
    Outcome m_Outcome = Outcome::eRunning;
    std::string m_Reason;
    std::array<CHoleRing, 2> m_Rings;
    std::optional<CSituation> m_LastSeen;
    bool m_bVerdictMeasured = false;  ///< of the last look
    std::uint64_t m_LastChange = 0;
};
