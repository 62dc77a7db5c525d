#include "console/reportview.h"

#include <QEvent>
#include <QImage>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>
#include <QSvgRenderer>
#include <algorithm>
#include <utility>

#include "platform/paper/markup.h"
#include "platform/paper/svgpaper.h"

namespace {

constexpr double SHARPNESS = 2.0;  ///< pixels of a drawing for each of the view: it may be shown larger

QString Escape(const std::string& rText) {
    return QString::fromStdString(EscapeMarkup(rText));
}

/// As on paper: dark on white, whatever the window's colours.
QImage Render(const CReportDrawing& rDrawing, double Width) {
    CSvgPaper Paper(rDrawing.m_Width, rDrawing.m_Height, rDrawing.m_Description);
    rDrawing.m_Paint(Paper);
    QSvgRenderer Renderer(QByteArray::fromStdString(Paper.GetSvg()));
    const double Pixels = Width * SHARPNESS;
    QImage Image(qRound(Pixels), qRound(Pixels * rDrawing.m_Height / rDrawing.m_Width),
                 QImage::Format_ARGB32_Premultiplied);
    Image.fill(Qt::white);
    QPainter Painter(&Image);
    Renderer.render(&Painter);
    return Image;
}

/// Writes the blocks as the rich text that a text browser knows.
class CRichText {
public:
    CRichText(QTextDocument& rDocument, int Width) : m_rDocument(rDocument), m_Width(Width) {}

    void operator()(const CReportHeading& rBlock) { m_Html += "<h3>" + Escape(rBlock.m_Text) + "</h3>"; }
    void operator()(const CReportParagraph& rBlock) {
        using Kind = CReportParagraph::Kind;
        const bool bStrong = rBlock.m_Kind == Kind::eGood || rBlock.m_Kind == Kind::eBad;
        const char* const pMark = rBlock.m_Kind == Kind::eGood      ? "✓ "
                                  : rBlock.m_Kind == Kind::eBad     ? "✗ "
                                  : rBlock.m_Kind == Kind::eWarning ? "⚠ "
                                                                    : "";
        m_Html += "<p>" + QString::fromUtf8(pMark) + (bStrong ? "<b>" : "") + Escape(rBlock.m_Text) +
                  (bStrong ? "</b>" : "") + "</p>";
    }
    void operator()(const CReportTable& rBlock) {
        m_Html += "<table cellspacing='0' cellpadding='3' border='1' width='100%'>";
        if (!rBlock.m_Header.empty()) {
            AddRow(rBlock.m_Header, "th");
        }
        for (const std::vector<std::string>& rRow : rBlock.m_Rows) {
            AddRow(rRow, "td");
        }
        m_Html += "</table>";
        AddCaption(rBlock.m_Caption);
    }
    void operator()(const CReportDrawings& rBlock) {
        for (const CReportDrawing& rDrawing : rBlock.m_Drawings) {
            AddImage(Render(rDrawing, m_Width), m_Width);
        }
        AddCaption(rBlock.m_Caption);
    }
    void operator()(const CReportPicture& rBlock) {
        const QImage Image =
            QImage::fromData(rBlock.m_Png.data(), static_cast<int>(rBlock.m_Png.size()), "PNG");
        if (!Image.isNull()) {
            AddImage(Image, std::min(m_Width, Image.width()));
            AddCaption(rBlock.m_Caption);
        }
    }
    void operator()(const CReportSignature& /*rBlock*/) {}  // nobody signs a window

    const QString& GetHtml() const { return m_Html; }

private:
    void AddRow(const std::vector<std::string>& rCells, const QString& rTag) {
        m_Html += "<tr>";
        for (const std::string& rCell : rCells) {
            m_Html += "<" + rTag + " align='left'>" + Escape(rCell) + "</" + rTag + ">";
        }
        m_Html += "</tr>";
    }
    void AddCaption(const std::string& rText) {
        if (!rText.empty()) {
            m_Html += "<p><i>" + Escape(rText) + "</i></p>";
        }
    }
    void AddImage(const QImage& rImage, int Width) {
        const QUrl Name("drawing:" + QString::number(++m_nImages));
        m_rDocument.addResource(QTextDocument::ImageResource, Name, rImage);
        m_Html += QString("<p><img src='%1' width='%2'></p>").arg(Name.toString()).arg(Width);
    }

    QTextDocument& m_rDocument;
    int m_Width;
    int m_nImages = 0;
    QString m_Html;
};

}  // namespace

CReportView::CReportView(QWidget* pParent) : QTextBrowser(pParent) {
    setOpenLinks(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);  // the width doesn't depend on the height
}

void CReportView::ShowReport(CReportDocument Document) {
    m_Document = std::move(Document);
    Lay();
    verticalScrollBar()->setValue(0);
}

void CReportView::Lay() {
    constexpr int MARGIN = 16;
    constexpr int WIDEST = 700;  // a plot gets no better beyond
    const int Place = verticalScrollBar()->value();
    m_LaidWidth = viewport()->width();
    document()->clear();
    CRichText Text(*document(), std::clamp(m_LaidWidth - MARGIN, 1, WIDEST));
    for (const CReportBlock& rBlock : m_Document.m_Blocks) {
        std::visit(Text, rBlock);
    }
    setHtml("<h2>" + Escape(m_Document.m_Title) + "</h2><p>" + Escape(m_Document.m_Subtitle) + "</p>" +
            Text.GetHtml());
    verticalScrollBar()->setValue(Place);
}

void CReportView::resizeEvent(QResizeEvent* pEvent) {
    QTextBrowser::resizeEvent(pEvent);
    if (viewport()->width() != m_LaidWidth && !m_Document.m_Blocks.empty()) {
        Lay();
    }
}

void CReportView::changeEvent(QEvent* pEvent) {
    QTextBrowser::changeEvent(pEvent);
    if (pEvent->type() == QEvent::FontChange && !m_Document.m_Blocks.empty()) {
        Lay();
    }
}
