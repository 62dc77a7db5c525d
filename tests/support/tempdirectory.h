#pragma once
#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

/// A new empty directory that goes, with all in it, at the end.
class CTempDirectory {
public:
    CTempDirectory() {
        std::string Template = (std::filesystem::temp_directory_path() / "rotor_trim_XXXXXX").string();
        if (::mkdtemp(Template.data()) == nullptr) {
            throw std::runtime_error("no temporary directory");
        }
        m_Path = std::filesystem::canonical(Template);
    }
    ~CTempDirectory() {
        std::error_code Error;
        std::filesystem::remove_all(m_Path, Error);
    }
    CTempDirectory(const CTempDirectory&) = delete;
    CTempDirectory& operator=(const CTempDirectory&) = delete;

    const std::filesystem::path& GetPath() const { return m_Path; }
    /// Path of something in the directory.
    std::string At(const std::string& rName) const { return (m_Path / rName).string(); }

private:
    std::filesystem::path m_Path;
};
