#include "rvlib/settings/registry.h"

#include "platform/system/text.h"

bool CWKRegistry::Open(Registry::Root RootKey, const std::string& rPath, Registry::Access Wanted,
                       const std::string& rSeparators) {
    if (IsOpen()) {
        return false;
    }
    for (const std::string& rLevel : Text::Split(rPath, rSeparators)) {
        m_Current = Registry::OpenKey(RootKey, m_Current, rLevel, Wanted);
        if (!IsOpen()) {
            Close();
            return false;
        }
        m_Keys.push_back(m_Current);
    }
    return IsOpen();
}

void CWKRegistry::Close() {
    while (!m_Keys.empty()) {
        Registry::CloseKey(m_Keys.back());
        m_Keys.pop_back();
    }
    m_Current = 0;
}

bool CWKRegistry::GetString(const char* pName, std::string& rValue) const {
    const auto Value = Registry::GetText(m_Current, (pName == nullptr) ? "" : pName);
    if (Value) {
        rValue = *Value;
    }
    return Value.has_value();
}

bool CWKRegistry::GetNumber(const char* pName, std::uint32_t& rValue) const {
    const auto Value = Registry::GetNumber(m_Current, (pName == nullptr) ? "" : pName);
    if (Value) {
        rValue = *Value;
    }
    return Value.has_value();
}
