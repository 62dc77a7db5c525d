#pragma once
#include <filesystem>
#include <string>

/// Keeps what an installation can't do without in one file (tar, compressed), and brings it back: the store,
/// where the weights stood, the settings. Passwords, codes and private keys aren't in it, so that it may be
/// copied about; they stay where they are when it is brought back.
class CBackup {
public:
    /// rRoot: of the installation. rConnection: of its store, which must be a file.
    CBackup(std::filesystem::path Root, std::string Connection)
        : m_Root(std::move(Root)), m_Connection(std::move(Connection)) {}

    /// Writes the file, reads it again and compares; it appears as a whole or not at all. A console may work
    /// in the installation meanwhile: the store is taken as of one moment. Throws std::runtime_error.
    void Write(const std::filesystem::path& rFile) const;

    struct CContents {
        std::string m_Made;     ///< date and time, UTC
        std::string m_Version;  ///< of the program that made it
        std::filesystem::path m_Directory;
    };
    /// Unpacks a file into a directory and checks all in it: sums, and that this program can read the store.
    /// Throws std::runtime_error with what is wrong.
    static CContents Unpack(const std::filesystem::path& rFile, const std::filesystem::path& rDirectory);
    /// Puts the contents in the place of what is there, all at once, and gives the directory in which that is
    /// kept from now on. No console may work in the installation. Throws std::runtime_error; all is as before
    /// then.
    std::filesystem::path Restore(const CContents& rContents) const;

private:
    std::filesystem::path GetStore() const;

    std::filesystem::path m_Root;
    std::string m_Connection;
};
