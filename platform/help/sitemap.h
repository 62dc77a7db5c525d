#pragma once
#include <string>
#include <vector>

/// The table of contents (.hhc) or the index (.hhk) of a compiled help: nested lists of objects with a name
/// and a page.
namespace SiteMap {

struct CEntry {
    std::string m_Name;
    std::string m_Page;  ///< empty for a heading
    int m_nDepth = 0;    ///< 0 for the outermost list
};

/// Most entries, and deepest list, that are taken of a file.
constexpr std::size_t MAX_ENTRIES = 10000;
constexpr int MAX_DEPTH = 10;

/// In the file's order. What can't be understood is left out.
std::vector<CEntry> Parse(const std::string& rFile);

}  // namespace SiteMap
