#include "console/isoaccess.h"

#include <chrono>

#include "archive/isostore.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/offline.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storetexts.h"
#include "platform/rvmdb/timelimit.h"

namespace IsoAccess {

namespace {

/// The window doesn't wait longer for another console, ms.
constexpr int BUSY_TIMEOUT = 1000;
/// Nor for a server.
constexpr std::chrono::milliseconds PATIENCE{2000};

/// While the server is away its copy is read.
std::string GetReadableConnection() {
    namespace Offline = PreBalDB::Offline;
    return Offline::IsUsed() && Offline::IsAway() ? "sqlite:" + Offline::GetFile()
                                                  : PreBalDB::GetDatabaseConnection();
}

}  // namespace

CIsoData Read(const std::string& rMachine, const std::string& rConfiguration) {
    try {
        PreBalDB::CDirectSQL Connection(GetReadableConnection(), BUSY_TIMEOUT);
        const PreBalDB::CTimeLimit Limit(PATIENCE, [&Connection] { Connection.Interrupt(); });
        return CIsoStore(Connection).Read(rMachine, rConfiguration).value_or(CIsoData());
    } catch (const std::runtime_error&) {
        return {};  // the module tells what is the matter with its store
    }
}

std::string Write(const std::string& rMachine, const std::string& rConfiguration, const CIsoData& rData) {
    try {
        PreBalDB::CDirectSQL Connection(PreBalDB::GetDatabaseConnection(), BUSY_TIMEOUT);
        const PreBalDB::CTimeLimit Limit(PATIENCE, [&Connection] { Connection.Interrupt(); });
        if (!CIsoStore(Connection).Write(rMachine, rConfiguration, rData)) {
            return GetText("ISO_NO_CONFIGURATION");
        }
    } catch (const std::runtime_error& rError) {
        return PreBalDB::StoreTexts::Fill("ISO_NOT_SAVED", {rError.what()});
    }
    return {};
}

}  // namespace IsoAccess
