#pragma once
// What CWnd keeps beside its windows; for its own files only.
#include <atomic>
#include <map>
#include <memory>
#include <vector>

#include "platform/system/eventloop.h"
#include "platform/window/wnd.h"

/// What queued messages and running timers hold in the window's place. Every life of a window, from its
/// creation to its destruction, has a number of its own; work that was queued in an earlier life is dropped.
struct CWnd::Anchor {
    static constexpr std::uint64_t NOT_ALIVE = 0;

    struct CTimer {
        IFEventLoop* m_pLoop = nullptr;
        std::uint32_t m_LoopId = 0;
    };

    void Kill(const CTimer& rTimer) const {
        // A loop that is gone took its timers along.
        if (IFEventLoop::HasCurrent() && &IFEventLoop::Current() == rTimer.m_pLoop) {
            rTimer.m_pLoop->KillTimer(rTimer.m_LoopId);
        }
    }

    CWnd* m_pWnd = nullptr;
    std::atomic<std::uint64_t> m_Life{NOT_ALIVE};
    std::map<UINT, CTimer> m_Timers;
};

/// What windows know of each other across trees.
struct CWnd::CRegistry {
    std::uint64_t m_LastLife = Anchor::NOT_ALIVE;
    std::vector<CWnd*> m_TopLevel;  ///< in order of creation
    CWnd* m_pForeground = nullptr;
    CWnd* m_pCapture = nullptr;
    CWnd* m_pFocus = nullptr;
    /// The window that was told last that it has the focus, until it was told that it hasn't. Differs from
    /// the above only while a move of the focus is being told.
    CWnd* m_pTold = nullptr;
    CWnd* m_pLost = nullptr;  ///< who was told last that it has lost the focus
};
