#pragma once
#include <string>
#include <vector>

#include "archive/report/reportdocument.h"
#include "archive/report/reportinput.h"

/// Sections of a report, each with its heading; nothing is added by one that has nothing to tell.
namespace ReportSections {

using CBlocks = std::vector<CReportBlock>;

void AddVerdict(CBlocks& rBlocks, const CReportedRun& rRun);
void AddFacts(CBlocks& rBlocks, const CReportedRun& rRun, bool bUtc);
void AddBeforeAndAfter(CBlocks& rBlocks, const CReportedRun& rRun);
void AddPlots(CBlocks& rBlocks, const CReportedRun& rRun);
void AddMeasurements(CBlocks& rBlocks, const CReportedRun& rRun);
void AddCorrection(CBlocks& rBlocks, const CReportedRun& rRun);
void AddInfluence(CBlocks& rBlocks, const CReportedRun& rRun);
void AddPrediction(CBlocks& rBlocks, const CReportedRun& rRun);
void AddIso(CBlocks& rBlocks, const CReportedRun& rRun);
void AddWarnings(CBlocks& rBlocks, const CReportedRun& rRun);
void AddTrend(CBlocks& rBlocks, const CReportInput& rInput);

/// "Plane 1"
std::string NamePlane(std::size_t Plane);
/// "First measurement"
std::string NameMeasurement(Measurement Which);

}  // namespace ReportSections
