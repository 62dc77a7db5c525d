#pragma once

namespace PreBalDB {
class CDirectSQL;
}

/// The archive's tables in the store, with a version of their own: run, and what belongs to one of them by
/// its number: run_setup, run_measurement, run_plane, run_warning, run_prediction, run_calibration,
/// run_picture. What is needed to list runs stands in the short rows of run. All of a run goes with it.
namespace RunSchema {

constexpr int CURRENT_VERSION = 1;

/// Whether the store has an archive at all. Throws PreBalDB::CSqlError.
bool IsThere(const PreBalDB::CDirectSQL& rConnection);

/// Brings the store to the current version, from nothing or from an older one, in one transaction; the tables
/// of the configurations come first, or the store would look like another program's. Throws
/// PreBalDB::CDatabaseError for an archive of a newer version, which it leaves as it is.
void Prepare(PreBalDB::CDirectSQL& rConnection);

}  // namespace RunSchema
