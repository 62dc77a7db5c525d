// Reading and writing of configurations.
#include "platform/rvmdb/configurationmerge.h"
#include "platform/rvmdb/names.h"
#include "platform/rvmdb/schema.h"
#include "platform/rvmdb/store.h"

namespace PreBalDB {

namespace {

std::string Join(const std::vector<std::string>& rTexts, const char* pBetween, const char* pBehind = "") {
    std::string Text;
    for (const std::string& rText : rTexts) {
        Text += (Text.empty() ? "" : pBetween) + rText + pBehind;
    }
    return Text;
}

/// The condition that MakeKey has the values of.
std::string MakeCondition(const CRecordLayout& rLayout) {
    return " WHERE machine = ? AND " + rLayout.m_KeyColumn + " = ?" +
           (rLayout.m_Part.empty() ? "" : " AND part = ?");
}

/// Whether the configuration has this record.
bool HasRecord(const CFieldValues& rValues, const CRecordLayout& rLayout) {
    return rValues.contains(rLayout.GetFieldName(rLayout.m_Columns.front()));
}

}  // namespace

CStore::CStore(std::string MachineName, const std::string& rConnection)
    : m_MachineName(std::move(MachineName)), m_Connection(rConnection) {}

void CStore::Prepare() {
    Schema::Prepare(m_Connection);
    try {
        m_Connection.UseWriteAheadLog();
        const CValues Key = {m_MachineName};
        if (m_Connection.Query("SELECT 1 FROM machine WHERE name = ?", Key).empty()) {
            m_Connection.Execute("INSERT INTO machine (name) VALUES (?) ON CONFLICT DO NOTHING", Key);
        }
        SetDefaults();
    } catch (const CSqlError& rError) {
        throw CDatabaseError(m_Connection.GetUnusableText(rError), rError.GetCause());
    }
}

CStore::CValues CStore::MakeKey(const CRecordLayout& rLayout, const std::string& rName) const {
    CValues Key = {m_MachineName, rName};
    if (!rLayout.m_Part.empty()) {
        Key.emplace_back(rLayout.m_Part);
    }
    return Key;
}

CFieldValues CStore::LoadValues(const std::string& rName) {
    CFieldValues Values;
    for (const CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
        const auto Rows = m_Connection.Query(
            "SELECT " + Join(rLayout.m_Columns, ", ") + " FROM " + rLayout.m_Table + MakeCondition(rLayout),
            MakeKey(rLayout, rName));
        if (Rows.empty()) {
            continue;
        }
        for (std::size_t i = 0; i < rLayout.m_Columns.size(); ++i) {
            Values[rLayout.GetFieldName(rLayout.m_Columns[i])] = Rows[0].GetValue(i);
        }
    }
    return Values;
}

std::optional<CStoredConfiguration> CStore::LoadConfiguration(const std::string& rName) {
    // One moment for all tables: another console may be writing.
    CTransaction Transaction(m_Connection, CTransaction::eReading);
    const auto Rows = m_Connection.Query("SELECT revision FROM configuration WHERE machine = ? AND name = ?",
                                         {m_MachineName, rName});
    if (Rows.empty()) {
        return std::nullopt;
    }
    return CStoredConfiguration{LoadValues(rName), Rows[0].GetInteger(0)};
}

std::optional<std::int64_t> CStore::BeginRevision(const char* pTable, const std::string& rName) {
    const CValues Key = {m_MachineName, rName};
    const std::string Condition = " WHERE machine = ? AND name = ?";
    // The first statement of each write: it locks the row where the transaction's beginning doesn't.
    if (m_Connection.Execute(std::string("UPDATE ") + pTable + " SET revision = revision + 1" + Condition,
                             Key) == 0) {
        return std::nullopt;
    }
    return m_Connection.Query(std::string("SELECT revision FROM ") + pTable + Condition, Key)
        .at(0)
        .GetInteger(0);
}

CConfigurationWritten CStore::WriteConfiguration(const CConfigurationWrite& rWrite) {
    CTransaction Transaction(m_Connection, CTransaction::eWriting);
    CConfigurationWritten Written = MergeIn(rWrite);
    if (Written.m_bChanged) {
        Transaction.Commit();
    }
    return Written;
}

CConfigurationWritten CStore::MergeIn(const CConfigurationWrite& rWrite) {
    const auto Revision = BeginRevision("configuration", rWrite.m_Name);
    if (!Revision) {
        CheckNewName(rWrite.m_Name, "a configuration");
        return Insert(rWrite);
    }
    if (rWrite.m_Name != rWrite.m_StoredName) {
        throw CSqlError("\"" + rWrite.m_Name + "\" exists already", StoreFailure::eNameTaken);
    }
    const std::int64_t Found = *Revision - 1;
    CConfigurationWritten Written;
    Written.m_bOthersWrote = !rWrite.m_Read || rWrite.m_Read->m_Revision != Found;
    const CFieldValues Stored = Written.m_bOthersWrote ? LoadValues(rWrite.m_Name) : rWrite.m_Read->m_Values;
    // What couldn't be read counts as unchanged since.
    const CFieldValues Before = rWrite.m_bReadFailed ? Stored
                                : rWrite.m_Read      ? rWrite.m_Read->m_Values
                                                     : CFieldValues();
    CMerged Merged = MergeConfigurations({Before, Stored}, {rWrite.m_MemoryBefore, rWrite.m_Memory});
    Written.m_Conflicts = std::move(Merged.m_Conflicts);
    Written.m_bCalibrationLost = Merged.m_bCalibrationLost;
    Written.m_Stored = {std::move(Merged.m_Values), Found};
    if (Written.m_Stored.m_Values != Stored) {
        WriteDifference(rWrite.m_Name, Stored, Written.m_Stored.m_Values);
        Written.m_bChanged = true;
        Written.m_Stored.m_Revision = *Revision;
    }
    return Written;
}

CConfigurationWritten CStore::Insert(const CConfigurationWrite& rWrite) {
    constexpr std::int64_t FIRST_REVISION = 1;  // the column's default
    for (const CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
        if (HasRecord(rWrite.m_Memory, rLayout)) {
            InsertRecord(rLayout, rWrite.m_Name, rWrite.m_Memory);
        }
    }
    CConfigurationWritten Written;
    Written.m_Stored = {rWrite.m_Memory, FIRST_REVISION};
    Written.m_bChanged = true;
    return Written;
}

void CStore::InsertRecord(const CRecordLayout& rLayout, const std::string& rName,
                          const CFieldValues& rValues) {
    std::vector<std::string> Columns = {"machine", rLayout.m_KeyColumn};
    if (!rLayout.m_Part.empty()) {
        Columns.emplace_back("part");
    }
    CValues Values = MakeKey(rLayout, rName);
    for (const std::string& rColumn : rLayout.m_Columns) {
        Columns.push_back(rColumn);
        Values.push_back(rValues.at(rLayout.GetFieldName(rColumn)));
    }
    m_Connection.Execute("INSERT INTO " + rLayout.m_Table + " (" + Join(Columns, ", ") + ") VALUES (" +
                             Join(std::vector<std::string>(Columns.size(), "?"), ", ") + ")",
                         Values);
}

void CStore::WriteDifference(const std::string& rName, const CFieldValues& rBefore,
                             const CFieldValues& rNow) {
    for (const CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
        if (!HasRecord(rNow, rLayout)) {
            if (HasRecord(rBefore, rLayout)) {
                m_Connection.Execute("DELETE FROM " + rLayout.m_Table + MakeCondition(rLayout),
                                     MakeKey(rLayout, rName));
            }
            continue;
        }
        if (!HasRecord(rBefore, rLayout)) {
            InsertRecord(rLayout, rName, rNow);
            continue;
        }
        std::vector<std::string> Columns;
        CValues Values;
        for (const std::string& rColumn : rLayout.m_Columns) {
            const std::string Field = rLayout.GetFieldName(rColumn);
            if (rBefore.at(Field) != rNow.at(Field)) {
                Columns.push_back(rColumn);
                Values.push_back(rNow.at(Field));
            }
        }
        if (!Columns.empty()) {
            const CValues Key = MakeKey(rLayout, rName);
            Values.insert(Values.end(), Key.begin(), Key.end());
            m_Connection.Execute(
                "UPDATE " + rLayout.m_Table + " SET " + Join(Columns, ", ", " = ?") + MakeCondition(rLayout),
                Values);
        }
    }
}

void CStore::DeleteConfiguration(const std::string& rName) {
    if (rName == DEFAULT_CONFIGURATION) {
        throw CSqlError("the default configuration can't be deleted", StoreFailure::eDefault);
    }
    CTransaction Transaction(m_Connection, CTransaction::eWriting);
    if (m_Connection.Execute("DELETE FROM configuration WHERE machine = ? AND name = ?",
                             {m_MachineName, rName}) == 0) {
        throw CSqlError("there is no configuration \"" + rName + "\"", StoreFailure::eMissing);
    }
    Transaction.Commit();
}

CLoadedNames CStore::LoadProcessNames(CPreBalDatabase::BalancingMode Mode, CTypeBase::AffectedPlane Plane,
                                      std::uint8_t Sensor1, std::uint8_t Sensor2) {
    CTransaction Transaction(m_Connection, CTransaction::eReading);
    const std::int64_t Input = Plane;
    const bool bTwoPlane = Mode == CPreBalDatabase::eModeTwoPlane;
    const auto Rows =
        bTwoPlane
            ? m_Connection.Query(
                  "SELECT configuration FROM two_plane WHERE machine = ? AND proximity_switch_input = ? "
                  "AND plane1_sensor_adaption = ? AND plane2_sensor_adaption = ?",
                  {m_MachineName, Input, std::int64_t{Sensor1}, std::int64_t{Sensor2}})
            : m_Connection.Query(
                  "SELECT configuration FROM single_plane WHERE machine = ? AND proximity_switch_input = ? "
                  "AND sensor_adaption = ?",
                  {m_MachineName, Input, std::int64_t{Sensor1}});
    CLoadedNames Loaded;
    for (const CDirectSQL::CRow& rRow : Rows) {
        std::string Name = rRow.GetText(0);
        if (!CanBeAskedFor("configuration", Name)) {
            Loaded.m_Unusable.push_back(std::move(Name));
        } else if (bTwoPlane || IsPlane(Name, Mode)) {
            Loaded.m_Names.push_back(std::move(Name));
        }
    }
    SortNames(Loaded.m_Names);
    return Loaded;
}

/// A name that is no UTF-8 comes changed out of the store, and what it stands for can't be found by it.
bool CStore::CanBeAskedFor(const char* pTable, const std::string& rName) {
    // U+FFFD, which stands for what was wrong.
    return rName.find("\xEF\xBF\xBD") == std::string::npos ||
           !m_Connection
                .Query(std::string("SELECT 1 FROM ") + pTable + " WHERE machine = ? AND name = ?",
                       {m_MachineName, rName})
                .empty();
}

/// Whether a single-plane configuration is one of the mode's plane, which its compensation tells. One without
/// compensation, or whose plane isn't known, fits both.
bool CStore::IsPlane(const std::string& rConfiguration, CPreBalDatabase::BalancingMode Mode) {
    constexpr const char* ONE = "SELECT plane FROM ";
    constexpr const char* PART = " WHERE machine = ? AND configuration = ? AND part = 'single'";
    const CValues Key = {m_MachineName, rConfiguration};
    for (const char* const pTable : {"weight_compensation", "screw_compensation"}) {
        const auto Rows = m_Connection.Query(std::string(ONE) + pTable + PART, Key);
        if (!Rows.empty()) {
            const std::int64_t Plane = Rows[0].GetInteger(0);
            return Plane == CTypeBase::eUnknownPlane ||
                   Plane == (Mode == CPreBalDatabase::eModePlane1 ? CTypeBase::ePlane1 : CTypeBase::ePlane2);
        }
    }
    return true;
}

}  // namespace PreBalDB
