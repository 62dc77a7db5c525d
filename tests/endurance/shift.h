#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "console/headlessrun.h"
#include "console/installation.h"
#include "console/session.h"
#include "platform/system/virtualeventloop.h"
#include "tests/endurance/judge.h"
#include "tests/endurance/runkind.h"
#include "tests/endurance/tally.h"
#include "tests/endurance/troubles.h"

/// A session of a console at a machine of its own, under virtual time, with some runs in it: which, and what
/// goes wrong meanwhile, is drawn by lot, so a seed repeats it. Each run is judged by the rotor's physics, by
/// the store and by what was told.
class CShift {
public:
    struct CSettings {
        std::uint64_t m_Seed = 1;
        bool m_bTroubles = true;
        int m_nRuns = 0;  ///< 0: some
    };
    CShift(const CSettings& rSettings, CTally& rTally);

    /// OnRun is called after each run, with their number.
    void Work(const std::function<void(int)>& rOnRun = nullptr);

private:
    void Prepare();
    bool Open();
    /// Whether the session may go on.
    bool Run(bool bRebalance);
    /// The rotor wears.
    void Wear();
    ExitCode Drive(CHeadlessRun& rRun, bool bRebalance);
    void Judge(CHeadlessRun& rRun, ExitCode Result, bool bRebalance);
    void JudgeEnd(const nlohmann::json& rReport);
    void Break(const std::string& rPromise);
    std::string GetConnection() const { return "sqlite:" + m_Installation.GetDatabaseFile().string(); }
    /// All configurations and tables of screws, as they are stored.
    std::string ReadStore() const;
    std::string ReadCalibration() const;

    CSettings m_Settings;
    CTally& m_rTally;
    CChance m_Chance;
    CRunKind m_Kind;
    CJudge m_Judge{m_Kind};
    bool m_bNc;
    CConsoleInstallation m_Installation{"", true};
    COptions m_Options;
    CVirtualEventLoop m_Loop;
    std::unique_ptr<CConsoleSession> m_pSession;
    std::unique_ptr<CTroubles> m_pTroubles;
    std::string m_Machine;  ///< of the run: a module that changes its set is another one
    std::string m_Stored;
    std::vector<std::string> m_Lines;
};
