#pragma once
#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "console/operatorrules.h"
#include "console/rundriver.h"
#include "console/situation.h"
#include "contract/menukeys.h"
#include "platform/system/lifetime.h"
#include "simulator/machine.h"

/// What the operator works with.
class IFOperatorPanel {
public:
    virtual ~IFOperatorPanel() = default;
    virtual CSituation Look() = 0;
    /// Presses a softkey that the present menu has.
    virtual void PressKey(const MenuKeys::CKey& rKey) = 0;
    /// Something for a person to read.
    virtual void Say(const std::string& rText) = 0;
};

/// Stands in for a person at the machine: looks at the panel four times a second, and does what it asks.
/// Without a machine to command it says what somebody else has to do.
class COperator : public CRunDriver {
public:
    /// WorkingSpeed in rpm: for the measurement whose speed the procedure leaves to the operator. pMachine
    /// may be null.
    COperator(IFOperatorPanel& rPanel, IFMachine* pMachine, std::uint32_t WorkingSpeed);
    ~COperator() override;

private:
    void OnLook(const CSituation& rSituation) override;
    bool IsImpatient() const override { return m_pMachine != nullptr; }
    void Act(const CSituation& rSituation, Deed ToDo);
    void Command(const nlohmann::json& rRequest, std::function<void()> OnDone);
    void SetSpeed(std::uint32_t RPM);
    /// Whether the spindle was stopped, and is needed: a module that hears late of its speed may still have
    /// taken it for turning, and gone on.
    bool IsSpindleMissed(const CSituation& rSituation) const;
    /// Whether the page shows the speed that was commanded: a module may report it seconds later.
    bool IsAtSpeed(const CSituation& rSituation) const;
    void FitWeights(const CSituation& rSituation);
    /// Fits the planes from this place of m_ToFit on, then confirms.
    void FitFrom(std::size_t Place);
    void Confirm();

    IFOperatorPanel& m_rPanel;
    IFMachine* m_pMachine;
    std::uint32_t m_WorkingSpeed;
    std::optional<std::uint32_t> m_CommandedSpeed;
    std::vector<CFitting> m_ToFit;
    /// What m_ToFit was made for, as long as it is asked for: nothing is fitted twice only because the key to
    /// confirm it isn't there yet.
    std::optional<CNcNotification> m_FittedFor;
    bool m_bBusy = false;  ///< an answer of the machine is awaited
    std::string m_LastSaid;
    /// Outlives the operator in answers that are still on their way.
    CLifetime m_Lifetime;
};
