#include "console/archivedreports.h"

#include <QString>
#include <filesystem>

#include "console/reportfile.h"
#include "platform/rvldb/gettext.h"

namespace {

std::string TellFile(const char* pTextKey, const std::string& rFile) {
    return QString::fromStdString(GetText(pTextKey)).arg(QString::fromStdString(rFile)).toStdString();
}

}  // namespace

void CArchivedReports::Write(CRunArchive& rArchive, std::int64_t Id) {
    const std::string File =
        (std::filesystem::path(m_Directory) / ("run-" + std::to_string(Id) + ".pdf")).string();
    const auto Failed = m_Lifetime.Guard([this, File](const std::string& rWhy) { Fail(File, rWhy); });
    const auto Loaded =
        m_Lifetime.Guard([this, File](const std::optional<CArchivedRun>& rRun) { WriteRun(File, rRun); });
    rArchive.Ask(
        [Id, Loaded](CRunStore& rStore) -> std::function<void()> {
            return [Loaded, Run = CArchivedRun::Load(rStore, Id)] {
                auto Deliver = Loaded;  // a copy, for a callback may change itself
                Deliver(Run);
            };
        },
        Failed);
}

void CArchivedReports::WriteRun(const std::string& rFile, const std::optional<CArchivedRun>& rRun) const {
    std::error_code Error;
    std::filesystem::create_directories(m_Directory, Error);
    if (!rRun || !ReportFile::Write(rFile, rRun->MakeReportInput())) {
        Fail(rFile, Error ? Error.message() : std::string());
        return;
    }
    OnSay(TellFile("CONSOLE_REPORT_WRITTEN", rFile));
}

void CArchivedReports::Fail(const std::string& rFile, const std::string& rWhy) const {
    OnSay(TellFile("CONSOLE_NOT_WRITTEN", rFile) + (rWhy.empty() ? "" : " " + rWhy));
}
