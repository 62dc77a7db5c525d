#pragma once
#include <map>
#include <string>
#include <vector>

#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/property.h"

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
    std::vector<const CProperty*> m_Properties{};
    std::vector<std::string> m_Columns{};  ///< of those that are stored

    /// Of a column, or of a property that has none.
    std::string GetFieldName(const std::string& rColumn) const;
};

/// All that a configuration can hold, field by field: a property in its place. What is known of a property
/// stands in its row (property.h).
namespace ConfigurationFields {

/// The name that all fields of a calibration go by together.
constexpr const char* CALIBRATION = "calibration";

/// In the order of the store.
const std::vector<CRecordLayout>& GetLayouts();
/// Null if there is no such field.
const CProperty* FindProperty(const std::string& rField);
/// CProperty::Role::eSetting for what isn't known.
CProperty::Role GetRole(const std::string& rField);
/// What people call the field, in the language in use: "Direction of the scale Plane 2". The name itself if
/// it has no text.
std::string GetLabel(const std::string& rField);
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
