#include "platform/help/sitemap.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/system/text.h"

namespace SiteMap {

namespace {

/// The value of an attribute of a tag, as it stands in quotation marks; empty if there is none.
std::string_view GetAttribute(std::string_view Tag, const std::string& Name) {
    const std::string Wanted = Name + "=\"";
    for (std::size_t i = 1; i + Wanted.size() <= Tag.size(); ++i) {
        if (Text::WHITE_SPACE.find(Tag[i - 1]) != std::string_view::npos &&
            Text::EqualNoCase(Tag.substr(i, Wanted.size()), Wanted)) {
            const std::string_view Value = Tag.substr(i + Wanted.size());
            return Value.substr(0, Value.find('"'));
        }
    }
    return {};
}

std::string Unescape(std::string_view Value) {
    static constexpr std::array<std::pair<std::string_view, char>, 4> ENTITIES = {
        {{"&quot;", '"'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}}};
    std::string Result;
    while (!Value.empty()) {
        const auto* const pFound = std::ranges::find_if(
            ENTITIES, [Value](const auto& rEntity) { return Value.starts_with(rEntity.first); });
        const bool bFound = pFound != ENTITIES.end();
        Result += bFound ? pFound->second : Value.front();
        Value.remove_prefix(bFound ? pFound->first.size() : 1);
    }
    return Result;
}

bool IsTag(std::string_view Tag, std::string_view Name) {
    if (!Text::EqualNoCase(Tag.substr(0, Name.size()), Name)) {
        return false;
    }
    return Tag.size() == Name.size() || Text::WHITE_SPACE.find(Tag[Name.size()]) != std::string_view::npos;
}

}  // namespace

std::vector<CEntry> Parse(const std::string& rFile) {
    std::vector<CEntry> Entries;
    const std::string_view File = rFile;
    CEntry Entry;
    int nDepth = -1;
    std::size_t nBegin = File.find('<');
    while (nBegin != std::string_view::npos && Entries.size() < MAX_ENTRIES) {
        const std::size_t nEnd = File.find('>', nBegin);
        if (nEnd == std::string_view::npos) {
            break;
        }
        const std::string_view Tag = File.substr(nBegin + 1, nEnd - nBegin - 1);
        if (IsTag(Tag, "ul")) {
            ++nDepth;
        } else if (IsTag(Tag, "/ul")) {
            --nDepth;
        } else if (IsTag(Tag, "object")) {
            Entry = {};
        } else if (IsTag(Tag, "param")) {
            const std::string_view Name = GetAttribute(Tag, "name");
            if (Text::EqualNoCase(Name, "Name")) {
                Entry.m_Name = Unescape(GetAttribute(Tag, "value"));
            } else if (Text::EqualNoCase(Name, "Local")) {
                Entry.m_Page = Unescape(GetAttribute(Tag, "value"));
            }
        } else if (IsTag(Tag, "/object") && !Entry.m_Name.empty()) {
            Entry.m_nDepth = std::clamp(nDepth, 0, MAX_DEPTH);
            Entries.push_back(std::exchange(Entry, {}));
        }
        nBegin = File.find('<', nEnd);
    }
    return Entries;
}

}  // namespace SiteMap
