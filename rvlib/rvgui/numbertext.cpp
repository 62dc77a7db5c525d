#include "rvlib/rvgui/numbertext.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "platform/system/text.h"

namespace Gui {

namespace {

constexpr std::size_t MAX_LENGTH = 400;  // of the largest double with its digits

bool IsDigit(char Character) {
    return Character >= '0' && Character <= '9';
}

/// Blanks and a plus sign, which from_chars doesn't know, go.
std::string_view FindNumber(std::string_view Text) {
    Text.remove_prefix(std::min(Text.find_first_not_of(Text::WHITE_SPACE), Text.size()));
    if (Text.size() > 1 && Text.front() == '+' && Text[1] != '-') {
        Text.remove_prefix(1);
    }
    return Text;
}

template <typename Number, typename... Arguments>
std::optional<Number> Read(std::string_view Text, Arguments... Args) {
    Number Value{};
    const auto [pEnd, Error] = std::from_chars(Text.data(), Text.data() + Text.size(), Value, Args...);
    return Error == std::errc() ? std::optional<Number>(Value) : std::nullopt;
}

}  // namespace

std::string WriteInteger(std::int64_t Value) {
    return std::to_string(Value);
}

std::string WriteHex(std::int64_t Value, int nDigits) {
    std::array<char, 16> Buffer{};
    const auto [pEnd, Error] =
        std::to_chars(Buffer.data(), Buffer.data() + Buffer.size(), static_cast<std::uint64_t>(Value), 16);
    const std::string Digits = MakeUpper(std::string_view(Buffer.data(), pEnd));
    return std::string(static_cast<std::size_t>(std::max(nDigits - static_cast<int>(Digits.size()), 0)),
                       '0') +
           Digits;
}

std::string WriteFraction(double Value, int nDigits) {
    std::array<char, MAX_LENGTH> Buffer{};
    const auto [pEnd, Error] =
        std::to_chars(Buffer.data(), Buffer.data() + Buffer.size(), Value, std::chars_format::fixed, nDigits);
    return {Buffer.data(), pEnd};
}

std::optional<std::int64_t> ReadInteger(std::string_view Text) {
    return Read<std::int64_t>(FindNumber(Text), 10);
}

std::optional<std::int64_t> ReadHex(std::string_view Text) {
    std::string_view Number = FindNumber(Text);
    if (Text::EqualNoCase(Number.substr(0, 2), "0x") && Number.size() > 2) {
        Number.remove_prefix(2);
    }
    return Read<std::int64_t>(Number, 16);
}

std::optional<double> ReadFraction(std::string_view Text) {
    const std::optional<double> Value = Read<double>(FindNumber(Text), std::chars_format::fixed);
    return Value && std::isfinite(*Value) ? Value : std::nullopt;
}

std::string MakePoint(std::string_view Text) {
    std::string Result(Text);
    std::replace(Result.begin(), Result.end(), ',', '.');
    return Result;
}

bool IsFractionText(std::string_view Text) {
    bool bPoint = false;
    for (std::size_t i = 0; i < Text.size(); ++i) {
        const bool bFirstPoint = Text[i] == '.' && !bPoint;
        const bool bSign = i == 0 && (Text[i] == '+' || Text[i] == '-');
        if (!IsDigit(Text[i]) && !bFirstPoint && !bSign) {
            return false;
        }
        bPoint = bPoint || bFirstPoint;
    }
    return true;
}

std::string MakeUpper(std::string_view Text) {
    std::string Result(Text);
    for (char& rCharacter : Result) {
        if (rCharacter >= 'a' && rCharacter <= 'z') {
            rCharacter = static_cast<char>(rCharacter - 'a' + 'A');
        }
    }
    constexpr std::string_view MICRO = "\u00B5";
    constexpr std::string_view CAPITAL_MU = "\u039C";
    for (std::size_t At = Result.find(MICRO); At != std::string::npos; At = Result.find(MICRO, At)) {
        Result.replace(At, MICRO.size(), CAPITAL_MU);
    }
    return Result;
}

}  // namespace Gui
