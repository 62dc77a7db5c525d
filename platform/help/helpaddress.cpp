#include "platform/help/helpaddress.h"

#include <filesystem>
#include <string_view>

#include "platform/system/files.h"
#include "platform/system/text.h"

namespace {

constexpr std::string_view SCHEME = "mk:@MSITStore:";
constexpr std::string_view WITHIN = "::";

}  // namespace

std::optional<CHelpAddress> CHelpAddress::Parse(const std::string& rUrl) {
    if (!Text::EqualNoCase(std::string_view(rUrl).substr(0, SCHEME.size()), SCHEME)) {
        return std::nullopt;
    }
    // The last one: a directory's name may hold it, too.
    const std::size_t nFile = rUrl.rfind(WITHIN);
    if (nFile == std::string::npos || nFile <= SCHEME.size()) {
        return std::nullopt;
    }
    CHelpAddress Address;
    Address.m_File = Files::ToNative(rUrl.substr(SCHEME.size(), nFile - SCHEME.size()));
    Address.m_Page = Files::ToNative(rUrl.substr(nFile + WITHIN.size()));
    Address.m_Page.erase(0, Address.m_Page.find_first_not_of('/'));
    if (const std::size_t nAnchor = Address.m_Page.find('#'); nAnchor != std::string::npos) {
        Address.m_Anchor = Address.m_Page.substr(nAnchor + 1);
        Address.m_Page.erase(nAnchor);
    }
    return Address;
}

CHelpAddress CHelpAddress::OfTopic(const std::string& rDirectory, const std::string& rPrefix,
                                   const std::string& rTopic) {
    return {Files::ToNative(rDirectory) + "/" + rPrefix + "_Falconet.chm", rTopic + ".htm", {}};
}

std::string CHelpAddress::MakeUrl() const {
    return std::string(SCHEME) + m_File + std::string(WITHIN) + "/" + m_Page +
           (m_Anchor.empty() ? "" : "#" + m_Anchor);
}

std::string CHelpAddress::GetFileName() const {
    return std::filesystem::path(m_File).filename().string();
}

std::string CHelpAddress::GetDirectory() const {
    return std::filesystem::path(m_File).parent_path().string();
}
