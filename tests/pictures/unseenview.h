#pragma once
#include <QApplication>

#include "platform/qt/windowview.h"

/// A view that nobody sees, but that has the focus of one that is on the screen.
class CUnseenView : public CWindowView {
public:
    explicit CUnseenView(CWnd& rWnd) : CWindowView(rWnd) {
        QApplication::setCursorFlashTime(0);
        setAttribute(Qt::WA_DontShowOnScreen);
        show();
        activateWindow();
        QApplication::processEvents();
    }
};
