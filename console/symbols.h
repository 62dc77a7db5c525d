#pragma once
#include <QIcon>
#include <QPalette>

/// A symbol of the panel by its file's name in console/symbols/, drawn in the palette's text colour, paler
/// when disabled. Ends the program if there is none of that name.
QIcon GetSymbol(const QString& rName, const QPalette& rPalette);
