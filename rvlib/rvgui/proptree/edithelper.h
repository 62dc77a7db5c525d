#pragma once
#include "platform/window/edit.h"

namespace PropTree {

/// What a CEditHelper tells its owner. The owner may destroy the box meanwhile.
class CEditHelperEvents {
public:
    virtual ~CEditHelperEvents() = default;
    /// The box has lost the focus.
    virtual void OnEditKillFocus() = 0;
    /// The operator has changed the text. True refuses: the former text comes back. An owner that writes
    /// another text answers false, and that one stands.
    virtual bool OnEditChange() = 0;
    /// A key went down. True: it was used, the box doesn't get it.
    virtual bool OnEditKeyDown(UINT Key) = 0;
    /// A key was let go. True: it was used.
    virtual bool OnEditKeyUp(UINT Key) = 0;
};

/// An edit box that reports to its owner instead of its parent.
class CEditHelper : public CEdit {
public:
    explicit CEditHelper(CEditHelperEvents& rOwner) : m_rOwner(rOwner) {}

    /// The parent hands back the notifications that it gets of this box; the result is its answer to them.
    LRESULT OnParentNotified(const CWndNotification& rNotification);

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    CEditHelperEvents& m_rOwner;
};

}  // namespace PropTree
