#pragma once
#include <memory>
#include <string>

#include "platform/rvmdb/prebaldatabase.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"

/// The procedure for a balancing mode. pMainWnd and rEntry outlive it; rSetName may be empty. An unknown mode
/// counts as plane 1, after a warning. Null, after an error in the log, for screws out of a table that is
/// empty or holds a weight that is none; a message box tells the operator.
std::unique_ptr<CPreBalancing> MakeProcedure(PreBalDB::CPreBalDatabase::BalancingMode Mode,
                                             CPreBalMainWndInterface* pMainWnd,
                                             PreBalDB::CPreBalBaseTableEntry& rEntry,
                                             const std::string& rSetName);
