#include "rvlib/settings/xmlconfig.h"

#include <array>
#include <string_view>

#include "platform/system/eventloop.h"
#include "rvlib/settings/installation.h"

namespace {

constexpr int READ_ATTEMPTS = 5;
constexpr std::uint32_t RETRY_PAUSE = 100;  // ms
constexpr const char* ROOT_NAME = "Corvane";
constexpr const char* SEPARATOR = "\\";

struct CUserLevel {
    std::string_view m_Name;
    std::uint32_t m_Code;
};
constexpr std::array<CUserLevel, 4> USER_LEVELS = {
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
        return m_Data.CreateRoot(ROOT_NAME);
    }
    m_bNew = false;
    // Another program may be writing the file just now.
    for (int i = 0; i < READ_ATTEMPTS; ++i) {
        std::string Text;
        if (ReadTextFile(File, Text) != eNoText) {
            return m_Data.ParseString(Text);
        }
        IFEventLoop::Current().Sleep(RETRY_PAUSE);
    }
    return false;
}

int CRVXMLConfig::GetInt(const std::string& rSection, const std::string& rName, int nDefault) const {
    // Without a document no node is found, and a null node gives the default.
    return CWKXMLData::GetEntryInt(m_Data.FindNodeByPath(rSection, SEPARATOR), rName, nDefault);
}

std::string CRVXMLConfig::GetText(const std::string& rSection, const std::string& rName) const {
    return CWKXMLData::GetEntry(m_Data.FindNodeByPath(rSection, SEPARATOR), rName, {});
}

bool CRVXMLConfig::GetBool(const std::string& rSection, const std::string& rName, bool* pValue) const {
    constexpr int ABSENT = -1;
    const int nValue = GetInt(rSection, rName, ABSENT);
    if (nValue == ABSENT) {
        return false;
    }
    *pValue = nValue != 0;
    return true;
}

std::optional<std::uint32_t> CRVXMLConfig::GetUserLevel(const std::string& rName) {
    for (const CUserLevel& rLevel : USER_LEVELS) {
        if (rLevel.m_Name == rName) {
            return rLevel.m_Code;
        }
    }
    return std::nullopt;
}
