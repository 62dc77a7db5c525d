#include "platform/rvmdb/schema.h"

#include <array>
#include <cstdint>
#include <string>

#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/log.h"
#include "platform/rvmdb/prebaldatabase.h"

namespace PreBalDB::Schema {

namespace {

/// One statement on the way to a version. Stores in the field were made by these very steps: a step that has
/// been delivered is never changed, a change of the tables is a step more.
struct CStep {
    int m_Version;
    const char* m_pStatement;
};

constexpr std::array Steps = {
    CStep{1, R"(CREATE TABLE machine (
        name TEXT NOT NULL PRIMARY KEY))"},
    CStep{1, R"(CREATE TABLE configuration (
        machine TEXT NOT NULL REFERENCES machine (name) ON UPDATE CASCADE ON DELETE CASCADE,
        name TEXT NOT NULL,
        is_calibrated SMALLINT NOT NULL,
        calibrated_unix_time BIGINT NOT NULL,
        calibrated_rpm BIGINT NOT NULL,
        rpm_tolerance BIGINT NOT NULL,
        target_unbalance BIGINT NOT NULL,
        number_of_samples BIGINT NOT NULL,
        PRIMARY KEY (machine, name)))"},
    CStep{1, R"(CREATE TABLE single_plane (
        machine TEXT NOT NULL,
        configuration TEXT NOT NULL,
        rotation_direction SMALLINT NOT NULL,
        proximity_switch_input SMALLINT NOT NULL,
        sensor_adaption SMALLINT NOT NULL,
        inv_a TEXT NOT NULL,
        ua TEXT NOT NULL,
        PRIMARY KEY (machine, configuration),
        FOREIGN KEY (machine, configuration) REFERENCES configuration (machine, name)
            ON UPDATE CASCADE ON DELETE CASCADE))"},
    CStep{1, R"(CREATE TABLE two_plane (
        machine TEXT NOT NULL,
        configuration TEXT NOT NULL,
        rotation_direction SMALLINT NOT NULL,
        proximity_switch_input SMALLINT NOT NULL,
        plane1_sensor_adaption SMALLINT NOT NULL,
        plane2_sensor_adaption SMALLINT NOT NULL,
        inv_a TEXT NOT NULL,
        ua_plane1 TEXT NOT NULL,
        ua_plane2 TEXT NOT NULL,
        PRIMARY KEY (machine, configuration),
        FOREIGN KEY (machine, configuration) REFERENCES configuration (machine, name)
            ON UPDATE CASCADE ON DELETE CASCADE))"},
    // "part" tells whose compensation it is: 'single', or 'plane1', 'plane2' of the two-plane record.
    CStep{1, R"(CREATE TABLE weight_compensation (
        machine TEXT NOT NULL,
        configuration TEXT NOT NULL,
        part TEXT NOT NULL CHECK (part IN ('single', 'plane1', 'plane2')),
        plane SMALLINT NOT NULL,
        scaling_direction SMALLINT NOT NULL,
        PRIMARY KEY (machine, configuration, part),
        FOREIGN KEY (machine, configuration) REFERENCES configuration (machine, name)
            ON UPDATE CASCADE ON DELETE CASCADE))"},
    // The table's name is no foreign key: a configuration may name one that is still to be written.
    CStep{1, R"(CREATE TABLE screw_compensation (
        machine TEXT NOT NULL,
        configuration TEXT NOT NULL,
        part TEXT NOT NULL CHECK (part IN ('single', 'plane1', 'plane2')),
        plane SMALLINT NOT NULL,
        scaling_direction SMALLINT NOT NULL,
        screw_table TEXT NOT NULL,
        number_of_holes BIGINT NOT NULL,
        number_of_screws SMALLINT NOT NULL,
        reference_weight DOUBLE PRECISION NOT NULL,
        PRIMARY KEY (machine, configuration, part),
        FOREIGN KEY (machine, configuration) REFERENCES configuration (machine, name)
            ON UPDATE CASCADE ON DELETE CASCADE))"},
    CStep{1, R"(CREATE TABLE screw_table (
        machine TEXT NOT NULL REFERENCES machine (name) ON UPDATE CASCADE ON DELETE CASCADE,
        name TEXT NOT NULL,
        PRIMARY KEY (machine, name)))"},
    CStep{1, R"(CREATE TABLE screw (
        machine TEXT NOT NULL,
        screw_table TEXT NOT NULL,
        position INTEGER NOT NULL,
        name TEXT NOT NULL,
        weight DOUBLE PRECISION NOT NULL,
        PRIMARY KEY (machine, screw_table, position),
        FOREIGN KEY (machine, screw_table) REFERENCES screw_table (machine, name)
            ON UPDATE CASCADE ON DELETE CASCADE))"},
    CStep{1, "CREATE TABLE schema_version (version INTEGER NOT NULL)"},
    CStep{1, "INSERT INTO schema_version (version) VALUES (0)"},
    // Rings of holes of any radius, in mm; until then all had 100.
    CStep{2, "ALTER TABLE screw_compensation ADD COLUMN radius DOUBLE PRECISION NOT NULL DEFAULT 100.0"},
    // Grows with every change, so that a console knows when another one has written since it read.
    CStep{3, "ALTER TABLE configuration ADD COLUMN revision BIGINT NOT NULL DEFAULT 1"},
    CStep{3, "ALTER TABLE screw_table ADD COLUMN revision BIGINT NOT NULL DEFAULT 1"},
};

static_assert(Steps.back().m_Version == eCurrentVersion);

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
    const auto Rows = rConnection.Query("PRAGMA quick_check(1)");
    const std::string Verdict = Rows.empty() ? "no answer" : Rows[0].GetText(0);
    if (Verdict != "ok") {
        Refuse(rConnection,
               "is damaged (" + Verdict + "); put a backup in its place, or move it away to begin anew");
    }
}

void CheckNotNewer(const CDirectSQL& rConnection, std::int64_t Version) {
    if (Version > eCurrentVersion) {
        Refuse(rConnection, "has version " + std::to_string(Version) + ", this program knows up to " +
                                std::to_string(eCurrentVersion) +
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
    if (Version == eCurrentVersion) {
        return;
    }
    for (const CStep& rStep : Steps) {
        if (rStep.m_Version > Version) {
            rConnection.Execute(rStep.m_pStatement);
        }
    }
    rConnection.Execute("UPDATE schema_version SET version = ?", {std::int64_t{eCurrentVersion}});
    Transaction.Commit();
    RV_INFORMATION(g_pLog, "%s: from version %d to %d", rConnection.GetName().c_str(),
                   static_cast<int>(Version), eCurrentVersion);
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
        if (Version < eCurrentVersion) {
            Migrate(rConnection);
        }
    } catch (const CSqlError& rError) {
        throw CDatabaseError(rConnection.GetUnusableText(rError));
    }
}

}  // namespace PreBalDB::Schema
