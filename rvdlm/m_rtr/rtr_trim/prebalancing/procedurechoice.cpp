#include "rvdlm/m_rtr/rtr_trim/prebalancing/procedurechoice.h"

#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancing.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanebalancing.h"

using PreBalDB::CPreBalDatabase;
using RtrTrim::g_pLog;

std::unique_ptr<CPreBalancing> MakeProcedure(CPreBalDatabase::BalancingMode Mode,
                                             CPreBalMainWndInterface* pMainWnd,
                                             PreBalDB::CPreBalBaseTableEntry& rEntry,
                                             const std::string& rSetName) {
    switch (Mode) {
        case CPreBalDatabase::eModePlane1:
            return std::make_unique<CSinglePlaneBalancing>(pMainWnd, 0, rEntry, rSetName);
        case CPreBalDatabase::eModePlane2:
            return std::make_unique<CSinglePlaneBalancing>(pMainWnd, 1, rEntry, rSetName);
        case CPreBalDatabase::eModeTwoPlane:
            return std::make_unique<CTwoPlaneBalancing>(pMainWnd, rEntry, rSetName);
    }
    RV_WARNING(g_pLog, "no valid pointer, creating default: CSinglePlaneBalancing(...)!");
    return std::make_unique<CSinglePlaneBalancing>(pMainWnd, 0, rEntry, rSetName);
}
