#pragma once
#include <cstdint>

namespace PreBalDB {

/// Enumerations that the records share.
class CTypeBase {
public:
    enum Direction : std::uint8_t { eClockwise = 0, eCounterClockwise = 1 };
    enum AffectedPlane : std::uint8_t { ePlane1 = 0, ePlane2 = 1, eUnknownPlane = 255 };

    /// "CW" or "CCW", for logs.
    static const char* DirectionToString(Direction Value) {
        return Value == eClockwise ? "CW" : Value == eCounterClockwise ? "CCW" : "unknown direction";
    }

protected:
    CTypeBase() = default;
    ~CTypeBase() = default;
    CTypeBase(const CTypeBase&) = default;
    CTypeBase& operator=(const CTypeBase&) = default;
};

}  // namespace PreBalDB
