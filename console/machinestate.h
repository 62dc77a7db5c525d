#pragma once
#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "contract/holering.h"

/// What a machine answers to {"state": {}}, as far as somebody who stands before it sees it. What an external
/// machine leaves out has the values shown.
struct CMachineState {
    struct CPlane {
        std::vector<int> m_Weights;  ///< whole degrees on the scale
        std::vector<CRotorScrew> m_Screws;
        bool m_bCounterClockwiseScale = false;  ///< as seen from this plane's own end
        int m_nHoles = 12;
        double m_Residual = 0.0;       ///< what is really left, in weights or grams
        double m_ResidualAngle = 0.0;  ///< degrees, counter-clockwise as seen from plane 1's end

        friend bool operator==(const CPlane&, const CPlane&) = default;
    };

    double m_Speed = 0.0;      ///< rpm
    double m_Commanded = 0.0;  ///< rpm
    bool m_bLock = false;
    bool m_bCounterClockwise = false;  ///< rotation, as seen from plane 1's end
    std::vector<CPlane> m_Planes;

    /// Whether nobody may reach into it.
    bool IsTurning() const { return m_Speed > 0.0 || m_Commanded > 0.0; }

    /// Nothing if the answer is an error or no state at all.
    static std::optional<CMachineState> Read(const nlohmann::json& rAnswer);

    friend bool operator==(const CMachineState&, const CMachineState&) = default;
};
