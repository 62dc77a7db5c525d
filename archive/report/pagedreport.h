#pragma once
#include <functional>

#include "archive/report/reportdocument.h"

/// Lays the document out on sheets, with title, margins and numbered pages.
void WritePagedReport(const CReportDocument& rDocument, IFPagedPaper& rPaper);
