#pragma once
#include "platform/window/wnd.h"

/// Somebody who looks at a window tree, or doesn't; nothing is on a screen.
class CLookingPeer : public IFWindowPeer {
public:
    /// rTop is a top-level window, created or not, which outlives this.
    explicit CLookingPeer(CWnd& rTop) : m_rTop(rTop) { m_rTop.SetPeer(this); }
    ~CLookingPeer() override { m_rTop.SetPeer(nullptr); }
    CLookingPeer(const CLookingPeer&) = delete;
    CLookingPeer& operator=(const CLookingPeer&) = delete;

    bool IsLookedAt() const override { return m_bLooking; }
    void OnWindowChanged(CWnd&) override { ++m_nChanges; }

    bool m_bLooking = true;
    int m_nChanges = 0;

private:
    CWnd& m_rTop;
};
