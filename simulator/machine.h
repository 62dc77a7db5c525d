#pragma once
#include <functional>
#include <nlohmann/json.hpp>

/// A machine with a spindle and somebody at it who fits weights: the simulator in this process, or one
/// elsewhere over its control link. One request, one answer, both JSON objects:
///   {"speed": 3000}, {"weights": {"plane": 1, "angles": [30, 180]}}, {"screws": {"plane": 1, "fitted":
///   [{"hole": 1, "grams": 2.5}]}}, {"set": {"number": 2}}, {"fault": {"kind": "drop", "next": 3}}, {"state":
///   {}}
/// answered by {"ok": true, ...} or {"error": "what was wrong and what would be right"}.
/// Planes count from 1. Weights and screws take the place of those fitted before in the plane. Holes count
/// from 1 as they are numbered on the rotor, in the sense of its angle scale.
class IFMachine {
public:
    using Done = std::function<void(const nlohmann::json& rAnswer)>;
    virtual ~IFMachine() = default;
    /// The answer comes through the event loop, never from inside the call. A lost connection answers with an
    /// error.
    virtual void Request(const nlohmann::json& rRequest, Done OnAnswer) = 0;
};
