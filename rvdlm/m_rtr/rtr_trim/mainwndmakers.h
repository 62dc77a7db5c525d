#pragma once
#include <functional>
#include <memory>
#include <string>

#include "platform/window/displayrate.h"
#include "rvdlm/m_rtr/rtr_trim/communication/mapperchoice.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/procedurechoice.h"

/// What the main window makes its two collaborators with, and its clock.
struct CMainWndMakers {
    std::function<std::unique_ptr<IFToCommunication>(IFFromCommunication&, std::uint32_t, const CInitFlags&)>
        m_MakeMapper = ::MakeMapper;
    std::function<std::unique_ptr<CPreBalancing>(PreBalDB::CPreBalDatabase::BalancingMode,
                                                 CPreBalMainWndInterface*, PreBalDB::CPreBalBaseTableEntry&,
                                                 const std::string&)>
        m_MakeProcedure = ::MakeProcedure;
    /// The clock of those who look at the page.
    CDisplayRate::Now m_Now = CDisplayRate::CClock::now;
};
