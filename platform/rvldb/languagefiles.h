#pragma once
#include <map>
#include <memory>
#include <string>

/// The texts of one compiled language file. Works without an application object.
class IFLanguageFile {
public:
    virtual ~IFLanguageFile() = default;
    /// Empty if the language lacks the key.
    virtual std::string Find(const std::string& rKey) const = 0;
};

/// Language files by the codes of their languages.
using CLanguageFiles = std::map<std::string, std::unique_ptr<IFLanguageFile>>;

/// Loads the language files of a folder, without those that can't be read; the part of a file's name behind
/// the last "_" is the language's code ("rotor_trim_de.qm").
CLanguageFiles LoadLanguageFiles(const std::string& rFolder);
/// Those that are compiled in. Also before the static initialisers of this library have run.
CLanguageFiles LoadBuiltInLanguageFiles();

/// The environment's language, "de_AT".
std::string GetSystemLanguage();
