#pragma once
#include <functional>
#include <optional>

#include "platform/rvmdb/localstore.h"

namespace PreBalDB {

/// Brings what waits in a queue to the server, one write after the other.
struct CDeliveryMeans {
    std::function<std::optional<CDelivery>()> m_GetNext;
    /// CStore::Deliver on the server.
    std::function<std::optional<CConfigurationWritten>(const CDelivery&)> m_Deliver;
    std::function<void(std::int64_t)> m_Remove;
};

/// Until nothing waits. What became of the write of that number: what was thrown, or what was written;
/// nothing if it wasn't there, or had been delivered before. Of the others it is told as an event (Offline).
/// Throws CSqlError, and all that isn't delivered waits on.
std::optional<CConfigurationWritten> DeliverAll(const CDeliveryMeans& rMeans, std::int64_t Number = 0);

}  // namespace PreBalDB
