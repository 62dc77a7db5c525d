#pragma once
#include "platform/qt/fontmetric.h"
#include "platform/qt/mirror.h"
#include "platform/qt/stylepart.h"
#include "platform/window/control.h"

/// One of the toolkit's controls that stands for a CControl, which holds its state. Two roads, which never
/// cross: Follow writes that state to the widget; what the widget signals meanwhile isn't the operator's, and
/// Tell leaves it out. All else that it signals Tell reports to the control.
template <typename Base, typename Control>
class CControlWidget : public CWindowWidget<Base> {
public:
    void Follow() final {
        Control* const pControl = GetControl();
        if (pControl == nullptr) {
            return;
        }
        const bool bFormer = std::exchange(m_bFollowing, true);
        CMirror::Follow();
        if (m_Font != pControl->GetFont()) {
            m_Font = pControl->GetFont();
            this->setFont(FindFont(*m_Font).m_Font);
        }
        FollowState(*pControl);
        m_bFollowing = bFormer;
    }

protected:
    explicit CControlWidget(Control& rControl, QWidget* pParent) : CWindowWidget<Base>(rControl, pParent) {
        this->setPalette(GetSystemPalette());
        // Its ground is its own: a repaint of the control repaints nothing beneath.
        this->setAutoFillBackground(true);
    }

    virtual void FollowState(const Control& rControl) = 0;

    /// Null once the window is destroyed.
    Control* GetControl() const { return static_cast<Control*>(this->GetWnd()); }

    template <typename Report>
    void Tell(Report&& rReport) {
        if (!m_bFollowing && GetControl() != nullptr) {
            rReport(*GetControl());
        }
    }
    /// Runs something of the toolkit's that isn't the operator's doing.
    template <typename Work>
    void Quietly(Work&& rWork) {
        const bool bFormer = std::exchange(m_bFollowing, true);
        rWork();
        m_bFollowing = bFormer;
    }

private:
    bool m_bFollowing = false;
    std::optional<CFont> m_Font;
};
