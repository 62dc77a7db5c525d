#pragma once
#include <string>
#include <vector>

#include "platform/rvmdb/configurationfields.h"

namespace PreBalDB {

/// The two sides of a configuration that was changed in two places: what was there when it was read, and what
/// is there now. In the store and in memory these beginnings differ where a stored value can't be, and memory
/// has the default instead.
struct CChange {
    CFieldValues m_Before;
    CFieldValues m_Now;
};

struct CMerged {
    CFieldValues m_Values;
    /// Fields that both sides have changed, each in its own way; the stored values stay. All fields of a
    /// calibration are one here, ConfigurationFields::CALIBRATION.
    std::vector<std::string> m_Conflicts;
    /// The calibration in memory is new, and isn't in m_Values as one.
    bool m_bCalibrationLost = false;
};

/// Field by field: what one side has changed is kept. A calibration goes as a whole, and one that meets
/// another basis than it was made with, since that is the other side's, doesn't count as one any more.
CMerged MergeConfigurations(const CChange& rStored, const CChange& rMemory);

}  // namespace PreBalDB
