#include "console/helpview.h"

#include <QKeyEvent>
#include <QToolButton>
#include <QVBoxLayout>

#include "platform/help/helpaddress.h"
#include "platform/qt/helppanel.h"
#include "platform/rvldb/gettext.h"
#include "rvlib/settings/installation.h"

CHelpView::CHelpView(QWidget& rPage) : CPageCover(rPage), m_pPanel(new CHelpPanel(this)) {
    GetColumn().addWidget(m_pPanel, 1);
    setFocusProxy(m_pPanel);
}

void CHelpView::ShowTopic(const std::string& rTopic) {
    SetTitle(QString::fromStdString(GetText("HELP_PAGE")));
    m_pPanel->ShowAddress(
        CHelpAddress::OfTopic(GetHelpDirectory().GetText(), GetText("ONLINE_HELP_PREFIX"), rTopic).MakeUrl());
    Open();
}

void CHelpView::ToggleTopic(const std::string& rTopic) {
    if (IsOpen()) {
        Close();
    } else {
        ShowTopic(rTopic);
    }
}

void CHelpView::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Help) {
        Close();
    } else {
        CPageCover::keyPressEvent(pEvent);
    }
}

bool CHelpView::focusNextPrevChild(bool /*bNext*/) {
    // Behind the panel comes the button, and then the panel again: what lies below has its turn when this is
    // closed.
    (GetCloseButton().hasFocus() ? static_cast<QWidget*>(m_pPanel) : &GetCloseButton())
        ->setFocus(Qt::TabFocusReason);
    return true;
}
