#include "archive/isostore.h"

#include <array>
#include <cstdint>
#include <vector>

#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storebackup.h"

namespace {

/// As in the schema of the configurations: stores in the field were made by these very steps; a change is a
/// step more.
struct CStep {
    int m_Version;
    const char* m_pStatement;
};

constexpr std::array STEPS = {
    CStep{1, R"(CREATE TABLE iso_data (
        machine TEXT NOT NULL,
        configuration TEXT NOT NULL,
        rotor_mass DOUBLE PRECISION NOT NULL,
        service_speed DOUBLE PRECISION NOT NULL,
        grade DOUBLE PRECISION NOT NULL,
        unit_1 DOUBLE PRECISION NOT NULL,
        unit_2 DOUBLE PRECISION NOT NULL,
        distance_1 DOUBLE PRECISION NOT NULL,
        distance_2 DOUBLE PRECISION NOT NULL,
        PRIMARY KEY (machine, configuration),
        FOREIGN KEY (machine, configuration) REFERENCES configuration (machine, name)
            ON UPDATE CASCADE ON DELETE CASCADE))"},
};

static_assert(STEPS.back().m_Version == CIsoStore::CURRENT_VERSION);

}  // namespace

CIsoStore::CIsoStore(PreBalDB::CDirectSQL& rConnection) : m_rConnection(rConnection) {
    Prepare();
}

void CIsoStore::Prepare() {
    const auto ReadVersion = [this]() -> std::int64_t {
        const auto Rows = m_rConnection.Query("SELECT version FROM iso_version");
        return Rows.empty() ? 0 : Rows[0].GetInteger(0);
    };
    const auto CheckNotNewer = [this](std::int64_t Version) {
        if (Version > CURRENT_VERSION) {
            throw PreBalDB::CDatabaseError(m_rConnection.GetName() + " has version " +
                                           std::to_string(Version) +
                                           " of the ISO data, this program knows up to " +
                                           std::to_string(CURRENT_VERSION) + "; update the program");
        }
    };
    if (m_rConnection.HasTable("iso_version")) {
        const std::int64_t Version = ReadVersion();
        CheckNotNewer(Version);
        if (Version == CURRENT_VERSION) {
            return;
        }
    }
    PreBalDB::CTransaction Transaction(m_rConnection, PreBalDB::CTransaction::eWriting);
    if (!m_rConnection.IsSqlite()) {
        // Two consoles may come to a server at once. The number is any, but the same for all.
        m_rConnection.Query("SELECT pg_advisory_xact_lock(5226292)");
    }
    if (!m_rConnection.HasTable("iso_version")) {
        m_rConnection.Execute("CREATE TABLE IF NOT EXISTS iso_version (version INTEGER NOT NULL)");
    }
    const std::int64_t Version = ReadVersion();  // another console may just have done it
    CheckNotNewer(Version);
    if (Version != 0 && Version < CURRENT_VERSION) {
        PreBalDB::BackUpBeforeMigration(m_rConnection, "iso", Version);
    }
    for (const CStep& rStep : STEPS) {
        if (rStep.m_Version > Version) {
            m_rConnection.Execute(rStep.m_pStatement);
        }
    }
    m_rConnection.Execute("DELETE FROM iso_version");
    m_rConnection.Execute("INSERT INTO iso_version (version) VALUES (?)", {std::int64_t{CURRENT_VERSION}});
    Transaction.Commit();
}

std::optional<CIsoData> CIsoStore::Read(const std::string& rMachine, const std::string& rConfiguration) {
    const auto Rows = m_rConnection.Query(
        "SELECT rotor_mass, service_speed, grade, unit_1, unit_2, distance_1, distance_2 FROM iso_data "
        "WHERE machine = ? AND configuration = ?",
        {rMachine, rConfiguration});
    if (Rows.empty()) {
        return std::nullopt;
    }
    CIsoData Data;
    Data.m_RotorMass = Rows[0].GetDouble(0);
    Data.m_ServiceSpeed = Rows[0].GetDouble(1);
    Data.m_Grade = Rows[0].GetDouble(2);
    Data.m_Unit = {Rows[0].GetDouble(3), Rows[0].GetDouble(4)};
    Data.m_Distance = {Rows[0].GetDouble(5), Rows[0].GetDouble(6)};
    return Data;
}

bool CIsoStore::Write(const std::string& rMachine, const std::string& rConfiguration, const CIsoData& rData) {
    PreBalDB::CTransaction Transaction(m_rConnection, PreBalDB::CTransaction::eWriting);
    const std::vector<PreBalDB::CDirectSQL::CValue> Key = {rMachine, rConfiguration};
    if (m_rConnection.Query("SELECT 1 FROM configuration WHERE machine = ? AND name = ?", Key).empty()) {
        return false;
    }
    m_rConnection.Execute("DELETE FROM iso_data WHERE machine = ? AND configuration = ?", Key);
    m_rConnection.Execute(
        "INSERT INTO iso_data (machine, configuration, rotor_mass, service_speed, grade, unit_1, unit_2, "
        "distance_1, distance_2) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
        {rMachine, rConfiguration, rData.m_RotorMass, rData.m_ServiceSpeed, rData.m_Grade, rData.m_Unit[0],
         rData.m_Unit[1], rData.m_Distance[0], rData.m_Distance[1]});
    Transaction.Commit();
    return true;
}
