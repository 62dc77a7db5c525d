#include "rvlib/settings/xmlconfig.h"

#include <array>
#include <string_view>

#include "platform/system/eventloop.h"
#include "rvlib/settings/installation.h"

namespace {

constexpr int c_nReadAttempts = 5;
constexpr std::uint32_t c_RetryPause = 100;  // ms
constexpr const char* c_pRootName = "Corvane";
constexpr const char* c_pSeparator = "\\";

struct CUserLevel {
    std::string_view m_Name;
    std::uint32_t m_Code;
};
constexpr std::array<CUserLevel, 4> c_UserLevels = {
    {{"observer", 0}, {"operator", 0x1000000}, {"expert", 0x2000000}, {"administrator", 0x3000000}}};

}  // namespace

bool CRVXMLConfig::Open() {
    if (m_Data.HasRoot()) {
        return false;
    }
    const CPath File = GetConfigFile();
    if (!File.IsFile()) {
        m_bNew = true;
        m_FileName = File;
        return m_Data.CreateRoot(c_pRootName);
    }
    m_bNew = false;
    // Another program may be writing the file just now.
    for (int i = 0; i < c_nReadAttempts; ++i) {
        std::string Text;
        if (ReadTextFile(File, Text) != eNoText) {
            return m_Data.ParseString(Text);
        }
        IFEventLoop::Current().Sleep(c_RetryPause);
    }
    return false;
}

int CRVXMLConfig::GetInt(const std::string& rSection, const std::string& rName, int nDefault) const {
    // Without a document no node is found, and a null node gives the default.
    return CWKXMLData::GetEntryInt(m_Data.FindNodeByPath(rSection, c_pSeparator), rName, nDefault);
}

bool CRVXMLConfig::GetBool(const std::string& rSection, const std::string& rName, bool* pValue) const {
    constexpr int c_nAbsent = -1;
    const int nValue = GetInt(rSection, rName, c_nAbsent);
    if (nValue == c_nAbsent) {
        return false;
    }
    *pValue = nValue != 0;
    return true;
}

std::optional<std::uint32_t> CRVXMLConfig::GetUserLevel(const std::string& rName) {
    for (const CUserLevel& rLevel : c_UserLevels) {
        if (rLevel.m_Name == rName) {
            return rLevel.m_Code;
        }
    }
    return std::nullopt;
}
