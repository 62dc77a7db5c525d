#pragma once
#include <string>
#include <string_view>
#include <vector>

// Small operations on text that several parts share. Letter case and white space are those of ASCII, whatever
// the locale: names in files must mean the same on every machine.
namespace Text {

/// Blanks, tabs, carriage returns, line feeds, form feeds, vertical tabs.
constexpr std::string_view WHITE_SPACE = " \t\r\n\f\v";

/// Without any of Characters at its beginning and its end.
std::string Trim(std::string_view Value, std::string_view Characters = WHITE_SPACE);
/// Equal without regard to the case of the letters A to Z.
bool EqualNoCase(std::string_view First, std::string_view Second);
/// The parts between the separators, trimmed of blanks, without the empty ones. Any character of Separators
/// separates; without any the value is one part.
std::vector<std::string> Split(std::string_view Value, std::string_view Separators);
/// The standard text-to-integer rule: white space, a sign, then leading digits count; 0 if there are none.
/// Beyond the range of int it stays at the nearest end of the range.
int ToInt(std::string_view Value);

}  // namespace Text
