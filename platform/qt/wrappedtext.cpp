#include "platform/qt/wrappedtext.h"

QStringList WrapText(const QString& rText, const QFontMetrics& rMetrics, int nWidth) {
    QStringList Lines;
    for (const QString& rParagraph : rText.split(u'\n')) {
        QString Line;
        bool bEmpty = true;
        for (const QString& rWord : rParagraph.split(u' ')) {
            const QString Longer = bEmpty ? rWord : Line + u' ' + rWord;
            if (bEmpty || rMetrics.horizontalAdvance(Longer) <= nWidth) {
                Line = Longer;
                bEmpty = false;
            } else {
                Lines << Line;
                Line = rWord;
            }
        }
        Lines << Line;
    }
    return Lines;
}
