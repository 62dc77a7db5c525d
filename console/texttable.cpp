#include "console/texttable.h"

#include <QString>
#include <algorithm>

namespace {

std::string Pad(const std::string& rText, std::size_t Width) {
    return QString::fromStdString(rText).leftJustified(static_cast<qsizetype>(Width)).toStdString();
}

}  // namespace

std::string MakeTable(const std::vector<std::vector<std::string>>& rRows) {
    std::string Table;
    std::vector<std::size_t> Widths;
    for (const std::vector<std::string>& rRow : rRows) {
        Widths.resize(std::max(Widths.size(), rRow.size()));
        for (std::size_t i = 0; i < rRow.size(); ++i) {
            Widths[i] = std::max(Widths[i], static_cast<std::size_t>(QString::fromStdString(rRow[i]).size()));
        }
    }
    for (const std::vector<std::string>& rRow : rRows) {
        std::string Line;
        for (std::size_t i = 0; i < rRow.size(); ++i) {
            Line += i + 1 == rRow.size() ? rRow[i] : Pad(rRow[i], Widths[i] + 2);
        }
        Table += Line.substr(0, Line.find_last_not_of(' ') + 1) + "\n";
    }
    return Table;
}
