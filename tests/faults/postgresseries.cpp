#include "tests/faults/postgresseries.h"

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/postgresurl.h"
#include "platform/rvmdb/prebaldatabase.h"

namespace {

using PreBalDB::CDirectSQL;

constexpr const char* PRESENT = "rotor_trim_kills";
constexpr const char* FIRST = "rotor_trim_kills_first";

/// The URL with another database's name.
std::string NameDatabase(const std::string& rUrl, const std::string& rName) {
    const std::size_t Options = rUrl.find('?');
    const std::size_t Slash = rUrl.rfind('/', Options);
    return rUrl.substr(0, Slash + 1) + rName + (Options == std::string::npos ? "" : rUrl.substr(Options));
}

/// In real time: another program is waited for.
void Execute(const std::string& rUrl, const std::vector<std::string>& rStatements) {
    CDirectSQL Sql(rUrl);
    for (const std::string& rStatement : rStatements) {
        Sql.Execute(rStatement);
    }
}

std::string Drop(const std::string& rName) {
    return "DROP DATABASE IF EXISTS " + rName + " WITH (FORCE)";
}

/// Whether the server answers, and nobody but us works in the database.
bool IsSettled(const std::string& rUrl) {
    try {
        CDirectSQL Sql(rUrl);
        return Sql.Query(std::string("SELECT 1 FROM pg_stat_activity WHERE datname = '") + PRESENT + "'")
            .empty();
    } catch (const std::runtime_error&) {
        return false;
    }
}

void Settle(const std::string& rUrl) {
    constexpr std::chrono::seconds LONGEST{60};
    const auto End = std::chrono::steady_clock::now() + LONGEST;
    while (!IsSettled(rUrl)) {
        if (std::chrono::steady_clock::now() > End) {
            throw std::runtime_error("the server doesn't come to rest");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

}  // namespace

CFaultSeries::CServer MakePostgresServer(const std::string& rUrl, const std::string& rDirectory) {
    CFaultSeries::CServer Server;
    Server.m_Renew = [rUrl, bFirst = true]() mutable {
        Settle(rUrl);
        Execute(rUrl, {Drop(PRESENT), std::string("CREATE DATABASE ") + PRESENT +
                                          (bFirst ? "" : std::string(" TEMPLATE ") + FIRST)});
        bFirst = false;
        return NameDatabase(rUrl, PRESENT);
    };
    Server.m_Keep = [rUrl] {
        Settle(rUrl);
        Execute(rUrl, {Drop(FIRST), std::string("CREATE DATABASE ") + FIRST + " TEMPLATE " + PRESENT});
    };
    Server.m_Settle = [rUrl] { Settle(rUrl); };
    Server.m_GetProcess = [rDirectory] {
        int Process = 0;
        std::ifstream(rDirectory + "/data/postmaster.pid") >> Process;
        return Process;
    };
    Server.m_Port = static_cast<unsigned short>(PreBalDB::CPostgresUrl::Parse(rUrl).m_Port);
    return Server;
}
