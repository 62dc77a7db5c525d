#pragma once
#include <array>
#include <cstdint>
#include <vector>

#include "contract/prebalcodes.h"

/// What the NC is told of a procedure: 14 numbers, step and action first, then weights and angles of two
/// planes. Unused weights and angles are -1 in a running procedure.
class CPreBalNotification : public CPreBalCodes {
public:
    /// Empties rData and appends step, action, then per plane angle 1, weight 1, angle 2, weight 2, angle 3,
    /// weight 3: not the order in memory. Logs. Result 1.
    int Encode(std::vector<std::int32_t>& rData) const;
    /// Writes the record to the log under "PbFlow".
    void Log() const;
    /// Text of a step; eSetupOverTarget and eRebalOverTarget have none.
    static const char* PreBalStepToString(std::int32_t Value);
    static const char* ActionToString(std::int32_t Value);

    std::int32_t m_Step = 0;
    std::int32_t m_Action = 0;
    /// Weight and angle in degrees of corrections 1 to 3, per plane.
    std::array<std::int32_t, 3> m_WeightsPlane1{};
    std::array<std::int32_t, 3> m_AnglesPlane1{};
    std::array<std::int32_t, 3> m_WeightsPlane2{};
    std::array<std::int32_t, 3> m_AnglesPlane2{};
};
