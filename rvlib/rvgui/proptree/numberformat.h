#pragma once
// How the numbers of spin edit items are stored and written.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "rvlib/rvgui/numbertext.h"

namespace PropTree {

/// What the types of values differ in: the storage, and whether a step can be fractional.
template <typename T>
struct CNumberTraits {
    static constexpr double GetFraction(T /*Step*/) { return 0.0; }
    /// The nearest that 64 bits hold.
    static std::int64_t ToInteger(T Value) {
        return static_cast<std::int64_t>(
            std::min<std::uint64_t>(Value, std::numeric_limits<std::int64_t>::max()));
    }
    /// False, and rValue unchanged, if the type can't hold it.
    static bool FromInteger(std::int64_t Integer, T& rValue) {
        if (Integer < 0 || static_cast<std::uint64_t>(Integer) > std::numeric_limits<T>::max()) {
            return false;
        }
        rValue = static_cast<T>(Integer);
        return true;
    }
};

template <>
struct CNumberTraits<double> {
    static double GetFraction(double Step) { return Step - std::trunc(Step); }
    static std::int64_t ToInteger(double Value) {
        constexpr double LIMIT = 9.0e18;  // within what 64 bits hold
        return static_cast<std::int64_t>(std::clamp(Value, -LIMIT, LIMIT));
    }
    static bool FromInteger(std::int64_t Integer, double& rValue) {
        rValue = static_cast<double>(Integer);
        return true;
    }
};

/// How a number is written, the same in every locale.
struct CNumberFormat {
    enum Kind { eInteger, eFraction, eHex };
    Kind m_Kind = eInteger;
    int m_nDigits = 0;  ///< behind the point, or in all: then behind "0x"

    template <typename T>
    std::string Write(T Value) const {
        switch (m_Kind) {
            case eFraction:
                return Gui::WriteFraction(static_cast<double>(Value), m_nDigits);
            case eHex:
                return (m_nDigits > 0 ? "0x" : "") +
                       Gui::WriteHex(CNumberTraits<T>::ToInteger(Value), m_nDigits);
            case eInteger:
                break;
        }
        return Gui::WriteInteger(CNumberTraits<T>::ToInteger(Value));
    }
};

}  // namespace PropTree
