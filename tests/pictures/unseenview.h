#pragma once
#include <QApplication>
#include <QTest>

#include "platform/qt/windowview.h"

/// A view that nobody sees, but that has the focus of one that is on the screen.
class CUnseenView : public CWindowView {
public:
    explicit CUnseenView(CWnd& rWnd) : CWindowView(rWnd) {
        QApplication::setCursorFlashTime(0);  // a caret that stays
        setAttribute(Qt::WA_DontShowOnScreen);
        show();
        activateWindow();
        static_cast<void>(QTest::qWaitForWindowActive(this));
    }
};
