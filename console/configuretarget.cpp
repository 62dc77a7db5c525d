#include "console/configuretarget.h"

#include <algorithm>

#include "console/archivetext.h"
#include "console/command.h"
#include "console/configurationcatalog.h"
#include "console/linkoptions.h"
#include "console/optionchecks.h"
#include "console/session.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/storetexts.h"
#include "simulator/rotorfile.h"

using PreBalDB::StoreTexts::Fill;
using PreBalDB::StoreTexts::Join;

namespace {

constexpr int NOTHING_FOUND = 1;

}  // namespace

void CConfigureTarget::AddOptions(CLI::App& rApp) {
    m_Options.m_Link.clear();
    m_Options.m_bHeadless = true;
    rApp.add_option("--machine", m_Machine, "By its key, as list shows it; default the only one in the store")
        ->check(RefuseEmpty)
        ->type_name("KEY");
    AddLinkOptions(rApp, m_Options);
}

std::vector<std::string> CConfigureTarget::GetMachines() {
    return IsStoreThere() ? CConfigurationCatalog(PreBalDB::GetDatabaseConnection()).GetMachines()
                          : std::vector<std::string>();
}

std::string CConfigureTarget::Find(const CConsoleInstallation& rInstallation, const std::string& rUsual) {
    if (HasLink()) {
        if (!m_Machine.empty()) {
            throw CCommandError("--machine and --link: give one of them");
        }
        if (m_OnLink.empty()) {
            m_OnLink = FindByLink(rInstallation);
        }
        return m_OnLink;
    }
    if (!m_Options.m_Modules.empty() || !m_Options.m_Addresses.empty() || !m_Options.m_Mode.empty()) {
        throw CCommandError("--modules, --addresses and --mode go with --link");
    }
    const std::vector<std::string> Machines = GetMachines();
    if (Machines.empty()) {
        throw CCommandError(GetText("CONFIGURE_EMPTY"), NOTHING_FOUND);
    }
    const std::string& rWanted = m_Machine.empty() ? rUsual : m_Machine;
    if (rWanted.empty() && Machines.size() > 1) {
        throw CCommandError(Fill("CONFIGURE_WHICH_MACHINE", {ArchiveText::Shown(Join(Machines))}));
    }
    if (!rWanted.empty() && std::ranges::find(Machines, rWanted) == Machines.end()) {
        throw CCommandError(
            Fill("CONFIGURE_NO_MACHINE", {ArchiveText::Shown(rWanted), ArchiveText::Shown(Join(Machines))}),
            NOTHING_FOUND);
    }
    return rWanted.empty() ? Machines.front() : rWanted;
}

/// The module makes its first configuration as soon as it is found.
std::string CConfigureTarget::FindByLink(const CConsoleInstallation& rInstallation) const {
    if (const std::string Contradiction = FindLinkContradiction(m_Options); !Contradiction.empty()) {
        throw CCommandError(Contradiction);
    }
    const CInstallationLock Lock(rInstallation);
    std::optional<CRotorFile> Rotor;
    if (m_Options.IsSimulated()) {
        Rotor = CRotorFile::GetBuiltIn(
            CRotorFile::ModulesFromString(m_Options.m_Modules).value_or(CRotorFile::eKestrel));
    }
    CConsoleSession Session(m_Options, Rotor ? &*Rotor : nullptr, rInstallation.GetDatabaseFile().string());
    if (!Session.Initialise()) {
        throw CCommandError(Fill("CONFIGURE_NO_MODULE", {m_Options.m_Link, Session.DescribeAnswers()}),
                            NOTHING_FOUND);
    }
    std::string Machine = Session.GetMachineName();
    Session.Close();
    return Machine;
}
