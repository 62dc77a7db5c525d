#include "platform/rvmdb/compensationtableentry.h"

#include "platform/rvmdb/recordfields.h"

namespace PreBalDB {

CWeightCompensationTableEntry::CWeightCompensationTableEntry() {
    CConfigurationFields::SetDefaults(*this);
}

CScrewCompensationTableEntry::CScrewCompensationTableEntry() {
    CConfigurationFields::SetDefaults(*this);
}

}  // namespace PreBalDB
