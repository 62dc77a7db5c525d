#include "rvlib/settings/profile.h"

#include "platform/system/profilefile.h"
#include "platform/system/text.h"

namespace {

constexpr const char* SECTION = "Configuration";
constexpr std::size_t LIMIT = 1300;

}  // namespace

CWKProfile::CWKProfile(const std::string& rPath) : m_Path(rPath) {
    const CPath Directory = m_Path.GetDirectory();
    if (!Directory.IsDirectory()) {
        Directory.CreateDirectories();
    }
}

CWKProfile::~CWKProfile() {
    FlushPrivateProfile(m_Path);
}

std::string CWKProfile::GetString(const std::string& rKey, const std::string& rDefault) const {
    return GetPrivateProfileString(SECTION, rKey, rDefault, LIMIT, m_Path);
}

int CWKProfile::GetInt(const std::string& rKey, int nDefault) const {
    return Text::ToInt(GetString(rKey, std::to_string(nDefault)));
}
