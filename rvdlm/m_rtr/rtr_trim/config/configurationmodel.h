#pragma once
#include <cstdint>

#include "platform/rvmdb/prebaldatabase.h"

/// What can be said of a configuration, and done to it, without a window that shows it.
namespace ConfigurationModel {

/// What the balancing module and its active set ask of a configuration.
struct CModuleSet {
    PreBalDB::CPreBalDatabase::BalancingMode m_BalancingMode;
    std::uint8_t m_SensorAdaption1;  ///< 255 if there is none
    std::uint8_t m_SensorAdaption2;  ///< counts in eModeTwoPlane only
    PreBalDB::CTypeBase::AffectedPlane m_ProximitySwitchInput;
};

/// Whether a re-balancing can start from it; null counts as not calibrated.
bool IsCalibrated(const PreBalDB::CPreBalBaseTableEntry* pEntry);

/// Brings the parts of the entry that the mode needs into being and enters sensors, input and planes. Whether
/// a plane is compensated with screws. A set that lacks something is asserted.
bool Prepare(PreBalDB::CPreBalBaseTableEntry& rEntry, const CModuleSet& rSet);

/// Gives a single-plane configuration the plane of the mode again, by which it is found: a page knows only
/// the plane that the module serves.
void SetPlane(PreBalDB::CPreBalBaseTableEntry& rEntry, PreBalDB::CPreBalDatabase::BalancingMode Mode);

}  // namespace ConfigurationModel
