#pragma once
#include <string>
#include <vector>

#include "archive/report/reportdocument.h"
#include "archive/runrecord.h"

/// The trend of a rotor or a machine, for people, in the language in use: readings before and after, and the
/// influence of each balanced plane's weights on it, over the runs. Runs oldest first; those without a final
/// measurement count only in the list. Title: whose trend it is.
CReportDocument MakeTrendDocument(const std::string& rTitle, const std::vector<CRunRecord>& rRuns);
