#include "archive/report/trendcontent.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "archive/archivedrun.h"
#include "archive/report/reportinput.h"
#include "archive/report/reportsections.h"
#include "archive/report/reporttext.h"
#include "contract/units.h"
#include "platform/rvldb/gettext.h"

namespace {

using ReportText::Say;

/// "0.84 at 123.0°" for each plane's own sensor: counts for what the module calls one.
std::string DescribeInfluence(const CRunRecord& rRecord) {
    constexpr int DIGITS = 4;
    const std::optional<math::matrix<double>> Influence = rRecord.GetInfluence();
    std::string Text;
    for (std::uint32_t i = 0; Influence && 2 * i < Influence->RowNo(); ++i) {
        const double X = (*Influence)(2 * i, 2 * i);
        const double Y = (*Influence)(2 * i + 1, 2 * i);
        Text += (Text.empty() ? "" : ", ") +
                Say("ARCHIVE_INFLUENCE", {ReportText::Digits(std::hypot(X, Y), DIGITS),
                                          ReportText::Angle(std::atan2(Y, X) * 180.0 / std::numbers::pi, 1)});
    }
    return Text.empty() ? "–" : Text;
}

std::string DescribeReading(const std::optional<double>& rReading) {
    return rReading ? ReportText::Reading(*rReading) : "–";
}

}  // namespace

CReportDocument MakeTrendDocument(const std::string& rTitle, const std::vector<CRunRecord>& rRuns) {
    CReportDocument Document;
    Document.m_Title = GetText("REPORT_TREND");
    Document.m_Subtitle = ReportText::CleanName(rTitle);
    Document.m_Language = GetLanguage();
    CReportInput Input;
    CReportTable Table;
    Table.m_Header = {GetText("ARCHIVE_DATE"), Say("ARCHIVE_BEFORE", {Units::UNBALANCE}),
                      Say("ARCHIVE_AFTER", {Units::UNBALANCE}), GetText("REPORT_INFLUENCE")};
    for (const CRunRecord& rRun : rRuns) {
        const std::optional<double> Before = rRun.GetReading(Measurement::eFirst);
        const std::optional<double> After = rRun.GetReading(Measurement::eFinal);
        if (const auto Point = CArchivedRun::MakePoint(rRun)) {
            Input.m_Trend.push_back(*Point);
        }
        Table.m_Rows.push_back({ReportText::Date(rRun.m_Started, false), DescribeReading(Before),
                                DescribeReading(After), DescribeInfluence(rRun)});
    }
    std::ranges::reverse(Table.m_Rows);  // the newest is looked for first
    ReportSections::AddTrend(Document.m_Blocks, Input);
    if (Table.m_Rows.empty()) {
        Document.m_Blocks.emplace_back(CReportParagraph{GetText("ARCHIVE_NONE")});
    } else {
        Document.m_Blocks.emplace_back(std::move(Table));
    }
    return Document;
}
