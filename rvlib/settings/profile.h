#pragma once
#include <string>

#include "platform/system/object.h"
#include "rvlib/settings/path.h"

/// A settings file of "[Section]" and "key=value" lines, of which the section "Configuration" is read.
class CWKProfile : public CObject {
public:
    /// Makes the file's directory if it doesn't exist; the file itself may be missing.
    explicit CWKProfile(const std::string& rPath);
    /// Drops what the platform keeps of the file in memory.
    ~CWKProfile() override;
    CWKProfile(const CWKProfile&) = delete;
    CWKProfile& operator=(const CWKProfile&) = delete;

    /// At most 1299 characters; the default if file, section or key is absent.
    std::string GetString(const std::string& rKey, const std::string& rDefault) const;
    /// Leading digits count; text that is no number reads as 0, not as the default.
    int GetInt(const std::string& rKey, int nDefault) const;

private:
    CPath m_Path;
};
