#pragma once
#include <chrono>
#include <concepts>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/rvmdb/configurationfields.h"
#include "platform/rvmdb/matrixtext.h"
#include "platform/rvmdb/prebalbasetableentry.h"
#include "platform/rvmdb/property.h"

namespace PreBalDB {

/// A property of a record, with the way to it. One that isn't stored has none: the record tells it by being
/// there.
template <typename Record>
struct CRecordField {
    CProperty m_Property;
    std::function<CDirectSQL::CValue(const Record&)> m_Get;
    std::function<void(Record&, const CDirectSQL::CValue&)> m_Set;
};

template <typename Record>
using CRecordFields = std::vector<CRecordField<Record>>;

/// The properties of each kind of record, a row each; a class, since some have no accessors for others. A new
/// property is a row in recordfields.cpp, its accessors in the record, and a step in schema.cpp for the
/// stores that are there already.
class CConfigurationFields {
public:
    static const CRecordFields<CPreBalBaseTableEntry>& Get(const CPreBalBaseTableEntry*);
    static const CRecordFields<CSinglePlaneBalancingTableEntry>& Get(const CSinglePlaneBalancingTableEntry*);
    static const CRecordFields<CTwoPlaneBalancingTableEntry>& Get(const CTwoPlaneBalancingTableEntry*);
    static const CRecordFields<CWeightCompensationTableEntry>& Get(const CWeightCompensationTableEntry*);
    static const CRecordFields<CScrewCompensationTableEntry>& Get(const CScrewCompensationTableEntry*);

    /// Those of a kind of record.
    template <typename Record>
    static const CRecordFields<Record>& Of() {
        return Get(static_cast<const Record*>(nullptr));
    }

    /// For the constructors of the records.
    template <typename Record>
    static void SetDefaults(Record& rRecord) {
        for (const CRecordField<Record>& rField : Of<Record>()) {
            if (rField.m_Property.IsStored()) {
                rField.m_Set(rRecord, rField.m_Property.m_Default);
            }
        }
    }

    /// As ConfigurationFields has them.
    static CFieldValues Read(const CPreBalBaseTableEntry& rEntry);
    static std::vector<std::string> Write(const CFieldValues& rValues, CPreBalBaseTableEntry& rEntry);

private:
    template <typename Record>
    static CRecordField<Record> MakePlane();
    static CRecordField<CScrewCompensationTableEntry> MakeRadius();
};

}  // namespace PreBalDB
