#include "console/csv.h"

#include <array>
#include <charconv>

namespace Csv {

std::string Cell(const std::string& rText) {
    constexpr const char* FORMULA = "=+-@\t\r";
    std::string Text = rText;
    if (!Text.empty() && std::string(FORMULA).find(Text.front()) != std::string::npos) {
        Text.insert(Text.begin(), '\'');
    }
    if (Text.find_first_of("\",;\r\n\t") == std::string::npos) {
        return Text;
    }
    std::string Quoted = "\"";
    for (const char Each : Text) {
        Quoted += Each;
        if (Each == '"') {
            Quoted += Each;
        }
    }
    return Quoted + '"';
}

std::string Cell(double Number) {
    std::array<char, 32> Digits{};
    const auto [pEnd, Error] = std::to_chars(Digits.data(), Digits.data() + Digits.size(), Number);
    return {Digits.data(), pEnd};
}

std::string Line(const std::vector<std::string>& rCells) {
    std::string Result;
    for (std::size_t i = 0; i < rCells.size(); ++i) {
        Result += (i == 0 ? "" : ",") + rCells[i];
    }
    return Result + "\r\n";
}

}  // namespace Csv
