#pragma once
#include <nlohmann/json.hpp>
#include <string>

#include "archive/runstore.h"

/// Runs of the archive for programs.
namespace ArchiveJson {

/// "within-target", "over-target", "failed", "broken-off" or "interrupted".
const char* GetOutcome(CRunRecord::State State, const std::string& rResult);
const char* GetDriver(CRunRecord::Driver Driver);

/// A line of the list.
nlohmann::ordered_json FromSummary(const CRunSummary& rSummary);
/// All that is kept of a run, its readings included.
nlohmann::ordered_json FromRecord(const CRunRecord& rRecord);

}  // namespace ArchiveJson
