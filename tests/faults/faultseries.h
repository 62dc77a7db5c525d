#pragma once
#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/faults/installationstate.h"
#include "tests/faults/startedprogram.h"
#include "tests/support/tempdirectory.h"

/// One run after the other of the real console, each in a copy of the same installation with a calibration
/// and a run in its archive, each disturbed in another way; and what each has left.
class CFaultSeries {
public:
    /// How a run is disturbed.
    struct CFault {
        std::string m_Kind;           ///< of DiskPlan
        unsigned long m_At = 0;       ///< number of the call
        unsigned long m_nFaults = 0;  ///< calls that fail, 0: all from there on
        std::optional<std::chrono::microseconds> m_Kill{};
        std::string m_ClockShifts{};  ///< DiskPlan::CLOCK
        bool m_bRealTime = false;
    };
    struct COutcome {
        std::string m_Call;  ///< the first one that failed: "pwrite prebal.db"; empty if the run ended before
        CStartedProgram m_Program;
        std::string m_Report;  ///< the file
        std::vector<std::string> m_Faults;
        std::string m_Left;  ///< in words
        bool m_bCalibrationNew = false;
        bool m_bRunComplete = false;
    };

    /// A store on a server; without these it is a file of the installation.
    struct CServer {
        std::function<std::string()> m_Renew{};  ///< makes a store as the first one was; gives its connection
        std::function<void()> m_Keep{};          ///< takes the present store as that first one
        std::function<void()>
            m_Settle{};  ///< waits until it is there, and nobody works on the store any more
        std::function<int()> m_GetProcess{};
        unsigned short m_Port = 0;
    };

    /// New: the runs begin without an installation instead.
    explicit CFaultSeries(bool bNew = false);
    explicit CFaultSeries(CServer Server, bool bNew = false);

    /// Calls of an undisturbed run, in their order: "pwrite prebal.db-journal".
    const std::vector<std::string>& GetCalls() const { return m_Calls; }
    /// How long an undisturbed run has taken.
    std::chrono::microseconds GetDuration() const { return m_Duration; }
    /// What an undisturbed run has reported.
    const std::string& GetReport() const { return m_Report; }
    /// The run again, disturbed. Again: it is followed by one that isn't, which has to succeed.
    COutcome Run(const CFault& rFault, bool bAgain);

private:
    void Prepare();
    CStartedProgram Balance(const char* pRotor, const CFault& rFault, const std::string& rTrace) const;
    void Judge(const CFault& rFault, COutcome& rOutcome) const;
    void RunAgain(const CFault& rFault, COutcome& rOutcome);
    void Renew();
    CInstallationState ReadState() const;
    std::string GetConnection() const;
    std::filesystem::path GetRoot() const { return m_Directory.GetPath() / "root"; }

    const CTempDirectory m_Directory;
    bool m_bNew;
    CServer m_Server;
    std::string m_ServerConnection;
    CInstallationState m_Before;
    CInstallationState m_Complete;
    std::vector<std::string> m_Calls;
    std::string m_Report;
    std::chrono::microseconds m_Duration{};
};
