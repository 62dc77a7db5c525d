#include "platform/paper/pdfpaper.h"

#include <gtest/gtest.h>

namespace {

constexpr std::chrono::sys_seconds DATE{std::chrono::seconds(1773480360)};  // 2026-03-14 09:26 UTC

std::string ToText(const std::vector<std::uint8_t>& rBytes) {
    return {rBytes.begin(), rBytes.end()};
}

int Count(const std::string& rText, const std::string& rPart) {
    int n = 0;
    for (std::size_t i = rText.find(rPart); i != std::string::npos; i = rText.find(rPart, i + 1)) {
        ++n;
    }
    return n;
}

}  // namespace

TEST(PdfPaper, IsA4InPages) {
    const auto pPaper = MakePdfPaper("Report", DATE);
    EXPECT_NEAR(pPaper->GetWidth(), 210.0, 0.2);
    EXPECT_NEAR(pPaper->GetHeight(), 297.0, 0.2);
    pPaper->DrawText({20, 20}, "one", {}, PaperAlign::eLeft);
    pPaper->BeginPage();
    pPaper->DrawEllipse({50, 50}, 20, 10, 45.0, {CPaperPen(), std::nullopt});
    const std::string Text = ToText(pPaper->Finish());
    EXPECT_EQ(Text.substr(0, 5), "%PDF-");
    EXPECT_EQ(Count(Text, "/Type /Page\n"), 2);
    EXPECT_NE(Text.find("LiberationSans"), std::string::npos) << "fonts are embedded";
}

TEST(PdfPaper, TellsTheDateThatItWasGiven) {
    EXPECT_NE(ToText(MakePdfPaper("Report", DATE)->Finish()).find("/CreationDate (D:20260314092600Z"),
              std::string::npos);
}

// 10 mm letters: an "M" is 0.833 of their size in this typeface and its metric equals.
TEST(PdfPaper, WidthsAreInMillimetres) {
    const auto pPaper = MakePdfPaper("Report", DATE);
    EXPECT_NEAR(pPaper->GetTextWidth("M", {10.0, false, {}}), 8.33, 0.02);
    EXPECT_NEAR(pPaper->GetTextWidth("MM", {10.0, false, {}}), 16.66, 0.04);
}

TEST(PdfPaper, APictureThatIsNoneIsNotDrawn) {
    const auto pPaper = MakePdfPaper("Report", DATE);
    EXPECT_FALSE(pPaper->DrawImage({10, 10}, 20, 20, {1, 2, 3}));
    EXPECT_FALSE(pPaper->Finish().empty());
}
