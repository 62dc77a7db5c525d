#include "rvdlm/m_rtr/rtr_trim/screwtabledlg.h"

#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "rvdlm/m_rtr/rtr_trim/prebalconfigtabs.h"

using RtrTrim::g_pLog;

CScrewTableDlg::CScrewTableDlg(CPreBalConfigTabs& rTabs) : m_rTabs(rTabs) {}

void CScrewTableDlg::SetScrewTables(const Base::CStringArray& rNames, bool bKeep) {
    m_ScrewTableNames = rNames;
    if (m_ScrewTableNames.IsEmpty()) {
        RV_ASSERT_FAIL(g_pLog, "impossible");
        return;
    }
    if (!bKeep) {
        m_Name = m_ScrewTableNames[0];
        m_rTabs.PostMessage(WM_RV_UPDATESCREWTABLE);
    }
}

void CScrewTableDlg::Clear() {
    m_ScrewTableNames.RemoveAll();
    m_Name.clear();
    m_Screws.RemoveAll();
}
