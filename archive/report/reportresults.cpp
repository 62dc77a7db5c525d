// The sections of what was calculated.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <optional>

#include "archive/isoassessment.h"
#include "archive/report/reportsections.h"
#include "archive/report/reporttext.h"
#include "contract/holering.h"
#include "contract/units.h"
#include "platform/rvldb/gettext.h"

using ReportText::Digits;
using ReportText::Say;

namespace ReportSections {

namespace {

constexpr std::size_t LONGEST_SENTENCE = 1000;

std::vector<std::size_t> GetPlanes(const CRunRecord& rRecord) {
    std::vector<std::size_t> Planes;
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        if (rRecord.m_Setup.m_Planes.at(Plane)) {
            Planes.push_back(Plane);
        }
    }
    return Planes;
}

std::string DescribeFitting(const CPlaneFitting& rFitting, const CPlaneSetup& rSetup) {
    std::string Text;
    const auto Add = [&Text](const std::string& rPart) { Text += (Text.empty() ? "" : ", ") + rPart; };
    for (const int Angle : rFitting.m_Weights) {
        Add(std::to_string(Angle) + "°");
    }
    const CHoleRing Ring{rSetup.m_nHoles, !rSetup.m_bScaleClockwise};
    for (const CFittedScrew& rScrew : rFitting.m_Screws) {
        std::string Name = ReportText::Fixed(rScrew.m_Grams, 2) + " g";
        const auto Found = std::ranges::find(rSetup.m_Table, rScrew.m_Grams, &CTableScrew::m_Grams);
        if (Found != rSetup.m_Table.end() && !Found->m_Name.empty()) {
            constexpr std::size_t LONGEST = 30;
            Name.insert(0, ReportText::Clean(Found->m_Name, LONGEST) + " (").append(")");
        }
        Add(Say(
            "REPORT_SCREW_IN_HOLE",
            {std::to_string(rSetup.m_nHoles > 0 ? Ring.GetRotorHole(rScrew.m_Hole) : rScrew.m_Hole), Name}));
    }
    return Text.empty() ? GetText("REPORT_NOTHING_FITTED") : Text;
}

/// The angle of a compensation on the plane's own scale. The frame counts with a clockwise scale of a
/// procedure's first plane and with a counter-clockwise one of its second.
double GetScaleAngle(const math::matrix<double>& rUA, std::size_t Place, bool bScaleClockwise) {
    const double Angle = std::atan2(rUA(1, 0), rUA(0, 0)) * 180.0 / std::numbers::pi;
    return (Place == 0) == bScaleClockwise ? Angle : -Angle;
}

/// PNG begins with its signature; width and height follow as the first two numbers of its first chunk.
bool GetPngSize(const std::vector<std::uint8_t>& rPng, double& rWidth, double& rHeight) {
    constexpr std::array<std::uint8_t, 8> SIGNATURE = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    constexpr std::size_t WIDTH_AT = 16;
    constexpr std::size_t HEAD = 24;
    if (rPng.size() < HEAD || !std::equal(SIGNATURE.begin(), SIGNATURE.end(), rPng.begin())) {
        return false;
    }
    const auto Number = [&rPng](std::size_t At) {
        return static_cast<double>((std::uint32_t{rPng[At]} << 24U) | (std::uint32_t{rPng[At + 1]} << 16U) |
                                   (std::uint32_t{rPng[At + 2]} << 8U) | std::uint32_t{rPng[At + 3]});
    };
    rWidth = Number(WIDTH_AT);
    rHeight = Number(WIDTH_AT + 4);
    return rWidth > 0.0 && rHeight > 0.0;
}

/// In which a compensation is told; as one of them, or of several.
std::string NameUnit(const CRunRecord& rRecord, std::size_t Plane, bool bOne) {
    if (!rRecord.m_Setup.m_Planes.at(Plane)->m_bScrews) {
        return GetText(bOne ? "REPORT_WEIGHT_UNIT" : "REPORT_WEIGHTS_UNIT");
    }
    return rRecord.GetReferenceWeight(Plane) > 0.0 ? "g"
           : bOne                                  ? GetText("REPORT_TEST_SCREW_UNIT")
                                                   : GetText("REPORT_TEST_SCREWS_UNIT");
}

/// What one unit of the calculation is in the unit above.
double GetUnit(const CRunRecord& rRecord, std::size_t Plane) {
    const double Grams = rRecord.GetReferenceWeight(Plane);
    return rRecord.m_Setup.m_Planes.at(Plane)->m_bScrews && Grams > 0.0 ? Grams : 1.0;
}

void AddCompensation(CBlocks& rBlocks, const CRunRecord& rRecord) {
    const std::vector<std::size_t> Planes = GetPlanes(rRecord);
    if (!rRecord.m_Calibration || rRecord.m_Calibration->m_UA.size() != Planes.size()) {
        return;
    }
    CReportTable Table;
    Table.m_Header = {GetText("REPORT_COMPENSATION"), GetText("REPORT_AMOUNT"),
                      GetText("REPORT_SCALE_ANGLE")};
    for (std::size_t i = 0; i < Planes.size(); ++i) {
        const math::matrix<double>& rUA = rRecord.m_Calibration->m_UA[i];
        if (rUA.RowNo() != 2 || rUA.ColNo() != 1) {
            return;
        }
        const std::size_t Plane = Planes[i];
        constexpr int DECIMALS = 3;
        Table.m_Rows.push_back(
            {NamePlane(Plane),
             ReportText::Fixed(std::hypot(rUA(0, 0), rUA(1, 0)) * GetUnit(rRecord, Plane), DECIMALS) + " " +
                 NameUnit(rRecord, Plane, false),
             ReportText::Angle(GetScaleAngle(rUA, i, rRecord.m_Setup.m_Planes.at(Plane)->m_bScaleClockwise),
                               2)});
    }
    rBlocks.emplace_back(std::move(Table));
}

}  // namespace

void AddCorrection(CBlocks& rBlocks, const CReportedRun& rRun) {
    const CRunRecord& rRecord = rRun.m_Record;
    CReportTable Table;
    Table.m_Header = {GetText("REPORT_MEASUREMENT"), GetText("REPORT_PLANE_HEAD"), GetText("REPORT_FITTED")};
    for (const CRunMeasurement& rMeasurement : rRecord.m_Measurements) {
        for (const std::size_t Plane : GetPlanes(rRecord)) {
            if (const auto& rPlane = rMeasurement.m_Planes.at(Plane)) {
                Table.m_Rows.push_back(
                    {NameMeasurement(rMeasurement.m_Which), std::to_string(Plane + 1),
                     DescribeFitting(rPlane->m_Fitted, *rRecord.m_Setup.m_Planes.at(Plane))});
            }
        }
    }
    if (Table.m_Rows.empty()) {
        return;
    }
    rBlocks.emplace_back(CReportHeading{GetText("REPORT_POSITIONS")});
    AddCompensation(rBlocks, rRecord);
    rBlocks.emplace_back(std::move(Table));
    double Width = 0.0;
    double Height = 0.0;
    if (GetPngSize(rRun.m_PagePicture, Width, Height)) {
        constexpr double WIDEST = 120.0;  // mm
        rBlocks.emplace_back(CReportPicture{rRun.m_PagePicture, WIDEST, WIDEST * Height / Width,
                                            GetText("REPORT_PAGE_PICTURE")});
    }
}

void AddInfluence(CBlocks& rBlocks, const CReportedRun& rRun) {
    const CRunRecord& rRecord = rRun.m_Record;
    const std::vector<std::size_t> Planes = GetPlanes(rRecord);
    const std::optional<math::matrix<double>> Influence = rRecord.GetInfluence();
    if (!Influence) {
        return;
    }
    CReportTable Table;
    Table.m_Header = {GetText("REPORT_INFLUENCE_OF"), GetText("REPORT_INFLUENCE_ON"),
                      GetText("REPORT_AMPLITUDE"), GetText("REPORT_PHASE")};
    for (std::uint32_t i = 0; i < Planes.size(); ++i) {
        for (std::uint32_t j = 0; j < Planes.size(); ++j) {
            const double X = (*Influence)(2 * j, 2 * i);
            const double Y = (*Influence)(2 * j + 1, 2 * i);
            Table.m_Rows.push_back({NamePlane(Planes[i]), NamePlane(Planes[j]),
                                    Digits(std::hypot(X, Y) / GetUnit(rRecord, Planes[i]), 4) + " " +
                                        Units::UNBALANCE + " / " + NameUnit(rRecord, Planes[i], true),
                                    ReportText::Angle(std::atan2(Y, X) * 180.0 / std::numbers::pi, 1)});
        }
    }
    rBlocks.emplace_back(CReportHeading{GetText("REPORT_INFLUENCE")});
    rBlocks.emplace_back(std::move(Table));
    const auto AddSentence = [&rBlocks](const std::string& rText, bool bWarning) {
        if (!rText.empty()) {
            rBlocks.emplace_back(CReportParagraph{
                ReportText::Clean(rText, LONGEST_SENTENCE),
                bWarning ? CReportParagraph::Kind::eWarning : CReportParagraph::Kind::ePlain});
        }
    };
    if (const auto& rQuality = rRun.m_Advice.m_Quality) {
        using Quality = CRunAdvice::CQuality;
        AddSentence(rQuality->m_Text, rQuality->m_TestRun != Quality::TestRun::eGood);
        AddSentence(rQuality->m_ConditionText, rQuality->m_ConditionLight != Quality::Light::eGreen);
    }
    if (const auto& rInfluence = rRun.m_Advice.m_Influence) {
        AddSentence(rInfluence->m_Text, rInfluence->m_bDiffers);
    }
}

void AddPrediction(CBlocks& rBlocks, const CReportedRun& rRun) {
    const CRunRecord& rRecord = rRun.m_Record;
    const CRunMeasurement* const pFinal = rRecord.Find(Measurement::eFinal);
    // What stood there before anything was moved counts, if it was kept.
    const auto& rKept = rRecord.m_Prediction;
    const auto& rPlanes =
        rKept[0] || rKept[1] || !rRun.m_Advice.m_Prediction ? rKept : rRun.m_Advice.m_Prediction->m_Planes;
    CReportTable Table;
    Table.m_Header = {"", Say("REPORT_EXPECTED", {Units::UNBALANCE}),
                      Say("REPORT_AT_MOST", {Units::UNBALANCE}), Say("REPORT_MEASURED", {Units::UNBALANCE})};
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        if (const auto& rExpected = rPlanes.at(Plane)) {
            std::string Measured = "–";
            if (pFinal != nullptr && pFinal->m_Planes.at(Plane)) {
                const CVectorReading& rReading = pFinal->m_Planes.at(Plane)->m_Smoothed;
                Measured = ReportText::Reading(std::hypot(rReading.m_X, rReading.m_Y));
            }
            Table.m_Rows.push_back({NamePlane(Plane), ReportText::Reading(rExpected->m_Amplitude),
                                    ReportText::Reading(rExpected->m_AtMost95), Measured});
        }
    }
    const auto& rExplanation = rRun.m_Advice.m_Explanation;
    if (Table.m_Rows.empty() && !rExplanation) {
        return;
    }
    rBlocks.emplace_back(CReportHeading{GetText("REPORT_PREDICTION")});
    if (!Table.m_Rows.empty()) {
        rBlocks.emplace_back(std::move(Table));
    }
    if (rExplanation && !rExplanation->m_Text.empty()) {
        rBlocks.emplace_back(CReportParagraph{
            ReportText::Clean(rExplanation->m_Text, LONGEST_SENTENCE),
            rExplanation->m_bInside ? CReportParagraph::Kind::ePlain : CReportParagraph::Kind::eWarning});
    }
}

void AddIso(CBlocks& rBlocks, const CReportedRun& rRun) {
    const CRunRecord& rRecord = rRun.m_Record;
    const std::optional<CIsoAssessment> Assessment = CIsoAssessment::Make(rRecord);
    if (!Assessment) {
        return;
    }
    const CIsoData& rData = rRecord.m_Setup.m_Iso;
    CReportTable Table;
    const auto Add = [&Table](const std::string& rName, const std::string& rText) {
        Table.m_Rows.push_back({rName, rText});
    };
    constexpr const char* GMM = " g·mm";
    Add(GetText("ISO_ROTOR_MASS"), ReportText::General(rData.m_RotorMass) + " kg");
    Add(GetText("ISO_SERVICE_SPEED"),
        ReportText::General(rData.m_ServiceSpeed) + " " + GetText("REPORT_RPM"));
    if (Assessment->m_Permissible) {
        Add(GetText("REPORT_ISO_PERMISSIBLE"), Digits(*Assessment->m_Permissible, 4) + GMM + " (G " +
                                                   ReportText::General(Assessment->m_Grade) + ")");
    }
    for (const std::size_t Plane : GetPlanes(rRecord)) {
        std::string Text = GetText("REPORT_NOT_KNOWN");
        if (const auto& rResidual = Assessment->m_Residuals.at(Plane)) {
            Text = (rResidual->m_Uncertainty95
                        ? ReportText::WithUncertainty(rResidual->m_Amount, *rResidual->m_Uncertainty95)
                        : Digits(rResidual->m_Amount)) +
                   GMM;
        }
        if (const auto& rShare = Assessment->m_PermissiblePerPlane.at(Plane)) {
            Text = Say("REPORT_ISO_OF", {Text, Digits(*rShare, 4) + GMM});
        }
        Add(Say("REPORT_ISO_LEFT", {NamePlane(Plane)}), Text);
    }
    if (Assessment->m_Reached) {
        Add(GetText("REPORT_ISO_REACHED"), "G " + Digits(*Assessment->m_Reached, 2));
    }
    if (Assessment->m_Target) {
        Add(GetText("REPORT_ISO_TARGET"), Digits(*Assessment->m_Target, 3) + " " + Units::UNBALANCE);
    }
    rBlocks.emplace_back(CReportHeading{GetText("REPORT_ISO")});
    rBlocks.emplace_back(std::move(Table));
    if (Assessment->m_Reached && Assessment->m_Grade > 0.0) {
        const bool bReached = *Assessment->m_Reached <= Assessment->m_Grade;
        rBlocks.emplace_back(
            CReportParagraph{Say(bReached ? "REPORT_ISO_YES" : "REPORT_ISO_NO",
                                 {"G " + ReportText::General(Assessment->m_Grade)}),
                             bReached ? CReportParagraph::Kind::ePlain : CReportParagraph::Kind::eWarning});
    }
}

}  // namespace ReportSections
