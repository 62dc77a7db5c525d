#include "console/reportfile.h"

#include <array>
#include <filesystem>
#include <vector>

#include "archive/fixeddate.h"
#include "archive/report/htmlreport.h"
#include "archive/report/pagedreport.h"
#include "archive/report/reportcontent.h"
#include "platform/paper/pdfpaper.h"
#include "platform/system/files.h"
#include "platform/system/text.h"

namespace ReportFile {

namespace {

std::vector<std::uint8_t> MakePdf(const CReportInput& rInput) {
    const CReportDocument Document = MakeReportDocument(rInput);
    // The same record gives the same bytes, whenever it is printed.
    const auto Date =
        rInput.m_bFixedDate || rInput.m_Runs.empty() ? FIXED_DATE : rInput.m_Runs.front().m_Record.m_Started;
    const std::unique_ptr<IFPdfPaper> pPaper = MakePdfPaper(Document.m_Title, Date);
    WritePagedReport(Document, *pPaper);
    return pPaper->Finish();
}

}  // namespace

std::optional<Kind> GetKind(const std::string& rFile) {
    constexpr std::array NAMES = {".json", ".html", ".pdf"};
    const std::string End = std::filesystem::path(rFile).extension().string();
    for (std::size_t i = 0; i < NAMES.size(); ++i) {
        if (Text::EqualNoCase(End, NAMES.at(i))) {
            return static_cast<Kind>(i);
        }
    }
    return std::nullopt;
}

bool Write(const std::string& rFile, const CRunReport& rJson, const CReportInput& rInput) {
    const std::optional<Kind> Wanted = GetKind(rFile);
    if (!Wanted) {
        return false;
    }
    if (*Wanted == Kind::eJson) {
        return rJson.Write(rFile);
    }
    if (*Wanted == Kind::eHtml) {
        const std::string Html = WriteHtmlReport(MakeReportDocument(rInput));
        return Files::WriteAll(rFile, {Html.begin(), Html.end()});
    }
    const std::vector<std::uint8_t> Pdf = MakePdf(rInput);
    return !Pdf.empty() && Files::WriteAll(rFile, Pdf);
}

bool Write(const std::string& rFile, const CReportInput& rInput) {
    CRunReport Json;
    if (!rInput.m_Runs.empty()) {
        const CReportedRun& rRun = rInput.m_Runs.back();
        Json = CRunReport::FromRecord(rRun.m_Record, rRun.m_Advice);
    }
    Json.SetFixedDate(rInput.m_bFixedDate);
    return Write(rFile, Json, rInput);
}

}  // namespace ReportFile
