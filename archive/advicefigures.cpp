#include "archive/advicefigures.h"

#include <cmath>
#include <cstdio>

#include "contract/units.h"
#include "platform/rvmdb/storetexts.h"

namespace AdviceFigures {

namespace {

std::string Write(double Value, int nDecimals) {
    char Buffer[64];
    std::snprintf(Buffer, sizeof Buffer, "%.*f", nDecimals, Value);
    return Buffer;
}

}  // namespace

std::string Number(double Value) {
    constexpr double WITH_DECIMALS_BELOW = 99.95;
    return Write(Value, std::abs(Value) < WITH_DECIMALS_BELOW ? 1 : 0);
}

std::string Reading(double Value) {
    return Number(Value) + " " + Units::UNBALANCE;
}

std::string Grams(double Value) {
    char Buffer[64];
    std::snprintf(Buffer, sizeof Buffer, "%.6g g", Value);
    return Buffer;
}

std::string Percent(double Fraction) {
    constexpr double WITH_DECIMALS_BELOW = 0.01;
    return Write(100.0 * Fraction, std::abs(Fraction) < WITH_DECIMALS_BELOW ? 1 : 0) + " %";
}

std::string Angle(double Degrees) {
    const long Whole = std::lround(Degrees) % 360;
    return std::to_string(Whole < 0 ? Whole + 360 : Whole) + "°";
}

std::string Fill(const char* pKey, const std::vector<std::string>& rArguments) {
    return PreBalDB::StoreTexts::Fill(pKey, rArguments);
}

}  // namespace AdviceFigures
