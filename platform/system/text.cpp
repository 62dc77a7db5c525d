#include "platform/system/text.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Text {

namespace {

char ToLower(char Character) {
    return ((Character >= 'A') && (Character <= 'Z')) ? static_cast<char>(Character - 'A' + 'a') : Character;
}

}  // namespace

std::string Trim(std::string_view Value, std::string_view Characters) {
    const std::size_t First = Value.find_first_not_of(Characters);
    if (First == std::string_view::npos) {
        return {};
    }
    return std::string(Value.substr(First, Value.find_last_not_of(Characters) - First + 1));
}

bool EqualNoCase(std::string_view First, std::string_view Second) {
    return std::equal(First.begin(), First.end(), Second.begin(), Second.end(),
                      [](char A, char B) { return ToLower(A) == ToLower(B); });
}

std::vector<std::string> Split(std::string_view Value, std::string_view Separators) {
    std::vector<std::string> Parts;
    while (!Value.empty()) {
        const std::size_t End = std::min(Value.find_first_of(Separators), Value.size());
        std::string Part = Trim(Value.substr(0, End), " ");
        if (!Part.empty()) {
            Parts.push_back(std::move(Part));
        }
        Value.remove_prefix(std::min(End + 1, Value.size()));
    }
    return Parts;
}

int ToInt(std::string_view Value) {
    std::size_t Position = std::min(Value.find_first_not_of(WHITE_SPACE), Value.size());
    const bool bNegative = (Position < Value.size()) && (Value[Position] == '-');
    if (bNegative || ((Position < Value.size()) && (Value[Position] == '+'))) {
        ++Position;
    }
    constexpr std::int64_t LIMIT = -static_cast<std::int64_t>(std::numeric_limits<int>::min());
    std::int64_t Number = 0;
    for (; (Position < Value.size()) && (Value[Position] >= '0') && (Value[Position] <= '9'); ++Position) {
        Number = std::min(Number * 10 + (Value[Position] - '0'), LIMIT);
    }
    if (bNegative) {
        return static_cast<int>(-Number);
    }
    return static_cast<int>(std::min<std::int64_t>(Number, std::numeric_limits<int>::max()));
}

}  // namespace Text
