#include "console/softkeybutton.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QMouseEvent>
#include <QStyleOptionButton>
#include <QStylePainter>

#include "console/symbols.h"

namespace {

constexpr int MARGIN = 4;
constexpr int FEWEST_PIXELS = 6;
constexpr int TEXT_FLAGS = Qt::AlignCenter | Qt::TextWordWrap;

QSize Measure(const QFont& rFont, const QRect& rPlace, const QString& rText) {
    return QFontMetricsF(rFont)
        .boundingRect(QRectF(0, 0, rPlace.width(), rPlace.height()), TEXT_FLAGS, rText)
        .toAlignedRect()
        .size();
}

bool Fits(const QSize& rSize, const QRect& rPlace) {
    return rSize.width() <= rPlace.width() && rSize.height() <= rPlace.height();
}

}  // namespace

CSoftkeyButton::CSoftkeyButton(const QString& rCaption, QWidget* pParent)
    : QPushButton(pParent), m_Caption(rCaption) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    // As the keys beside a panel: an edit that is open in the page stays open, and the key can work on it.
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(m_Caption);
    Show({}, {}, false);
}

void CSoftkeyButton::Show(const QString& rLabel, const QString& rSymbol, bool bEnabled) {
    if (text() != rLabel || m_Symbol != rSymbol) {
        m_Symbol = rSymbol;
        setText(rLabel);
        setIcon(rSymbol.isEmpty() ? QIcon() : GetSymbol(rSymbol, palette()));
        setAccessibleName(rLabel.isEmpty() ? m_Caption : m_Caption + " " + rLabel);
    }
    setEnabled(bEnabled);
}

void CSoftkeyButton::SetLetters(int Pixels) {
    m_Letters = Pixels;
    update();
}

int CSoftkeyButton::GetCaptionHeight() const {
    return QFontMetrics(MakeFont(m_Letters)).height();
}

QFont CSoftkeyButton::MakeFont(double Pixels) const {
    QFont Font = font();
    Font.setPixelSize(qMax(FEWEST_PIXELS, qRound(Pixels)));
    return Font;
}

QRect CSoftkeyButton::GetTextPlace() const {
    return rect().adjusted(MARGIN, MARGIN + GetCaptionHeight(), -MARGIN, -MARGIN);
}

QFont CSoftkeyButton::GetTextFont() const {
    const QRect Place = GetTextPlace();
    int Pixels = m_Letters;
    while (Pixels > FEWEST_PIXELS && !Fits(Measure(MakeFont(Pixels), Place, text()), Place)) {
        --Pixels;
    }
    return MakeFont(Pixels);
}

QSize CSoftkeyButton::GetTextSize() const {
    return Measure(GetTextFont(), GetTextPlace(), text());
}

void CSoftkeyButton::paintEvent(QPaintEvent* /*pEvent*/) {
    QStylePainter Painter(this);
    QStyleOptionButton Option;
    initStyleOption(&Option);
    Option.text.clear();
    Option.icon = QIcon();
    Painter.drawControl(QStyle::CE_PushButton, Option);
    const QPalette::ColorGroup Group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    QColor Faint = palette().color(Group, QPalette::ButtonText);
    Faint.setAlphaF(text().isEmpty() ? 0.35F : 0.7F);
    Painter.setPen(Faint);
    Painter.setFont(MakeFont(m_Letters * 0.85));
    const QRect Head(MARGIN, MARGIN, width() - 2 * MARGIN, GetCaptionHeight());
    Painter.drawText(Head, Qt::AlignLeft | Qt::AlignVCenter, m_Caption);
    if (text().isEmpty()) {
        return;
    }
    icon().paint(&Painter, Head, Qt::AlignRight | Qt::AlignVCenter,
                 isEnabled() ? QIcon::Normal : QIcon::Disabled);
    Painter.setPen(palette().color(Group, QPalette::ButtonText));
    Painter.setFont(GetTextFont());
    Painter.drawText(GetTextPlace(), TEXT_FLAGS, text());
}

void CSoftkeyButton::mousePressEvent(QMouseEvent* pEvent) {
    if (pEvent->button() == Qt::LeftButton && !isDown()) {
        setDown(true);
        emit pressed();
    }
    pEvent->accept();
}

void CSoftkeyButton::mouseMoveEvent(QMouseEvent* pEvent) {
    pEvent->accept();
}

void CSoftkeyButton::mouseReleaseEvent(QMouseEvent* pEvent) {
    if (pEvent->button() == Qt::LeftButton && isDown()) {
        setDown(false);
        emit released();
    }
    pEvent->accept();
}

void CSoftkeyButton::changeEvent(QEvent* pEvent) {
    QPushButton::changeEvent(pEvent);
    if (pEvent->type() == QEvent::PaletteChange && !m_Symbol.isEmpty()) {
        setIcon(GetSymbol(m_Symbol, palette()));
    }
}
