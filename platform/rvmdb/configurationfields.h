#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/rvmdb/directsql.h"

namespace PreBalDB {

class CPreBalBaseTableEntry;

/// The values of a configuration as the store holds them, by name: "configuration.target_unbalance",
/// "screw_compensation.plane1.radius". A record that the configuration doesn't have has no values. So a
/// configuration can be compared, merged and handed to another thread as plain data.
using CFieldValues = std::map<std::string, CDirectSQL::CValue>;

/// A table of the store that holds records of configurations. The compensation tables have a row for each
/// part of a configuration that they belong to.
struct CRecordLayout {
    std::string m_Table;
    std::string m_KeyColumn;  ///< holds the configuration's name
    std::string m_Part;       ///< empty in a table without parts
    std::vector<std::string> m_Columns;

    std::string GetFieldName(const std::string& rColumn) const;
};

/// What is known of every field: its place in the store, its limits, and whose business it is when two
/// consoles have changed a configuration. A row a field, in configurationfields.cpp.
namespace ConfigurationFields {

enum class Role : std::uint8_t {
    eSetting,
    eBasis,       ///< a calibration holds only for the value that it was made with
    eCalibration  ///< goes with all the others of this role, or not at all
};

const std::vector<CRecordLayout>& GetLayouts();
/// eSetting for what isn't known.
Role GetRole(const std::string& rField);
/// Why the value can't be one of this field: "nan in inv_a". Empty if it can.
std::string Check(const std::string& rField, const CDirectSQL::CValue& rValue);

/// Of all fields, with the values of a new entry.
const CFieldValues& GetDefaults();
CFieldValues Read(const CPreBalBaseTableEntry& rEntry);
/// Brings the records into being that have values, and enters these. A value that can't be is left out, and
/// the entry then counts as not calibrated; the result says what was wrong with each.
std::vector<std::string> Write(const CFieldValues& rValues, CPreBalBaseTableEntry& rEntry);

}  // namespace ConfigurationFields
}  // namespace PreBalDB
