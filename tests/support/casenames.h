#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>

/// Names of a table's cases, for INSTANTIATE_TEST_SUITE_P: what they are called when one fails.
namespace CaseNames {

/// What a name may hold of a text, with its place in the table, since two texts may differ in the rest only.
inline std::string FromText(const std::string& rText, std::size_t Place) {
    constexpr std::size_t LONGEST = 48;
    std::string Name;
    for (const char Each : rText) {
        if (std::isalnum(static_cast<unsigned char>(Each)) != 0) {
            Name += Each;
        } else if (!Name.empty() && Name.back() != '_') {
            Name += '_';
        }
    }
    Name.resize(std::min(Name.size(), LONGEST));
    return Name + (Name.empty() || Name.back() != '_' ? "_" : "") + std::to_string(Place);
}

/// By what a case is printed as.
constexpr auto BY_TEXT = [](const auto& rInfo) {
    return FromText(testing::PrintToString(rInfo.param), rInfo.index);
};

/// "Seed7".
inline auto ByNumber(const char* pWhat) {
    return [pWhat](const auto& rInfo) {
        std::string Name = pWhat + testing::PrintToString(rInfo.param);
        for (char& rEach : Name) {
            rEach = rEach == '.' ? '_' : rEach;
        }
        return Name;
    };
}

}  // namespace CaseNames
