#pragma once
#include <memory>
#include <string>

#include "platform/rvmdb/prebaldatabase.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"

/// Whether a run in that mode can be worked with: not with screws out of a table that is empty or holds a
/// weight that is none, nor with fewer holes than screws. If not, the log and, by a message box, the operator
/// are told.
bool CanBalance(PreBalDB::CPreBalDatabase::BalancingMode Mode, const PreBalDB::CPreBalBaseTableEntry& rEntry);

/// The procedure for a balancing mode. pMainWnd and rEntry outlive it; rSetName may be empty. An unknown mode
/// counts as plane 1, after a warning. Also with means that can't be worked with: an abort is shown by a
/// procedure.
std::unique_ptr<CPreBalancing> MakeProcedure(PreBalDB::CPreBalDatabase::BalancingMode Mode,
                                             CPreBalMainWndInterface* pMainWnd,
                                             PreBalDB::CPreBalBaseTableEntry& rEntry,
                                             const std::string& rSetName);
