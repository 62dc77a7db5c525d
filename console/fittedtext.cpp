#include "console/fittedtext.h"

#include <QFontMetrics>
#include <QRect>

bool FitsPlace(const QString& rText, QSize Place, const QFont& rFont) {
    const QRect Needed =
        QFontMetrics(rFont).boundingRect(QRect(QPoint(), Place), Qt::TextWordWrap | Qt::AlignLeft, rText);
    return rText.isEmpty() || (Needed.width() <= Place.width() && Needed.height() <= Place.height());
}

QFont FitFont(const QString& rText, QSize Place, const QFont& rFont, int Min, int Max) {
    QFont Font(rFont);
    int Good = Min;
    for (int Bad = std::max(Max, Min) + 1; Bad - Good > 1;) {
        const int Middle = (Good + Bad) / 2;
        Font.setPixelSize(Middle);
        (FitsPlace(rText, Place, Font) ? Good : Bad) = Middle;
    }
    Font.setPixelSize(Good);
    return Font;
}
