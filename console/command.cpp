#include "console/command.h"

#include <unistd.h>

#include <QApplication>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>

#include "console/archivecommand.h"
#include "console/backupcommands.h"
#include "console/checkcommand.h"
#include "console/configurecommand.h"
#include "console/databasecommand.h"
#include "console/language.h"
#include "console/optionchecks.h"
#include "console/programcommands.h"
#include "console/runtimedirectory.h"
#include "platform/qt/qteventloop.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/prebaldatabase.h"

namespace {

constexpr int DONE = 0;
constexpr int BAD_ARGUMENTS = 3;

int Refuse(const std::string& rText, int ExitStatus) {
    std::fprintf(stderr, "%s\n", rText.c_str());
    return ExitStatus;
}

std::vector<CCommand>::const_iterator FindCommand(const std::string& rName) {
    return std::ranges::find_if(GetCommands(),
                                [&rName](const CCommand& rCommand) { return rName == rCommand.m_pName; });
}

}  // namespace

const std::vector<CCommand>& GetCommands() {
    static const std::vector<CCommand> COMMANDS = {
        {"archive", "Lists, shows, reports and exports the runs that are kept", RunArchiveCommand},
        {"backup", "Keeps store, weight positions and settings in one file", RunBackup},
        {"check", "Looks at what a run needs and says what is wrong and what to do", RunCheckCommand},
        {"configure", "Lists, shows, sets, exports and imports configurations and screw tables",
         RunConfigure},
        {"database", "Copies the whole store into another one, SQLite or PostgreSQL, or prepares one",
         RunDatabaseCommand},
        {"restore", "Brings them back from there", RunRestore},
        {"service-bundle", "Puts log, settings, store and reports into one file for service staff",
         RunServiceBundle},
        {"simulator", "The rotor simulator alone", RunSimulatorProgram},
        {"nc", "The simulated NC, for any OPC UA client", RunNcProgram},
    };
    return COMMANDS;
}

std::string GetCommandName() {
    return program_invocation_short_name;
}

std::optional<int> RunCommand(int argc, const char* const* argv) {
    const auto Found = FindCommand(argc > 1 ? argv[1] : "");
    return Found == GetCommands().end() ? std::nullopt : std::optional(Found->m_pRun(argc - 1, argv + 1));
}

bool IsStoreThere() {
    constexpr std::string_view SQLITE = "sqlite:";
    const std::string Connection = PreBalDB::GetDatabaseConnection();
    return !Connection.starts_with(SQLITE) || std::filesystem::exists(Connection.substr(SQLITE.size()));
}

CCommandFrame::CCommandFrame(const std::string& rName)
    : m_App(FindCommand(rName)->m_pHelp, GetCommandName() + " " + rName) {
    m_App.add_option("--config-dir", m_ConfigDirectory, "Installation root to use; default the user's own")
        ->check(RefuseEmpty)
        ->type_name("DIR");
    m_App
        .add_option(
            "--language", m_Language,
            "Of all output: " + CLI::detail::join(GetLanguages(), " | ") + "; default the environment's")
        ->check(CheckLanguage)
        ->type_name("CODE");
}

std::function<void(const std::string& rText)> CCommandFrame::ms_OnParsed;

void CCommandFrame::OfferJson() {
    m_App.add_flag("--json", m_bJson, "Print data for programs");
}

void CCommandFrame::OfferYes() {
    m_App.add_flag("--yes", m_bYes, "Don't ask");
}

bool CCommandFrame::IsSure(const std::string& rQuestion) const {
    if (m_bYes) {
        return true;
    }
    if (::isatty(STDIN_FILENO) == 0) {
        throw CCommandError(rQuestion + " There is nobody here to answer; --yes says so beforehand.");
    }
    std::printf("%s [y/N] ", rQuestion.c_str());
    std::fflush(stdout);
    std::string Answer;
    std::getline(std::cin, Answer);
    // In either language.
    return Answer == "y" || Answer == "Y" || Answer == "j" || Answer == "J";
}

int CCommandFrame::Run(int argc, const char* const* argv,
                       const std::function<int(const CConsoleInstallation&)>& rWork) {
    std::string Refusal;
    try {
        m_App.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        std::printf("%s", m_App.help().c_str());
        return DONE;
    } catch (const CLI::ParseError& rError) {
        Refusal = std::string(rError.what()) + " (--help lists the options)";
        std::ranges::replace(Refusal, '\n', ' ');
    }
    if (ms_OnParsed) {
        ms_OnParsed(Refusal);
        return Refusal.empty() ? DONE : BAD_ARGUMENTS;
    }
    if (!Refusal.empty()) {
        return Refuse(Refusal, BAD_ARGUMENTS);
    }
    try {
        UseLanguage(m_Language);
        const auto pRuntimeDirectory = ProvideRuntimeDirectory();
        qputenv("QT_QPA_PLATFORM", "offscreen");
        int nArguments = 1;
        std::string Name = m_App.get_name();
        char* pArguments[] = {Name.data(), nullptr};
        const QApplication App(nArguments, pArguments);
        UseLanguage(GetLanguage());
        const CQtEventLoop Loop;
        const CConsoleInstallation Installation(m_ConfigDirectory, false);
        PreBalDB::SetDatabaseConnection(Installation.GetDatabaseConnection());
        return rWork(Installation);
    } catch (const CCommandError& rError) {
        return Refuse(rError.what(), rError.GetExitStatus());
    } catch (const std::exception& rError) {
        return Refuse(rError.what(), BAD_ARGUMENTS);
    }
}
