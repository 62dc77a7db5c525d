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

/// What the command line asks for.
struct COptions {
    /// Who drives a run.
    enum class Nc { ePanel, eOpcUa };
    enum class Procedure { ePrebalance, eRebalance, ePrebalanceAndRebalance };

    bool m_bHeadless = false;
    std::string m_RotorFile;  ///< empty: the built-in rotor
    std::string m_Link = "sim";
    std::string m_Machine;                  ///< control link of an external machine; empty: none
    std::string m_Modules;                  ///< empty: as the rotor file says
    std::vector<std::uint8_t> m_Addresses;  ///< empty: the family's defaults
    std::string m_Mode;                     ///< empty: plane1
    std::vector<std::string> m_Methods;     ///< per plane, one for all; empty: as configured
    int m_nScrews = 0;                      ///< that a correction places, 2 or 3; 0: as configured
    bool m_bCommission = false;             ///< set up from the rotor file what somebody has set, too
    Procedure m_Procedure = Procedure::ePrebalance;
    bool m_bProcedureGiven = false;  ///< on the command line: the window begins with it
    std::string m_ConfigDirectory;   ///< empty: the user's own; a temporary one when headless
    std::string m_ReportFile;
    std::string m_ScreenshotDirectory;
    bool m_bRealTime = false;
    Nc m_Nc = Nc::ePanel;
    /// In grams: what an NC that is started along with the console asks for; 0: nothing.
    double m_TestWeight = 0.0;

    /// The NC to connect to; nothing: none. From the installation's configuration, or from what was started
    /// along with the console.
    std::optional<COpcSetup> m_Opc;

    /// Whether the spindle already turns when a procedure starts. For whole runs in tests, not on the command
    /// line.
    bool m_bStartTurning = false;
    /// Weights of the screw table in grams; empty: as configured. Not on the command line either.
    std::vector<double> m_ScrewTable;
    /// Whether anybody looks at the page: a hidden page isn't painted. For many whole runs, not on the
    /// command line.
    bool m_bShowPage = true;
    /// Makes the module's end of a simulated line from the real one: to record or replay what is on it. For
    /// whole runs in tests, not on the command line.
    std::function<std::unique_ptr<IFByteLink>(std::unique_ptr<IFByteLink>)> m_WrapLink;
    /// Why the program is to end, for example "SIGTERM"; empty: it isn't. Not on the command line.
    std::function<std::string()> m_GetEndRequest;
    /// The window module; empty: beside the running program. For programs elsewhere, not on the command line.
    std::string m_ModuleLibrary;

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
