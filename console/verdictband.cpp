#include "console/verdictband.h"

#include <QAccessible>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <array>

#include "console/fittedtext.h"
#include "console/symbols.h"

namespace {

/// How a kind of sentence looks. The words say the same, for those who don't see colours apart.
struct CLook {
    const char* m_pSymbol;
    QRgb m_Background;  ///< 0: the palette's
    QRgb m_Text;
};

constexpr std::array LOOKS = {
    // as CSentence::Kind
    CLook{"list-checks", 0, 0},
    CLook{"list-checks", 0, 0},
    CLook{"hourglass", 0, 0},
    CLook{"triangle-alert", 0xffffd54a, 0xff000000},
    CLook{"circle-arrow-right", 0xff1d4f91, 0xffffffff},
    CLook{"circle-check", 0xff1b6e36, 0xffffffff},
    CLook{"circle-x", 0xffb3261e, 0xffffffff},
    CLook{"octagon-x", 0xffb3261e, 0xffffffff},
};
constexpr CLook MISSING = {"unplug", 0xffffd54a, 0xff000000};

constexpr int MIN_TEXT = 11;  // pixels: below that nobody reads it
constexpr int MIN_HEIGHT = 56;
constexpr int SHARE_OF_WINDOW = 8;  // of the window's height: one part of so many
constexpr int LARGEST_LINE = 45;    // percent of the band's height, for a line

}  // namespace

CVerdictBand::CVerdictBand(QWidget* pParent) : QWidget(pParent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setObjectName("VerdictBand");
    Refresh();
}

void CVerdictBand::Show(const CSentence& rSentence) {
    if (rSentence == m_Sentence) {
        return;
    }
    m_Sentence = rSentence;
    Refresh();
}

void CVerdictBand::ShowMissing(const QString& rText) {
    if (rText == m_Missing) {
        return;
    }
    m_Missing = rText;
    Refresh();
}

QString CVerdictBand::GetText() const {
    return m_Missing.isEmpty() ? QString::fromStdString(m_Sentence.m_Text) : m_Missing;
}

QString CVerdictBand::GetDetail() const {
    return m_Missing.isEmpty() ? QString::fromStdString(m_Sentence.m_Detail) : QString();
}

void CVerdictBand::Refresh() {
    setVisible(!GetText().isEmpty());
    if (accessibleName() != GetText() || accessibleDescription() != GetDetail()) {
        setAccessibleName(GetText());
        setAccessibleDescription(GetDetail());
    }
    update();
}

int CVerdictBand::GetBandHeight() const {
    return std::max(MIN_HEIGHT, window()->height() / SHARE_OF_WINDOW);
}

QSize CVerdictBand::sizeHint() const {
    return {MIN_HEIGHT, GetBandHeight()};
}

QSize CVerdictBand::minimumSizeHint() const {
    return sizeHint();
}

CVerdictBand::CLayout CVerdictBand::LayOut() const {
    const int Margin = height() / 10;
    const QRect Inner = rect().adjusted(Margin, Margin / 2, -Margin, -Margin / 2);
    CLayout Layout;
    Layout.m_Symbol = QRect(Inner.left(), Inner.top(), Inner.height(), Inner.height());
    Layout.m_Symbol.adjust(Margin, Margin, -Margin, -Margin);
    Layout.m_Text = Inner.adjusted(Inner.height() + Margin, 0, 0, 0);
    const bool bDetail = !GetDetail().isEmpty();
    if (bDetail) {
        Layout.m_Text.setHeight(Inner.height() * 6 / 10);
        Layout.m_Detail = Layout.m_Text.translated(0, Layout.m_Text.height());
        Layout.m_Detail.setBottom(Inner.bottom());
    }
    QFont Bold(font());
    Bold.setBold(true);
    const int Largest = height() * LARGEST_LINE / 100;
    Layout.m_TextFont = FitFont(GetText(), Layout.m_Text.size(), Bold, MIN_TEXT, Largest);
    Layout.m_DetailFont = FitFont(GetDetail(), Layout.m_Detail.size(), font(), MIN_TEXT,
                                  std::min(Layout.m_TextFont.pixelSize(), Layout.m_Detail.height()));
    return Layout;
}

bool CVerdictBand::IsAllShown() const {
    const CLayout Layout = LayOut();
    return FitsPlace(GetText(), Layout.m_Text.size(), Layout.m_TextFont) &&
           FitsPlace(GetDetail(), Layout.m_Detail.size(), Layout.m_DetailFont);
}

void CVerdictBand::paintEvent(QPaintEvent* /*pEvent*/) {
    const CLook& rLook =
        m_Missing.isEmpty() ? LOOKS.at(static_cast<std::size_t>(m_Sentence.m_Kind)) : MISSING;
    QPalette Colors = palette();
    if (rLook.m_Background != 0) {
        Colors.setColor(QPalette::Window, rLook.m_Background);
        Colors.setColor(QPalette::WindowText, rLook.m_Text);
        Colors.setColor(QPalette::ButtonText, rLook.m_Text);
    }
    QPainter Painter(this);
    Painter.fillRect(rect(), Colors.color(QPalette::Window));
    Painter.setPen(Colors.color(QPalette::WindowText));
    const CLayout Layout = LayOut();
    GetSymbol(rLook.m_pSymbol, Colors).paint(&Painter, Layout.m_Symbol);
    const int Flags = Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignVCenter;
    Painter.setFont(Layout.m_TextFont);
    Painter.drawText(Layout.m_Text, Flags, GetText());
    Painter.setFont(Layout.m_DetailFont);
    Painter.drawText(Layout.m_Detail, Flags, GetDetail());
}
