#pragma once
#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "archive/runstore.h"

/// How the archive's commands show runs, and read what people ask for.
namespace ArchiveText {

/// A result of a run by its name in commands and files, and by the key of its text.
struct COutcome {
    const char* m_pName;
    const char* m_pKey;
    CRunFilter::Result m_Result;
};
std::span<const COutcome> GetOutcomes();
/// Null if there is none of that name.
const COutcome* FindOutcome(std::string_view Name);

/// A day ("2026-01-31", its beginning) or a moment ("2026-01-31T12:00"), in local time.
std::optional<std::chrono::sys_seconds> ParseDate(const std::string& rText);
/// What is wrong with a date; empty if nothing is.
std::string CheckDate(const std::string& rText);

std::string ShowMoment(std::chrono::sys_seconds Moment);
/// What a terminal shows of a text from outside: no control characters.
std::string Shown(const std::string& rText);
std::string ShowOutcome(CRunRecord::State State, const std::string& rResult, bool bSaved);
/// A line a plane.
std::string Describe(const CRunMeasurement& rMeasurement);

/// Runs as a table for people, and for spreadsheets.
std::string MakeList(const std::vector<CRunSummary>& rRuns);
std::string MakeCsv(const std::vector<CRunSummary>& rRuns);
/// The measurements of a run for spreadsheets, a line a plane, and the names of its columns.
std::string MakeMeasurementsCsv(const CRunRecord& rRun);
std::string GetCsvNames();

}  // namespace ArchiveText
