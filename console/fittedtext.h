#pragma once
#include <QFont>
#include <QSize>
#include <QString>

/// The font in its largest size, in pixels from Min to Max, in which the text fits its place when it is
/// broken into lines at its blanks. Min if none does.
QFont FitFont(const QString& rText, QSize Place, const QFont& rFont, int Min, int Max);
/// Whether it fits in that font.
bool FitsPlace(const QString& rText, QSize Place, const QFont& rFont);
