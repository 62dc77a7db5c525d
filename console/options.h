#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "console/opcsetup.h"
#include "platform/rvcom/bytelink.h"
#include "platform/rvmdb/prebaldatabase.h"

class CRotorFile;

/// What the command line asks for.
struct COptions {
    /// Who drives a run.
    enum class Nc { ePanel, eOpcUa };
    enum class Procedure { ePrebalance, eRebalance, ePrebalanceAndRebalance };

    std::string m_RotorFile;  ///< empty: the built-in rotor
    std::string m_Link = "sim";
    std::string m_Machine;                  ///< control link of an external machine; empty: none
    std::string m_Modules;                  ///< empty: as the rotor file says
    std::vector<std::uint8_t> m_Addresses;  ///< empty: the family's defaults
    std::string m_Mode;                     ///< empty: plane1
    std::vector<std::string> m_Methods;     ///< per plane, one for all; empty: as configured
    std::string m_ConfigDirectory;          ///< empty: the user's own; a temporary one when headless
    std::string m_ReportFile;
    std::string m_ScreenshotDirectory;
    std::string m_RotorName;               ///< whose runs these are, for archive and report
    std::string m_LogLevel;                ///< empty: as the settings say
    std::vector<std::string> m_LogTopics;  ///< the same
    std::string m_Language;  ///< code; empty: the one chosen last in the window, else the environment's
    /// In grams: what an NC that is started along with the console asks for; 0: nothing.
    double m_TestWeight = 0.0;
    int m_nScrews = 0;  ///< that a correction places, 2 or 3; 0: as configured
    Procedure m_Procedure = Procedure::ePrebalance;
    Nc m_Nc = Nc::ePanel;
    bool m_bProcedureGiven = false;  ///< on the command line: the window begins with it
    bool m_bHeadless = false;
    bool m_bCommission = false;  ///< set up from the rotor file what somebody has set, too
    bool m_bRealTime = false;
    bool m_bDemo = false;      ///< a run plays by itself in the window, and is explained
    bool m_bTraining = false;  ///< situations to be mastered
    bool m_bFullScreen = false;
    bool m_bTouch = false;  ///< with a keyboard on the screen
    /// Whether the spindle already turns when a procedure starts. For whole runs in tests, not on the command
    /// line.
    bool m_bStartTurning = false;
    /// Whether anybody looks at the page: a hidden page isn't painted. For many whole runs, not on the
    /// command line.
    bool m_bShowPage = true;
    /// Whether runs are kept in the archive. For many whole runs, not on the command line.
    bool m_bArchive = true;

    /// The NC to connect to; nothing: none. From the installation's configuration, or from what was started
    /// along with the console.
    std::optional<COpcSetup> m_Opc;

    /// Weights of the screw table in grams; empty: as configured. Not on the command line either.
    std::vector<double> m_ScrewTable;
    /// Makes the module's end of a simulated line from the real one: to record or replay what is on it. For
    /// whole runs in tests, not on the command line.
    std::function<std::unique_ptr<IFByteLink>(std::unique_ptr<IFByteLink>)> m_WrapLink;
    /// The rotor that the configuration is set up for, if it isn't the machine's: a mistake for a trainee to
    /// find. Not on the command line.
    std::shared_ptr<const CRotorFile> m_pCommissionAs;
    /// Why the program is to end, for example "SIGTERM"; empty: it isn't. Not on the command line.
    std::function<std::string()> m_GetEndRequest;
    /// The window module; empty: beside the running program. For programs elsewhere, not on the command line.
    std::string m_ModuleLibrary;

    /// Whether the window works on a machine of its own, and touches nobody's configurations.
    bool IsLesson() const { return m_bDemo || m_bTraining; }
    bool IsSimulated() const { return m_Link == "sim"; }
    std::string GetEndRequest() const { return m_GetEndRequest ? m_GetEndRequest() : std::string(); }
    bool IsDrivenByNc() const { return m_Nc == Nc::eOpcUa; }
    /// Virtual time is the default of a headless run on the simulator in this process. A network knows real
    /// time only.
    bool IsVirtualTime() const {
        return m_bHeadless && IsSimulated() && !m_bRealTime && !m_Opc && !IsDrivenByNc();
    }
};

/// A procedure by its name on the command line.
const char* ToString(COptions::Procedure Procedure);

/// Why the program ends before it begins.
struct CCommandLineEnd {
    int m_ExitCode = 0;  ///< 0 after --help, else 3
    std::string m_Text;  ///< one line for stderr, or the help
};

/// Reads the command line. Nothing, with rEnd filled, if the program is not to run: bad arguments give one
/// line that says what is wrong and what would be right.
std::optional<COptions> ParseCommandLine(int argc, const char* const* argv, CCommandLineEnd& rEnd);
