#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "console/hostwindow.h"
#include "console/moduleanswers.h"
#include "console/modulelibrary.h"
#include "console/ncpanel.h"
#include "console/operator.h"
#include "console/options.h"
#include "console/planemeans.h"
#include "console/sessionerror.h"
#include "console/situation.h"
#include "contract/actions.h"
#include "contract/arrivedreadings.h"
#include "contract/shownconfiguration.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "simulator/machine.h"
#include "simulator/rotorfile.h"

class CMachineClient;
class CSimulator;

/// Everything between the command line and the module's window: link or simulator, host window, module
/// library, the module's initialisation and its configuration for the machine. Used by the automatic run and
/// by the console with a screen alike.
class CConsoleSession : public IFOperatorPanel {
public:
    /// Opens the link and loads the module. The installation root must stand already, and an event loop must
    /// be current. pRotor: the rotor to simulate, or of which the machine is known to carry one; null:
    /// unknown. Throws CSessionError, without a window also for links that aren't open in time; with one they
    /// are tried on. Throws CBrokenOff.
    CConsoleSession(const COptions& rOptions, const CRotorFile* pRotor, const std::string& rDatabaseFile);
    ~CConsoleSession() override;
    CConsoleSession(const CConsoleSession&) = delete;
    CConsoleSession& operator=(const CConsoleSession&) = delete;

    /// Initialises the module's window and runs the loop until the module has found its configuration. False
    /// if the module doesn't answer in time. Throws CBrokenOff.
    bool Initialise();
    /// What the modules have answered to Initialise, for a person to whom it has failed.
    std::string DescribeAnswers() const;
    /// Asks the module's window to find its module, from the beginning if it was asked before: one that has
    /// come as far as the module's name asks no more by itself. Not while it has a configuration.
    void SendInit();
    /// Sets the configuration on show up for the rotor if it is new, or if the options ask for it; otherwise
    /// says where the two disagree (CCommission). Throws as that does.
    void Commission();
    /// Starts a procedure, from the configuration. False if it was refused.
    bool StartProcedure(Actions::Action Start);
    /// Ends what runs, lets the module save, and closes the window.
    void Close();

    CSituation Look() override;
    void PressKey(const MenuKeys::CKey& rKey) override;
    void Say(const std::string& rText) override;
    /// Sends an action whether or not a menu shows it.
    LRESULT SendAction(Actions::Action Wanted, std::int32_t Flag);

    /// Of the rotor in the machine, for the runs that begin from now on.
    void SetRotorName(const std::string& rName);
    /// With the addresses that the modules have unless told otherwise, and the rotor's name as it is now.
    const COptions& GetOptions() const { return m_Options; }
    CHostWindow& GetHost() { return m_Host; }
    /// Of the families; the other one is Kestrel.
    bool IsLanner() const { return m_Modules == CRotorFile::eLanner; }
    PreBalDB::CPreBalDatabase::BalancingMode GetMode() const { return m_Mode; }
    /// By their names on the command line.
    const char* GetModeName() const;
    const char* GetFamilyName() const;
    const CNcPanel& GetNcPanel() const { return m_NcPanel; }
    CWnd& GetModule() { return *m_pModule; }
    /// The machine to command, null if somebody else runs it.
    IFMachine* GetMachine() { return m_pMachine; }
    CSimulator* GetSimulator() { return m_pSimulator.get(); }
    /// Speed in rpm at which the machine balances.
    std::uint32_t GetWorkingSpeed() const;
    /// What the module has in hand; nothing before it has found its configuration.
    std::optional<CShownConfiguration> GetShownConfiguration() const;
    /// Appends the readings of the run that came since; false without a run.
    bool GetReadings(CArrivedReadings& rReadings) const;
    /// Key of the module's database, empty before the module has found it.
    std::string GetMachineName() const {
        return GetShownConfiguration().value_or(CShownConfiguration()).m_Machine;
    }
    /// The rings of holes per plane of the machine, as configured; without holes for a plane with weights.
    std::array<CHoleRing, 2> GetHoleRings() const;
    /// By what the planes of the machine are balanced, as configured.
    CMachineMeans GetMachineMeans() const;
    /// Whether weights or screws may be elsewhere than the configuration has them: a run has asked for them
    /// to be moved, and saved nothing. A re-balancing counts from where the configuration has them, and only
    /// one that begins at standstill shows these places first.
    bool AreMeansElsewhere() const { return m_bMeansElsewhere; }
    void SetMeansElsewhere(bool bElsewhere) { m_bMeansElsewhere = bElsewhere; }

    /// Called when menu, activity, notification or warning have changed.
    std::function<void()> OnChanged;
    /// Takes what Say says; stdout unless set.
    std::function<void(const std::string&)> OnSay;

private:
    /// An external link gets so long to open, ms: the first try and three more after their pauses.
    static constexpr std::uint32_t LINK_TIMEOUT = 5000;
    /// A module gets so long to answer, ms: what is started along with the machine boots for a while. A
    /// question is repeated by the protocol for 2 s; later it is asked anew.
    static constexpr std::uint32_t INIT_TIMEOUT = 30000;
    static constexpr std::uint32_t INIT_REPEAT = 5000;

    /// Goes through the planes of the machine that the configuration on show balances, each with its screws,
    /// null for weights.
    void VisitPlanes(
        const std::function<void(std::size_t Plane, const PreBalDB::CScrewCompensationTableEntry* pScrews)>&
            rVisit) const;
    void OpenLink(const CRotorFile* pRotor);
    void LogMachine() const;
    void ConnectMachine();
    /// As the loop's; throws CBrokenOff when the program is to end.
    bool RunUntil(const std::function<bool()>& rDone, std::uint32_t Timeout) const;

    COptions m_Options;
    CRotorFile::Modules m_Modules;
    PreBalDB::CPreBalDatabase::BalancingMode m_Mode;
    mutable std::unique_ptr<PreBalDB::CPreBalDatabase> m_pPlanes;  ///< of VisitPlanes
    const CRotorFile* m_pRotor;
    CNcPanel m_NcPanel;  ///< before the module's window, which connects when it is created
    std::unique_ptr<CSimulator> m_pSimulator;
    std::unique_ptr<CMachineClient> m_pClient;
    IFMachine* m_pMachine = nullptr;
    CHostWindow m_Host;
    std::optional<CModuleAnswers> m_Answers;
    std::unique_ptr<CModuleLibrary> m_pLibrary;
    CWnd* m_pModule = nullptr;
    bool m_bInitSent = false;
    bool m_bFound = false;  ///< the module has found its configuration
    bool m_bMeansElsewhere = false;
};
