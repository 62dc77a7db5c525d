#pragma once
#include <qtestsupport_widgets.h>
#include <QApplication>

#include "platform/qt/windowview.h"

/// A view with the focus and the caret of one that is on the screen; who has no screen sees nothing of it.
class CActiveView : public CWindowView {
public:
    explicit CActiveView(CWnd& rWnd) : CWindowView(rWnd) {
        QApplication::setCursorFlashTime(0);  // a caret that stays
        show();
        activateWindow();
        static_cast<void>(QTest::qWaitForWindowActive(this));
    }
};
