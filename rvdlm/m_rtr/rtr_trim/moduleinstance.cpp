#include "rvdlm/m_rtr/rtr_trim/moduleinstance.h"

#include <algorithm>
#include <utility>

#include "platform/system/eventloop.h"
#include "platform/window/moduleframework.h"
#include "rvdlm/m_rtr/rtr_trim/guard.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"

using RtrTrim::g_pLog;

CModuleInstance::CModuleInstance(IFModuleFramework& rFramework)
    : m_rFramework(rFramework), m_bLoaded(Load()) {}

bool CModuleInstance::Load() {
    if (!m_rFramework.HasInstanceHandle()) {
        RV_WARNING(g_pLog, "01 - Invalid afxCurrentInstanceHandle! Setting instance handle explicitly...");
        m_rFramework.SetInstanceHandle();
    }
    if (!m_rFramework.InitExtensionModule()) {
        RV_ERROR(g_pLog, "00 - AfxInitExtensionModule failed...");
        return false;
    }
    if (!m_rFramework.HasInstanceHandle()) {
        RV_WARNING(g_pLog, "02 - Invalid afxCurrentInstanceHandle! Setting instance handle explicitly...");
        m_rFramework.SetInstanceHandle();
    }
    m_rFramework.EnableControlContainer();
    m_rFramework.InitializeComponents();
    return true;
}

CModuleInstance::~CModuleInstance() {
    Unload();
}

void CModuleInstance::Unload() {
    if (std::exchange(m_bUnloaded, true)) {
        return;
    }
    RV_INFORMATION(g_pLog, "rtr_Trim.DLL Terminating!");
    if (!IFEventLoop::HasCurrent()) {
        // The program ends, and the host's loop has gone before its windows: there is nothing left that they
        // could be taken off from.
        for (std::unique_ptr<CPreBalancingMainWnd>& rpWindow : m_Windows) {
            static_cast<void>(rpWindow.release());
        }
    }
    while (!m_Windows.empty()) {
        m_Windows.pop_front();
    }
    if (m_bLoaded) {
        m_rFramework.TermExtensionModule();
    }
}

CWnd* CModuleInstance::GetWindow() {
    if (!m_bLoaded || m_bUnloaded || !IFEventLoop::HasCurrent()) {
        return nullptr;
    }
    CWnd* pWindow = nullptr;
    RtrTrim::Guarded("GetWindow", [&] {
        m_Windows.push_back(std::make_unique<CPreBalancingMainWnd>());
        pWindow = m_Windows.back().get();
    });
    return pWindow;
}

void CModuleInstance::DeleteDllWindow(const CWnd* pWindow) {
    const auto Position = std::ranges::find_if(
        m_Windows, [pWindow](const auto& rpWindow) { return rpWindow.get() == pWindow; });
    if (Position != m_Windows.end()) {
        m_Windows.erase(Position);
    }
}
