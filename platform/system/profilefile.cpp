#include "platform/system/profilefile.h"

#include "platform/system/inifile.h"

std::string GetPrivateProfileString(const std::string& rSection, const std::string& rKey,
                                    const std::string& rDefault, std::size_t nLimit,
                                    const std::string& rPath) {
    const auto File = CIniFile::Read(rPath);
    const std::string* const pValue = File ? File->Find(rSection, rKey) : nullptr;
    // The limit counts a terminator, and holds for the default too.
    return (pValue != nullptr ? *pValue : rDefault).substr(0, (nLimit > 0) ? nLimit - 1 : 0);
}

void FlushPrivateProfile(const std::string&) {
    // Nothing to drop: here the file is read anew for every value.
}
