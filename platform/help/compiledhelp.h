#pragma once
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

/// What a compiled help file holds, all of it in memory: pages, pictures, style sheet, table of contents,
/// index.
///
/// The file is unpacked in a process of its own, for the library that does it trusts what it reads: a damaged
/// file can end or catch only that process.
class CCompiledHelp {
public:
    enum class State {
        eMissing,  ///< there is no such file
        eDamaged,  ///< it can't be unpacked, or to much more than a help has
        eRead
    };
    /// Ms that unpacking may take. What a console shows takes a hundredth of that.
    static constexpr int LIMIT = 2000;

    CCompiledHelp() = default;
    /// Reads a file, its path in the system's form.
    explicit CCompiledHelp(const std::string& rFile, int Limit = LIMIT);
    /// Takes what the other process has sent.
    explicit CCompiledHelp(std::span<const char> Sent);

    State GetState() const { return m_State; }
    /// An object by its name, "/PB_001.htm" or "PB_001.htm", upper or lower case; null if there is none. It
    /// lives as long as this.
    const std::string* Find(const std::string& rName) const;
    /// The first object whose name ends so, ".hhc" for the table of contents; null if there is none.
    const std::string* FindByEnding(const std::string& rEnding) const;
    /// The names of all pages, without the leading "/", in alphabetical order.
    std::vector<std::string> GetPages() const;

private:
    struct CObject {
        std::string m_Name;  ///< as the file spells it
        std::string m_Contents;
    };
    /// False if it isn't whole.
    bool Take(std::span<const char> Sent);

    State m_State = State::eMissing;
    std::map<std::string, CObject> m_Objects;  ///< by name in lower case, with the leading "/"
};
