#include "rvdlm/m_rtr/rtr_trim/prebalancing/instructionview.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "platform/rvldb/gettext.h"
#include "platform/window/dc.h"
#include "tests/support/logcapture.h"
#include "tests/support/pixels.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr COLORREF WHITE = RGB(255, 255, 255);
constexpr COLORREF PANEL = RGB(0xEC, 0xE9, 0xD8);
constexpr COLORREF LINE = RGB(0x71, 0x6F, 0x64);
constexpr COLORREF BLACK = RGB(0, 0, 0);
constexpr COLORREF WARNING = RGB(206, 0, 0);

class CTestView : public CInstructionView {
public:
    std::vector<std::uint32_t> m_Announced;
    std::vector<std::uint32_t> m_StoredAtAnnouncement;

protected:
    void WarningModeChanged(std::uint32_t Mode) override {
        m_Announced.push_back(Mode);
        m_StoredAtAnnouncement.push_back(GetWarningMode());
    }
};

class InstructionViewTest : public testing::Test {
protected:
    CTestView m_View;
    CLogCapture m_Log;
};

TEST_F(InstructionViewTest, EveryInstructionHasItsText) {
    const std::vector<std::pair<std::uint32_t, std::string>> Keys{{0, "PB_TERMINATE_TEXT4"},
                                                                  {1, "PB_STOP_SPINDLE_OR_CONFIRM_TEXT"},
                                                                  {2, "PB_STOP_SPINDLE_TEXT"},
                                                                  {3, "PB_MOVE_TO_NEUTRAL_TEXTNEUTRAL"},
                                                                  {4, "PB_RUN_AT_SELECTED_RPM_TEXT"},
                                                                  {5, "PB_RUN_AT_DESIRED_RPM_TEXT_NEXT"},
                                                                  {6, "PB_UNBAL_MSRMNT_TEXT"},
                                                                  {7, "PB_MOVE_TO_GIVEN_POSITION_TEXT_PBA"},
                                                                  {8, "PB_MOVE_TO_GIVEN_POSITION_TEXT_PBA"},
                                                                  {9, "PB_MAP_WEIGHTS_TO_DISPLAY"}};
    for (const auto& [Mode, rKey] : Keys) {
        m_View.SetMode(Mode);
        EXPECT_EQ(m_View.GetInstructionText(), GetText(rKey)) << Mode;
        EXPECT_NE(m_View.GetInstructionText(), rKey) << "the language has this text";
    }
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(InstructionViewTest, AnInstructionAboveNineIsAssertedAndShowsInvalidMode) {
    m_View.SetMode(10);
    EXPECT_EQ(m_View.GetInstructionText(), "invalid mode");
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(InstructionViewTest, EveryWarningHasItsText) {
    const std::string TooLarge = GetText("PB_CANNOT_BALANCE1");
    const std::vector<std::pair<std::uint32_t, std::string>> Texts{
        {1, GetText("SET_SWITCH")},
        {2, GetText("PB_RUN_AT_SELECTED_RPM_TEXT")},
        {3, "Out of Lock!"},
        {4, GetText("PB_RUN_AT_SELECTED_RPM_TEXT")},
        {5, GetText("PB_CANNOT_BALANCE3")},
        {6, TooLarge + " (0%)"},
        {7, GetText("PB_REBAL_NOT_POSSIBLE") + " " + TooLarge},
        {8, GetText("PB_UNBAL_OVER_LIMIT_TEXT")},
        {9, GetText("PB_TERMINATE_TEXT")},
        {10, GetText("PB_STOP_SPINDLE_TEXT")},
        {11, GetText("MODULE_STATE_CHANGED")}};
    for (const auto& [Mode, rText] : Texts) {
        m_View.SetWarningMode(Mode);
        EXPECT_EQ(m_View.GetWarningText(), rText) << Mode;
    }
    EXPECT_EQ(CInstructionView::WarningModeToLanguageString(0, 0.0), "eNone");
    m_View.SetWarningMode(0);
    EXPECT_EQ(m_View.GetWarningText(), "") << "never painted";
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(InstructionViewTest, AWarningAboveElevenIsAssertedAndShowsWarning) {
    m_View.SetWarningMode(12);
    EXPECT_EQ(m_View.GetWarningText(), "WARNING");
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(InstructionViewTest, WarningSixRoundsItsPercentageHalfUp) {
    for (const auto& [Percent, pShown] : std::vector<std::pair<double, const char*>>{
             {12.5, " (13%)"}, {12.49, " (12%)"}, {140.0, " (140%)"}}) {
        m_View.SetWarningMode(6, &Percent);
        EXPECT_EQ(m_View.GetWarningText(), GetText("PB_CANNOT_BALANCE1") + pShown);
    }
}

TEST_F(InstructionViewTest, AMissingPercentageCountsAsZero) {
    const double Percent = 12.5;
    m_View.SetWarningMode(6, &Percent);
    EXPECT_EQ(m_View.GetPercent(), 12.5);
    m_View.SetWarningMode(6, nullptr);
    EXPECT_EQ(m_View.GetPercent(), 0.0);
}

TEST_F(InstructionViewTest, OnlyAChangedWarningIsAnnounced) {
    m_View.SetWarningMode(0);
    EXPECT_THAT(m_View.m_Announced, IsEmpty());
    m_View.SetWarningMode(3);
    m_View.SetWarningMode(3);
    m_View.SetWarningMode(2);
    m_View.SetWarningMode(0);
    EXPECT_THAT(m_View.m_Announced, ElementsAre(3, 2, 0));
    EXPECT_THAT(m_View.m_StoredAtAnnouncement, ElementsAre(0, 3, 2)) << "announced first, then stored";
}

TEST_F(InstructionViewTest, ANewInstructionClearsTheWarningAndAnnouncesThatInAnyCase) {
    const double Percent = 50.0;
    m_View.SetWarningMode(6, &Percent);
    m_View.SetMode(4);
    EXPECT_EQ(m_View.GetMode(), 4u);
    EXPECT_EQ(m_View.GetWarningMode(), 0u);
    EXPECT_EQ(m_View.GetPercent(), 0.0);
    m_View.SetMode(4);
    EXPECT_THAT(m_View.m_Announced, ElementsAre(6, 0, 0));
}

TEST_F(InstructionViewTest, TheTitleNamesSetAndConfigurationButNotTheDefaultOne) {
    m_View.SetSetText("2");
    m_View.SetSetName("Spindle A");
    m_View.SetProcessName("Wheel 400");
    EXPECT_EQ(m_View.GetTitleText(), "Pre-balancing Set 2 / Spindle A: Wheel 400");
    m_View.SetProcessName("Default");
    EXPECT_EQ(m_View.GetTitleText(), "Pre-balancing Set 2 / Spindle A:");
    m_View.SetSetName("");
    EXPECT_EQ(m_View.GetTitleText(), "Pre-balancing Set 2:");
    m_View.SetProcessName("Wheel 400");
    EXPECT_EQ(m_View.GetTitleText(), "Pre-balancing Set 2: Wheel 400");
}

TEST_F(InstructionViewTest, StepsAreCountedAndAStepTooManyIsAsserted) {
    m_View.SetNumberOfSteps(11);
    m_View.SetCurrentStep(11);
    EXPECT_EQ(m_View.GetStepText(), "Step 11/11");
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    m_View.SetCurrentStep(12);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("CurrentStep <= m_NumberOfSteps"));
    EXPECT_EQ(m_View.GetStepText(), "Step 12/11") << "an assertion never changes the flow";
}

TEST_F(InstructionViewTest, TextsFollowTheLanguage) {
    m_View.SetMode(2);
    const std::string English = m_View.GetInstructionText();
    ASSERT_TRUE(SetLanguage("de"));
    const std::string German = m_View.GetInstructionText();
    SetLanguage("en");
    EXPECT_NE(German, English);
    EXPECT_EQ(m_View.GetInstructionText(), English);
}

/// A pane of 940 by 99 at (20, 10): header of 33 rows and font 20, body of 66 rows.
class InstructionViewPaintTest : public InstructionViewTest {
protected:
    InstructionViewPaintTest() {
        m_View.SetSetText("2");
        m_View.SetProcessName("Wheel 400");
        m_View.SetNumberOfSteps(11);
        m_View.SetCurrentStep(3);
        m_View.SetMode(2);
    }
    void Paint(const CRect& rRect) {
        m_Bitmap.Create({980, 140});
        CDC Dc(m_Bitmap);
        m_View.Paint(&Dc, rRect);
    }
    /// The text in a part of the pane.
    CRect FindText(const CRect& rWithin, COLORREF Background) const {
        return FindInk(m_Bitmap, rWithin, Background).value_or(CRect());
    }

    static constexpr CRect PANE{20, 10, 960, 109};
    CBitmap m_Bitmap;
};

TEST_F(InstructionViewPaintTest, AThirdIsTheHeaderAndBothPartsHaveTheirFrameLine) {
    Paint(PANE);
    EXPECT_EQ(FindInk(m_Bitmap), CRect(20, 10, 960, 109)) << "nothing outside";
    EXPECT_EQ(m_Bitmap.GetPixel(22, 12), PANEL);
    EXPECT_EQ(m_Bitmap.GetPixel(22, 45), WHITE);
    for (const int y : {42, 108}) {
        EXPECT_EQ(CountPixels(m_Bitmap, CRect(20, y, 960, y + 1), LINE), 940) << "bottom line at " << y;
    }
    EXPECT_EQ(CountPixels(m_Bitmap, CRect(959, 10, 960, 109), LINE), 99);
    EXPECT_EQ(CountPixels(m_Bitmap, CRect(20, 10, 21, 42), LINE), 0) << "none at the left";
    EXPECT_EQ(CountPixels(m_Bitmap, CRect(20, 10, 959, 11), LINE), 0) << "none at the top";
}

TEST_F(InstructionViewPaintTest, TheHeaderHasTheTitleAtTheLeftAndTheStepAtTheRight) {
    Paint(PANE);
    const CRect Title = FindText(CRect(20, 10, 500, 42), PANEL);
    const CRect Step = FindText(CRect(500, 10, 959, 42), PANEL);
    EXPECT_NEAR(Title.left, 30, 2);
    EXPECT_NEAR(Step.right, 950, 2);
    EXPECT_NEAR(Title.CenterPoint().y, 26, 3);
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 20));  // 940 / 47
    EXPECT_NEAR(Title.Width(), Dc.GetTextExtent(m_View.GetTitleText()).cx, 4);
}

TEST_F(InstructionViewPaintTest, TheInstructionIsBlackAtTheTopLeftOfTheBody) {
    Paint(PANE);
    const CRect Body(21, 43, 959, 108);
    const CRect Text = FindText(Body, WHITE);
    EXPECT_NEAR(Text.left, 30, 3);
    EXPECT_GE(Text.top, 48);
    EXPECT_LT(Text.bottom, 48 + 24);
    EXPECT_GT(CountPixels(m_Bitmap, Body, BLACK), 0);
    EXPECT_EQ(CountPixels(m_Bitmap, Body, WARNING), 0);
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 24));  // (940 - 15) / 38
    EXPECT_NEAR(Text.Width(), Dc.GetTextExtent(m_View.GetInstructionText()).cx, 4);
}

TEST_F(InstructionViewPaintTest, AWarningIsRedAtTheBottomLeftAndLeavesTheInstruction) {
    Paint(PANE);
    const CBitmap Without = m_Bitmap;
    m_View.SetWarningMode(3);
    Paint(PANE);
    const auto Changed = FindDifference(Without, m_Bitmap);
    ASSERT_TRUE(Changed);
    EXPECT_NEAR(Changed->left, 30, 3);
    EXPECT_GE(Changed->top, 99 - 20) << "(940 - 15) / 46 high, ending 10 above the bottom";
    EXPECT_LE(Changed->bottom, 99);
    EXPECT_GT(CountPixels(m_Bitmap, *Changed, WARNING), 0);
    m_View.SetWarningMode(0);
    Paint(PANE);
    EXPECT_TRUE(m_Bitmap == Without);
}

// The body lies from row 43 to 109; its texts 10 from the left, 5 from top and right, 10 from the bottom. Of
// 965 columns that leaves 950, just enough for an instruction 25 high.
TEST_F(InstructionViewPaintTest, TheTextsOfTheBodyKeepItsMargins) {
    m_View.SetWarningMode(3);
    Paint(CRect(10, 10, 975, 109));
    CBitmap Expected({980, 140});
    CDC Dc(Expected);
    Dc.SetBkMode(CDC::eTransparent);
    const auto Draw = [&Dc](const std::string& rText, int nHeight, COLORREF Color, unsigned Format) {
        Dc.SelectFont(CFont("Arial", nHeight));
        Dc.SetTextColor(Color);
        CRect Inner(20, 48, 970, 99);
        Dc.DrawText(rText, Inner, Format | DT_SINGLELINE | DT_LEFT);
    };
    Draw(m_View.GetWarningText(), 20, WARNING, DT_BOTTOM);
    Draw(m_View.GetInstructionText(), 25, BLACK, DT_TOP);
    const CRect Body(10, 43, 974, 108);  // but for the frame line
    CBitmap Painted(CSize(Body.Width(), Body.Height()));
    CBitmap Wanted(CSize(Body.Width(), Body.Height()));
    CDC(Painted).BitBlt(GetWhole(Painted), m_Bitmap, {Body.left, Body.top});
    CDC(Wanted).BitBlt(GetWhole(Wanted), Expected, {Body.left, Body.top});
    EXPECT_TRUE(Painted == Wanted);
}

TEST_F(InstructionViewPaintTest, TextsAreNoHigherThanTheirArea) {
    const CRect Low(20, 10, 960, 46);  // header 12, body 24, of which 9 for text
    Paint(Low);
    const CRect Title = FindText(CRect(20, 10, 500, 21), PANEL);
    EXPECT_LE(Title.Height(), 12);
    const CRect Text = FindText(CRect(21, 22, 959, 45), WHITE);
    EXPECT_GE(Text.top, 27);
    EXPECT_LE(Text.bottom, 36);
}

// As high as they should be, the lines have 24 + 20 rows. The body of the first pane has 44 inside its
// margins, those of the others fewer.
TEST_F(InstructionViewPaintTest, InstructionAndWarningDontOverlapInALowPane) {
    m_View.SetWarningMode(3);
    for (const int nHeight : {88, 82, 72, 60, 45, 39}) {
        Paint(CRect(20, 10, 960, 10 + nHeight));
        const CRect Body(21, 10 + nHeight / 3, 959, 10 + nHeight - 1);
        // The instruction's smooth edges are grey, the warning's are shades of red.
        const CRect Instruction = FindPixels(m_Bitmap, Body, [](COLORREF Pixel) {
                                      return GetRValue(Pixel) < 120;
                                  }).value_or(CRect());
        const CRect Warning = FindPixels(m_Bitmap, Body, [](COLORREF Pixel) {
                                  return GetRValue(Pixel) > GetGValue(Pixel) + 60;
                              }).value_or(CRect());
        EXPECT_FALSE(Instruction.IsRectEmpty() || Warning.IsRectEmpty()) << nHeight;
        EXPECT_LE(Instruction.bottom, Warning.top) << nHeight;
        EXPECT_LT(Warning.bottom, Body.bottom) << nHeight << ": clear of the frame line";
    }
}

TEST_F(InstructionViewPaintTest, APaneWithoutRoomIsNoTrouble) {
    for (const CRect& rRect : {CRect(), CRect(20, 10, 24, 12), CRect(20, 10, 960, 20), CRect(9, 9, 5, 5)}) {
        Paint(rRect);
    }
    EXPECT_EQ(FindInk(m_Bitmap), std::nullopt) << "the last one was inverted";
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(InstructionViewPaintTest, TheDeviceContextIsLeftAsItWas) {
    m_Bitmap.Create({980, 140});
    CDC Dc(m_Bitmap);
    Dc.SelectFont(CFont("Arial", 40));
    const int nBefore = Dc.GetFontHeight();
    m_View.Paint(&Dc, PANE);
    EXPECT_EQ(Dc.GetFontHeight(), nBefore);
}

// An operator reads the page whole: on the panels in use no text runs out of its line, in no language.
TEST_F(InstructionViewPaintTest, EveryTextFitsItsLineOnCommonPanels) {
    CDC Dc(m_Bitmap);
    for (const std::string& rLanguage : GetLanguages()) {
        ASSERT_TRUE(SetLanguage(rLanguage));
        for (const int nWidth : {640, 800, 1024, 1280, 1920}) {
            const int nInner = nWidth - 15;
            Dc.SelectFont(CFont("Arial", nInner / 38));
            for (std::uint32_t Mode = 0; Mode <= 9; ++Mode) {
                EXPECT_LE(Dc.GetTextExtent(CInstructionView::ModeToLanguageString(Mode)).cx, nInner)
                    << rLanguage << " " << nWidth << " instruction " << Mode;
            }
            Dc.SelectFont(CFont("Arial", nInner / 46));
            for (std::uint32_t Mode = 1; Mode <= 11; ++Mode) {
                EXPECT_LE(Dc.GetTextExtent(CInstructionView::WarningModeToLanguageString(Mode, 999.0)).cx,
                          nInner)
                    << rLanguage << " " << nWidth << " warning " << Mode;
            }
        }
    }
    SetLanguage("en");
}

}  // namespace
