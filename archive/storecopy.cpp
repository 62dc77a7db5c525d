#include "archive/storecopy.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <span>
#include <string_view>
#include <system_error>

#include "archive/isostore.h"
#include "archive/runschema.h"
#include "platform/rvmdb/postgresurl.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/schema.h"
#include "platform/rvmdb/tablerows.h"

using PreBalDB::CDatabaseError;
using PreBalDB::CDirectSQL;
using PreBalDB::CSqlError;
using PreBalDB::CTableRows;
using PreBalDB::CTransaction;

namespace {

constexpr std::string_view SQLITE = "sqlite:";

// Those that others refer to come first.
constexpr std::array TABLES = {
    "machine",     "configuration", "single_plane", "two_plane", "weight_compensation", "screw_compensation",
    "screw_table", "screw",         "delivery",     "iso_data",  "run_counter"};
/// Of the archive, with the column that holds the run's number. These may be large, and are taken in parts.
struct CRunTable {
    const char* m_pTable;
    const char* m_pRun;
};
constexpr std::array RUN_TABLES = {CRunTable{"run", "id"},
                                   CRunTable{"run_setup", "run"},
                                   CRunTable{"run_measurement", "run"},
                                   CRunTable{"run_plane", "run"},
                                   CRunTable{"run_warning", "run"},
                                   CRunTable{"run_prediction", "run"},
                                   CRunTable{"run_calibration", "run"},
                                   CRunTable{"run_picture", "run"}};

void CheckThere(const std::string& rConnection) {
    std::error_code Error;
    if (rConnection.starts_with(SQLITE) &&
        !std::filesystem::is_regular_file(rConnection.substr(SQLITE.size()), Error)) {
        throw CDatabaseError("there is no database \"" + rConnection.substr(SQLITE.size()) + "\"");
    }
}

std::string Checked(const std::string& rConnection) {
    CheckThere(rConnection);
    return rConnection;
}

std::int64_t ReadVersion(CDirectSQL& rStore, const char* pTable) {
    if (!rStore.HasTable(pTable)) {
        return 0;
    }
    const auto Rows = rStore.Query(std::string("SELECT version FROM ") + pTable);
    return Rows.empty() ? 0 : Rows[0].GetInteger(0);
}

void CheckVersion(CDirectSQL& rStore) {
    const std::int64_t Version = ReadVersion(rStore, "schema_version");
    if (Version == 0) {
        throw CDatabaseError(rStore.GetName() + " holds no balancing database");
    }
    for (const auto& [pTable, Wanted] : {std::pair("schema_version", PreBalDB::Schema::CURRENT_VERSION),
                                         std::pair("run_version", RunSchema::CURRENT_VERSION),
                                         std::pair("iso_version", CIsoStore::CURRENT_VERSION)}) {
        const std::int64_t Found = ReadVersion(rStore, pTable);
        if (Found != Wanted) {
            throw CDatabaseError(rStore.GetName() + " has version " + std::to_string(Found) + " (" + pTable +
                                 "), this program copies " + std::to_string(Wanted) +
                                 "; bring it to this version by database prepare");
        }
    }
}

/// Nobody waits for this one, and a large archive takes its time.
void LiftLimits(CDirectSQL& rStore) {
    if (!rStore.IsSqlite()) {
        rStore.Execute("SET statement_timeout = 0");
        rStore.Execute("SET idle_in_transaction_session_timeout = 0");
    }
}

std::size_t CountRows(CDirectSQL& rStore, const std::string& rTable) {
    return static_cast<std::size_t>(rStore.Query("SELECT count(*) FROM " + rTable).at(0).GetInteger(0));
}

}  // namespace

std::string CStoreCopy::MakeConnection(const std::string& rText) {
    return rText.starts_with(SQLITE) || PreBalDB::CPostgresUrl::IsOne(rText) ? rText
                                                                             : std::string(SQLITE) + rText;
}

void CStoreCopy::Prepare(CDirectSQL& rStore) {
    try {
        LiftLimits(rStore);
        RunSchema::Prepare(rStore);
        const CIsoStore Iso(rStore);
    } catch (const CSqlError& rError) {
        throw CDatabaseError(rStore.GetUnusableText(rError));
    }
}

CStoreCopy::CStoreCopy(const std::string& rFrom, const std::string& rTo) : m_From(Checked(rFrom)), m_To(rTo) {
    if (m_From.GetName() == m_To.GetName()) {
        throw CDatabaseError(m_From.GetName() + " can't be copied into itself");
    }
    CheckVersion(m_From);
    Prepare(m_To);
    LiftLimits(m_From);
}

bool CStoreCopy::IsTargetEmpty() {
    return CountRows(m_To, "machine") == 0 && CountRows(m_To, "run") == 0;
}

std::vector<CStoreCopy::CTable> CStoreCopy::Copy() {
    const CTransaction Reading(m_From, CTransaction::eReading);
    CTransaction Writing(m_To, CTransaction::eWriting);
    Empty();
    std::vector<CTable> Copied = CopyRows();
    CheckCounts(Copied);
    Writing.Commit();
    return Copied;
}

/// What belongs to machines and runs goes with them.
void CStoreCopy::Empty() {
    for (const char* const pTable : {"machine", "run", "delivery", "run_counter"}) {
        m_To.Execute(std::string("DELETE FROM ") + pTable);
    }
}

std::vector<CStoreCopy::CTable> CStoreCopy::CopyRows() {
    std::vector<CTable> Copied;
    Copied.reserve(std::size(TABLES));
    for (const char* const pTable : TABLES) {
        Copied.push_back({pTable, CopyTable(pTable)});
    }
    CopyRuns(Copied);
    return Copied;
}

std::size_t CStoreCopy::CopyTable(const std::string& rTable, const std::string& rCondition,
                                  const std::vector<CDirectSQL::CValue>& rValues) {
    const CTableRows Rows = CTableRows::Read(m_From, rTable, rCondition, rValues);
    Rows.Insert(m_To);
    if (CTableRows::Read(m_To, rTable, rCondition, rValues) != Rows) {
        throw CSqlError("the rows of " + rTable + " differ from what was written; nothing was copied");
    }
    return Rows.m_Rows.size();
}

void CStoreCopy::CopyRuns(std::vector<CTable>& rCopied) {
    constexpr std::size_t BATCH = 50;
    std::vector<std::int64_t> Ids;
    for (const CDirectSQL::CRow& rRow : m_From.Query("SELECT id FROM run ORDER BY id")) {
        Ids.push_back(rRow.GetInteger(0));
    }
    const std::size_t nFirst = rCopied.size();
    for (const CRunTable& rTable : RUN_TABLES) {
        rCopied.push_back({rTable.m_pTable, 0});
    }
    for (std::size_t nDone = 0; nDone < Ids.size(); nDone += BATCH) {
        const auto Part = std::span(Ids).subspan(nDone, std::min(BATCH, Ids.size() - nDone));
        for (std::size_t i = 0; i < RUN_TABLES.size(); ++i) {
            rCopied[nFirst + i].m_nRows +=
                CopyTable(RUN_TABLES.at(i).m_pTable,
                          std::string(" WHERE ") + RUN_TABLES.at(i).m_pRun + " BETWEEN ? AND ?",
                          {Part.front(), Part.back()});
        }
    }
}

/// Also against what somebody else may have written meanwhile.
void CStoreCopy::CheckCounts(const std::vector<CTable>& rCopied) {
    for (const CTable& rTable : rCopied) {
        const std::size_t nFrom = CountRows(m_From, rTable.m_Name);
        const std::size_t nTo = CountRows(m_To, rTable.m_Name);
        if (nFrom != rTable.m_nRows || nTo != rTable.m_nRows) {
            throw CSqlError(rTable.m_Name + " has " + std::to_string(nFrom) + " rows, and " +
                            std::to_string(nTo) + " after copying; nothing was copied");
        }
    }
}
