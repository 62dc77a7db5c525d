#include "archive/report/pagedreport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

/// Sheets of 100 by 100 mm that write down what is drawn; each byte of a text is half its size wide.
class CNotedPaper : public IFPagedPaper {
public:
    struct CText {
        int m_Page;
        CPaperPoint m_Point;
        std::string m_Text;
        double m_Right;
    };
    double GetWidth() const override { return 100.0; }
    double GetHeight() const override { return 100.0; }
    double GetTextWidth(const std::string& rText, const CPaperFont& rFont) const override {
        return 0.5 * rFont.m_Size * static_cast<double>(rText.size());
    }
    bool DrawImage(const CPaperPoint&, double Width, double, const std::vector<std::uint8_t>& r) override {
        m_ImageWidth = Width;
        return !r.empty();
    }
    void BeginPage() override { ++m_Page; }
    void DrawLine(const CPaperPoint&, const CPaperPoint&, const CPaperPen&) override {}
    void DrawPolyline(const std::vector<CPaperPoint>&, const CPaperPen&) override {}
    void DrawPolygon(const std::vector<CPaperPoint>&, const CPaperStyle&) override {}
    void DrawEllipse(const CPaperPoint& rCentre, double, double, double, const CPaperStyle&) override {
        m_Dots.push_back({m_Page, rCentre, {}, 0.0});
    }
    void DrawText(const CPaperPoint& rPoint, const std::string& rText, const CPaperFont& rFont,
                  PaperAlign Align) override {
        const double Width = GetTextWidth(rText, rFont);
        m_Texts.push_back({m_Page, rPoint, rText, rPoint.m_X + (Align == PaperAlign::eLeft ? Width : 0.0)});
    }

    int m_Page = 1;
    double m_ImageWidth = 0.0;
    std::vector<CText> m_Texts;
    std::vector<CText> m_Dots;
};

CNotedPaper LayOut(std::vector<CReportBlock> Blocks) {
    CReportDocument Document;
    Document.m_Title = "Title";
    Document.m_PageFormat = "Page %s of %s";
    Document.m_Blocks = std::move(Blocks);
    CNotedPaper Paper;
    WritePagedReport(Document, Paper);
    return Paper;
}

const CNotedPaper::CText* Find(const CNotedPaper& rPaper, const std::string& rText) {
    const auto Found = std::ranges::find(rPaper.m_Texts, rText, &CNotedPaper::CText::m_Text);
    return Found == rPaper.m_Texts.end() ? nullptr : &*Found;
}

CReportTable MakeTable(int nRows) {
    CReportTable Table;
    Table.m_Header = {"Head", "Value"};
    for (int i = 0; i < nRows; ++i) {
        Table.m_Rows.push_back({"row" + std::to_string(i), "1"});
    }
    return Table;
}

}  // namespace

TEST(PagedReport, PagesAreNumberedAndCounted) {
    const CNotedPaper Paper = LayOut({MakeTable(40)});
    EXPECT_GT(Paper.m_Page, 2);
    for (int i = 1; i <= Paper.m_Page; ++i) {
        const auto* const pFoot =
            Find(Paper, "Page " + std::to_string(i) + " of " + std::to_string(Paper.m_Page));
        ASSERT_NE(pFoot, nullptr) << i;
        EXPECT_EQ(pFoot->m_Page, i);
    }
}

TEST(PagedReport, NothingIsWrittenOutsideTheMargins) {
    const CNotedPaper Paper =
        LayOut({CReportParagraph{"many words of a paragraph that is long enough for some lines of its own " +
                                 std::string(300, 'x') + " end"},
                MakeTable(40), CReportParagraph{std::string(200, 'W'), CReportParagraph::Kind::eBad}});
    for (const CNotedPaper::CText& rText : Paper.m_Texts) {
        EXPECT_GE(rText.m_Point.m_X, 15.99) << rText.m_Text;
        EXPECT_LE(rText.m_Right, 84.01) << rText.m_Text;
        EXPECT_LE(rText.m_Point.m_Y, 84.01) << rText.m_Text;
    }
}

// A character of two bytes is never cut in two.
TEST(PagedReport, LongWordsAreBrokenBetweenCharacters) {
    std::string Word;
    for (int i = 0; i < 99; ++i) {
        Word += "ä";
    }
    const CNotedPaper Paper = LayOut({CReportParagraph{"x" + Word}});
    int nPieces = 0;
    for (const CNotedPaper::CText& rText : Paper.m_Texts) {
        if (rText.m_Text.find("ä") != std::string::npos) {
            ++nPieces;
            EXPECT_NE(static_cast<unsigned char>(rText.m_Text[0]) & 0xC0U, 0x80U);
        }
    }
    EXPECT_GT(nPieces, 1);
}

TEST(PagedReport, ATableThatGoesOnRepeatsItsHead) {
    const CNotedPaper Paper = LayOut({MakeTable(40)});
    std::vector<int> Pages;
    for (const CNotedPaper::CText& rText : Paper.m_Texts) {
        if (rText.m_Text == "Head") {
            Pages.push_back(rText.m_Page);
        }
    }
    EXPECT_EQ(Pages.size(), static_cast<std::size_t>(Paper.m_Page));
}

TEST(PagedReport, AHeadingStaysWithWhatFollows) {
    CReportDrawing Drawing{40.0, 30.0, "", [](IFPaper& rPaper) { rPaper.DrawEllipse({1, 1}, 1, 1, 0, {}); }};
    const CNotedPaper Paper = LayOut(
        {CReportParagraph{"a"}, MakeTable(3), CReportHeading{"Plots"}, CReportDrawings{{Drawing}, ""}});
    ASSERT_EQ(Paper.m_Dots.size(), 1U);
    EXPECT_EQ(Find(Paper, "Plots")->m_Page, Paper.m_Dots[0].m_Page);
    EXPECT_EQ(Paper.m_Dots[0].m_Page, 2);
    EXPECT_NEAR(Paper.m_Dots[0].m_Point.m_X, 17.0, 1e-9) << "from its own corner";
}

TEST(PagedReport, DrawingsThatDontFitBesideEachOtherStandBelow) {
    const auto Make = [](double Width) {
        return CReportDrawing{Width, 10.0, "", [](IFPaper& rPaper) {
                                  rPaper.DrawEllipse({0, 0}, 1, 1, 0, {});
                              }};
    };
    const CNotedPaper Beside = LayOut({CReportDrawings{{Make(30), Make(30)}, ""}});
    EXPECT_EQ(Beside.m_Dots[0].m_Point.m_Y, Beside.m_Dots[1].m_Point.m_Y);
    const CNotedPaper Below = LayOut({CReportDrawings{{Make(40), Make(40)}, ""}});
    EXPECT_EQ(Below.m_Dots[0].m_Point.m_X, Below.m_Dots[1].m_Point.m_X);
    EXPECT_NEAR(Below.m_Dots[1].m_Point.m_Y - Below.m_Dots[0].m_Point.m_Y, 10.0, 1e-9);
}

TEST(PagedReport, APictureIsNoWiderThanThePage) {
    EXPECT_NEAR(LayOut({CReportPicture{{1}, 200.0, 10.0, ""}}).m_ImageWidth, 68.0, 1e-9);
    EXPECT_NEAR(LayOut({CReportPicture{{1}, 50.0, 10.0, ""}}).m_ImageWidth, 50.0, 1e-9);
}
