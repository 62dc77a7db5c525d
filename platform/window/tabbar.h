#pragma once
#include "platform/window/control.h"

class CTabCtrl;

/// The toolkit's row of tabs in a CTabCtrl, whose state it shows. A tab stop.
class CTabBar : public CControl {
public:
    explicit CTabBar(CTabCtrl& rOwner) : m_rOwner(rOwner) { ModifyStyle(0, WS_TABSTOP); }

    CTabCtrl& GetOwner() const { return m_rOwner; }
    /// The owner's tabs have changed.
    void Update() { NotifyPeer(); }

private:
    CTabCtrl& m_rOwner;
};
