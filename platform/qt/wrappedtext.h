#pragma once
#include <QFontMetrics>
#include <QStringList>

/// The lines of a text that is broken between words so that each fits nWidth; a word that is wider stands
/// alone.
QStringList WrapText(const QString& rText, const QFontMetrics& rMetrics, int nWidth);
