#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>

// Names of values in frames, for the log.
namespace Comm {

/// The name at that place of a table; pOther behind its end.
inline const char* NameOf(std::span<const char* const> Names, std::uint32_t Value, const char* pOther) {
    return Value < Names.size() ? Names[Value] : pOther;
}

/// A sensor adaption: the first values have names, those up to 31 read as pPrefix and the number, and the
/// rest have no name.
std::optional<std::string> AdaptionName(std::span<const char* const> Names, const char* pPrefix,
                                        std::uint32_t Adaption);

/// Highest sensor adaption that has a name.
constexpr std::uint32_t LAST_ADAPTION = 31;

}  // namespace Comm
