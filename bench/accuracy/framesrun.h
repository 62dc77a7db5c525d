#pragma once
#include <complex>
#include <string>
#include <vector>

#include "archive/runrecord.h"
#include "bench/accuracy/randomrun.h"
#include "console/installation.h"

/// Files of an installation of its own while it lives, with weights ordered so that they produce the
/// correction on every scale.
class CAccuracyInstallation {
public:
    CAccuracyInstallation();
    const CConsoleInstallation& Get() const { return m_Installation; }

private:
    CConsoleInstallation m_Installation;
};

/// A pre-balancing and a re-balancing over real frames under virtual time: simulator, line, protocol, state
/// machines, sequences and store, operated as without a display.
class CFramesRun {
public:
    /// The run as frames can have it: the standard step, the table's middle screw as test screw, one
    /// deviation for all sensors, and the console's own disturbance before the re-balancing.
    static CRandomRun MakeRun(const CAccuracyWorld& rWorld, bool bLanner, CChance& rChance);

    CFramesRun(const CRandomRun& rRun, const std::string& rModuleLibrary);

    const std::vector<CRunRecord>& GetRecords() const { return m_Records; }
    const std::string& GetResult() const { return m_Result; }
    /// Whoever drove it gave it up: no effect of a test run could be told from noise.
    bool IsGivenUp() const { return m_bGivenUp; }
    /// What each plane has left in truth, after the pre-balancing and after the re-balancing.
    const std::vector<std::vector<std::complex<double>>>& GetResiduals() const { return m_Residuals; }

private:
    CAccuracyInstallation m_Installation;
    std::vector<CRunRecord> m_Records;
    std::string m_Result;
    bool m_bGivenUp = false;
    std::vector<std::vector<std::complex<double>>> m_Residuals;
};

/// How far the mathematics alone, with the noise that the frames' readings had, differs from a run over
/// frames.
struct CFramesAgreement {
    /// The sequence of steps, and where anything was to be placed. False too if the readings are not what
    /// the rotor and the noise, rounded to counts, make of each other.
    bool m_bSame = true;
    bool m_bRefused = false;            ///< the test run or the re-balancing, by both; or given up for noise
    double m_MeanDifference = 0.0;      ///< largest between smoothed readings, counts
    double m_ResidualDifference = 0.0;  ///< largest, relative to the unbalance
    std::string m_Fault;                ///< what differs

    static CFramesAgreement Compare(const CRandomRun& rRun, const CFramesRun& rFrames);
};
