#include "platform/qt/windowview.h"

#include <QApplication>
#include <QFocusEvent>
#include <QMouseEvent>
#include <utility>

#include "platform/qt/bitmapimpl.h"
#include "platform/qt/controlwidgets.h"
#include "platform/qt/stylepart.h"
#include "platform/window/control.h"
#include "platform/window/input.h"

CWindowView::CWindowView(CWnd& rWnd, QWidget* pParent) : CPaintedWidget(rWnd, pParent) {
    setFocusPolicy(Qt::TabFocus);
    setPalette(GetSystemPalette());
    if (rWnd.IsWindow()) {
        const CSize Size = rWnd.GetRect().Size();
        resize(Size.cx, Size.cy);
        setWindowTitle(QString::fromStdString(rWnd.GetWindowText()));
    }
    rWnd.SetPeer(this);
    FollowTree(rWnd);
    qApp->installEventFilter(this);
    m_FocusConnection = connect(qApp, &QApplication::focusChanged, this,
                                [this](QWidget* pFormer) { OnApplicationFocus(pFormer); });
}

CWindowView::~CWindowView() {
    // The end of the widgets isn't a doing of the operator's.
    disconnect(m_FocusConnection);
    for (const auto& [pWnd, pMirror] : m_Mirrors) {
        pMirror->Detach();
    }
    if (GetWnd() != nullptr) {
        GetWnd()->SetPeer(nullptr);
    }
}

QWidget* CWindowView::FindWidget(const CWnd& rWnd) const {
    const auto Found = m_Mirrors.find(&rWnd);
    return Found == m_Mirrors.end() ? nullptr : &Found->second->GetWidget();
}

CMirror& CWindowView::Provide(CWnd& rWnd) {
    if (&rWnd == GetWnd()) {
        return *this;
    }
    if (const auto Found = m_Mirrors.find(&rWnd); Found != m_Mirrors.end()) {
        return *Found->second;
    }
    QWidget& rParent = Provide(*rWnd.GetParent()).GetWidget();
    CMirror* pMirror = nullptr;
    if (auto* const pControl = dynamic_cast<CControl*>(&rWnd)) {
        pMirror = MakeControlWidget(*pControl, &rParent);
    }
    if (pMirror == nullptr) {
        pMirror = new CPaintedWidget(rWnd, &rParent);
    }
    m_Mirrors.emplace(&rWnd, pMirror);
    pMirror->Follow();
    FollowVisibility(rWnd);
    return *pMirror;
}

void CWindowView::FollowTree(CWnd& rWnd) {
    CWindowView::OnWindowChanged(rWnd);  // by name: the constructor comes here, too
    for (CWnd* pChild : rWnd.GetChildren()) {
        FollowTree(*pChild);
    }
}

void CWindowView::FollowVisibility(CWnd& rWnd) {
    // The view itself is shown by whoever placed it; when its window is hidden, the children go instead.
    const bool bHiddenTop = rWnd.GetParent() == GetWnd() && !GetWnd()->IsWindowVisible();
    QWidget& rWidget = *FindWidget(rWnd);
    if (const bool bShow = rWnd.IsWindowVisible() && !bHiddenTop; rWidget.isHidden() == bShow) {
        rWidget.setVisible(bShow);
    }
}

bool CWindowView::IsLookedAt() const {
    return isVisible() && updatesEnabled() && !window()->isMinimized();
}

void CWindowView::OnWindowChanged(CWnd& rWnd) {
    if (&rWnd != GetWnd()) {
        Provide(rWnd).Follow();
        if (FindWidget(rWnd) != nullptr) {
            FollowVisibility(rWnd);
        }
        return;
    }
    if (isWindow()) {
        setWindowTitle(QString::fromStdString(rWnd.GetWindowText()));
    }
    setEnabled(rWnd.IsWindowEnabled());
    for (CWnd* pChild : rWnd.GetChildren()) {
        if (FindWidget(*pChild) != nullptr) {
            FollowVisibility(*pChild);
        }
    }
    FollowLooks();
}

void CWindowView::OnWindowDestroyed(CWnd& rWnd) {
    if (&rWnd == GetWnd()) {
        // The object may be about to go: never look at it again.
        rWnd.SetPeer(nullptr);
        Detach();
        update();
    }
}

void CWindowView::OnChildDestroyed(CWnd& rWnd) {
    const auto Found = m_Mirrors.find(&rWnd);
    if (Found == m_Mirrors.end()) {
        return;
    }
    CMirror* const pMirror = Found->second;
    m_Mirrors.erase(Found);
    pMirror->Detach();
    // Its end may have come in an event of its own. Without the focus, which would else pass to a neighbour.
    QWidget& rWidget = pMirror->GetWidget();
    rWidget.clearFocus();
    rWidget.hide();
    rWidget.deleteLater();
}

void CWindowView::OnFocusMoved(CWnd* pFocus) {
    if (pFocus != nullptr) {
        Provide(*pFocus).GetWidget().setFocus(Qt::OtherFocusReason);
    } else if (QWidget* const pFormer = window()->focusWidget(); FindWnd(pFormer) != nullptr) {
        pFormer->clearFocus();
    }
}

bool CWindowView::DrawControl(const CWnd& rControl, CBitmap& rPicture) {
    QWidget* const pWidget = FindWidget(rControl);
    if (pWidget == nullptr || rPicture.GetImpl().IsEmpty()) {
        return false;
    }
    pWidget->render(&rPicture.GetImpl().GetImage());
    return true;
}

CWnd* CWindowView::FindWnd(const QWidget* pWidget) const {
    // A popup belongs to a widget of the tree, but isn't part of it.
    if (pWidget == nullptr || pWidget->window() != window()) {
        return nullptr;
    }
    CWnd* pFound = nullptr;
    while (pWidget != nullptr && pWidget != this) {
        if (const auto* const pMirror = dynamic_cast<const CMirror*>(pWidget);
            pMirror != nullptr && pFound == nullptr) {
            pFound = pMirror->GetWnd();
        }
        pWidget = pWidget->parentWidget();
    }
    return pWidget == nullptr ? nullptr : pFound != nullptr ? pFound : GetWnd();
}

void CWindowView::OnApplicationFocus(const QWidget* pFormer) {
    // An open list or menu has the focus only for its own sake.
    if (m_bLeaving || QApplication::activePopupWidget() != nullptr) {
        return;
    }
    if (CWnd* const pFocus = FindWnd(QApplication::focusWidget())) {
        CWnd::OnToolkitFocus(pFocus);
    } else if (FindWnd(pFormer) != nullptr && CWnd::GetFocus() == FindWnd(pFormer)) {
        CWnd::OnToolkitFocus(nullptr);
    }
}

bool CWindowView::focusNextPrevChild(bool bNext) {
    if (GetWnd() == nullptr) {
        return QWidget::focusNextPrevChild(bNext);
    }
    const CWnd* const pFrom = FindWnd(QApplication::focusWidget());
    if (CWnd* const pStop = GetWnd()->GetNextTabStop(pFrom, !bNext)) {
        return pStop->SetFocus();
    }
    // From here the toolkit knows the way out; it never enters the tree, whose widgets take no focus by Tab.
    m_bLeaving = true;
    setFocus(Qt::OtherFocusReason);
    const bool bLeft = QWidget::focusNextPrevChild(bNext) && QApplication::focusWidget() != this;
    m_bLeaving = false;
    if (bLeft) {
        CWnd::OnToolkitFocus(FindWnd(QApplication::focusWidget()));
        return true;
    }
    CWnd* const pFirst = GetWnd()->GetNextTabStop(nullptr, !bNext);
    return pFirst != nullptr && pFirst->SetFocus();
}

void CWindowView::focusInEvent(QFocusEvent* pEvent) {
    CPaintedWidget::focusInEvent(pEvent);
    const bool bNext = pEvent->reason() == Qt::TabFocusReason;
    if (!m_bLeaving && GetWnd() != nullptr && (bNext || pEvent->reason() == Qt::BacktabFocusReason)) {
        if (CWnd* const pStop = GetWnd()->GetNextTabStop(nullptr, !bNext)) {
            pStop->SetFocus();
        } else {
            m_bLeaving = true;
            QWidget::focusNextPrevChild(bNext);
            m_bLeaving = false;
        }
    }
}

bool CWindowView::event(QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::ScreenChangeInternal:
            FollowScale();
            break;
        // These two reach a view within a window, too.
        case QEvent::WindowActivate:
            if (GetWnd() != nullptr) {
                CWnd::SetForegroundWindow(GetWnd());
            }
            break;
        case QEvent::WindowDeactivate:
            if (GetWnd() != nullptr && CWnd::GetForegroundWindow() == GetWnd()) {
                CWnd::SetForegroundWindow(nullptr);
                CWnd::ReleaseCapture();
            }
            break;
        default:
            break;
    }
    return CPaintedWidget::event(pEvent);
}

void CWindowView::showEvent(QShowEvent* pEvent) {
    FollowScale();
    CPaintedWidget::showEvent(pEvent);
}

void CWindowView::FollowScale() {
    if (GetWnd() != nullptr) {
        GetWnd()->SetScale(devicePixelRatioF());
    }
}

void CWindowView::resizeEvent(QResizeEvent* /*pEvent*/) {
    FitWindow();
}

void CWindowView::FitWindow() {
    if (GetWnd() != nullptr && GetWnd()->IsWindow()) {
        GetWnd()->MoveWindow(CRect(GetWnd()->GetRect().TopLeft(), CSize(width(), height())));
    }
}

bool CWindowView::eventFilter(QObject* pWatched, QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseButtonRelease: {
            const Qt::MouseButtons Buttons = static_cast<QMouseEvent*>(pEvent)->buttons();
            SetMouseButtons(Buttons.testFlag(Qt::LeftButton), Buttons.testFlag(Qt::RightButton));
            [[fallthrough]];
        }
        case QEvent::KeyPress:
        case QEvent::KeyRelease: {
            const Qt::KeyboardModifiers Modifiers = static_cast<QInputEvent*>(pEvent)->modifiers();
            SetModifierKeys(Modifiers.testFlag(Qt::ShiftModifier), Modifiers.testFlag(Qt::ControlModifier));
            break;
        }
        default:
            break;
    }
    return CPaintedWidget::eventFilter(pWatched, pEvent);
}
