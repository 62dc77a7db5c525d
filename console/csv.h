#pragma once
#include <string>
#include <vector>

/// Lines of comma-separated values (RFC 4180) for spreadsheet programs.
namespace Csv {

/// A text from outside as a cell: quoted where that is needed. One that a spreadsheet would take for a
/// formula has an apostrophe before it, which makes it a text.
std::string Cell(const std::string& rText);
/// A number as a cell, with a point whatever the language; it is no formula, also if it begins with "-".
std::string Cell(double Number);
/// A line with its end, of cells as Cell makes them.
std::string Line(const std::vector<std::string>& rCells);

}  // namespace Csv
