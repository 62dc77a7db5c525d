#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "contract/prebalcodes.h"

/// A notification as the NC gets it: step, action, then per plane angle and weight of three corrections.
struct CNcNotification : CPreBalCodes {
    static constexpr std::size_t SIZE = 14;
    static constexpr std::size_t CORRECTIONS = 3;

    /// Where a correction's angle stands; its weight follows. Plane and correction count from 0.
    static constexpr std::size_t GetPlace(std::size_t Plane, std::size_t Correction) {
        return 2 + 2 * (Plane * CORRECTIONS + Correction);
    }

    std::int32_t GetStep() const { return m_Values[0]; }
    std::int32_t GetAction() const { return m_Values[1]; }
    /// Angles of a plane's corrections in degrees, those in use only. Plane counts from 0.
    std::vector<int> GetAngles(std::size_t Plane) const {
        std::vector<int> Angles;
        for (std::size_t i = 0; i < CORRECTIONS; ++i) {
            const std::int32_t Angle = GetAngle(Plane, i);
            if (Angle >= 0) {
                Angles.push_back(Angle);
            }
        }
        return Angles;
    }
    /// A correction of a plane; angle in degrees, below 0 if it isn't in use.
    std::int32_t GetAngle(std::size_t Plane, std::size_t Correction) const {
        return m_Values[GetPlace(Plane, Correction)];
    }
    /// Hundredths of a gram, with screws.
    std::int32_t GetWeight(std::size_t Plane, std::size_t Correction) const {
        return m_Values[GetPlace(Plane, Correction) + 1];
    }
    friend bool operator==(const CNcNotification& rLeft, const CNcNotification& rRight) {
        return rLeft.m_Values == rRight.m_Values;
    }

    std::array<std::int32_t, SIZE> m_Values{};
};
