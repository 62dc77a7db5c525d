#pragma once
#include <string>
#include <vector>

/// Figures and texts of advice: with a point in every language, as on the page.
namespace AdviceFigures {

/// "1.1", "120": one decimal below 100.
std::string Number(double Value);
/// With its unit: "1.1 µm/s".
std::string Reading(double Value);
/// "2.5 g", "12.25 g".
std::string Grams(double Value);
/// "41 %", of a fraction; "0.4 %" below one.
std::string Percent(double Fraction);
/// "60°", 0 to 359.
std::string Angle(double Degrees);
/// The text of the key with its "%s" replaced, one after the other.
std::string Fill(const char* pKey, const std::vector<std::string>& rArguments);

}  // namespace AdviceFigures
