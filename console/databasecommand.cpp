#include "console/databasecommand.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "archive/storecopy.h"
#include "console/command.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/storetexts.h"

namespace {

using PreBalDB::StoreTexts::Fill;

constexpr int FAILED = 1;

/// A connection may hold a password: what is wrong with the arguments is told without repeating them.
void CheckNumber(const std::vector<std::string>& rStores, std::size_t nWanted, const char* pUsage) {
    if (rStores.size() != nWanted) {
        throw CCommandError(Fill("DATABASE_COMMAND_ARGUMENTS", {pUsage}));
    }
}

void Print(const std::vector<CStoreCopy::CTable>& rCopied, const CStoreCopy& rCopy, bool bJson) {
    if (bJson) {
        nlohmann::ordered_json Tables = nlohmann::ordered_json::object();
        for (const CStoreCopy::CTable& rTable : rCopied) {
            Tables[rTable.m_Name] = rTable.m_nRows;
        }
        std::printf("%s\n", nlohmann::ordered_json{{"copied", Tables}}.dump(2).c_str());
        return;
    }
    for (const CStoreCopy::CTable& rTable : rCopied) {
        if (rTable.m_nRows != 0) {
            std::printf("%8zu  %s\n", rTable.m_nRows, rTable.m_Name.c_str());
        }
    }
    std::printf("%s\n", Fill("DATABASE_COPIED", {rCopy.GetFromName(), rCopy.GetToName()}).c_str());
}

int Copy(const CCommandFrame& rFrame, const std::vector<std::string>& rStores, bool bReplace) {
    CheckNumber(rStores, 2, "database copy FROM TO");
    try {
        CStoreCopy Copy(CStoreCopy::MakeConnection(rStores[0]), CStoreCopy::MakeConnection(rStores[1]));
        if (!Copy.IsTargetEmpty()) {
            if (!bReplace) {
                throw CCommandError(Fill("DATABASE_NOT_EMPTY", {Copy.GetToName()}), FAILED);
            }
            if (!rFrame.IsSure(Fill("DATABASE_REPLACE_ASK", {Copy.GetToName()}))) {
                throw CCommandError(Fill("DATABASE_NOT_COPIED", {}), FAILED);
            }
        }
        Print(Copy.Copy(), Copy, rFrame.IsJson());
    } catch (const CCommandError&) {
        throw;
    } catch (const std::runtime_error& rError) {
        throw CCommandError(Fill("DATABASE_COPY_FAILED", {rError.what()}), FAILED);
    }
    return 0;
}

int Prepare(const std::vector<std::string>& rStores) {
    CheckNumber(rStores, 1, "database prepare STORE");
    try {
        PreBalDB::CDirectSQL Store(CStoreCopy::MakeConnection(rStores[0]));
        CStoreCopy::Prepare(Store);
        std::printf("%s\n", Fill("DATABASE_PREPARED", {Store.GetName()}).c_str());
    } catch (const std::runtime_error& rError) {
        throw CCommandError(rError.what(), FAILED);
    }
    return 0;
}

}  // namespace

int RunDatabaseCommand(int argc, const char* const* argv) {
    CCommandFrame Frame("database");
    Frame.OfferJson();
    Frame.OfferYes();
    CLI::App& rApp = Frame.GetApp();
    rApp.require_subcommand(1);
    rApp.fallthrough();
    std::vector<std::string> Stores;
    bool bReplace = false;
    CLI::App* const pCopy =
        rApp.add_subcommand("copy", "Copies a whole store, SQLite or PostgreSQL, into an empty one");
    pCopy->fallthrough();
    pCopy->add_option("stores", Stores, "FROM and TO: PATH | sqlite:PATH | postgresql://USER@HOST/NAME?...")
        ->type_name("FROM TO");
    pCopy->add_flag("--replace", bReplace, "Also into one that isn't empty: what is there goes");
    CLI::App* const pPrepare = rApp.add_subcommand(
        "prepare", "Makes the tables of a store, or brings an older one to this program's version");
    pPrepare->fallthrough();
    pPrepare->add_option("stores", Stores, "PATH | sqlite:PATH | postgresql://USER@HOST/NAME?...")
        ->type_name("STORE");
    return Frame.Run(argc, argv, [&](const CConsoleInstallation& /*rInstallation*/) {
        return pCopy->parsed() ? Copy(Frame, Stores, bReplace) : Prepare(Stores);
    });
}
