#pragma once
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "console/installation.h"
#include "console/options.h"
#include "console/session.h"
#include "console/trainingsituations.h"
#include "simulator/rotorfile.h"

/// A machine of its own for a situation: an installation that goes with it, the rotor, and the options of the
/// session. Nobody's configurations are touched.
class CTrainingSetup {
public:
    /// rOptions: what the command line asks for beside. For a re-balancing the rotor is balanced once before,
    /// in no time, and wears a little then. Throws std::runtime_error.
    CTrainingSetup(const CTrainingSituation& rSituation, const COptions& rOptions);
    CTrainingSetup(const CTrainingSetup&) = delete;
    CTrainingSetup& operator=(const CTrainingSetup&) = delete;

    const COptions& GetOptions() const { return m_Options; }
    const CRotorFile& GetRotor() const { return m_Rotor; }
    std::string GetDatabaseFile() const { return m_Installation.GetDatabaseFile().string(); }
    /// Fits what the rotor carries already.
    void Begin(CConsoleSession& rSession) const;

private:
    void BalanceOnce();

    CConsoleInstallation m_Installation{"", true};
    CRotorFile m_Rotor;
    COptions m_Options;
    std::vector<nlohmann::json> m_Fitted;
};
