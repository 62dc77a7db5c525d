#pragma once
#include <chrono>
#include <initializer_list>
#include <string>
#include <string_view>

/// Texts and figures of reports, with a point in every language, as on the page.
namespace ReportText {

/// Of names.
constexpr std::size_t LONGEST_NAME = 120;

/// A text from outside as it may stand in a report: what is no UTF-8 is replaced, so are characters that
/// turn the direction of writing round; line breaks and control characters become blanks; what is longer ends
/// with "…".
std::string Clean(std::string_view Text, std::size_t Longest = LONGEST_NAME);
/// Clean, and a dash for an empty one.
std::string CleanName(std::string_view Text);

/// With so many decimals; a dash for what is no number.
std::string Fixed(double Value, int nDecimals);
/// As a reading: one decimal below 100, more where rounding would put it on the other side of the target.
std::string Reading(double Value);
std::string Reading(double Value, double Target);
/// With so many digits in all, at least those before the point: "120", "0.036".
std::string Digits(double Value, int nDigits = 3);
/// As somebody has entered it, up to six digits: "12", "6.3".
std::string General(double Value);
/// "0.36 ± 0.17": the half width with two digits, the value to the same decimal.
std::string WithUncertainty(double Value, double HalfWidth);
/// "45°", 0 to 359; with decimals if there are some.
std::string Angle(double Degrees, int nDecimals = 0);

/// In this computer's time zone and the language's form, or in UTC.
std::string Date(std::chrono::sys_seconds Moment, bool bUtc);

/// The text of a key with its "%s" filled in order.
std::string Say(const char* pKey, std::initializer_list<std::string> Arguments = {});

}  // namespace ReportText
