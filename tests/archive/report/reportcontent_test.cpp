#include "archive/report/reportcontent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "archive/report/htmlreport.h"
#include "platform/rvldb/gettext.h"
#include "tests/support/runrecords.h"

namespace {

using testing::HasSubstr;
using testing::Not;

CReportInput MakeInput(const CRunRecord& rRecord, const CRunAdvice& rAdvice = {}) {
    CReportInput Input;
    Input.m_Runs.push_back({rRecord, rAdvice, {}});
    return Input;
}

std::string MakeHtml(const CReportInput& rInput) {
    return WriteHtmlReport(MakeReportDocument(rInput));
}

/// The words of a page, with blanks for all markup.
std::string GetWords(const std::string& rHtml) {
    std::string Words;
    bool bTag = false;
    for (const char c : rHtml.substr(rHtml.find("<body>"))) {
        bTag = c == '<' || (bTag && c != '>');
        if (!bTag && c != '>' && c != '\n' && c != ' ') {
            Words += c;
        } else if (!Words.empty() && Words.back() != ' ') {
            Words += ' ';
        }
    }
    return Words;
}

std::string GetWords(const CRunRecord& rRecord, const CRunAdvice& rAdvice = {}) {
    return GetWords(MakeHtml(MakeInput(rRecord, rAdvice)));
}

/// In German while it lives.
class CGerman {
public:
    CGerman() { SetLanguage("de"); }
    ~CGerman() { SetLanguage("en"); }
    CGerman(const CGerman&) = delete;
    CGerman& operator=(const CGerman&) = delete;
};

}  // namespace

TEST(ReportContent, TellsWhoWhatWhenAndWhere) {
    CReportInput Input = MakeInput(RunRecords::MakeWeights());
    Input.m_bFixedDate = true;
    const std::string Words = GetWords(MakeHtml(Input));
    for (const char* pWords :
         {"Rotor Spindle 12, wheel 400", "Begun 2026-01-01 00:00 UTC", "Driven by operator at the panel",
          "Machine 0#1#255-0-486107-930938880-1", "Kestrel, 486107-930938880, set 1", "Configuration Default",
          "Plane 1 two weights; scale counts clockwise", "Target 5 µm/s", "Console version 0.9.0",
          "Number in the archive 17"}) {
        EXPECT_THAT(Words, HasSubstr(pWords));
    }
}

TEST(ReportContent, TheVerdictIsOneSentence) {
    EXPECT_THAT(GetWords(RunRecords::MakeWeights()),
                HasSubstr("Within the target: 1.2 of 5 µm/s (before: 120). The result is saved."));
    EXPECT_THAT(GetWords(RunRecords::MakeScrews()),
                HasSubstr("Over the target: 7.4 of 5 µm/s (before: 84.0)."));
    EXPECT_THAT(GetWords(RunRecords::MakePublishedTwoPlane()),
                HasSubstr("Within the target: 4.1 and 2.2 of 5 µm/s (before: 170 and 53.0)."));
    CRunRecord Record = RunRecords::MakeWeights();
    Record.m_bSaved = false;
    EXPECT_THAT(MakeHtml(MakeInput(Record)), HasSubstr("<p class=\"bad\">Within the target: 1.2 of 5 µm/s "
                                                       "(before: 120). The result was not saved.</p>"));
}

// Rounding must not put a reading on the other side of the target.
TEST(ReportContent, AReadingJustOverTheTargetIsSeenToBe) {
    CRunRecord Record = RunRecords::MakeWeights();
    Record.m_Measurements.back().m_Planes[0]->m_Smoothed = {5.02, 0.0};
    Record.m_Result = "SetupOverTarget";
    EXPECT_THAT(GetWords(Record), HasSubstr("Over the target: 5.02 of 5 µm/s"));
}

TEST(ReportContent, RunsThatDidNotEndInOrderSaySo) {
    EXPECT_THAT(GetWords(RunRecords::MakeBrokenOff()),
                HasSubstr("The run was broken off; the rotor was not balanced to the end. What was measured "
                          "until then stands below."));
    const std::string Failed = GetWords(RunRecords::MakeFailed());
    EXPECT_THAT(Failed, HasSubstr("The run has failed;"));
    EXPECT_THAT(Failed, HasSubstr("Test weights have too little effect"));
    EXPECT_THAT(Failed, Not(HasSubstr("Before and after")));
    CRunRecord Record;
    EXPECT_THAT(GetWords(Record),
                HasSubstr("The run was interrupted; nothing is known of its end. Nothing was "
                          "measured."));
}

TEST(ReportContent, BeforeAndAfterWithTheReduction) {
    EXPECT_THAT(GetWords(RunRecords::MakePublishedTwoPlane()),
                HasSubstr("Plane 1 170 4.1 5 97.6 % yes Plane 2 53.0 2.2 5 95.8 % yes"));
}

// As printed there: in grams of the trial weight's unit, on scales that count as its angles do.
TEST(ReportContent, PublishedCorrectionsStandInTheReport) {
    const std::string Two = GetWords(RunRecords::MakePublishedTwoPlane());
    EXPECT_THAT(Two, HasSubstr("Plane 1 1.956 g 237.44° Plane 2 1.073 g 121.09°"));
    // The influences of 1.15 g, |V1 - V0| / 1.15 and so on.
    EXPECT_THAT(Two, HasSubstr("Plane 1 Plane 1 78.43 µm/s / g 58.4°"));
    const auto MakeSingle = [](double A0, double P0, double Mass, double A1, double P1) {
        return GetWords(RunRecords::MakePublishedSinglePlane(RunRecords::FromPolar(A0, P0), Mass,
                                                             RunRecords::FromPolar(A1, P1)));
    };
    EXPECT_THAT(MakeSingle(7, 160, 100, 5, 70), HasSubstr("Plane 1 81.373 g 324.46°"));
    EXPECT_THAT(MakeSingle(3.4, 116, 2, 1.8, 42), HasSubstr("Plane 1 2.012 g 329.21°"));
}

// The frame of the calculation counts the other way round on a scale that does.
TEST(ReportContent, CorrectionsAreToldOnTheScaleOfTheirPlane) {
    CRunRecord Record = RunRecords::MakeWeights();
    EXPECT_THAT(GetWords(Record), HasSubstr("0.802 weights 232.10°"));
    Record.m_Setup.m_Planes[0]->m_bScaleClockwise = false;
    EXPECT_THAT(GetWords(Record), HasSubstr("0.802 weights 127.90°"));
}

TEST(ReportContent, PositionsOfWeightsAndScrews) {
    EXPECT_THAT(GetWords(RunRecords::MakeWeights()), HasSubstr("Final measurement 1 64°, 191°"));
    EXPECT_THAT(GetWords(RunRecords::MakeScrews()),
                HasSubstr("Final measurement 1 hole 12: M6x16 (4.00 g), hole 9: M6x8 (1.00 g)"));
    EXPECT_THAT(GetWords(RunRecords::MakeScrews()), HasSubstr("First measurement 1 nothing"));
}

TEST(ReportContent, IsoIsToldIfTheRotorIsKnown) {
    const std::string Words = GetWords(RunRecords::MakeWeights());
    EXPECT_THAT(Words, HasSubstr("Permissible residual unbalance 120.3 g·mm (G 6.3)"));
    EXPECT_THAT(Words, HasSubstr("G 6.3 is reached."));
    CRunRecord Record = RunRecords::MakeWeights();
    Record.m_Setup.m_Iso.m_Grade = 0.01;
    EXPECT_THAT(GetWords(Record), HasSubstr("G 0.01 is not reached."));
    Record.m_Setup.m_Iso = {};
    EXPECT_THAT(GetWords(Record), Not(HasSubstr("ISO 21940")));
}

TEST(ReportContent, AdviceIsTold) {
    CRunAdvice Advice;
    Advice.m_Quality.emplace().m_Text = "The test run was weak.";
    Advice.m_Explanation.emplace();
    Advice.m_Explanation->m_bInside = false;
    Advice.m_Explanation->m_Text = "as if weight 2 had stayed at 180°";
    const std::string Html = MakeHtml(MakeInput(RunRecords::MakeWeights(), Advice));
    EXPECT_THAT(Html, HasSubstr("The test run was weak."));
    EXPECT_THAT(Html, HasSubstr("<p class=\"warning\">as if weight 2 had stayed at 180°</p>"));
    EXPECT_THAT(GetWords(Html), HasSubstr("Plane 1 0.9 2.9 1.2"));
}

TEST(ReportContent, TooFewReadingsHaveNoUncertainty) {
    CRunRecord Record = RunRecords::MakeWeights();
    for (CRunMeasurement& rMeasurement : Record.m_Measurements) {
        rMeasurement.m_Planes[0] = RunRecords::MakePlane({12.0, 5.0}, 4);
    }
    EXPECT_THAT(GetWords(Record), HasSubstr("13.0 23° not known 4 3000"));
}

TEST(ReportContent, TheTrendShowsTheLastTwentyRuns) {
    CReportInput Input = MakeInput(RunRecords::MakeWeights());
    for (int i = 0; i < 25; ++i) {
        Input.m_Trend.push_back({RunRecords::MakeWeights().m_Started, 100.0, i < 8 ? 7.0 : 3.0, i >= 8});
    }
    EXPECT_THAT(GetWords(MakeHtml(Input)), HasSubstr("17 of 20 runs ended within the target."));
    Input.m_Trend.resize(1);
    EXPECT_THAT(GetWords(MakeHtml(Input)), Not(HasSubstr("Last runs"))) << "one run is no trend";
}

TEST(ReportContent, AWarningThatComesOftenIsToldOnce) {
    CRunRecord Record = RunRecords::MakeWeights();
    Record.m_Warnings = {{3000, 1, "Out of Lock!"}, {9000, 2, "Too slow"}, {12000, 1, "Out of Lock!"}};
    EXPECT_THAT(GetWords(Record), HasSubstr("Out of Lock! 3 2 Too slow 9 1"));
}

TEST(ReportContent, SeveralRunsFollowEachOther) {
    CReportInput Input = MakeInput(RunRecords::MakeWeights());
    Input.m_Runs.push_back(Input.m_Runs.front());
    Input.m_Runs.back().m_Record.m_bRebalance = true;
    const std::string Words = GetWords(MakeHtml(Input));
    EXPECT_THAT(Words, HasSubstr("Run 1 of 2: Pre-balancing with a test run"));
    EXPECT_THAT(Words, HasSubstr("Run 2 of 2: Re-balancing with a stored calibration"));
}

TEST(ReportContent, GermanIsGermanThroughout) {
    const CGerman German;
    const std::string Words = GetWords(RunRecords::MakePublishedTwoPlane());
    EXPECT_THAT(Words, HasSubstr("Auswuchtprotokoll"));
    EXPECT_THAT(Words, HasSubstr("Ziel eingehalten: 4.1 und 2.2 von 5 µm/s (vorher: 170 und 53.0)."));
    for (const char* pEnglish : {"REPORT_", "ISO_", "The ", "Plane", "Weight", "Final", "Target"}) {
        EXPECT_THAT(Words, Not(HasSubstr(pEnglish)));
    }
}

// Names come from people, files and networks.
TEST(ReportContent, TextFromOutsideIsHarmless) {
    CRunRecord Record = RunRecords::MakeScrews();
    Record.m_Rotor = "\"><script>alert(1)</script>\xFF\xFE" + std::string(10000, 'W');
    Record.m_Setup.m_Configuration = std::string(10000, '\xE4');
    Record.m_Machine =
        "\xE2\x80\xAE"
        "evil' onload='x";
    Record.m_Setup.m_Planes[0]->m_Table[2].m_Name = "'><img src=x onerror=alert(1)>";
    Record.m_Warnings = {{0, 1, "<svg/onload=alert(2)>\x01\x1B[31m"}};
    CRunAdvice Advice;
    Advice.m_Explanation.emplace().m_Text = "</p><iframe src=x>" + std::string(10000, 'x');
    const std::string Html = MakeHtml(MakeInput(Record, Advice));
    for (const char* pHarm :
         {"<script", "<img", "<iframe", "<svg/", "onload='", "\xFF", "\xE2\x80\xAE", "\x1B"}) {
        EXPECT_THAT(Html, Not(HasSubstr(pHarm)));
    }
    EXPECT_LT(Html.size(), 80000U) << "long names are shortened";
    EXPECT_THAT(Html, HasSubstr("&lt;script&gt;alert(1)&lt;/script&gt;"));
    EXPECT_THAT(Html, HasSubstr("WWW…"));
}

TEST(ReportContent, HtmlHasNothingFromElsewhere) {
    CReportInput Input = MakeInput(RunRecords::MakeWeights());
    const std::string Html = MakeHtml(Input);
    for (const char* pForeign : {"<script", "src=\"http", "href=", "url(", "@import"}) {
        EXPECT_THAT(Html, Not(HasSubstr(pForeign)));
    }
    EXPECT_THAT(Html, HasSubstr("default-src 'none'"));
}

TEST(ReportContent, OnlyAPictureIsShownAsOne) {
    CReportInput Input = MakeInput(RunRecords::MakeWeights());
    Input.m_Runs[0].m_PagePicture = {'G', 'I', 'F'};
    EXPECT_THAT(MakeHtml(Input), Not(HasSubstr("<img")));
    // The head of a picture of 2 by 1 pixels.
    Input.m_Runs[0].m_PagePicture = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13,
                                     'I',  'H', 'D', 'R', 0,    0,    0,    2,    0, 0, 0, 1};
    EXPECT_THAT(MakeHtml(Input), HasSubstr("src=\"data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAIAAAAB\""));
}

TEST(ReportContent, AnInfluenceThatIsNoneIsLeftOut) {
    CRunRecord Record = RunRecords::MakeFailed();
    Record.m_Setup.m_InvA = math::matrix<double>(2, 2);
    Record.m_Setup.m_InvA.Null();
    EXPECT_THAT(GetWords(Record), Not(HasSubstr("Influence")));
}
