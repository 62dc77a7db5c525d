#pragma once
#include "archive/report/reportdocument.h"
#include "archive/report/reportinput.h"

/// What a report for people says, in the language in use: who, what, when and where, the verdict, and all
/// that is known of the way to it. What isn't known is left out; runs that were broken off or failed say so.
CReportDocument MakeReportDocument(const CReportInput& rInput);
