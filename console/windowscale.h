#pragma once
#include <QApplication>
#include <QFontInfo>
#include <QWidget>
#include <algorithm>

/// How much larger than usual the parts of the window are: they grow with it, so that a large screen is read
/// from further away.
inline double GetWindowScale(const QWidget& rWidget) {
    constexpr double USUAL_WIDTH = 1000;
    constexpr double USUAL_HEIGHT = 640;
    constexpr double LARGEST = 3.0;
    const QWidget& rWindow = *rWidget.window();
    return std::clamp(std::min(rWindow.width() / USUAL_WIDTH, rWindow.height() / USUAL_HEIGHT), 1.0, LARGEST);
}

/// A length in pixels of the usual window, in the present one.
inline int ScaleLength(const QWidget& rWidget, int Pixels) {
    return qRound(Pixels * GetWindowScale(rWidget));
}

/// The letters of a widget and all within it grow with the window: they are its parent's, scaled.
inline void ScaleFont(QWidget& rWidget) {
    QFont Font = rWidget.isWindow() ? QApplication::font() : rWidget.parentWidget()->font();
    Font.setPixelSize(ScaleLength(rWidget, QFontInfo(Font).pixelSize()));
    if (rWidget.font() != Font) {
        rWidget.setFont(Font);
    }
}
