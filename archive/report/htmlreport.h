#pragma once
#include <string>

#include "archive/report/reportdocument.h"

/// The document as one file of HTML 5: no scripts, drawings as SVG, pictures within it, nothing from
/// elsewhere, and a style for the printer.
std::string WriteHtmlReport(const CReportDocument& rDocument);
