#include "archive/report/pagedreport.h"

#include <algorithm>
#include <numeric>

#include "archive/report/reportcolors.h"
#include "archive/report/shiftedpaper.h"

namespace {

constexpr double MARGIN = 16.0;  // mm, all of it
constexpr double FOOT = 8.0;
constexpr double GAP = 2.0;
constexpr double ROW_GAP = 1.3;
constexpr double CELL = 1.2;  // beside a cell's text
constexpr double PLAIN = 3.5;
constexpr double SMALL = 3.0;
constexpr double LINE = 1.3;  // of the size, from line to line

constexpr CPaperColor INK = ReportColors::INK;
constexpr CPaperColor PALE{0x55, 0x55, 0x55};
constexpr CPaperColor HEAD = ReportColors::BLUE;
constexpr CPaperColor RULE = ReportColors::GRID;
constexpr CPaperColor GROUND{0xF4, 0xF4, 0xF4};
constexpr CPaperColor GOOD = ReportColors::GREEN;
constexpr CPaperColor BAD = ReportColors::RED;
constexpr CPaperColor WARNING{0xB0, 0x60, 0x00};

/// Counts pages and draws nothing.
class CCountingPaper : public IFPagedPaper {
public:
    explicit CCountingPaper(const IFPagedPaper& rPaper) : m_rPaper(rPaper) {}
    int GetPages() const { return m_nPages; }

    double GetWidth() const override { return m_rPaper.GetWidth(); }
    double GetHeight() const override { return m_rPaper.GetHeight(); }
    double GetTextWidth(const std::string& rText, const CPaperFont& rFont) const override {
        return m_rPaper.GetTextWidth(rText, rFont);
    }
    void BeginPage() override { ++m_nPages; }
    bool DrawImage(const CPaperPoint&, double, double, const std::vector<std::uint8_t>&) override {
        return true;
    }
    void DrawLine(const CPaperPoint&, const CPaperPoint&, const CPaperPen&) override {}
    void DrawPolyline(const std::vector<CPaperPoint>&, const CPaperPen&) override {}
    void DrawPolygon(const std::vector<CPaperPoint>&, const CPaperStyle&) override {}
    void DrawEllipse(const CPaperPoint&, double, double, double, const CPaperStyle&) override {}
    void DrawText(const CPaperPoint&, const std::string&, const CPaperFont&, PaperAlign) override {}

private:
    const IFPagedPaper& m_rPaper;
    int m_nPages = 1;
};

/// Lays blocks out one below the other.
class CLayout {
public:
    CLayout(const CReportDocument& rDocument, IFPagedPaper& rPaper, int nPages)
        : m_rDocument(rDocument),
          m_rPaper(rPaper),
          m_nPages(nPages),
          m_Width(rPaper.GetWidth() - 2.0 * MARGIN),
          m_Bottom(rPaper.GetHeight() - MARGIN - FOOT) {}

    void Write() {
        WriteTitle();
        WriteFoot();
        for (std::size_t i = 0; i < m_rDocument.m_Blocks.size(); ++i) {
            m_pNext = i + 1 < m_rDocument.m_Blocks.size() ? &m_rDocument.m_Blocks[i + 1] : nullptr;
            std::visit(*this, m_rDocument.m_Blocks[i]);
        }
    }

    void operator()(const CReportHeading& rHeading) {
        constexpr double SIZE = 4.6;
        // A heading doesn't stand alone at the foot of a sheet.
        constexpr double NEEDED = 3.0 * PLAIN;
        double Following = NEEDED;
        if (m_pNext != nullptr && std::holds_alternative<CReportDrawings>(*m_pNext)) {
            Following = GetHeight(std::get<CReportDrawings>(*m_pNext));
        } else if (m_pNext != nullptr && std::holds_alternative<CReportTable>(*m_pNext)) {
            Following = GetUnbroken(std::get<CReportTable>(*m_pNext));
        }
        if (rHeading.m_bNewPage) {
            BreakPage();
        }
        m_Y += IsAtTop() ? 0.0 : 2.0 * GAP;
        Reserve(SIZE * LINE + GAP + Following);
        WriteLines(rHeading.m_Text, {SIZE, true, HEAD}, MARGIN, m_Width);
        m_Y += GAP / 2.0;
    }

    void operator()(const CReportParagraph& rParagraph) {
        using Kind = CReportParagraph::Kind;
        if (rParagraph.m_Kind == Kind::ePlain || rParagraph.m_Kind == Kind::eNote) {
            const bool bNote = rParagraph.m_Kind == Kind::eNote;
            WriteLines(rParagraph.m_Text, {bNote ? SMALL : PLAIN, false, bNote ? PALE : INK}, MARGIN,
                       m_Width);
            m_Y += GAP;
            return;
        }
        const bool bVerdict = rParagraph.m_Kind != Kind::eWarning;
        const CPaperColor Color = rParagraph.m_Kind == Kind::eGood  ? GOOD
                                  : rParagraph.m_Kind == Kind::eBad ? BAD
                                                                    : WARNING;
        const CPaperFont Font{bVerdict ? 4.2 : PLAIN, bVerdict, INK};
        constexpr double BAR = 5.0;
        constexpr double PAD = 2.0;
        const auto Lines = Wrap(rParagraph.m_Text, Font, m_Width - BAR - PAD);
        const double Height = static_cast<double>(Lines.size()) * Font.m_Size * LINE + 2.0 * PAD;
        Reserve(Height);
        DrawBox(MARGIN, m_Y, m_Width, Height, GROUND);
        DrawBox(MARGIN, m_Y, 1.6, Height, Color);
        if (rParagraph.m_Kind == Kind::eBad) {
            DrawBox(MARGIN + 2.2, m_Y, 0.8, Height, Color);  // told apart without colour
        }
        const double Below = m_Y + Height + GAP;
        m_Y += PAD;
        for (const std::string& rLine : Lines) {
            WriteLine(rLine, Font, MARGIN + BAR);
        }
        m_Y = Below;
    }

    void operator()(const CReportTable& rTable) {
        const std::vector<double> Widths = ChooseWidths(rTable);
        const auto WriteHead = [&] {
            if (!rTable.m_Header.empty()) {
                WriteRow(rTable.m_Header, Widths, {SMALL, true, INK}, false);
                m_rPaper.DrawLine({MARGIN, m_Y}, {MARGIN + m_Width, m_Y}, {HEAD, 0.4});
            }
        };
        Reserve(GetUnbroken(rTable));
        WriteHead();
        for (const auto& rRow : rTable.m_Rows) {
            const CPaperFont Font{PLAIN, false, INK};
            if (m_Y + GetRowHeight(rRow, Widths, Font) > m_Bottom) {
                BreakPage();
                WriteHead();
            }
            WriteRow(rRow, Widths, Font, rTable.m_Header.empty());
            m_rPaper.DrawLine({MARGIN, m_Y}, {MARGIN + m_Width, m_Y}, {RULE, 0.2});
        }
        WriteCaption(rTable.m_Caption);
    }

    void operator()(const CReportDrawings& rDrawings) {
        constexpr double BETWEEN = 4.0;
        Reserve(GetHeight(rDrawings));
        double X = MARGIN;
        double RowHeight = 0.0;
        for (const CReportDrawing& rDrawing : rDrawings.m_Drawings) {
            if (X > MARGIN && X + rDrawing.m_Width > MARGIN + m_Width + 0.01) {
                m_Y += RowHeight;
                X = MARGIN;
                RowHeight = 0.0;
            }
            CShiftedPaper Place(m_rPaper, {X, m_Y});
            rDrawing.m_Paint(Place);
            X += rDrawing.m_Width + BETWEEN;
            RowHeight = std::max(RowHeight, rDrawing.m_Height);
        }
        m_Y += RowHeight;
        WriteCaption(rDrawings.m_Caption);
    }

    void operator()(const CReportPicture& rPicture) {
        const double Scale = std::min(1.0, m_Width / rPicture.m_Width);
        const double Height = rPicture.m_Height * Scale;
        Reserve(Height + 2.0 * SMALL * LINE);
        if (m_rPaper.DrawImage({MARGIN, m_Y}, rPicture.m_Width * Scale, Height, rPicture.m_Png)) {
            m_Y += Height + GAP / 2.0;
            WriteCaption(rPicture.m_Caption);
        }
    }

    void operator()(const CReportSignature& rSignature) {
        constexpr double ROOM = 18.0;
        constexpr double BETWEEN = 8.0;
        Reserve(ROOM + SMALL * LINE + GAP);
        m_Y += ROOM;
        const auto n = static_cast<double>(rSignature.m_Words.size());
        const double Width = (m_Width - BETWEEN * (n - 1.0)) / n;
        double X = MARGIN;
        for (const std::string& rWord : rSignature.m_Words) {
            m_rPaper.DrawLine({X, m_Y}, {X + Width, m_Y}, {INK, 0.3});
            m_rPaper.DrawText({X, m_Y + SMALL * LINE}, rWord, {SMALL, false, PALE}, PaperAlign::eLeft);
            X += Width + BETWEEN;
        }
        m_Y += SMALL * LINE + GAP;
    }

private:
    bool IsAtTop() const { return m_Y <= MARGIN; }
    void BreakPage() {
        if (!IsAtTop()) {
            m_rPaper.BeginPage();
            ++m_Page;
            m_Y = MARGIN;
            WriteFoot();
        }
    }
    void Reserve(double Height) {
        if (m_Y + Height > m_Bottom) {
            BreakPage();
        }
    }
    void DrawBox(double X, double Y, double Width, double Height, const CPaperColor& rColor) {
        m_rPaper.DrawPolygon({{X, Y}, {X + Width, Y}, {X + Width, Y + Height}, {X, Y + Height}},
                             {std::nullopt, rColor});
    }

    void WriteTitle() {
        WriteLine(m_rDocument.m_Title, {7.0, true, HEAD}, MARGIN);
        WriteLines(m_rDocument.m_Subtitle, {PLAIN, false, PALE}, MARGIN, m_Width);
        m_Y += GAP / 2.0;
        m_rPaper.DrawLine({MARGIN, m_Y}, {MARGIN + m_Width, m_Y}, {HEAD, 0.6});
        m_Y += 2.0 * GAP;
    }
    void WriteFoot() {
        const double Y = m_rPaper.GetHeight() - MARGIN;
        const CPaperFont Font{SMALL, false, PALE};
        std::string Page = m_rDocument.m_PageFormat;
        for (const int Number : {m_Page, m_nPages}) {
            const std::size_t Place = Page.find("%s");
            if (Place != std::string::npos) {
                Page.replace(Place, 2, std::to_string(Number));
            }
        }
        const double PageWidth = m_rPaper.GetTextWidth(Page, Font);
        m_rPaper.DrawLine({MARGIN, Y - SMALL * LINE}, {MARGIN + m_Width, Y - SMALL * LINE}, {RULE, 0.2});
        m_rPaper.DrawText({MARGIN, Y}, Wrap(m_rDocument.m_Footer, Font, m_Width - PageWidth - GAP).front(),
                          Font, PaperAlign::eLeft);
        m_rPaper.DrawText({MARGIN + m_Width, Y}, Page, Font, PaperAlign::eRight);
    }
    void WriteCaption(const std::string& rCaption) {
        m_Y += GAP / 2.0;
        if (!rCaption.empty()) {
            WriteLines(rCaption, {SMALL, false, PALE}, MARGIN, m_Width);
        }
        m_Y += GAP;
    }
    void WriteLine(const std::string& rLine, const CPaperFont& rFont, double X) {
        m_rPaper.DrawText({X, m_Y + rFont.m_Size}, rLine, rFont, PaperAlign::eLeft);
        m_Y += rFont.m_Size * LINE;
    }
    void WriteLines(const std::string& rText, const CPaperFont& rFont, double X, double Width) {
        for (const std::string& rLine : Wrap(rText, rFont, Width)) {
            Reserve(rFont.m_Size * LINE);
            WriteLine(rLine, rFont, X);
        }
    }

    /// Lines of at most that width, broken at blanks, and within words that are wider than a line. At least
    /// one.
    std::vector<std::string> Wrap(const std::string& rText, const CPaperFont& rFont, double Width) const {
        std::vector<std::string> Lines(1);
        std::size_t Begin = 0;
        while (Begin < rText.size()) {
            const std::size_t End = std::min(rText.find(' ', Begin), rText.size());
            std::string Word = rText.substr(Begin, End - Begin);
            Begin = End + 1;
            const std::string Joined = Lines.back().empty() ? Word : Lines.back() + " " + Word;
            if (m_rPaper.GetTextWidth(Joined, rFont) <= Width) {
                Lines.back() = Joined;
                continue;
            }
            if (!Lines.back().empty()) {
                Lines.emplace_back();
            }
            while (m_rPaper.GetTextWidth(Word, rFont) > Width) {
                const std::size_t Length = GetFitting(Word, rFont, Width);
                Lines.back() = Word.substr(0, Length);
                Lines.emplace_back();
                Word.erase(0, Length);
            }
            Lines.back() = Word;
        }
        return Lines;
    }
    /// Bytes of whole characters that fit, those of one character at least.
    std::size_t GetFitting(const std::string& rWord, const CPaperFont& rFont, double Width) const {
        std::size_t Length = 0;
        for (std::size_t i = 1; i <= rWord.size(); ++i) {
            const bool bWhole = i == rWord.size() || (static_cast<unsigned char>(rWord[i]) & 0xC0U) != 0x80U;
            if (!bWhole) {
                continue;
            }
            if (Length > 0 && m_rPaper.GetTextWidth(rWord.substr(0, i), rFont) > Width) {
                break;
            }
            Length = i;
        }
        return Length;
    }

    std::vector<double> ChooseWidths(const CReportTable& rTable) const {
        std::size_t nColumns = rTable.m_Header.size();
        for (const auto& rRow : rTable.m_Rows) {
            nColumns = std::max(nColumns, rRow.size());
        }
        if (rTable.m_Header.empty() && nColumns == 2) {
            constexpr double NAMES = 0.34;
            return {m_Width * NAMES, m_Width * (1.0 - NAMES)};
        }
        // What each column would like to have, and if that is too much, in proportion.
        std::vector<double> Widths(nColumns, 4.0);
        const auto Look = [&](const std::vector<std::string>& rRow, const CPaperFont& rFont) {
            for (std::size_t i = 0; i < rRow.size(); ++i) {
                Widths[i] = std::max(Widths[i], m_rPaper.GetTextWidth(rRow[i], rFont) + 2.0 * CELL);
            }
        };
        Look(rTable.m_Header, {SMALL, true, INK});
        for (const auto& rRow : rTable.m_Rows) {
            Look(rRow, {PLAIN, false, INK});
        }
        for (double& rWidth : Widths) {
            rWidth = std::min(rWidth, m_Width / 2.0);
        }
        const double Sum = std::accumulate(Widths.begin(), Widths.end(), 0.0);
        for (double& rWidth : Widths) {
            rWidth *= m_Width / Sum;
        }
        return Widths;
    }
    double GetRowHeight(const std::vector<std::string>& rRow, const std::vector<double>& rWidths,
                        const CPaperFont& rFont) const {
        std::size_t nLines = 1;
        for (std::size_t i = 0; i < rRow.size(); ++i) {
            nLines = std::max(nLines, Wrap(rRow[i], rFont, rWidths[i] - 2.0 * CELL).size());
        }
        return static_cast<double>(nLines) * rFont.m_Size * LINE + ROW_GAP;
    }
    void WriteRow(const std::vector<std::string>& rRow, const std::vector<double>& rWidths,
                  const CPaperFont& rFont, bool bFacts) {
        const double Top = m_Y + ROW_GAP / 2.0;
        const double Height = GetRowHeight(rRow, rWidths, rFont);
        double X = MARGIN;
        for (std::size_t i = 0; i < rRow.size(); ++i) {
            const bool bLeft = i == 0 || bFacts;
            CPaperFont Font = rFont;
            Font.m_Color = bFacts && i == 0 ? PALE : rFont.m_Color;
            double Y = Top + Font.m_Size * 0.95;
            for (const std::string& rLine : Wrap(rRow[i], Font, rWidths[i] - 2.0 * CELL)) {
                m_rPaper.DrawText({bLeft ? X + CELL : X + rWidths[i] - CELL, Y}, rLine, Font,
                                  bLeft ? PaperAlign::eLeft : PaperAlign::eRight);
                Y += Font.m_Size * LINE;
            }
            X += rWidths[i];
        }
        m_Y += Height;
    }

    /// How much of a table is to stand on one sheet: all of a short one; of a long one its head with a few
    /// rows.
    double GetUnbroken(const CReportTable& rTable) const {
        const std::vector<double> Widths = ChooseWidths(rTable);
        double Height =
            rTable.m_Header.empty() ? 0.0 : GetRowHeight(rTable.m_Header, Widths, {SMALL, true, INK});
        const double Few = Height + 3.0 * PLAIN * LINE;
        for (const auto& rRow : rTable.m_Rows) {
            Height += GetRowHeight(rRow, Widths, {PLAIN, false, INK});
        }
        constexpr double SHORT = 0.4;  // of a sheet
        return Height < SHORT * m_rPaper.GetHeight() ? Height : Few;
    }

    double GetHeight(const CReportDrawings& rDrawings) const {
        double Height = 0.0;
        for (const CReportDrawing& rDrawing : rDrawings.m_Drawings) {
            Height = std::max(Height, rDrawing.m_Height);
        }
        return Height + (rDrawings.m_Caption.empty() ? 0.0 : 2.0 * SMALL * LINE) + GAP;
    }

    const CReportDocument& m_rDocument;
    IFPagedPaper& m_rPaper;
    int m_nPages;
    double m_Width;
    double m_Bottom;
    double m_Y = MARGIN;
    int m_Page = 1;
    const CReportBlock* m_pNext = nullptr;
};

}  // namespace

void WritePagedReport(const CReportDocument& rDocument, IFPagedPaper& rPaper) {
    CCountingPaper Counting(rPaper);
    CLayout(rDocument, Counting, 0).Write();
    CLayout(rDocument, rPaper, Counting.GetPages()).Write();
}
