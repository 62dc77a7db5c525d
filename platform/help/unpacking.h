#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The process that unpacks a compiled help file, and what it sends: objects, each a header, its name and its
/// contents, then a last header.
namespace Unpacking {

struct CHeader {
    std::uint32_t m_nName = 0;
    std::uint32_t m_nContents = 0;
    bool operator==(const CHeader&) const = default;
};
/// Behind the last object: without it the process has ended too soon.
constexpr CHeader END{0xFFFFFFFF, 0xFFFFFFFF};

/// Most bytes that are taken, of one object and of all together.
constexpr std::size_t MAX_OBJECT = std::size_t{16} << 20U;
constexpr std::size_t MAX_TOTAL = std::size_t{64} << 20U;

/// What the process has sent; nothing if it failed, sent too much, or took longer than Limit ms.
std::optional<std::vector<char>> Run(const std::string& rFile, int Limit);

}  // namespace Unpacking
