#include "rvdlm/m_rtr/rtr_trim/prebalconfigdlg.h"

#include <algorithm>

#include "contract/hostmessages.h"
#include "contract/softkeymask.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "rvdlm/m_rtr/rtr_trim/prebalconfigtabs.h"

using RtrTrim::g_pLog;

CPreBalConfigDlg::CPreBalConfigDlg(CPreBalConfigTabs& rTabs) : m_rTabs(rTabs) {}

int CPreBalConfigDlg::GetSpinUpper() const {
    return std::max(static_cast<int>(m_Names.GetSize()) - 1, 0);
}

void CPreBalConfigDlg::SetBalancingConfigurations(const Base::CStringArray& rNames, bool bKeep) {
    m_Names = rNames;
    if (!bKeep) {
        if (m_Names.IsEmpty()) {
            m_Names.Add(ms_pDefaultName);
        }
        ShowName(0);
        return;
    }
    const auto Position = std::find(m_Names.begin(), m_Names.end(), m_Name);
    RV_ASSERT(g_pLog, Position != m_Names.end(), "impossible");
    if (Position != m_Names.end()) {
        m_SpinPos = static_cast<int>(Position - m_Names.begin());
    }
}

void CPreBalConfigDlg::OnDeltaposConfigSpin(int Delta) {
    const int Position = std::clamp(m_SpinPos + Delta, 0, GetSpinUpper());
    if (Position >= static_cast<int>(m_Names.GetSize())) {
        RV_ASSERT_FAIL(g_pLog, "impossible");
        return;
    }
    ShowName(Position);
}

void CPreBalConfigDlg::ShowName(int Position) {
    m_SpinPos = Position;
    m_Name = m_Names[static_cast<std::size_t>(Position)];
    m_rTabs.SendMessage(WM_RV_UPDATECONFIGURATION);
}

void CPreBalConfigDlg::SetConfiguration(PreBalDB::CPreBalBaseTableEntry& rEntry,
                                        PreBalDB::CPreBalDatabase::BalancingMode /*Mode*/,
                                        const Base::CStringArray& /*rScrewTableNames*/) {
    const bool bFirst = m_pEntry == nullptr;
    m_pEntry = &rEntry;
    if (bFirst && rEntry.GetProcessName() == ms_pDefaultName) {
        m_rTabs.PostMessage(WM_RV_SAVECONFIGURATION);
    }
    if (CWnd* const pHost = m_rTabs.GetHost()) {
        pHost->PostMessage(WM_RV_SOFTKEYENABLE, SoftkeyMask::eReBalancing,
                           IsCalibrated() ? SoftkeyMask::eReBalancing : 0);
    }
}

void CPreBalConfigDlg::Clear() {
    m_pEntry = nullptr;
    m_Names.RemoveAll();
    m_Name.clear();
    m_SpinPos = 0;
}

void CPreBalConfigDlg::SetConfigurationName(const std::string& rName) {
    m_Name = rName;
    m_rTabs.SendMessage(WM_RV_PROCESSNAMECHANGED);
}

void CPreBalConfigDlg::SetTitle(const std::string& rTitle) {
    m_Title = rTitle;
    Invalidate();
}
