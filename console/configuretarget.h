#pragma once
#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "console/installation.h"
#include "console/options.h"

/// Which machine a command is about: the one of --machine, the one whose module answers on --link, or the
/// only one in the store.
class CConfigureTarget {
public:
    void AddOptions(CLI::App& rApp);

    /// Whether the options name one.
    bool IsNamed() const { return HasLink() || !m_Machine.empty(); }
    bool HasLink() const { return !m_Options.m_Link.empty(); }
    /// Its key. rUsual: if the options name none; empty: the only one. Throws CCommandError if there is none,
    /// or none can be chosen.
    std::string Find(const CConsoleInstallation& rInstallation, const std::string& rUsual = {});
    /// The machines in the store; none if there is no store. Looking makes none.
    static std::vector<std::string> GetMachines();

private:
    std::string FindByLink(const CConsoleInstallation& rInstallation) const;

    COptions m_Options;
    std::string m_Machine;
    std::string m_OnLink;  ///< what was found there
};
