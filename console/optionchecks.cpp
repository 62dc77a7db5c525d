#include "console/optionchecks.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "console/reportfile.h"
#include "platform/rvldb/gettext.h"

std::string RefuseEmpty(const std::string& rText) {
    return rText.empty() ? "must not be empty; leave the option out for the default" : "";
}

std::string CheckReportName(const std::string& rText) {
    if (rText.empty() || ReportFile::GetKind(rText)) {
        return RefuseEmpty(rText);
    }
    return "\"" + rText + "\" tells no kind of report; let the name end in " + ReportFile::ENDS;
}

std::string CheckLanguage(const std::string& rText) {
    const std::vector<std::string> Languages = GetLanguages();
    if (std::find(Languages.begin(), Languages.end(), rText) != Languages.end()) {
        return {};
    }
    return "there is no language \"" + rText + "\"; there are " + CLI::detail::join(Languages, ", ");
}
