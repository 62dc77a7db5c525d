#pragma once
#include <list>
#include <memory>

class CPreBalancingMainWnd;
class CWnd;
class IFModuleFramework;

/// The loaded library: registers with the window system when it is made, holds the windows handed out, and
/// deletes what is left of them when it goes. The host calls from its window thread; there is no lock.
class CModuleInstance {
public:
    /// Loads. rFramework must outlive this.
    explicit CModuleInstance(IFModuleFramework& rFramework);
    ~CModuleInstance();
    CModuleInstance(const CModuleInstance&) = delete;
    CModuleInstance& operator=(const CModuleInstance&) = delete;

    /// Deletes the windows that are left and takes its leave of the window system; only the first call does
    /// anything. There are no new windows then.
    void Unload();

    /// A new window, owned by this; null if the window system refused the module or there is no event loop.
    CWnd* GetWindow();
    /// Deletes a window of GetWindow; any other pointer is ignored.
    void DeleteDllWindow(const CWnd* pWindow);
    /// Windows handed out, in order of creation.
    std::size_t GetWindowCount() const { return m_Windows.size(); }

private:
    bool Load();

    IFModuleFramework& m_rFramework;
    bool m_bLoaded;
    bool m_bUnloaded = false;
    std::list<std::unique_ptr<CPreBalancingMainWnd>> m_Windows;
};
