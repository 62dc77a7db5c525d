#pragma once
#include <map>
#include <memory>
#include <string>
#include <vector>

/// The texts of several languages, each from a compiled language file; the part of a file's name behind the
/// last "_" is the language's code ("rotor_trim_de.qm"). Works without an application object.
class CLanguages {
public:
    /// Loads the language files of a folder; ":/..." names one that is compiled in. The language in use is
    /// English.
    explicit CLanguages(const std::string& rFolder);
    ~CLanguages();
    CLanguages(const CLanguages&) = delete;
    CLanguages& operator=(const CLanguages&) = delete;

    /// Chooses a language by its code, a country behind it doesn't count. False, and no change, if it isn't
    /// there.
    bool Choose(const std::string& rCode);
    const std::string& GetCurrent() const { return m_Current; }
    std::vector<std::string> GetCodes() const;

    /// The text in the language in use, else in English, else the key.
    std::string Find(const std::string& rKey) const;

private:
    class CTexts;
    std::map<std::string, std::unique_ptr<CTexts>> m_Texts;
    std::string m_Current;
};
