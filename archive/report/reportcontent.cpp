#include "archive/report/reportcontent.h"

#include "archive/fixeddate.h"
#include "archive/report/reportsections.h"
#include "archive/report/reporttext.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/version.h"

using ReportText::CleanName;
using ReportText::Say;

namespace {

using ReportSections::CBlocks;

void AddRun(CBlocks& rBlocks, const CReportedRun& rRun, bool bUtc) {
    ReportSections::AddVerdict(rBlocks, rRun);
    ReportSections::AddFacts(rBlocks, rRun, bUtc);
    ReportSections::AddBeforeAndAfter(rBlocks, rRun);
    // They explain what has gone wrong; beside a run that came to its end they are a side issue.
    const bool bFinished = rRun.m_Record.m_State == CRunRecord::State::eFinished;
    if (!bFinished) {
        ReportSections::AddWarnings(rBlocks, rRun);
    }
    ReportSections::AddPlots(rBlocks, rRun);
    ReportSections::AddCorrection(rBlocks, rRun);
    ReportSections::AddMeasurements(rBlocks, rRun);
    ReportSections::AddInfluence(rBlocks, rRun);
    ReportSections::AddPrediction(rBlocks, rRun);
    ReportSections::AddIso(rBlocks, rRun);
    if (bFinished) {
        ReportSections::AddWarnings(rBlocks, rRun);
    }
}

std::string NameProcedure(const CRunRecord& rRecord) {
    return GetText(rRecord.m_bRebalance ? "REPORT_REBALANCING" : "REPORT_PREBALANCING");
}

/// Records as they are told where nothing may depend on the clock.
CReportInput FixDates(CReportInput Input) {
    for (CReportedRun& rRun : Input.m_Runs) {
        rRun.m_Record.m_Started = rRun.m_Record.m_Ended = FIXED_DATE;
    }
    return Input;
}

}  // namespace

CReportDocument MakeReportDocument(const CReportInput& rGiven) {
    const CReportInput Input = rGiven.m_bFixedDate ? FixDates(rGiven) : rGiven;
    CReportDocument Document;
    Document.m_Title = GetText("REPORT_TITLE");
    Document.m_Language = GetLanguage();
    Document.m_PageFormat = GetText("REPORT_PAGE");
    CBlocks& rBlocks = Document.m_Blocks;
    if (Input.m_Runs.empty()) {
        rBlocks.emplace_back(CReportParagraph{GetText("REPORT_NO_RUN"), CReportParagraph::Kind::eBad});
        Document.m_Footer = Say("REPORT_FOOTER", {"–", GetProjectVersion()});
        return Document;
    }
    const CRunRecord& rFirst = Input.m_Runs.front().m_Record;
    Document.m_Subtitle = (rFirst.m_Rotor.empty() ? "" : CleanName(rFirst.m_Rotor) + " – ") +
                          ReportText::Date(rFirst.m_Started, Input.m_bFixedDate);
    Document.m_Footer =
        Say("REPORT_FOOTER", {CleanName(rFirst.m_Machine), ReportText::Clean(rFirst.m_Version)});
    for (std::size_t i = 0; i < Input.m_Runs.size(); ++i) {
        const CReportedRun& rRun = Input.m_Runs[i];
        if (Input.m_Runs.size() > 1) {
            rBlocks.emplace_back(CReportHeading{
                Say("REPORT_RUN_OF", {std::to_string(i + 1), std::to_string(Input.m_Runs.size()),
                                      NameProcedure(rRun.m_Record)}),
                i > 0});
        }
        AddRun(rBlocks, rRun, Input.m_bFixedDate);
    }
    ReportSections::AddTrend(rBlocks, Input);
    rBlocks.emplace_back(CReportSignature{
        {GetText("REPORT_SIGN_DATE"), GetText("REPORT_SIGN_NAME"), GetText("REPORT_SIGNATURE")}});
    return Document;
}
