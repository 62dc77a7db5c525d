#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "rvlib/settings/path.h"
#include "rvlib/settings/xmldata.h"

/// The settings document of the installation. Each user of a setting makes its own, opens it, reads and lets
/// it go.
class CRVXMLConfig {
public:
    /// Reads GetConfigFile(); an unreadable file is tried 5 times, 100 ms apart, on the window thread. A
    /// missing file gives an empty document. False if a document is loaded already, the file can't be read,
    /// or its text can't be parsed; lookups then give their defaults.
    bool Open();

    /// An attribute of the node at the path rSection (parts separated by "\"). nDefault without a document,
    /// node or attribute; text that is no number reads as 0.
    int GetInt(const std::string& rSection, const std::string& rName, int nDefault) const;
    /// The same as it stands; empty if it is absent.
    std::string GetText(const std::string& rSection, const std::string& rName) const;
    /// The same as a truth value. False, with *pValue unchanged, if it is absent or -1.
    bool GetBool(const std::string& rSection, const std::string& rName, bool* pValue) const;

    /// The file's path; empty unless the file is new.
    const CPath& GetFileName() const { return m_FileName; }
    /// True if the file did not exist.
    bool IsNew() const { return m_bNew; }

    /// Code of a user level ("observer", "operator", "expert", "administrator"); nothing for another name.
    static std::optional<std::uint32_t> GetUserLevel(const std::string& rName);

private:
    CWKXMLData m_Data;
    CPath m_FileName;
    bool m_bNew = false;
};
