#pragma once
#include <array>
#include <cstddef>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "console/machinestate.h"
#include "console/rundriver.h"
#include "platform/system/lifetime.h"
#include "platform/system/timer.h"
#include "simulator/machine.h"

/// Somebody who stands before the machine: sees what it really is, from its own answers, and fits what is
/// wanted, but never while it turns. What a machine elsewhere does in between is seen too, since it is looked
/// at again just before anything is fitted.
class CMachineModel {
public:
    /// A weight by its place in a plane's drawing, from 0; without an angle it lies beside the rotor.
    using Slots = std::vector<std::optional<int>>;
    /// Weights that belong to a plane.
    static constexpr std::size_t WEIGHTS = 2;

    explicit CMachineModel(IFMachine& rMachine);
    ~CMachineModel();
    CMachineModel(const CMachineModel&) = delete;
    CMachineModel& operator=(const CMachineModel&) = delete;

    /// Looks at the machine from now on.
    void Start();
    /// Nothing before the machine has answered, and while it doesn't.
    const std::optional<CMachineState>& GetState() const { return m_State; }
    /// The weights of a plane, from 0. One keeps its place while it moves.
    const Slots& GetWeights(std::size_t Plane) const { return m_Weights.at(Plane); }

    /// In rpm, 0 stops.
    void SetSpeed(double Rpm);
    /// Moves a weight, or takes it off.
    void SetWeight(std::size_t Plane, std::size_t Slot, std::optional<int> Angle);
    void PutScrew(std::size_t Plane, std::uint32_t Hole, double Grams);
    void TakeScrew(std::size_t Plane, std::uint32_t Hole);
    /// What the page asks for, in place of what is there.
    void Fit(const std::vector<CFitting>& rFittings);
    /// A fault of the control link, which needs nobody at the machine.
    void SetFault(const nlohmann::json& rFault);
    /// Why nothing can be fitted now, in words for the operator; empty if it can.
    std::string GetRefusal() const;

    /// State or weights are others than before.
    std::function<void()> OnChanged;
    /// Something wasn't done; the words say why.
    std::function<void(const std::string&)> OnRefused;

private:
    static constexpr std::uint32_t PERIOD = 250;  ///< ms between two looks

    void Look();
    void TakeState(const nlohmann::json& rAnswer);
    void AdoptWeights();
    /// Checks first that the machine stands; then asks.
    void FitIfStanding(std::vector<nlohmann::json> Requests);
    void EndFitting(const nlohmann::json& rState);
    void Command(const nlohmann::json& rRequest);
    void FitWeights(std::size_t Plane);
    void FitScrews(std::size_t Plane, std::vector<CRotorScrew> Screws);
    void Refuse(const std::string& rWhy);
    void TellChanged();

    IFMachine& m_rMachine;
    std::optional<CMachineState> m_State;
    std::array<Slots, 2> m_Weights{Slots(WEIGHTS), Slots(WEIGHTS)};
    std::size_t m_nFittings = 0;  ///< under way: what the machine says meanwhile is from before
    std::size_t m_nLooks = 0;     ///< under way
    CTimer m_Timer;
    CLifetime m_Lifetime;
};
