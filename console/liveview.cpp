#include "console/liveview.h"

#include <QFontMetrics>
#include <QPaintEvent>
#include <QPainter>
#include <QStringList>
#include <algorithm>
#include <utility>

#include "console/fittedtext.h"
#include "platform/rvldb/gettext.h"

namespace {

constexpr int LINES_OF_BAR = 5;
constexpr int MIN_FONT = 9;  // pixels
constexpr int LINES = 30;    // of text that a plane is high, to choose the size of the text by

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

}  // namespace

CLiveView::CLiveView(QWidget* pParent) : QWidget(pParent) {
    setObjectName("LiveView");
    setAttribute(Qt::WA_OpaquePaintEvent);
    Describe();
}

QSize CLiveView::sizeHint() const {
    return {320, 420};
}

QSize CLiveView::minimumSizeHint() const {
    return {160, 160};
}

void CLiveView::Show(const std::vector<CLivePlane>& rPlanes) {
    if (rPlanes == m_Planes) {
        return;
    }
    m_Planes = rPlanes;
    m_bStale = true;
    if (!m_Pause.IsRunning()) {
        Draw();
    }
}

void CLiveView::Draw() {
    m_Pause.Stop();
    if (!std::exchange(m_bStale, false)) {
        return;
    }
    Describe();
    update();
    m_Pause.StartOnce(PICTURE_PERIOD, [this] { Draw(); });
}

void CLiveView::Describe() {
    setAccessibleName(Text("CONSOLE_LIVE_VIEW"));
    QStringList Parts;
    for (const CLivePlane& rPlane : m_Planes) {
        Parts << DescribePolarPlot(rPlane.m_Plot);
    }
    setAccessibleDescription(Parts.isEmpty() ? Text("CONSOLE_LIVE_EMPTY") : Parts.join(". "));
}

void CLiveView::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::LanguageChange) {
        Describe();
        update();
    }
    QWidget::changeEvent(pEvent);
}

QRect CLiveView::GetPlace(std::size_t Index) const {
    const auto nPlanes = static_cast<int>(m_Planes.size());
    const auto i = static_cast<int>(Index);
    // A plane is higher than wide, by its bar.
    if (nPlanes > 1 && width() > height()) {
        const int Width = width() / nPlanes;
        return {i * Width, 0, Width, height()};
    }
    const int Height = height() / nPlanes;
    return {0, i * Height, width(), Height};
}

void CLiveView::paintEvent(QPaintEvent* /*pEvent*/) {
    ++m_nPictures;
    QPainter Painter(this);
    Painter.fillRect(rect(), palette().color(QPalette::Base));
    if (m_Planes.empty()) {
        Painter.setPen(palette().color(QPalette::Text));
        const QRect Place = rect().adjusted(8, 8, -8, -8);
        Painter.setFont(FitFont(Text("CONSOLE_LIVE_EMPTY"), Place.size(), font(), MIN_FONT,
                                QFontMetrics(font()).height()));
        Painter.drawText(Place, Qt::TextWordWrap | Qt::AlignCenter, Text("CONSOLE_LIVE_EMPTY"));
        return;
    }
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        const QRect Place = GetPlace(i).adjusted(4, 4, -4, -4);
        QFont Font(font());
        Font.setPixelSize(std::max(MIN_FONT, std::min(Place.width(), Place.height()) * 4 / 3 / LINES));
        Painter.setFont(Font);
        const int Bar = QFontMetrics(Font).height() * LINES_OF_BAR;
        PaintPolarPlot(Painter, Place.adjusted(0, 0, 0, -Bar), m_Planes[i].m_Plot, palette());
        PaintTargetBar(Painter, QRect(Place.left(), Place.bottom() - Bar, Place.width(), Bar),
                       m_Planes[i].m_Bar, palette());
    }
}
