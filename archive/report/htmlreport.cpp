#include "archive/report/htmlreport.h"

#include <array>
#include <cstdio>

#include "platform/paper/markup.h"
#include "platform/paper/svgpaper.h"

namespace {

// What colours say is also said by words and marks: the page may be printed in black and white.
constexpr const char* STYLE = R"(
body { font-family: Arial, "Liberation Sans", Helvetica, sans-serif; color: #1a1a1a; background: #fff;
       max-width: 190mm; margin: 0 auto; padding: 6mm; line-height: 1.35; }
header { border-bottom: 0.6mm solid #003868; margin-bottom: 4mm; }
h1 { color: #003868; font-size: 1.7em; margin: 0; }
header p { margin: 1mm 0 2mm; color: #555; overflow-wrap: anywhere; }
h2 { color: #003868; font-size: 1.15em; margin: 7mm 0 2mm; }
p { margin: 2mm 0; overflow-wrap: anywhere; }
.good, .bad, .warning { border-left: 1.6mm solid; padding: 2mm 3mm; background: #f4f4f4; }
.good, .bad { font-size: 1.15em; font-weight: bold; }
.good { border-color: #006838; } .bad { border-color: #ce0000; border-left-style: double; border-left-width: 2.4mm; }
.warning { border-color: #b06000; border-left-style: dashed; }
.note, figcaption, caption { color: #555; font-size: 0.88em; text-align: left; }
table { border-collapse: collapse; width: 100%; margin: 2mm 0; }
caption { caption-side: bottom; padding-top: 1mm; }
th, td { padding: 1mm 2mm; border-bottom: 0.2mm solid #bbb; text-align: right; vertical-align: top;
         overflow-wrap: anywhere; font-variant-numeric: tabular-nums; }
thead th { border-bottom: 0.4mm solid #003868; }
th:first-child, table.facts td { text-align: left; }
tbody th { font-weight: normal; }
table.facts th { width: 34%; color: #555; }
figure { margin: 3mm 0; } figure div { display: flex; flex-wrap: wrap; gap: 4mm; }
figure svg { max-width: 100%; height: auto; } figure img { max-width: 100%; height: auto; border: 0.2mm solid #bbb; }
.signature { display: flex; gap: 8mm; margin-top: 18mm; }
.signature span { flex: 1; border-top: 0.3mm solid #1a1a1a; padding-top: 1mm; color: #555; font-size: 0.88em; }
@page { size: A4; margin: 15mm; }
@media print { body { max-width: none; padding: 0; } figure, tr, .signature, .good, .bad { break-inside: avoid; }
               h2 { break-after: avoid; } .page { break-before: page; } }
)";

std::string EncodeBase64(const std::vector<std::uint8_t>& rBytes) {
    constexpr const char* DIGITS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string Text;
    for (std::size_t i = 0; i < rBytes.size(); i += 3) {
        std::uint32_t Group = 0;
        for (std::size_t j = 0; j < 3; ++j) {
            Group = (Group << 8U) | (i + j < rBytes.size() ? rBytes[i + j] : 0U);
        }
        for (std::size_t j = 0; j < 4; ++j) {
            Text += i + j <= rBytes.size() ? DIGITS[(Group >> (18U - 6U * j)) & 63U] : '=';
        }
    }
    return Text;
}

std::string Element(const char* pTag, const std::string& rText) {
    return std::string("<") + pTag + ">" + EscapeMarkup(rText) + "</" + pTag + ">";
}

class CHtmlWriter {
public:
    std::string TakeText() { return std::move(m_Text); }

    void operator()(const CReportHeading& rHeading) {
        m_Text += std::string("<h2") + (rHeading.m_bNewPage ? " class=\"page\"" : "") + ">" +
                  EscapeMarkup(rHeading.m_Text) + "</h2>\n";
    }
    void operator()(const CReportParagraph& rParagraph) {
        constexpr std::array CLASSES = {"", "good", "bad", "warning", "note"};
        const std::string Class = CLASSES.at(static_cast<std::size_t>(rParagraph.m_Kind));
        m_Text += (Class.empty() ? "<p>" : "<p class=\"" + Class + "\">") + EscapeMarkup(rParagraph.m_Text) +
                  "</p>\n";
    }
    void operator()(const CReportTable& rTable) {
        m_Text += rTable.m_Header.empty() ? "<table class=\"facts\">\n" : "<table>\n";
        if (!rTable.m_Caption.empty()) {
            m_Text += Element("caption", rTable.m_Caption) + "\n";
        }
        if (!rTable.m_Header.empty()) {
            m_Text += "<thead><tr>";
            for (const std::string& rCell : rTable.m_Header) {
                m_Text += "<th scope=\"col\">" + EscapeMarkup(rCell) + "</th>";
            }
            m_Text += "</tr></thead>\n";
        }
        m_Text += "<tbody>\n";
        for (const auto& rRow : rTable.m_Rows) {
            m_Text += "<tr>";
            for (std::size_t i = 0; i < rRow.size(); ++i) {
                m_Text +=
                    i == 0 ? "<th scope=\"row\">" + EscapeMarkup(rRow[i]) + "</th>" : Element("td", rRow[i]);
            }
            m_Text += "</tr>\n";
        }
        m_Text += "</tbody></table>\n";
    }
    void operator()(const CReportDrawings& rDrawings) {
        m_Text += "<figure><div>\n";
        for (const CReportDrawing& rDrawing : rDrawings.m_Drawings) {
            CSvgPaper Paper(rDrawing.m_Width, rDrawing.m_Height, rDrawing.m_Description);
            rDrawing.m_Paint(Paper);
            m_Text += Paper.GetSvg();
        }
        m_Text += "</div>";
        AddCaption(rDrawings.m_Caption);
    }
    void operator()(const CReportPicture& rPicture) {
        m_Text += "<figure><img alt=\"" + EscapeMarkup(rPicture.m_Caption) +
                  "\" src=\"data:image/png;base64," + EncodeBase64(rPicture.m_Png) + "\">";
        AddCaption(rPicture.m_Caption);
    }
    void operator()(const CReportSignature& rSignature) {
        m_Text += "<div class=\"signature\">";
        for (const std::string& rWord : rSignature.m_Words) {
            m_Text += Element("span", rWord);
        }
        m_Text += "</div>\n";
    }

private:
    void AddCaption(const std::string& rCaption) {
        m_Text += (rCaption.empty() ? "" : Element("figcaption", rCaption)) + "</figure>\n";
    }

    std::string m_Text;
};

}  // namespace

std::string WriteHtmlReport(const CReportDocument& rDocument) {
    CHtmlWriter Writer;
    for (const CReportBlock& rBlock : rDocument.m_Blocks) {
        std::visit(Writer, rBlock);
    }
    // Nothing in it may load or run anything, whatever a name says.
    return "<!DOCTYPE html>\n<html lang=\"" + EscapeMarkup(rDocument.m_Language) +
           "\">\n<head>\n<meta charset=\"utf-8\">\n<meta http-equiv=\"Content-Security-Policy\" "
           "content=\"default-src 'none'; style-src 'unsafe-inline'; img-src data:\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n" +
           Element("title", rDocument.m_Title + " – " + rDocument.m_Subtitle) + "\n<style>" + STYLE +
           "</style>\n</head>\n<body>\n<header>" + Element("h1", rDocument.m_Title) +
           Element("p", rDocument.m_Subtitle) + "</header>\n<main>\n" + Writer.TakeText() +
           "</main>\n<footer>" + "<p class=\"note\">" + EscapeMarkup(rDocument.m_Footer) +
           "</p></footer>\n</body>\n</html>\n";
}
