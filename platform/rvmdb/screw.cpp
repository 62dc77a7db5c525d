#include "platform/rvmdb/screw.h"

#include <array>
#include <charconv>

namespace PreBalDB {

std::string CScrew::GetWeightAsString() const {
    // Room for the longest number without exponent.
    std::array<char, 1100> Text{};
    const auto Result =
        std::to_chars(Text.data(), Text.data() + Text.size(), m_Weight, std::chars_format::fixed);
    return {Text.data(), Result.ptr};
}

}  // namespace PreBalDB
