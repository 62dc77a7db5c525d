#include "platform/qt/controlwidgets.h"

#include <QApplication>
#include <QComboBox>
#include <QScrollBar>
#include <QTabBar>
#include <QWheelEvent>
#include <algorithm>
#include <memory>

#include "platform/qt/bitmapimpl.h"
#include "platform/qt/editwidget.h"
#include "platform/qt/helpwidget.h"
#include "platform/qt/inputevents.h"
#include "platform/window/combobox.h"
#include "platform/window/messageparams.h"
#include "platform/window/scrollbar.h"
#include "platform/window/syscolor.h"
#include "platform/window/tabbar.h"
#include "platform/window/tabctrl.h"

namespace {

/// The wheel scrolls what is beneath and never changes a value.
template <typename Base, typename Control>
class CNoWheelWidget : public CControlWidget<Base, Control> {
protected:
    using CControlWidget<Base, Control>::CControlWidget;
    void wheelEvent(QWheelEvent* pEvent) override {
        if (this->GetWnd() != nullptr) {
            SendWheel(*this->GetWnd(), *pEvent);
        }
    }
};

class CComboWidget : public CNoWheelWidget<QComboBox, CComboBox> {
public:
    CComboWidget(CComboBox& rCombo, QWidget* pParent) : CNoWheelWidget(rCombo, pParent) {
        setFocusPolicy(Qt::ClickFocus);
        connect(this, &QComboBox::activated, this, [this](int Index) {
            Tell([Index](CComboBox& rControl) { rControl.SelectByOperator(Index); });
        });
    }

    void showPopup() override {
        TellDropped(true);
        if (GetControl() != nullptr && GetControl()->GetDroppedState()) {
            QComboBox::showPopup();
        }
    }
    void hidePopup() override {
        QComboBox::hidePopup();
        if (GetControl() != nullptr && m_bOpen) {
            TellDropped(false);
        }
    }

protected:
    void FollowState(const CComboBox& rCombo) override {
        const int nCount = rCombo.GetCount();
        while (count() > nCount) {
            removeItem(count() - 1);
        }
        for (int i = 0; i < nCount; ++i) {
            const QString Text = QString::fromStdString(rCombo.GetLBText(i));
            if (i == count()) {
                addItem(Text);
            } else if (itemText(i) != Text) {
                setItemText(i, Text);
            }
        }
        setCurrentIndex(rCombo.GetCurSel());
        if (rCombo.GetDroppedState() != m_bOpen && isVisible()) {
            rCombo.GetDroppedState() ? showPopup() : hidePopup();
        }
    }

private:
    void TellDropped(bool bDropped) {
        m_bOpen = bDropped;
        if (CComboBox* const pCombo = GetControl()) {
            pCombo->DropByOperator(bDropped);
        }
    }

    bool m_bOpen = false;
};

class CScrollBarWidget : public CNoWheelWidget<QScrollBar, CScrollBar> {
public:
    CScrollBarWidget(CScrollBar& rBar, QWidget* pParent) : CNoWheelWidget(rBar, pParent) {
        setOrientation(rBar.GetDirection() == CScrollBar::eVertical ? Qt::Vertical : Qt::Horizontal);
        setFocusPolicy(Qt::NoFocus);
        setContextMenuPolicy(Qt::PreventContextMenu);
        connect(this, &QScrollBar::actionTriggered, this, [this](int Action) { OnAction(Action); });
        connect(this, &QScrollBar::sliderReleased, this, [this] { Scroll(SB_THUMBPOSITION); });
    }

protected:
    void FollowState(const CScrollBar& rBar) override {
        setRange(rBar.GetMin(), rBar.GetLimit());
        setPageStep(std::max(rBar.GetPage(), 1));
        setSliderPosition(rBar.GetScrollPos());
        setValue(rBar.GetScrollPos());
        setEnabled(rBar.IsWindowEnabled() && rBar.GetLimit() > rBar.GetMin());
    }

private:
    void OnAction(int Action) {
        switch (Action) {
            case SliderSingleStepAdd:
                return Scroll(SB_LINEDOWN);
            case SliderSingleStepSub:
                return Scroll(SB_LINEUP);
            case SliderPageStepAdd:
                return Scroll(SB_PAGEDOWN);
            case SliderPageStepSub:
                return Scroll(SB_PAGEUP);
            case SliderToMinimum:
                return Scroll(SB_TOP);
            case SliderToMaximum:
                return Scroll(SB_BOTTOM);
            default:
                return Scroll(SB_THUMBTRACK);
        }
    }
    void Scroll(int Code) {
        Tell([this, Code](CScrollBar& rBar) { rBar.ScrollByOperator(Code, sliderPosition()); });
    }
};

class CTabBarWidget : public CNoWheelWidget<QTabBar, CTabBar> {
public:
    CTabBarWidget(CTabBar& rBar, QWidget* pParent) : CNoWheelWidget(rBar, pParent) {
        setFocusPolicy(Qt::ClickFocus);
        setExpanding(false);
        connect(this, &QTabBar::currentChanged, this, [this](int Index) {
            Tell([Index](CTabBar& rControl) { rControl.GetOwner().SelectByOperator(Index); });
        });
    }

protected:
    void FollowState(const CTabBar& rBar) override {
        const CTabCtrl& rOwner = rBar.GetOwner();
        while (count() > rOwner.GetItemCount()) {
            removeTab(count() - 1);
        }
        for (int i = 0; i < rOwner.GetItemCount(); ++i) {
            // An ampersand would mark a key.
            const QString Text = QString::fromStdString(rOwner.GetItemText(i)).replace("&", "&&");
            if (i == count()) {
                addTab(Text);
            } else if (tabText(i) != Text) {
                setTabText(i, Text);
            }
            const CBitmap Image =
                rOwner.GetImageList().GetImage(rOwner.GetItemImage(i), GetSysColor(SysColor::eFace));
            setTabIcon(i, QIcon(QPixmap::fromImage(Image.GetImpl().GetImage())));
        }
        setCurrentIndex(rOwner.GetCurSel());
    }
};

}  // namespace

CMirror* MakeControlWidget(CControl& rControl, QWidget* pParent) {
    if (auto* const pEdit = dynamic_cast<CEdit*>(&rControl)) {
        return new CEditWidget(*pEdit, pParent);
    }
    if (auto* const pCombo = dynamic_cast<CComboBox*>(&rControl)) {
        return new CComboWidget(*pCombo, pParent);
    }
    if (auto* const pScrollBar = dynamic_cast<CScrollBar*>(&rControl)) {
        return new CScrollBarWidget(*pScrollBar, pParent);
    }
    if (auto* const pTabBar = dynamic_cast<CTabBar*>(&rControl)) {
        return new CTabBarWidget(*pTabBar, pParent);
    }
    if (auto* const pBrowser = dynamic_cast<CWebBrowser2*>(&rControl)) {
        return new CHelpWidget(*pBrowser, pParent);
    }
    return nullptr;
}

void DrawUnshownControl(const CControl& rControl, CBitmap& rPicture) {
    if (rPicture.GetImpl().IsEmpty() ||
        qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) {
        return;
    }
    // A widget for this picture only. It is shown to nobody, so it has nothing to report to the control.
    const std::unique_ptr<CMirror> pMirror(MakeControlWidget(const_cast<CControl&>(rControl), nullptr));
    if (pMirror == nullptr) {
        return;
    }
    pMirror->Follow();
    const CRect Client = rControl.GetClientRect();
    pMirror->GetWidget().setFixedSize(Client.right, Client.bottom);
    pMirror->GetWidget().render(&rPicture.GetImpl().GetImage());
}
