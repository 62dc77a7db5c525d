// A file for "configure import": whatever it holds is refused by a line that says what is wrong, or can be
// set; and what was set comes back as it is, so that it is nothing new when it is set again.
#include <stdlib.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "console/command.h"
#include "console/configurationchange.h"
#include "fuzz/fuzzing.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/temporarydirectory.h"
#include "platform/system/virtualeventloop.h"

namespace {

constexpr const char* ONE_PLANE = "0#1#255-0-486107-930938880-1";

/// A store of one machine for the whole search.
class CFuzzStore {
public:
    CFuzzStore() {
        SetLanguage("en");
        OpenAllTopics();
        PreBalDB::SetDatabaseConnection("sqlite:" + (m_Directory.GetPath() / "fuzz.db").string());
        PreBalDB::CPreBalDatabase Database(ONE_PLANE);
        Database.TestAndSetDefaults();
        Database.ReadConfiguration("Default").CreateSinglePlane();
        Database.WriteConfiguration();
        PreBalDB::CDirectSQL(PreBalDB::GetDatabaseConnection()).Execute("PRAGMA synchronous = OFF");
    }

private:
    const CVirtualEventLoop m_Loop;
    const CTemporaryDirectory m_Directory;
};

bool Add(CConfigurationChange& rChange, const std::vector<nlohmann::json>& rObjects) {
    for (const bool bTables : {true, false}) {
        for (const nlohmann::json& rObject : rObjects) {
            if (CConfigurationChange::IsScrewTable(rObject) == bTables && !rChange.Add(rObject).empty()) {
                return false;
            }
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    static const CFuzzStore s_Store;
    const auto Objects = CConfigurationChange::ReadObjects(std::string(pData, pData + nSize));
    if (Objects.empty()) {
        return 0;
    }
    CConfigurationChange Change(ONE_PLANE, CConfigurationEdit::From::eFile);
    if (!Add(Change, Objects) || !Change.Write().m_bWhole) {
        return 0;
    }
    for (const nlohmann::json& rObject : Objects) {
        if (rObject.contains("revision") || rObject.contains("name")) {
            return 0;  // once only, or one of several
        }
    }
    CConfigurationChange Again(ONE_PLANE, CConfigurationEdit::From::eFile);
    Require(Add(Again, Objects));
    Require(Again.Write().m_bWhole);
    return 0;
}
