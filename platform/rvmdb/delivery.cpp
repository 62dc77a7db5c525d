#include "platform/rvmdb/delivery.h"

#include "platform/rvmdb/log.h"
#include "platform/rvmdb/offline.h"

namespace PreBalDB {

namespace {

void TellConflicts(const CDelivery& rDelivery, const CConfigurationWritten& rWritten) {
    if (rWritten.m_Conflicts.empty() && !rWritten.m_bCalibrationLost) {
        return;
    }
    for (const std::string& rConflict : rWritten.m_Conflicts) {
        RV_WARNING(g_pLog,
                   "configuration \"%s\" of \"%s\": %s was changed here while the server was away, and by "
                   "another console; the stored value stays",
                   rDelivery.m_Write.m_Name.c_str(), rDelivery.m_Machine.c_str(), rConflict.c_str());
    }
    Offline::AddEvent({Offline::CEvent::Kind::eConflict, "", rDelivery.m_Write.m_Name, rWritten.m_Conflicts,
                       rWritten.m_bCalibrationLost});
}

}  // namespace

std::optional<CConfigurationWritten> DeliverAll(const CDeliveryMeans& rMeans, std::int64_t Number) {
    while (const std::optional<CDelivery> Next = rMeans.m_GetNext()) {
        std::optional<CConfigurationWritten> Written;
        try {
            Written = rMeans.m_Deliver(*Next);
        } catch (const CSqlError& rError) {
            if (Next->m_Number == Number || !IsRefusal(rError.GetCause())) {
                throw;
            }
            // It would never be taken, and all others wait behind it.
            RV_ERROR(g_pLog, "configuration \"%s\" of \"%s\" not delivered: %s", Next->m_Write.m_Name.c_str(),
                     Next->m_Machine.c_str(), rError.what());
            Offline::AddEvent(
                {Offline::CEvent::Kind::eRefused, rError.what(), Next->m_Write.m_Name, {}, false});
        }
        rMeans.m_Remove(Next->m_Number);
        if (Next->m_Number == Number) {
            return Written;
        }
        if (Written) {
            TellConflicts(*Next, *Written);
        }
    }
    return std::nullopt;
}

}  // namespace PreBalDB
