#pragma once
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "archive/isodata.h"
#include "archive/machinekey.h"
#include "console/configurationedit.h"
#include "console/screwtablejson.h"

/// Configurations, screw tables and ISO data that are to be set on a machine. All is looked at first, so that
/// nothing is written if something is wrong; then each is written under its revision.
class CConfigurationChange {
public:
    /// Throws CCommandError if the text is no machine's key, and what CPreBalDatabase throws.
    CConfigurationChange(const std::string& rMachine, CConfigurationEdit::From Source);

    /// The objects of a file that holds one or a list of them; none if it doesn't, or nests them deeper than
    /// any of ours.
    static std::vector<nlohmann::json> ReadObjects(const std::string& rText);

    /// Takes an object as files hold it (configurationjson.h, screwtablejson.h, isojson.h); what it leaves
    /// out stays. Screw tables go before the configurations that use them. A line on what is wrong, in the
    /// language in use; empty if all is well.
    std::string Add(const nlohmann::json& rObject);

    struct CWritten {
        std::vector<std::string> m_Lines;  ///< for a person: what is set now, and what isn't
        bool m_bWhole = true;              ///< false: something isn't
    };
    CWritten Write();

    /// Of a configuration as it is stored; 0 if there is none.
    std::int64_t GetRevision(const std::string& rName) const;
    /// As they stand, with ISO data; what only runs and modules find out if bAll.
    nlohmann::ordered_json ReadConfiguration(const std::string& rName, bool bAll);
    nlohmann::ordered_json ReadScrewTable(const std::string& rName);

    static bool IsScrewTable(const nlohmann::json& rObject) { return rObject.contains("table"); }

private:
    std::string AddScrewTable(const nlohmann::json& rObject);
    std::string AddConfiguration(const nlohmann::json& rObject);
    std::string CheckKind(const nlohmann::json& rObject) const;
    void WriteScrewTable(const std::string& rName, const ScrewTableJson::CScrews& rScrews,
                         CWritten& rWritten);
    void WriteConfiguration(const nlohmann::json& rObject, CWritten& rWritten);
    void WriteIso(const std::string& rName, const nlohmann::json& rIso, CWritten& rWritten) const;
    std::optional<CIsoData> MergeIso(const std::string& rName, const nlohmann::json& rIso,
                                     std::string& rError) const;
    std::vector<std::string> GetTables() const;

    std::string m_Machine;
    CMachineKey m_Key;
    CConfigurationEdit::From m_Source;
    PreBalDB::CPreBalDatabase m_Database;
    std::vector<std::pair<std::string, ScrewTableJson::CScrews>> m_NewTables;
    std::vector<nlohmann::json> m_Configurations;
};
