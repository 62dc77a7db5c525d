#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "console/operatorrules.h"
#include "console/situation.h"
#include "console/softkeys.h"
#include "simulator/machine.h"

/// What the operator works with.
class IFOperatorPanel {
public:
    virtual ~IFOperatorPanel() = default;
    virtual CSituation Look() = 0;
    /// Presses a softkey that the present menu has.
    virtual void PressKey(const Softkeys::CKey& rKey) = 0;
    /// Something for a person to read.
    virtual void Say(const std::string& rText) = 0;
};

/// Stands in for a person at the machine: looks at the panel four times a second, and does what it asks.
/// Without a machine to command it says what somebody else has to do.
class COperator {
public:
    enum class Outcome { eRunning, eFinished, eFailed, eStuck };
    /// Between two looks at the panel, ms.
    static constexpr std::uint32_t eLookPeriod = 250;

    /// WorkingSpeed in rpm: for the measurement whose speed the procedure leaves to the operator. pMachine
    /// may be null.
    COperator(IFOperatorPanel& rPanel, IFMachine* pMachine, std::uint32_t WorkingSpeed);
    /// The rings of holes of the machine's planes, for screws.
    void SetHoleRings(const std::array<CHoleRing, 2>& rRings) { m_Rings = rRings; }
    ~COperator();
    COperator(const COperator&) = delete;
    COperator& operator=(const COperator&) = delete;

    /// Begins to watch the panel.
    void Start();
    void Stop();
    Outcome GetOutcome() const { return m_Outcome; }
    /// Why the run got stuck.
    const std::string& GetReason() const { return m_Reason; }

    /// Just before a measurement is accepted by the softkey, and before the final verdict is.
    std::function<void(const CSituation&)> OnMeasurementAccepted;
    std::function<void(const CSituation&)> OnVerdictAccepted;
    /// What is fitted to a plane of the machine, in place of what is there: weights or screws.
    struct CFitting {
        std::size_t m_Plane = 0;    ///< of the machine, from 0
        std::size_t m_Column = 0;   ///< its place among the planes of the procedure, from 0
        std::vector<int> m_Angles;  ///< of the weights
        bool m_bScrews = false;
        std::vector<CRotorScrew> m_Screws;
    };
    std::function<void(const CFitting&)> OnFitted;
    /// "weights of plane 1 to 30°, 150°" or "screws of plane 1: 2.5 g in hole 1".
    static std::string Describe(const CFitting& rFitting);

private:
    /// Nothing new on the panel for so long means that the run is stuck, ms.
    static constexpr std::uint64_t ePatience = 180000;

    void OnLook();
    void Act(const CSituation& rSituation, Deed ToDo);
    void Command(const nlohmann::json& rRequest, std::function<void()> OnDone);
    void SetSpeed(std::uint32_t RPM);
    void FitWeights(const CSituation& rSituation);
    /// Fits the planes from this place of m_ToFit on, then confirms.
    void FitFrom(std::size_t Place);
    void Confirm();
    bool HasPanelChanged(const CSituation& rSituation);

    IFOperatorPanel& m_rPanel;
    IFMachine* m_pMachine;
    std::uint32_t m_WorkingSpeed;
    std::uint32_t m_TimerID = 0;
    Outcome m_Outcome = Outcome::eRunning;
    std::string m_Reason;
    std::optional<std::uint32_t> m_CommandedSpeed;
    std::array<CHoleRing, 2> m_Rings;
    std::vector<CFitting> m_ToFit;
    bool m_bBusy = false;  ///< an answer of the machine is awaited
    std::string m_LastSaid;
    std::optional<CSituation> m_LastSeen;
    std::uint64_t m_LastChange = 0;
    /// Outlives the operator in answers that are still on their way.
    std::shared_ptr<bool> m_pAlive = std::make_shared<bool>(true);
};
