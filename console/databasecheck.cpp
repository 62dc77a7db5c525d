#include "console/databasecheck.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/postgresurl.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/schema.h"
#include "platform/rvmdb/sqldriver.h"

namespace {

namespace fs = std::filesystem;
using PreBalDB::CDirectSQL;
using PreBalDB::CPostgresUrl;
using PreBalDB::CSqlError;
using PreBalDB::CTransaction;
using PreBalDB::StoreFailure;
using Contents = CDatabaseFacts::Contents;
using Kind = CDatabaseFacts::Kind;
using Trouble = CDatabaseFacts::Trouble;
using Writing = CDatabaseFacts::Writing;

constexpr std::string_view SQLITE_PREFIX = "sqlite:";
/// Who looks needn't wait as long as who writes.
constexpr int BUSY_TIMEOUT = 1000;

/// What client library and server say when they refuse a connection, in the order in which it counts.
struct CRefusal {
    const char* m_pPart;
    Trouble m_Trouble;
};
constexpr std::array REFUSALS = {
    CRefusal{"does not support ssl", Trouble::eNoTls},
    CRefusal{"certificate", Trouble::eUncertified},
    CRefusal{"password", Trouble::eNotLetIn},
    CRefusal{"authentication", Trouble::eNotLetIn},
    CRefusal{"pg_hba.conf", Trouble::eNotLetIn},
    CRefusal{"role \"", Trouble::eNotLetIn},
    CRefusal{"permission denied for database", Trouble::eNotLetIn},
    CRefusal{"does not exist", Trouble::eNoDatabase},
    CRefusal{"ssl error", Trouble::eUncertified},
    CRefusal{"connection refused", Trouble::eAway},
    CRefusal{"could not translate host name", Trouble::eAway},
    CRefusal{"timeout expired", Trouble::eAway},
    CRefusal{"no route to host", Trouble::eAway},
    CRefusal{"network is unreachable", Trouble::eAway},
    CRefusal{"starting up", Trouble::eAway},
    CRefusal{"shutting down", Trouble::eAway},
    CRefusal{"closed the connection", Trouble::eAway},
    CRefusal{"is the server running", Trouble::eAway},
    CRefusal{"connection reset", Trouble::eAway},
};

Trouble ToTrouble(std::string Text) {
    std::ranges::transform(Text, Text.begin(), [](unsigned char Character) {
        return static_cast<char>(std::tolower(Character));
    });
    const auto Found = std::ranges::find_if(REFUSALS, [&Text](const CRefusal& rRefusal) {
        return Text.find(rRefusal.m_pPart) != std::string::npos;
    });
    return Found == REFUSALS.end() ? Trouble::eOther : Found->m_Trouble;
}

std::string ToLine(std::string Text) {
    std::ranges::replace(Text, '\n', ' ');
    // It becomes a part of a sentence.
    while (!Text.empty() && (Text.back() == ' ' || Text.back() == '.')) {
        Text.pop_back();
    }
    return Text;
}

std::int64_t Count(CDirectSQL& rConnection, const char* pTable) {
    return rConnection.HasTable(pTable)
               ? rConnection.Query(std::string("SELECT count(*) FROM ") + pTable).at(0).GetInteger(0)
               : 0;
}

void LookAtContents(CDirectSQL& rConnection, CDatabaseFacts& rFacts) {
    const CTransaction Transaction(rConnection, CTransaction::eReading);
    if (rConnection.IsSqlite()) {
        // A file that is no database gives no list of tables either, but this fails.
        const auto Verdict = rConnection.Query("PRAGMA integrity_check(1)");
        rFacts.m_Damage = Verdict.empty() ? "?" : Verdict[0].GetText(0);
        if (rFacts.m_Damage == "ok") {
            rFacts.m_Damage.clear();
        }
    }
    if (!rConnection.HasTable("schema_version")) {
        rFacts.m_Contents = rConnection.HasTables() ? Contents::eForeign : Contents::eNothing;
        return;
    }
    rFacts.m_Contents = Contents::eStore;
    const auto Rows = rConnection.Query("SELECT version FROM schema_version");
    rFacts.m_Version = Rows.size() == 1 ? Rows[0].GetInteger(0) : 0;
    if (rFacts.m_Version < 1) {
        rFacts.m_Damage = "schema_version";
        return;
    }
    rFacts.m_nMachines = Count(rConnection, "machine");
    rFacts.m_nConfigurations = Count(rConnection, "configuration");
    rFacts.m_nRuns = Count(rConnection, "run");
}

Writing TryToWrite(CDirectSQL& rConnection) {
    try {
        // Takes the lock that a write needs, and gives it back.
        const CTransaction Transaction(rConnection, CTransaction::eWriting);
    } catch (const CSqlError& rError) {
        return rError.GetCause() == StoreFailure::eLocked ? Writing::eLocked : Writing::eReadOnly;
    }
    return Writing::ePossible;
}

bool IsTrue(CDirectSQL& rConnection, const std::string& rExpression) {
    const auto Rows = rConnection.Query("SELECT CASE WHEN " + rExpression + " THEN 1 ELSE 0 END");
    return !Rows.empty() && Rows[0].GetInteger(0) != 0;
}

/// Rights are asked for, not tried: a server's table isn't written to for a look.
Writing AskServerForRights(CDirectSQL& rConnection, const CDatabaseFacts& rFacts) {
    if (IsTrue(rConnection, "pg_is_in_recovery() OR current_setting('transaction_read_only') = 'on'")) {
        return Writing::eReadOnly;
    }
    // A new store is made in the schema, and an older one changed by who owns it.
    const bool bMayWrite =
        rFacts.m_Contents == Contents::eStore
            ? IsTrue(rConnection,
                     "(SELECT bool_and(has_table_privilege(c.oid, 'SELECT') AND "
                     "has_table_privilege(c.oid, 'INSERT') AND has_table_privilege(c.oid, 'UPDATE') AND "
                     "has_table_privilege(c.oid, 'DELETE')) FROM pg_class c WHERE c.relkind = 'r' AND "
                     "c.relnamespace = current_schema()::regnamespace)")
            : IsTrue(rConnection, "has_schema_privilege(current_schema(), 'CREATE')");
    const bool bMayMigrate =
        rFacts.m_Contents != Contents::eStore || rFacts.m_Version >= rFacts.m_KnownVersion ||
        IsTrue(rConnection,
               "(SELECT pg_has_role(c.relowner, 'USAGE') FROM pg_class c WHERE c.relname = 'configuration' "
               "AND c.relnamespace = current_schema()::regnamespace)");
    return bMayWrite && bMayMigrate ? Writing::ePossible : Writing::eNoRight;
}

/// Whether a file can be read, and is none of SQLite's. An empty one may become one.
bool IsOfAnotherKind(const fs::path& rPath) {
    constexpr std::string_view MARK = "SQLite format 3";
    std::array<char, MARK.size()> Begin{};
    std::ifstream File(rPath, std::ios::binary);
    File.read(Begin.data(), Begin.size());
    return File.gcount() > 0 && std::string_view(Begin.data(), Begin.size()) != MARK;
}

void LookAtFile(const std::string& rPath, CDatabaseFacts& rFacts) {
    std::error_code Error;
    const fs::path Path = fs::absolute(rPath, Error);
    rFacts.m_Name = Path.string();
    if (const fs::space_info Space = fs::space(Path.parent_path(), Error); !Error) {
        rFacts.m_FreeBytes = Space.available;
    }
    if (!fs::exists(Path, Error)) {
        rFacts.m_Trouble = Error ? Trouble::eUnreadable : Trouble::eMissing;
        rFacts.m_TroubleText = Error ? Error.message() : "";
        rFacts.m_Writing =
            ::access(Path.parent_path().c_str(), W_OK | X_OK) == 0 ? Writing::ePossible : Writing::eReadOnly;
        return;
    }
    if (!fs::is_regular_file(Path, Error) || IsOfAnotherKind(Path)) {
        rFacts.m_Trouble = Trouble::eNoFile;
        return;
    }
    try {
        CDirectSQL Connection(std::string(SQLITE_PREFIX) + Path.string(), BUSY_TIMEOUT);
        try {
            LookAtContents(Connection, rFacts);
        } catch (const CSqlError& rError) {
            if (rError.GetCause() != StoreFailure::eLocked) {
                rFacts.m_Damage = rError.what();
            }
        }
        rFacts.m_Writing = TryToWrite(Connection);
    } catch (const std::exception& rError) {
        rFacts.m_Trouble = Trouble::eUnreadable;
        rFacts.m_TroubleText = ToLine(rError.what());
    }
}

bool IsThisComputer(const std::string& rHost) {
    return rHost.empty() || rHost.starts_with('/') || rHost == "localhost" || rHost.starts_with("127.") ||
           rHost == "::1";
}

void LookAtServer(const std::string& rUrl, CDatabaseFacts& rFacts) {
    rFacts.m_Kind = Kind::eServer;
    const CPostgresUrl Url = CPostgresUrl::Parse(rUrl);
    rFacts.m_Name = Url.m_Name;
    rFacts.m_bRemote = !IsThisComputer(Url.m_Host);
    rFacts.m_bVerified = Url.m_Options.find("sslmode='verify-full'") != std::string::npos;
    try {
        // Says more exactly why it can't than who wants to work with it.
        PreBalDB::MakePostgresDriver(Url)->Open();
    } catch (const PreBalDB::CSqlDriverError& rError) {
        rFacts.m_TroubleText = ToLine(rError.what());
        rFacts.m_Trouble = ToTrouble(rFacts.m_TroubleText);
        return;
    }
    CDirectSQL Connection(rUrl, BUSY_TIMEOUT);
    try {
        LookAtContents(Connection, rFacts);
        rFacts.m_Writing = AskServerForRights(Connection, rFacts);
        rFacts.m_bEncrypted =
            IsTrue(Connection, "(SELECT ssl FROM pg_stat_ssl WHERE pid = pg_backend_pid())");
    } catch (const CSqlError& rError) {
        rFacts.m_TroubleText = ToLine(rError.what());
        rFacts.m_Trouble =
            rError.GetCause() == StoreFailure::eReadOnly ? Trouble::eUnreadable : Trouble::eOther;
    }
}

}  // namespace

CDatabaseFacts LookAtStore(const std::string& rConnection) {
    CDatabaseFacts Facts;
    Facts.m_KnownVersion = PreBalDB::Schema::CURRENT_VERSION;
    try {
        if (CPostgresUrl::IsOne(rConnection)) {
            LookAtServer(rConnection, Facts);
        } else if (rConnection.starts_with(SQLITE_PREFIX)) {
            LookAtFile(rConnection.substr(SQLITE_PREFIX.size()), Facts);
        } else {
            Facts.m_Trouble = Trouble::eUrl;
        }
    } catch (const PreBalDB::CDatabaseError& rError) {
        Facts.m_Trouble = Trouble::eUrl;
        Facts.m_TroubleText = ToLine(rError.what());
    }
    return Facts;
}

CCheckReport CheckDatabase(const std::string& rConnection) {
    const CDatabaseFacts Facts = LookAtStore(rConnection);
    CCheckReport Report("database", Facts.m_Name);
    nlohmann::ordered_json& rFacts = Report.GetFacts();
    rFacts = {{"kind", Facts.m_Kind == Kind::eFile ? "sqlite" : "postgresql"},
              {"reached", Facts.m_Trouble == Trouble::eNone},
              {"schema_version", Facts.m_Version},
              {"known_version", Facts.m_KnownVersion},
              {"intact", Facts.m_Damage.empty()},
              {"writable", Facts.m_Writing == Writing::ePossible},
              {"machines", Facts.m_nMachines},
              {"configurations", Facts.m_nConfigurations},
              {"runs", Facts.m_nRuns}};
    if (Facts.m_FreeBytes) {
        rFacts["free_bytes"] = *Facts.m_FreeBytes;
    }
    if (Facts.m_Kind == Kind::eServer) {
        rFacts["encrypted"] = Facts.m_bEncrypted;
        rFacts["verified"] = Facts.m_bVerified && Facts.m_bEncrypted;
    }
    AnalyseDatabase(Facts, Report);
    return Report;
}
