#include "archive/report/reportsections.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "archive/machinekey.h"
#include "archive/report/reporttext.h"
#include "contract/units.h"
#include "platform/rvldb/gettext.h"

using ReportText::CleanName;
using ReportText::Say;

namespace ReportSections {

namespace {

using Kind = CReportParagraph::Kind;

double GetLength(const CVectorReading& rVector) {
    return std::hypot(rVector.m_X, rVector.m_Y);
}

/// Smoothed lengths of the balanced planes: "4.1", or "4.1 and 2.2".
std::string WriteLengths(const CRunMeasurement& rMeasurement, double Target) {
    std::string Text;
    for (const auto& rPlane : rMeasurement.m_Planes) {
        if (rPlane) {
            const std::string Length = ReportText::Reading(GetLength(rPlane->m_Smoothed), Target);
            Text = Text.empty() ? Length : Say("REPORT_AND", {Text, Length});
        }
    }
    return Text;
}

bool IsOverTarget(const CRunRecord& rRecord) {
    return rRecord.m_Result.find("OverTarget") != std::string::npos;
}

std::string NameFamily(const std::string& rFamily) {
    return rFamily == "kestrel"        ? "Kestrel"
           : rFamily == "kestrel-pair" ? "2 × Kestrel"
           : rFamily == "lanner"       ? "Lanner"
                                       : CleanName(rFamily);
}

std::string DescribeModule(const CRunRecord& rRecord) {
    std::string Text = NameFamily(rRecord.m_Family);
    if (const auto Key = CMachineKey::Parse(rRecord.m_Machine)) {
        Text += ", " + CleanName(Key->m_Module);
        Text += ", " + Say("REPORT_SET", {std::to_string(Key->m_Set)});
    }
    return Text;
}

std::string DescribeMeans(const CPlaneSetup& rSetup) {
    const std::string Sense =
        GetText(rSetup.m_bScaleClockwise ? "REPORT_CLOCKWISE" : "REPORT_COUNTER_CLOCKWISE");
    if (!rSetup.m_bScrews) {
        return Say("REPORT_WEIGHTS", {Sense});
    }
    return Say("REPORT_SCREWS", {std::to_string(rSetup.m_nScrews), std::to_string(rSetup.m_nHoles), Sense});
}

}  // namespace

std::string NamePlane(std::size_t Plane) {
    return Say("REPORT_PLANE", {std::to_string(Plane + 1)});
}

std::string NameMeasurement(Measurement Which) {
    constexpr std::array KEYS = {"", "REPORT_FIRST", "REPORT_TEST1", "REPORT_TEST2", "REPORT_FINAL"};
    return GetText(KEYS.at(static_cast<std::size_t>(Which)));
}

void AddVerdict(CBlocks& rBlocks, const CReportedRun& rRun) {
    const CRunRecord& rRecord = rRun.m_Record;
    const double Target = rRecord.m_Setup.m_TargetUnbalance;
    const CRunMeasurement* const pFirst = rRecord.Find(Measurement::eFirst);
    const CRunMeasurement* const pFinal = rRecord.Find(Measurement::eFinal);
    if (rRecord.m_State == CRunRecord::State::eFinished && pFirst != nullptr && pFinal != nullptr) {
        const bool bOver = IsOverTarget(rRecord);
        const std::string Text =
            Say(bOver ? "REPORT_OVER" : "REPORT_WITHIN",
                {WriteLengths(*pFinal, Target), std::to_string(rRecord.m_Setup.m_TargetUnbalance),
                 Units::UNBALANCE, WriteLengths(*pFirst, Target)});
        const std::string Saved = GetText(rRecord.m_bSaved ? "REPORT_SAVED" : "REPORT_NOT_SAVED");
        rBlocks.emplace_back(
            CReportParagraph{Text + " " + Saved, bOver || !rRecord.m_bSaved ? Kind::eBad : Kind::eGood});
        return;
    }
    const char* const pKey = rRecord.m_State == CRunRecord::State::eBrokenOff ? "REPORT_BROKEN_OFF"
                             : rRecord.m_State == CRunRecord::State::eRunning ? "REPORT_INTERRUPTED"
                                                                              : "REPORT_FAILED";
    const char* const pRest =
        rRecord.m_Measurements.empty() ? "REPORT_NOTHING_MEASURED" : "REPORT_UNTIL_THEN";
    rBlocks.emplace_back(CReportParagraph{GetText(pKey) + " " + GetText(pRest), Kind::eBad});
}

void AddFacts(CBlocks& rBlocks, const CReportedRun& rRun, bool bUtc) {
    const CRunRecord& rRecord = rRun.m_Record;
    constexpr std::array DRIVERS = {"REPORT_BY_PANEL", "REPORT_BY_NC", "REPORT_BY_PROGRAM"};
    CReportTable Table;
    const auto Add = [&Table](const char* pKey, const std::string& rText) {
        Table.m_Rows.push_back({GetText(pKey), rText});
    };
    Add("REPORT_PROCEDURE", GetText(rRecord.m_bRebalance ? "REPORT_REBALANCING" : "REPORT_PREBALANCING"));
    Add("REPORT_ROTOR", CleanName(rRecord.m_Rotor));
    Add("REPORT_STARTED", ReportText::Date(rRecord.m_Started, bUtc));
    if (rRecord.m_Ended > rRecord.m_Started) {
        Add("REPORT_DURATION", std::to_string((rRecord.m_Ended - rRecord.m_Started).count()) + " s");
    }
    Add("REPORT_DRIVER", GetText(DRIVERS.at(static_cast<std::size_t>(rRecord.m_Driver))));
    Add("REPORT_MACHINE", CleanName(rRecord.m_Machine));
    Add("REPORT_MODULE", DescribeModule(rRecord));
    Add("REPORT_CONFIGURATION", CleanName(rRecord.m_Setup.m_Configuration));
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        if (const auto& rSetup = rRecord.m_Setup.m_Planes.at(Plane)) {
            Table.m_Rows.push_back({NamePlane(Plane), DescribeMeans(*rSetup)});
        }
    }
    Add("REPORT_ROTATION",
        GetText(rRecord.m_Setup.m_bClockwise ? "REPORT_CLOCKWISE" : "REPORT_COUNTER_CLOCKWISE"));
    if (!rRecord.m_Measurements.empty()) {
        Add("REPORT_SPEED",
            ReportText::Fixed(rRecord.m_Measurements.back().m_MeanRpm, 0) + " " + GetText("REPORT_RPM"));
    }
    Add("REPORT_TARGET", std::to_string(rRecord.m_Setup.m_TargetUnbalance) + " " + Units::UNBALANCE);
    Add("REPORT_VERSION", ReportText::CleanName(rRecord.m_Version));
    if (rRecord.m_Id > 0) {
        Add("REPORT_NUMBER", std::to_string(rRecord.m_Id));
    }
    rBlocks.emplace_back(CReportHeading{GetText("REPORT_RUN")});
    rBlocks.emplace_back(std::move(Table));
}

void AddBeforeAndAfter(CBlocks& rBlocks, const CReportedRun& rRun) {
    const CRunRecord& rRecord = rRun.m_Record;
    const CRunMeasurement* const pFirst = rRecord.Find(Measurement::eFirst);
    const CRunMeasurement* const pFinal = rRecord.Find(Measurement::eFinal);
    if (pFirst == nullptr || pFinal == nullptr) {
        return;
    }
    const double Target = rRecord.m_Setup.m_TargetUnbalance;
    CReportTable Table;
    Table.m_Header = {"",
                      Say("REPORT_BEFORE", {Units::UNBALANCE}),
                      Say("REPORT_AFTER", {Units::UNBALANCE}),
                      Say("REPORT_TARGET_IN", {Units::UNBALANCE}),
                      GetText("REPORT_REDUCTION"),
                      GetText("REPORT_WITHIN_TARGET")};
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        if (!pFirst->m_Planes.at(Plane) || !pFinal->m_Planes.at(Plane)) {
            continue;
        }
        const double Before = GetLength(pFirst->m_Planes.at(Plane)->m_Smoothed);
        const double After = GetLength(pFinal->m_Planes.at(Plane)->m_Smoothed);
        const std::string Reduction =
            Before > 0.0 ? ReportText::Fixed(100.0 * (1.0 - After / Before), 1) + " %" : "–";
        Table.m_Rows.push_back({NamePlane(Plane), ReportText::Reading(Before),
                                ReportText::Reading(After, Target),
                                std::to_string(rRecord.m_Setup.m_TargetUnbalance), Reduction,
                                GetText(After <= Target ? "REPORT_YES" : "REPORT_NO")});
    }
    rBlocks.emplace_back(CReportHeading{GetText("REPORT_BEFORE_AND_AFTER")});
    rBlocks.emplace_back(std::move(Table));
}

void AddWarnings(CBlocks& rBlocks, const CReportedRun& rRun) {
    constexpr std::size_t LONGEST = 500;
    constexpr std::size_t MOST = 20;
    // The same one comes often, as the spindle starts and stops.
    CReportTable Table;
    std::vector<std::size_t> Times;
    for (const CRunWarning& rWarning : rRun.m_Record.m_Warnings) {
        const std::string Text = ReportText::Clean(rWarning.m_Text, LONGEST);
        const auto Found = std::ranges::find(Table.m_Rows, Text, [](const auto& rRow) { return rRow[0]; });
        if (Found != Table.m_Rows.end()) {
            ++Times[static_cast<std::size_t>(Found - Table.m_Rows.begin())];
        } else if (Table.m_Rows.size() < MOST) {
            Times.push_back(1);
            Table.m_Rows.push_back(
                {Text, ReportText::Fixed(static_cast<double>(rWarning.m_Time) / 1000.0, 0)});
        }
    }
    const std::string& rRefusal = rRun.m_Advice.m_Refusal;
    if (Table.m_Rows.empty() && rRefusal.empty()) {
        return;
    }
    rBlocks.emplace_back(CReportHeading{GetText("REPORT_WARNINGS")});
    if (!rRefusal.empty()) {
        rBlocks.emplace_back(CReportParagraph{ReportText::Clean(rRefusal, LONGEST), Kind::eWarning});
    }
    for (std::size_t i = 0; i < Times.size(); ++i) {
        Table.m_Rows[i].push_back(std::to_string(Times[i]));
    }
    if (!Table.m_Rows.empty()) {
        Table.m_Header = {GetText("REPORT_WARNING"), GetText("REPORT_WARNING_AFTER"),
                          GetText("REPORT_WARNING_TIMES")};
        rBlocks.emplace_back(std::move(Table));
    }
}

}  // namespace ReportSections
