#include "platform/rvldb/languages.h"

#include <utility>

namespace {

constexpr const char* FALLBACK = "en";

}  // namespace

CLanguages::CLanguages(CLanguageFiles Files) : m_Files(std::move(Files)), m_Current(FALLBACK) {}

bool CLanguages::Choose(const std::string& rCode) {
    const std::string Language = rCode.substr(0, rCode.find_first_of("_-"));
    if (!m_Files.contains(Language)) {
        return false;
    }
    m_Current = Language;
    return true;
}

std::vector<std::string> CLanguages::GetCodes() const {
    std::vector<std::string> Codes;
    for (const auto& rEntry : m_Files) {
        Codes.push_back(rEntry.first);
    }
    return Codes;
}

std::string CLanguages::Find(const std::string& rKey) const {
    for (const std::string& rCode : {m_Current, std::string(FALLBACK)}) {
        const auto Found = m_Files.find(rCode);
        if (Found != m_Files.end()) {
            std::string Text = Found->second->Find(rKey);
            if (!Text.empty()) {
                return Text;
            }
        }
    }
    return rKey;
}
