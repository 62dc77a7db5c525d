#include "platform/rvmdb/storebackup.h"

#include <filesystem>
#include <system_error>

#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/log.h"

namespace PreBalDB {

namespace {

/// Empty for a store in memory.
std::string GetFile(CDirectSQL& rConnection) {
    for (const CDirectSQL::CRow& rRow : rConnection.Query("PRAGMA database_list")) {
        if (rRow.GetText(1) == "main") {
            return rRow.GetText(2);
        }
    }
    return {};
}

}  // namespace

void BackUpBeforeMigration(CDirectSQL& rConnection, const std::string& rWhat, std::int64_t Version) {
    const std::string File = rConnection.IsSqlite() ? GetFile(rConnection) : std::string();
    if (File.empty()) {
        return;
    }
    const std::string Name = File + ".backup-" + rWhat + std::to_string(Version) + ".sqlite";
    const std::string Part = Name + ".part";
    std::error_code Error;
    std::filesystem::remove(Part, Error);
    // A connection of its own: within a transaction this can't be done.
    CDirectSQL("sqlite:" + File).Execute("VACUUM INTO ?", {Part});
    std::filesystem::rename(Part, Name, Error);
    if (Error) {
        throw CSqlError("the backup \"" + Name + "\" can't be made: " + Error.message());
    }
    RV_INFORMATION(g_pLog, "%s: copied to \"%s\" before its version is changed",
                   rConnection.GetName().c_str(), Name.c_str());
}

}  // namespace PreBalDB
