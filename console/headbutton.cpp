#include "console/headbutton.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>

namespace {

constexpr int MARGIN = 5;
constexpr double SMALL_PART = 0.82;

}  // namespace

CHeadButton::CHeadButton(QWidget* pParent) : QToolButton(pParent) {
    setFocusPolicy(Qt::NoFocus);  // the page keeps it
}

void CHeadButton::Show(const QString& rSmall, const QString& rLarge, const QIcon& rSymbol) {
    if (m_Small != rSmall || m_Large != rLarge) {
        m_Small = rSmall;
        m_Large = rLarge;
        setAccessibleName(rSmall.isEmpty() ? rLarge : rSmall + ": " + rLarge);
        updateGeometry();
        update();
    }
    if (m_Symbol.cacheKey() != rSymbol.cacheKey()) {
        m_Symbol = rSymbol;
        update();
    }
}

void CHeadButton::SetLetters(int Pixels) {
    m_Letters = Pixels;
    updateGeometry();
}

QFont CHeadButton::MakeFont(bool bLarge) const {
    QFont Font = font();
    Font.setPixelSize(qRound(bLarge ? m_Letters : m_Letters * SMALL_PART));
    Font.setBold(bLarge && !m_Small.isEmpty());
    return Font;
}

int CHeadButton::GetRoom() const {
    return width() - 2 * MARGIN - (m_Symbol.isNull() ? 0 : m_Letters + MARGIN);
}

bool CHeadButton::IsWhole() const {
    return QFontMetrics(MakeFont(true)).horizontalAdvance(m_Large) <= GetRoom() &&
           QFontMetrics(MakeFont(false)).horizontalAdvance(m_Small) <= GetRoom();
}

QSize CHeadButton::sizeHint() const {
    const int Width = qMax(QFontMetrics(MakeFont(true)).horizontalAdvance(m_Large),
                           QFontMetrics(MakeFont(false)).horizontalAdvance(m_Small));
    return {Width + 2 * MARGIN + (m_Symbol.isNull() ? 0 : m_Letters + MARGIN) + 2, minimumHeight()};
}

QSize CHeadButton::minimumSizeHint() const {
    return sizePolicy().horizontalPolicy() == QSizePolicy::Ignored ? QSize(0, minimumHeight()) : sizeHint();
}

void CHeadButton::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter Painter(this);
    if (isDown() || underMouse()) {
        QStyleOptionButton Option;
        Option.initFrom(this);
        Option.state |= isDown() ? QStyle::State_Sunken : QStyle::State_Raised;
        style()->drawControl(QStyle::CE_PushButtonBevel, &Option, &Painter, this);
    }
    QRect Room = rect().adjusted(MARGIN, 2, -MARGIN, -2);
    if (!m_Symbol.isNull()) {
        const QRect Place(Room.left(), Room.center().y() - m_Letters / 2, m_Letters, m_Letters);
        m_Symbol.paint(&Painter, Place);
        Room.setLeft(Place.right() + MARGIN);
    }
    Painter.setPen(palette().color(QPalette::WindowText));
    const QFont Large = MakeFont(true);
    if (m_Small.isEmpty()) {
        // One text: in two lines, of which the second one ends in "…" if it has to.
        const QFontMetrics Metrics(Large);
        Painter.setFont(Large);
        const bool bLong = Metrics.boundingRect(Room, Qt::TextWordWrap, m_Large).height() > Room.height();
        const QString Shown =
            bLong ? Metrics.elidedText(m_Large, Qt::ElideRight, 2 * Room.width() - 3 * m_Letters) : m_Large;
        Painter.drawText(Room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, Shown);
        return;
    }
    const int Middle = Room.top() + Room.height() * 9 / 20;
    const QFont Small = MakeFont(false);
    Painter.setFont(Small);
    Painter.drawText(QRect(Room.left(), Room.top(), Room.width(), Middle - Room.top()),
                     Qt::AlignLeft | Qt::AlignBottom,
                     QFontMetrics(Small).elidedText(m_Small, Qt::ElideRight, Room.width()));
    Painter.setFont(Large);
    Painter.drawText(QRect(Room.left(), Middle, Room.width(), Room.bottom() - Middle + 1),
                     Qt::AlignLeft | Qt::AlignTop,
                     QFontMetrics(Large).elidedText(m_Large, Qt::ElideRight, Room.width()));
}
