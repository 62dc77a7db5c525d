#include "platform/rvopc/opcvalue.h"

#include <charconv>

namespace {

std::optional<double> TextToNumber(const std::string& rText) {
    double Number = 0.0;
    const char* const pEnd = rText.data() + rText.size();
    const auto [pStop, Error] = std::from_chars(rText.data(), pEnd, Number);
    if (Error != std::errc() || pStop != pEnd) {
        return std::nullopt;
    }
    return Number;
}

}  // namespace

std::optional<double> OpcValueToNumber(const COpcValue& rValue) {
    if (const auto* pInteger = std::get_if<std::int32_t>(&rValue)) {
        return static_cast<double>(*pInteger);
    }
    if (const auto* pDouble = std::get_if<double>(&rValue)) {
        return *pDouble;
    }
    if (const auto* pText = std::get_if<std::string>(&rValue)) {
        return TextToNumber(*pText);
    }
    return std::nullopt;
}
