#pragma once
#include <CLI/CLI.hpp>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "console/installation.h"

/// A command of the program beside the console itself: "run backup FILE". Takes its arguments, and gives the
/// exit status: 0 done, 1 nothing found or a check that failed, 3 bad arguments.
struct CCommand {
    const char* m_pName;
    const char* m_pHelp;  ///< a line
    int (*m_pRun)(int argc, const char* const* argv);
};

/// All of them.
const std::vector<CCommand>& GetCommands();

/// What this program was called as, for its help: "run", "rotor-trim".
std::string GetCommandName();

/// The exit status of the command that the first argument names; nothing if it names none.
std::optional<int> RunCommand(int argc, const char* const* argv);

/// Whether there is a store to look into: looking makes none.
bool IsStoreThere();

/// Why a command can't do what it is asked for: one line, which says what would be right.
class CCommandError : public std::runtime_error {
public:
    explicit CCommandError(const std::string& rText, int ExitStatus = 3)
        : std::runtime_error(rText), m_ExitStatus(ExitStatus) {}
    int GetExitStatus() const { return m_ExitStatus; }

private:
    int m_ExitStatus;
};

/// What the commands have in common: the options for installation and language, the toolkit without a screen,
/// an event loop, and how they end.
class CCommandFrame {
public:
    /// By the command's name.
    explicit CCommandFrame(const std::string& rName);
    CCommandFrame(const CCommandFrame&) = delete;
    CCommandFrame& operator=(const CCommandFrame&) = delete;

    /// For the command's own arguments.
    CLI::App& GetApp() { return m_App; }
    /// Adds --json, for a command that prints data.
    void OfferJson();
    bool IsJson() const { return m_bJson; }
    /// Adds --yes, for one that asks.
    void OfferYes();
    /// Whether the question is answered by --yes, or by a person at a terminal. Throws CCommandError if there
    /// is nobody to ask.
    bool IsSure(const std::string& rQuestion) const;

    /// What is done with a command line in place of the command's work and words, for whoever looks at the
    /// arguments only: a search for inputs that break their reading. Text: what it would have said of them.
    static std::function<void(const std::string& rText)> ms_OnParsed;

    /// Parses, makes installation, store's connection and loop, and does the work, whose exit status counts.
    int Run(int argc, const char* const* argv, const std::function<int(const CConsoleInstallation&)>& rWork);

private:
    CLI::App m_App;
    std::string m_ConfigDirectory;
    std::string m_Language;
    bool m_bJson = false;
    bool m_bYes = false;
};
