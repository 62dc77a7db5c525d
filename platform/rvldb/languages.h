#pragma once
#include <string>
#include <vector>

#include "platform/rvldb/languagefiles.h"

/// The texts of several languages.
class CLanguages {
public:
    /// The language in use is English.
    explicit CLanguages(CLanguageFiles Files);

    /// Chooses a language by its code, a country behind it doesn't count. False, and no change, if it isn't
    /// there.
    bool Choose(const std::string& rCode);
    const std::string& GetCurrent() const { return m_Current; }
    std::vector<std::string> GetCodes() const;

    /// The text in the language in use, else in English, else the key.
    std::string Find(const std::string& rKey) const;

private:
    CLanguageFiles m_Files;
    std::string m_Current;
};
