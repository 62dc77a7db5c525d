#pragma once
#include <cstdint>
#include <optional>
#include <string>

class CCheckReport;

/// What can be seen of a store from outside, without changing it.
struct CDatabaseFacts {
    enum class Kind : std::uint8_t { eFile, eServer };
    /// Why there is no connection, as far as people can do something about it.
    enum class Trouble : std::uint8_t {
        eNone,
        eMissing,      ///< there is no such file yet
        eNoFile,       ///< what is there is no file, or no database
        eUnreadable,   ///< rights
        eUrl,          ///< the connection's text is wrong
        eAway,         ///< no server answers there
        eNotLetIn,     ///< user, password, or the server's rules
        eNoDatabase,   ///< the server has none of that name
        eUncertified,  ///< the server's certificate can't be verified
        eNoTls,        ///< TLS is asked for, and the server has none
        eOther
    };
    enum class Contents : std::uint8_t { eNothing, eStore, eForeign };
    enum class Writing : std::uint8_t { ePossible, eLocked, eReadOnly, eNoRight };

    std::string m_Name;         ///< for people: the path, or the server without its password
    std::string m_TroubleText;  ///< the database's own words
    std::string m_Damage;       ///< what is broken; empty if nothing is
    std::int64_t m_Version = 0;
    std::int64_t m_KnownVersion = 0;  ///< this program's
    std::int64_t m_nMachines = 0;
    std::int64_t m_nConfigurations = 0;
    std::int64_t m_nRuns = 0;
    std::optional<std::uint64_t> m_FreeBytes;  ///< on the disk of a file
    Kind m_Kind = Kind::eFile;
    Trouble m_Trouble = Trouble::eNone;
    Contents m_Contents = Contents::eNothing;
    Writing m_Writing = Writing::ePossible;
    bool m_bRemote = false;  ///< the server is another computer
    bool m_bEncrypted = false;
    bool m_bVerified = false;  ///< the server's certificate and name are
};

/// What they mean.
void AnalyseDatabase(const CDatabaseFacts& rFacts, CCheckReport& rReport);
