#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "archive/report/reportinput.h"
#include "console/runreport.h"

/// Reports as files: JSON for programs, HTML or PDF for people, by the end of the file's name.
namespace ReportFile {

enum class Kind : std::uint8_t { eJson, eHtml, ePdf };

/// By the end of the name, in letters of either case; nothing for another one.
std::optional<Kind> GetKind(const std::string& rFile);
/// The ends of names that GetKind knows, for people.
inline constexpr const char* ENDS = ".json, .html or .pdf";

/// Writes a report in the language in use, in place of what the file holds; rJson is what programs get,
/// rInput what people get. A PDF needs a graphical application, not a display. False if the file can't be
/// written, or has no name that GetKind knows.
bool Write(const std::string& rFile, const CRunReport& rJson, const CReportInput& rInput);
/// The report of a record in the archive.
bool Write(const std::string& rFile, const CReportInput& rInput);

}  // namespace ReportFile
