#include "console/savedresult.h"

#include "console/session.h"
#include "platform/rvmdb/offline.h"
#include "platform/rvmdb/postgresurl.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/eventloop.h"

namespace {

std::string DescribeStore(const std::string& rConnection) {
    if (PreBalDB::CPostgresUrl::IsOne(rConnection)) {
        return PreBalDB::CPostgresUrl::Parse(rConnection).m_Name;
    }
    constexpr std::string_view SQLITE = "sqlite:";
    return rConnection.starts_with(SQLITE) ? rConnection.substr(SQLITE.size()) : rConnection;
}

}  // namespace

CSavedResult DescribeSavedResult(const CConsoleSession& rSession, bool bSaved) {
    const std::string Connection = PreBalDB::GetDatabaseConnection();
    const bool bStays = !rSession.GetOptions().m_bHeadless ||
                        !rSession.GetOptions().m_ConfigDirectory.empty() ||
                        PreBalDB::CPostgresUrl::IsOne(Connection);
    return {bSaved, IFEventLoop::Current().WallClock(),
            rSession.GetShownConfiguration().value_or(CShownConfiguration()).m_Name,
            bStays ? DescribeStore(Connection) : std::string(),
            PreBalDB::Offline::GetState().m_nConfigurations == 0};
}
