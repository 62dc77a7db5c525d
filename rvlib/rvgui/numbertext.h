#pragma once
// Numbers in texts that an operator sees and edits, the same in every locale: the window system's own
// functions would write a decimal comma on a German machine.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Gui {

std::string WriteInteger(std::int64_t Value);
/// Capital letters, filled up with zeros to nDigits.
std::string WriteHex(std::int64_t Value, int nDigits);
std::string WriteFraction(double Value, int nDigits);

// The number at the beginning of a text behind blanks, as far as it goes; nothing if there is none, or one
// that is too large for its type.
std::optional<std::int64_t> ReadInteger(std::string_view Text);
std::optional<std::int64_t> ReadHex(std::string_view Text);
std::optional<double> ReadFraction(std::string_view Text);

/// A decimal comma becomes a point.
std::string MakePoint(std::string_view Text);
/// Nothing but digits, one point, and a sign in the first place: a fraction or the beginning of one.
bool IsFractionText(std::string_view Text);

/// Upper case of the letters A to Z, and of the micro sign, as the toolkit's edit box makes it of a unit.
std::string MakeUpper(std::string_view Text);

}  // namespace Gui
