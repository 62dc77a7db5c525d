#include "platform/rvmdb/schema.h"

#include <array>
#include <cstdint>
#include <set>
#include <string>

#include "platform/rvmdb/configurationfields.h"
#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/log.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storebackup.h"

namespace PreBalDB::Schema {

namespace {

/// Of the tables that hold properties of configurations, what stands around these.
struct CFrame {
    const char* m_pBefore;
    const char* m_pBehind;
};

// The revision grows with every change, so that a console knows when another one has written since it read.
constexpr CFrame CONFIGURATION_FRAME = {
    R"(machine TEXT NOT NULL REFERENCES machine (name) ON UPDATE CASCADE ON DELETE CASCADE,
        name TEXT NOT NULL)",
    R"(revision BIGINT NOT NULL DEFAULT 1,
        PRIMARY KEY (machine, name))"};
constexpr CFrame RECORD_FRAME = {
    R"(machine TEXT NOT NULL,
        configuration TEXT NOT NULL)",
    R"(PRIMARY KEY (machine, configuration),
        FOREIGN KEY (machine, configuration) REFERENCES configuration (machine, name)
            ON UPDATE CASCADE ON DELETE CASCADE)"};
// "part" tells whose compensation it is: 'single', or 'plane1', 'plane2' of the two-plane record. A screw
// table's name is no foreign key: a configuration may name one that is still to be written.
constexpr CFrame PART_FRAME = {
    R"(machine TEXT NOT NULL,
        configuration TEXT NOT NULL,
        part TEXT NOT NULL CHECK (part IN ('single', 'plane1', 'plane2')))",
    R"(PRIMARY KEY (machine, configuration, part),
        FOREIGN KEY (machine, configuration) REFERENCES configuration (machine, name)
            ON UPDATE CASCADE ON DELETE CASCADE)"};

constexpr const char* MACHINE_TABLE = "CREATE TABLE machine (name TEXT NOT NULL PRIMARY KEY)";
constexpr std::array OTHER_STATEMENTS = {
    R"(CREATE TABLE screw_table (
        machine TEXT NOT NULL REFERENCES machine (name) ON UPDATE CASCADE ON DELETE CASCADE,
        name TEXT NOT NULL,
        revision BIGINT NOT NULL DEFAULT 1,
        PRIMARY KEY (machine, name)))",
    R"(CREATE TABLE screw (
        machine TEXT NOT NULL,
        screw_table TEXT NOT NULL,
        position INTEGER NOT NULL,
        name TEXT NOT NULL,
        weight DOUBLE PRECISION NOT NULL,
        PRIMARY KEY (machine, screw_table, position),
        FOREIGN KEY (machine, screw_table) REFERENCES screw_table (machine, name)
            ON UPDATE CASCADE ON DELETE CASCADE))",
    // How far the queue of each console has come whose server was away: what stands in it is done once.
    "CREATE TABLE delivery (console TEXT NOT NULL PRIMARY KEY, last BIGINT NOT NULL)",
    "CREATE TABLE schema_version (version INTEGER NOT NULL)",
    "INSERT INTO schema_version (version) VALUES (0)",
};

const char* GetSqlType(PropertyType Type) {
    switch (Type) {
        case PropertyType::eFlag:
        case PropertyType::eByte:
        case PropertyType::eChoice:
            return "SMALLINT";
        case PropertyType::eTime:
        case PropertyType::eWhole:
            return "BIGINT";
        case PropertyType::eReal:
            return "DOUBLE PRECISION";
        case PropertyType::eText:
        case PropertyType::eMatrix:
            break;
    }
    return "TEXT";
}

/// A table of configurations, with a column for each property that is stored.
void MakeTable(CDirectSQL& rConnection, const CRecordLayout& rLayout) {
    const CFrame& rFrame = rLayout.m_KeyColumn == "name" ? CONFIGURATION_FRAME
                           : rLayout.m_Part.empty()      ? RECORD_FRAME
                                                         : PART_FRAME;
    std::string Statement = "CREATE TABLE " + rLayout.m_Table + " (" + rFrame.m_pBefore + ",\n";
    for (const CProperty* const pProperty : rLayout.m_Properties) {
        if (pProperty->IsStored()) {
            Statement += std::string("        ") + pProperty->m_pColumn + " " +
                         GetSqlType(pProperty->m_Type) + " NOT NULL,\n";
        }
    }
    rConnection.Execute(Statement + "        " + rFrame.m_pBehind + ")");
}

/// All tables of the current version, in an empty store.
void MakeTables(CDirectSQL& rConnection) {
    rConnection.Execute(MACHINE_TABLE);
    std::set<std::string> Made;
    for (const CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
        if (Made.insert(rLayout.m_Table).second) {
            MakeTable(rConnection, rLayout);
        }
    }
    for (const char* const pStatement : OTHER_STATEMENTS) {
        rConnection.Execute(pStatement);
    }
}

/// One statement on the way to a version, for a store of an older one. Stores in the field were made by these
/// very steps: a step that has been delivered is never changed, a change of the tables is a step more.
/// Version 1 is the oldest that was delivered.
struct CStep {
    int m_Version;
    const char* m_pStatement;
};

constexpr std::array STEPS = {
    // Rings of holes of any radius, in mm; until then all had 100.
    CStep{2, "ALTER TABLE screw_compensation ADD COLUMN radius DOUBLE PRECISION NOT NULL DEFAULT 100.0"},
    CStep{3, "ALTER TABLE configuration ADD COLUMN revision BIGINT NOT NULL DEFAULT 1"},
    CStep{3, "ALTER TABLE screw_table ADD COLUMN revision BIGINT NOT NULL DEFAULT 1"},
    CStep{4, "CREATE TABLE delivery (console TEXT NOT NULL PRIMARY KEY, last BIGINT NOT NULL)"},
};

static_assert(STEPS.back().m_Version == CURRENT_VERSION);

[[noreturn]] void Refuse(const CDirectSQL& rConnection, const std::string& rText) {
    throw CDatabaseError(rConnection.GetName() + " " + rText);
}

/// Version of the store, 0 for an empty one.
std::int64_t ReadVersion(CDirectSQL& rConnection) {
    if (!rConnection.HasTable("schema_version")) {
        // A file that can't be read gives no list of tables either; this statement tells the difference.
        if (rConnection.IsSqlite()) {
            rConnection.Query("SELECT count(*) FROM sqlite_master");
        }
        if (rConnection.HasTables()) {
            Refuse(rConnection,
                   "belongs to another program: it holds tables, but not schema_version; give the path of "
                   "the balancing database, or of a new file");
        }
        return 0;
    }
    const auto Rows = rConnection.Query("SELECT version FROM schema_version");
    if (Rows.size() != 1 || Rows[0].GetInteger(0) < 1) {
        Refuse(rConnection, "is damaged: its schema_version holds no version; put a backup in its place");
    }
    return Rows[0].GetInteger(0);
}

void CheckPages(CDirectSQL& rConnection) {
    if (!rConnection.IsSqlite()) {
        return;  // a server looks after its own pages
    }
    // These tables only: the archive of runs in the same file may be a gigabyte, which nobody can wait for.
    std::set<std::string> Tables = {"sqlite_schema", "machine",  "screw_table",
                                    "screw",         "delivery", "schema_version"};
    for (const CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
        Tables.insert(rLayout.m_Table);
    }
    for (const std::string& rTable : Tables) {
        if (rTable != "sqlite_schema" && !rConnection.HasTable(rTable)) {
            continue;  // of an empty file
        }
        const auto Rows = rConnection.Query("PRAGMA quick_check('" + rTable + "')");
        const std::string Verdict = Rows.empty() ? "no answer" : Rows[0].GetText(0);
        if (Verdict != "ok") {
            Refuse(rConnection,
                   "is damaged (" + Verdict + "); put a backup in its place, or move it away to begin anew");
        }
    }
}

void CheckNotNewer(const CDirectSQL& rConnection, std::int64_t Version) {
    if (Version > CURRENT_VERSION) {
        Refuse(rConnection, "has version " + std::to_string(Version) + ", this program knows up to " +
                                std::to_string(CURRENT_VERSION) +
                                "; update the program, or give another database");
    }
}

void Migrate(CDirectSQL& rConnection) {
    CTransaction Transaction(rConnection, CTransaction::eWriting);
    if (!rConnection.IsSqlite()) {
        // Two consoles may come to a new server at once. The number is any, but the same for all.
        rConnection.Query("SELECT pg_advisory_xact_lock(5226291)");
    }
    // Read anew: another console may just have done it.
    const std::int64_t Version = ReadVersion(rConnection);
    CheckNotNewer(rConnection, Version);
    if (Version == CURRENT_VERSION) {
        return;
    }
    if (Version == 0) {
        MakeTables(rConnection);
    } else {
        BackUpBeforeMigration(rConnection, "schema", Version);
        for (const CStep& rStep : STEPS) {
            if (rStep.m_Version > Version) {
                rConnection.Execute(rStep.m_pStatement);
            }
        }
    }
    rConnection.Execute("UPDATE schema_version SET version = ?", {std::int64_t{CURRENT_VERSION}});
    Transaction.Commit();
    RV_INFORMATION(g_pLog, "%s: from version %d to %d", rConnection.GetName().c_str(),
                   static_cast<int>(Version), CURRENT_VERSION);
}

/// All that ReadVersion asks, of one state of the store: another console may be making it just now.
std::int64_t LookAtVersion(CDirectSQL& rConnection) {
    const CTransaction Transaction(rConnection, CTransaction::eReading);
    return ReadVersion(rConnection);
}

}  // namespace

void Prepare(CDirectSQL& rConnection) {
    try {
        const std::int64_t Version = LookAtVersion(rConnection);
        CheckNotNewer(rConnection, Version);
        CheckPages(rConnection);
        if (Version < CURRENT_VERSION) {
            Migrate(rConnection);
        }
    } catch (const CSqlError& rError) {
        throw CDatabaseError(rConnection.GetUnusableText(rError), rError.GetCause());
    }
}

}  // namespace PreBalDB::Schema
