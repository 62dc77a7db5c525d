#pragma once
#include <string>

#include "rvlib/settings/path.h"

// The places of the installation. They are found at the first call and kept for the life of the process; that
// first call is made on the window thread.

/// Root of the installation: the environment's CORVANE_ROOT_DIR, the program's own place, the place of the
/// installed control, each if it holds the program file "ctrl\mcon.exe"; else "corvane" in the data directory
/// of all users. CORVANE_ROOT_DIR_AUTO_DETECT set to anything but "0", "false" or "FALSE" turns the first
/// off.
CPath GetRootDirectory();

CPath GetConfigDirectory();     ///< root, "cnf"
CPath GetConfigFile();          ///< root, "cnf", "mcon.xdb"
CPath GetControlDirectory();    ///< root, "ctrl"
CPath GetHelpDirectory();       ///< root, "ctrl", "help"
CPath GetWeightPositionFile();  ///< root, "cnf", "vorwuchttemp.txt"

/// Absolute form of the root that a candidate stands for: the candidate itself, or its parent if the
/// candidate is the "ctrl" directory. Empty if there is no program file.
CPath ValidateRootDirectory(const std::string& rCandidate);

/// What the root is chosen from. All but the default are results of ValidateRootDirectory, empty if not
/// valid.
struct CRootCandidates {
    CPath m_Default;           ///< in the data directory of all users; used as it stands
    CPath m_Program;           ///< from the directory of the running program
    CPath m_Control;           ///< from the directory of the installed control
    CPath m_Environment;       ///< from CORVANE_ROOT_DIR
    std::string m_AutoDetect;  ///< value of CORVANE_ROOT_DIR_AUTO_DETECT, empty if absent
};
CPath ChooseRootDirectory(const CRootCandidates& rCandidates);

/// For tests: the next lookup searches anew.
void ResetInstallationRootForTest();
