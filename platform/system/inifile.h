#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A file of "[Section]" lines and "key=value" lines in memory. Lines that begin with ";" and lines of any
/// other form are skipped. Names compare without regard to case; of equal names the first counts. Values have
/// lost surrounding blanks and one pair of quotes, section names and keys their surrounding blanks.
class CIniFile {
public:
    struct CSection {
        std::string m_Name;
        std::vector<std::pair<std::string, std::string>> m_Values;
    };

    /// Takes the text of a file apart; a UTF-8 mark at its beginning is skipped.
    explicit CIniFile(std::string_view Text);
    /// Nothing if the file can't be read.
    static std::optional<CIniFile> Read(const std::string& rPath);

    const std::vector<CSection>& GetSections() const { return m_Sections; }
    /// The value of a key, or null.
    const std::string* Find(std::string_view Section, std::string_view Key) const;

private:
    std::vector<CSection> m_Sections;
};
