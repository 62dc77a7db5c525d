#pragma once
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "archive/runrecord.h"
#include "platform/rvmdb/configurationfields.h"

/// What an installation holds, as the product's own readers find it: its store with all runs, where the
/// weights are, settings, log.
struct CInstallationState {
    std::string m_Trouble;  ///< why the store can't be read, or is damaged
    PreBalDB::CFieldValues m_Values;
    std::int64_t m_Revision = 0;
    std::vector<CRunRecord> m_Runs;  ///< in the order of their numbers
    std::string m_Positions;
    std::string m_Settings;
    std::string m_Log;
    std::vector<std::string> m_Files;  ///< of cnf, sorted

    static CInstallationState Read(const std::filesystem::path& rRoot, const std::string& rConnection);
};

/// What a run that was disturbed has left, beside what was there before it and what it would have left.
class CAftermath {
public:
    CAftermath(const CInstallationState& rBefore, const CInstallationState& rComplete,
               const CInstallationState& rNow);

    /// What is lost, or in between; empty if each of the parts is as before, or as after a complete run.
    const std::vector<std::string>& GetFaults() const { return m_Faults; }
    /// "calibration old, run interrupted with 2 measurements, positions new"
    std::string Describe() const;
    bool IsCalibrationNew() const { return m_bCalibrationNew; }
    bool IsRunComplete() const { return m_bRunComplete; }

private:
    void LookAtStore(const CInstallationState& rBefore, const CInstallationState& rComplete,
                     const CInstallationState& rNow);
    void LookAtRun(const CRunRecord& rComplete, const CRunRecord& rNow);
    void LookAtFiles(const CInstallationState& rBefore, const CInstallationState& rComplete,
                     const CInstallationState& rNow);

    std::vector<std::string> m_Faults;
    bool m_bCalibrationNew = false;
    bool m_bRunComplete = false;
    std::string m_Run = "no run";
    std::string m_Positions = "old";
};
