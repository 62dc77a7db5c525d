#pragma once
#include <exception>

#include "platform/rvmdb/patience.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"

namespace RtrTrim {

/// Carries out what a host, timer or NC has called for, at the outermost place of the module: an exception
/// must not reach the host. It is logged as an error with the name of the operation. However often the
/// operation asks the store, it waits for it no longer than one CPatience. Whether all went well.
template <typename Operation>
bool Guarded(const char* pName, Operation&& rOperation) {
    const PreBalDB::CPatience Patience;
    try {
        rOperation();
        return true;
    } catch (const std::exception& rError) {
        RV_ERROR(g_pLog, "%s failed: %s", pName, rError.what());
    }
    return false;
}

}  // namespace RtrTrim
