#pragma once
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "archive/machinekey.h"
#include "platform/rvmdb/configurationfields.h"

/// A configuration's values, and what files and commands set of them, by the names and within the ranges of
/// their descriptors.
class CConfigurationEdit {
public:
    /// What an object may hold beside what people set: a file has been exported with all that there is, and
    /// what runs and modules find out is passed over; a command that names such a thing is told.
    enum class From { eFile, eCommand };

    /// rValues: as they are stored; what the mode asks for and they lack is added, as in a new configuration.
    /// rTables: the screw tables that there are.
    CConfigurationEdit(PreBalDB::CFieldValues Values, const CMachineKey& rKey,
                       std::vector<std::string> Tables);

    /// Sets what the object names, by the names that ConfigurationToJson gives; all else stays. A line that
    /// says which property is wrong and what would be right, in the language in use; nothing is set then.
    /// Empty if all is well.
    std::string Apply(const nlohmann::json& rObject, From Source);

    const PreBalDB::CFieldValues& GetValues() const { return m_Values; }
    /// Whether something is another value than in rBefore that a calibration rests on.
    bool HasOtherBasis(const PreBalDB::CFieldValues& rBefore) const;

private:
    using Layouts = std::vector<const PreBalDB::CRecordLayout*>;

    void SetModule(const CMachineKey& rKey);
    Layouts GetCommonLayouts() const;
    Layouts GetPlaneLayouts(const std::string& rPart) const;
    std::string ApplyPlanes(const nlohmann::json& rPlanes, From Source);
    std::string ApplyPlane(std::size_t Place, const nlohmann::json& rPlane, From Source);
    std::string ApplyValues(const Layouts& rLayouts, const std::string& rWhere, const nlohmann::json& rObject,
                            From Source);
    void SetMethod(const std::string& rPart, bool bScrews);

    PreBalDB::CFieldValues m_Values;
    std::vector<std::string> m_Parts;  ///< of the compensations, one a balanced plane
    std::vector<std::string> m_Tables;
};
