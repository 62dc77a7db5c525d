// What a compiled help brings along: its table of contents or index, and the address of a page.
#include <cstdint>
#include <string>

#include "fuzz/fuzzing.h"
#include "platform/help/helpaddress.h"
#include "platform/help/sitemap.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const std::string Text(pData, pData + nSize);
    const std::vector<SiteMap::CEntry> Entries = SiteMap::Parse(Text);
    Require(Entries.size() <= SiteMap::MAX_ENTRIES);
    for (const SiteMap::CEntry& rEntry : Entries) {
        Require(!rEntry.m_Name.empty() && rEntry.m_nDepth >= 0 && rEntry.m_nDepth <= SiteMap::MAX_DEPTH);
    }
    if (const auto Address = CHelpAddress::Parse(Text)) {
        // Once more through its own form it stays what it is.
        const auto Again = CHelpAddress::Parse(Address->MakeUrl());
        Require(Again && Again->m_Page == Address->m_Page && Again->m_Anchor == Address->m_Anchor);
        Require(Again->m_File == Address->m_File);
    }
    return 0;
}
