#pragma once
#include <functional>

class CWnd;

/// From now on and for good, Listener is told of each window that goes, behind its last message. For what
/// keeps windows; it must not make or end any. Window thread only.
void AddWindowEndListener(std::function<void(const CWnd& rWnd)> Listener);
/// By CWnd alone.
void TellWindowEnd(const CWnd& rWnd);
