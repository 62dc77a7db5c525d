#include "platform/help/compiledhelp.h"

#include <algorithm>
#include <cstring>

#include "platform/help/unpacking.h"
#include "platform/system/files.h"

namespace {

/// Only of the letters that file names of a help are made of; others count as they are.
std::string ToLower(std::string Name) {
    std::ranges::transform(Name, Name.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return Name;
}

std::string ToKey(const std::string& rName) {
    return ToLower(rName.starts_with('/') ? rName : "/" + rName);
}

}  // namespace

CCompiledHelp::CCompiledHelp(const std::string& rFile, int Limit) {
    if (!Files::IsFile(rFile)) {
        return;
    }
    const std::optional<std::vector<char>> Sent = Unpacking::Run(rFile, Limit);
    *this = CCompiledHelp(Sent ? std::span<const char>(*Sent) : std::span<const char>());
}

CCompiledHelp::CCompiledHelp(std::span<const char> Sent) {
    if (Take(Sent)) {
        m_State = State::eRead;
    } else {
        m_Objects.clear();
        m_State = State::eDamaged;
    }
}

bool CCompiledHelp::Take(std::span<const char> Sent) {
    Unpacking::CHeader Header;
    while (Sent.size() >= sizeof(Header)) {
        std::memcpy(&Header, Sent.data(), sizeof(Header));
        Sent = Sent.subspan(sizeof(Header));
        if (Header == Unpacking::END) {
            return Sent.empty() && !m_Objects.empty();
        }
        // Sizes as the other process says them: it may have been led astray before it ended.
        if (Header.m_nName > Sent.size() || Header.m_nContents > Sent.size() - Header.m_nName) {
            return false;
        }
        CObject Object{std::string(Sent.data(), Header.m_nName),
                       std::string(Sent.data() + Header.m_nName, Header.m_nContents)};
        Sent = Sent.subspan(Header.m_nName + Header.m_nContents);
        std::string Key = ToKey(Object.m_Name);
        m_Objects.emplace(std::move(Key), std::move(Object));
    }
    return false;
}

const std::string* CCompiledHelp::Find(const std::string& rName) const {
    const auto Found = m_Objects.find(ToKey(rName));
    return Found == m_Objects.end() ? nullptr : &Found->second.m_Contents;
}

const std::string* CCompiledHelp::FindByEnding(const std::string& rEnding) const {
    const auto Found = std::ranges::find_if(
        m_Objects, [&](const auto& rObject) { return rObject.first.ends_with(ToLower(rEnding)); });
    return Found == m_Objects.end() ? nullptr : &Found->second.m_Contents;
}

std::vector<std::string> CCompiledHelp::GetPages() const {
    std::vector<std::string> Pages;
    for (const auto& [rKey, rObject] : m_Objects) {
        if (rKey.ends_with(".htm") || rKey.ends_with(".html")) {
            Pages.push_back(rObject.m_Name.starts_with('/') ? rObject.m_Name.substr(1) : rObject.m_Name);
        }
    }
    return Pages;
}
