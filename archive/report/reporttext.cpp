#include "archive/report/reporttext.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/storetexts.h"
#include "platform/system/localtime.h"

namespace ReportText {

namespace {

constexpr const char* REPLACEMENT = "\xEF\xBF\xBD";
constexpr const char* DASH = "–";
constexpr double WITH_DECIMALS_BELOW = 99.95;
constexpr int MAX_DECIMALS = 4;

/// Length of the character at the beginning, 0 if it is none: by the table of well-formed byte sequences of
/// the Unicode standard, which knows no overlong forms and no surrogates.
std::size_t GetLength(std::string_view Text) {
    const auto Byte = [&Text](std::size_t i) {
        return i < Text.size() ? static_cast<std::uint8_t>(Text[i]) : std::uint8_t{0};
    };
    const auto Within = [&Byte](std::size_t i, int Min, int Max) { return Byte(i) >= Min && Byte(i) <= Max; };
    const int First = Byte(0);
    if (First < 0x80) {
        return 1;
    }
    if (First >= 0xC2 && First <= 0xDF) {
        return Within(1, 0x80, 0xBF) ? 2 : 0;
    }
    if (First >= 0xE0 && First <= 0xEF) {
        const int Min = First == 0xE0 ? 0xA0 : 0x80;
        const int Max = First == 0xED ? 0x9F : 0xBF;
        return Within(1, Min, Max) && Within(2, 0x80, 0xBF) ? 3 : 0;
    }
    if (First >= 0xF0 && First <= 0xF4) {
        const int Min = First == 0xF0 ? 0x90 : 0x80;
        const int Max = First == 0xF4 ? 0x8F : 0xBF;
        return Within(1, Min, Max) && Within(2, 0x80, 0xBF) && Within(3, 0x80, 0xBF) ? 4 : 0;
    }
    return 0;
}

bool IsControl(std::string_view Character) {
    const auto First = static_cast<std::uint8_t>(Character[0]);
    return Character.size() == 1
               ? First < 0x20 || First == 0x7F
               : Character.size() == 2 && First == 0xC2 && static_cast<std::uint8_t>(Character[1]) < 0xA0;
}

/// U+200E, U+200F, U+2028 to U+202E, U+2066 to U+2069: marks, breaks and overrides of direction; U+FFFE and
/// U+FFFF, which are no characters.
bool IsUnwanted(std::string_view Character) {
    if (Character.size() != 3) {
        return false;
    }
    const std::string_view Lead = Character.substr(0, 2);
    const auto Last = static_cast<std::uint8_t>(Character[2]);
    return (Lead == "\xE2\x80" && (Last == 0x8E || Last == 0x8F || (Last >= 0xA8 && Last <= 0xAE))) ||
           (Lead == "\xE2\x81" && Last >= 0xA6 && Last <= 0xA9) || (Lead == "\xEF\xBF" && Last >= 0xBE);
}

/// That a figure has with so many digits in all.
int CountDecimals(double Value, int nDigits) {
    if (Value == 0.0 || !std::isfinite(Value)) {
        return 0;
    }
    const int nBefore = static_cast<int>(std::floor(std::log10(std::abs(Value)))) + 1;
    constexpr int MOST = 9;
    return nBefore >= nDigits ? 0 : std::min(nDigits - nBefore, MOST);
}

}  // namespace

std::string Clean(std::string_view Text, std::size_t Longest) {
    std::string Result;
    std::size_t nCharacters = 0;
    while (!Text.empty()) {
        if (nCharacters++ == Longest) {
            return Result + "…";
        }
        const std::size_t Length = GetLength(Text);
        if (Length == 0) {
            Result += REPLACEMENT;
            Text.remove_prefix(1);
            continue;
        }
        const std::string_view Character = Text.substr(0, Length);
        if (IsControl(Character)) {
            Result += ' ';
        } else if (IsUnwanted(Character)) {
            Result += REPLACEMENT;
        } else {
            Result += Character;
        }
        Text.remove_prefix(Length);
    }
    return Result;
}

std::string CleanName(std::string_view Text) {
    const std::string Name = Clean(Text);
    return Name.find_first_not_of(' ') == std::string::npos ? DASH : Name;
}

std::string Fixed(double Value, int nDecimals) {
    if (!std::isfinite(Value)) {
        return DASH;
    }
    std::array<char, 400> Text{};
    std::snprintf(Text.data(), Text.size(), "%.*f", nDecimals, Value);
    return Text.data();
}

std::string Reading(double Value) {
    return Fixed(Value, std::abs(Value) < WITH_DECIMALS_BELOW ? 1 : 0);
}

std::string Reading(double Value, double Target) {
    for (int nDecimals = std::abs(Value) < WITH_DECIMALS_BELOW ? 1 : 0; nDecimals < MAX_DECIMALS;
         ++nDecimals) {
        std::string Text = Fixed(Value, nDecimals);
        if ((std::strtod(Text.c_str(), nullptr) > Target) == (Value > Target)) {
            return Text;
        }
    }
    return Fixed(Value, MAX_DECIMALS);
}

std::string Digits(double Value, int nDigits) {
    return Fixed(Value, CountDecimals(Value, nDigits));
}

std::string General(double Value) {
    if (!std::isfinite(Value)) {
        return DASH;
    }
    std::array<char, 40> Text{};
    std::snprintf(Text.data(), Text.size(), "%.6g", Value);
    return Text.data();
}

std::string WithUncertainty(double Value, double HalfWidth) {
    const int nDecimals = CountDecimals(HalfWidth, 2);
    return Fixed(Value, nDecimals) + " ± " + Fixed(HalfWidth, nDecimals);
}

std::string Angle(double Degrees, int nDecimals) {
    double Wrapped = std::fmod(std::fmod(Degrees, 360.0) + 360.0, 360.0);
    if (Fixed(Wrapped, nDecimals) == Fixed(360.0, nDecimals)) {
        Wrapped = 0.0;
    }
    return Fixed(Wrapped, nDecimals) + "°";
}

std::string Date(std::chrono::sys_seconds Moment, bool bUtc) {
    if (!bUtc) {
        return FormatLocalTime(Moment, GetText("REPORT_DATE_FORMAT").c_str());
    }
    const auto Day = std::chrono::floor<std::chrono::days>(Moment);
    const std::chrono::year_month_day Calendar(Day);
    const std::chrono::hh_mm_ss Time(Moment - Day);
    std::array<char, 64> Text{};
    std::snprintf(Text.data(), Text.size(), "%04d-%02u-%02u %02d:%02d UTC", static_cast<int>(Calendar.year()),
                  static_cast<unsigned>(Calendar.month()), static_cast<unsigned>(Calendar.day()),
                  static_cast<int>(Time.hours().count()), static_cast<int>(Time.minutes().count()));
    return Text.data();
}

std::string Say(const char* pKey, std::initializer_list<std::string> Arguments) {
    return PreBalDB::StoreTexts::Fill(pKey, Arguments);
}

}  // namespace ReportText
