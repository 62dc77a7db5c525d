#include "platform/rvmdb/names.h"

#include <algorithm>
#include <cctype>

namespace PreBalDB {

namespace {

bool IsBefore(const std::string& rLeft, const std::string& rRight) {
    const bool bLeftDefault = rLeft == "Default";
    const bool bRightDefault = rRight == "Default";
    if (bLeftDefault || bRightDefault) {
        return bLeftDefault && !bRightDefault;
    }
    const auto Fold = [](char Letter) { return std::tolower(static_cast<unsigned char>(Letter)); };
    const auto IsLetterBefore = [&Fold](char Left, char Right) { return Fold(Left) < Fold(Right); };
    if (std::lexicographical_compare(rLeft.begin(), rLeft.end(), rRight.begin(), rRight.end(),
                                     IsLetterBefore)) {
        return true;
    }
    if (std::lexicographical_compare(rRight.begin(), rRight.end(), rLeft.begin(), rLeft.end(),
                                     IsLetterBefore)) {
        return false;
    }
    return rLeft < rRight;
}

}  // namespace

void SortNames(std::vector<std::string>& rNames) {
    std::sort(rNames.begin(), rNames.end(), IsBefore);
}

}  // namespace PreBalDB
