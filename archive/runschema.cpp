#include "archive/runschema.h"

#include <array>
#include <cstdint>
#include <string>

#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/schema.h"
#include "platform/rvmdb/storebackup.h"

namespace RunSchema {

namespace {

/// One statement on the way to a version. Stores in the field were made by these very steps: a step that has
/// been delivered is never changed, a change of the tables is a step more.
struct CStep {
    int m_Version;
    const char* m_pStatement;
};

constexpr std::array STEPS = {
    // The mark tells a run from all others, so that a writer who doesn't know whether its last words arrived
    // can look. Times are in s since 1970.
    CStep{1, R"(CREATE TABLE run (
        id INTEGER NOT NULL PRIMARY KEY,
        mark TEXT NOT NULL UNIQUE,
        machine TEXT NOT NULL,
        configuration TEXT NOT NULL,
        mode TEXT NOT NULL,
        rotor TEXT NOT NULL,
        started BIGINT NOT NULL,
        driver SMALLINT NOT NULL,
        rebalance SMALLINT NOT NULL,
        version TEXT NOT NULL,
        family TEXT NOT NULL,
        addresses TEXT NOT NULL,
        ended BIGINT NOT NULL,
        state SMALLINT NOT NULL,
        result TEXT NOT NULL,
        saved SMALLINT NOT NULL))"},
    CStep{1, "CREATE INDEX run_by_date ON run (started, id)"},
    CStep{1, "CREATE INDEX run_by_machine ON run (machine, started, id)"},
    CStep{1, "CREATE INDEX run_by_rotor ON run (rotor, started, id)"},
    CStep{1, "CREATE INDEX run_by_result ON run (state, result, started, id)"},
    // The last number that was given: one that was removed doesn't come back.
    CStep{1, "CREATE TABLE run_counter (last INTEGER NOT NULL)"},
    CStep{1, "INSERT INTO run_counter (last) VALUES (0)"},
    CStep{1, R"(CREATE TABLE run_setup (
        run INTEGER NOT NULL PRIMARY KEY REFERENCES run (id) ON DELETE CASCADE,
        setup TEXT NOT NULL))"},
    CStep{1, R"(CREATE TABLE run_measurement (
        run INTEGER NOT NULL REFERENCES run (id) ON DELETE CASCADE,
        position INTEGER NOT NULL,
        which SMALLINT NOT NULL,
        time BIGINT NOT NULL,
        mean_rpm DOUBLE PRECISION NOT NULL,
        min_rpm DOUBLE PRECISION NOT NULL,
        max_rpm DOUBLE PRECISION NOT NULL,
        PRIMARY KEY (run, position)))"},
    CStep{1, R"(CREATE TABLE run_plane (
        run INTEGER NOT NULL REFERENCES run (id) ON DELETE CASCADE,
        position INTEGER NOT NULL,
        plane SMALLINT NOT NULL,
        smoothed_x DOUBLE PRECISION NOT NULL,
        smoothed_y DOUBLE PRECISION NOT NULL,
        count INTEGER NOT NULL,
        mean_x DOUBLE PRECISION NOT NULL,
        mean_y DOUBLE PRECISION NOT NULL,
        variance_x DOUBLE PRECISION NOT NULL,
        variance_y DOUBLE PRECISION NOT NULL,
        covariance_xy DOUBLE PRECISION NOT NULL,
        fitted TEXT NOT NULL,
        readings TEXT NOT NULL,
        PRIMARY KEY (run, position, plane)))"},
    CStep{1, R"(CREATE TABLE run_warning (
        run INTEGER NOT NULL REFERENCES run (id) ON DELETE CASCADE,
        position INTEGER NOT NULL,
        time BIGINT NOT NULL,
        warning INTEGER NOT NULL,
        text TEXT NOT NULL,
        PRIMARY KEY (run, position)))"},
    CStep{1, R"(CREATE TABLE run_prediction (
        run INTEGER NOT NULL REFERENCES run (id) ON DELETE CASCADE,
        plane SMALLINT NOT NULL,
        x DOUBLE PRECISION NOT NULL,
        y DOUBLE PRECISION NOT NULL,
        variance_x DOUBLE PRECISION NOT NULL,
        variance_y DOUBLE PRECISION NOT NULL,
        covariance_xy DOUBLE PRECISION NOT NULL,
        amplitude DOUBLE PRECISION NOT NULL,
        at_most_95 DOUBLE PRECISION NOT NULL,
        PRIMARY KEY (run, plane)))"},
    CStep{1, R"(CREATE TABLE run_calibration (
        run INTEGER NOT NULL PRIMARY KEY REFERENCES run (id) ON DELETE CASCADE,
        rpm INTEGER NOT NULL,
        inv_a TEXT NOT NULL,
        ua_1 TEXT NOT NULL,
        ua_2 TEXT NOT NULL,
        reference_1 DOUBLE PRECISION NOT NULL,
        reference_2 DOUBLE PRECISION NOT NULL))"},
    CStep{1, R"(CREATE TABLE run_picture (
        run INTEGER NOT NULL REFERENCES run (id) ON DELETE CASCADE,
        name TEXT NOT NULL,
        png TEXT NOT NULL,
        PRIMARY KEY (run, name)))"},
};

static_assert(STEPS.back().m_Version == CURRENT_VERSION);

std::int64_t ReadVersion(PreBalDB::CDirectSQL& rConnection) {
    const auto Rows = rConnection.Query("SELECT version FROM run_version");
    return Rows.empty() ? 0 : Rows[0].GetInteger(0);
}

void CheckNotNewer(const PreBalDB::CDirectSQL& rConnection, std::int64_t Version) {
    if (Version > CURRENT_VERSION) {
        throw PreBalDB::CDatabaseError(rConnection.GetName() + " has version " + std::to_string(Version) +
                                       " of the archive, this program knows up to " +
                                       std::to_string(CURRENT_VERSION) + "; update the program");
    }
}

}  // namespace

bool IsThere(const PreBalDB::CDirectSQL& rConnection) {
    return rConnection.HasTable("run_version");
}

void Prepare(PreBalDB::CDirectSQL& rConnection) {
    PreBalDB::Schema::Prepare(rConnection);
    if (IsThere(rConnection)) {
        const std::int64_t Version = ReadVersion(rConnection);
        CheckNotNewer(rConnection, Version);
        if (Version == CURRENT_VERSION) {
            return;
        }
    }
    PreBalDB::CTransaction Transaction(rConnection, PreBalDB::CTransaction::eWriting);
    if (!rConnection.IsSqlite()) {
        // Two consoles may come to a new server at once. The number is any, but the same for all.
        rConnection.Query("SELECT pg_advisory_xact_lock(5226293)");
    }
    if (!IsThere(rConnection)) {
        rConnection.Execute("CREATE TABLE IF NOT EXISTS run_version (version INTEGER NOT NULL)");
    }
    const std::int64_t Version = ReadVersion(rConnection);  // another console may just have done it
    CheckNotNewer(rConnection, Version);
    if (Version != 0 && Version < CURRENT_VERSION) {
        PreBalDB::BackUpBeforeMigration(rConnection, "archive", Version);
    }
    for (const CStep& rStep : STEPS) {
        if (rStep.m_Version > Version) {
            rConnection.Execute(rStep.m_pStatement);
        }
    }
    rConnection.Execute("DELETE FROM run_version");
    rConnection.Execute("INSERT INTO run_version (version) VALUES (?)", {std::int64_t{CURRENT_VERSION}});
    Transaction.Commit();
}

}  // namespace RunSchema
