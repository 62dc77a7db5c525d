#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "console/session.h"
#include "platform/rvmdb/directsql.h"
#include "simulator/simulator.h"
#include "tests/support/chance.h"

/// Everything that goes wrong around a session: on its line, in its module, at its NC, in its store, at its
/// window. Drawn by lot for each run, it happens at a moment of virtual time of its own, and is mended at the
/// end of the run.
class CTroubles {
public:
    enum Kind : std::uint8_t {
        eFramesLost,
        eFramesDoubled,
        eFramesLate,
        eFramesCut,
        eFramesCorrupt,
        eSilence,      ///< the line is dead for some seconds
        eDeadLine,     ///< for good
        eLineCut,      ///< closed for some seconds
        eUnlock,       ///< the module loses its lock
        eLateAnswers,  ///< overtaken by the module's reports
        eOtherSet,     ///< the module changes its set
        eSaveFails,
        eStoreLocked,  ///< longer than anybody waits
        eStoreSlow,
        eOtherWriter,
        eNcLost,
        eNcNonsense,
        eShownAndHidden,
        eNumberOfKinds
    };
    static const char* GetName(Kind What);
    /// Whether a run that doesn't come to a saved result is explained by it.
    static bool MayEndRun(Kind What);

    CTroubles(CConsoleSession& rSession, std::string Connection, CChance& rChance);
    ~CTroubles();
    CTroubles(const CTroubles&) = delete;
    CTroubles& operator=(const CTroubles&) = delete;

    /// Draws what goes wrong in the next run: with an NC of its own, and with real waiting for the store.
    void Begin(bool bNc);
    /// Strikes the line at once, with nobody to mend it: it mends itself.
    static Kind StrikeLine(CSimulator& rSimulator, CChance& rChance, std::string& rHow);
    /// Mends everything.
    void End();
    /// What has really happened since Begin, and when, in words.
    const std::set<Kind>& GetHappened() const { return m_Happened; }
    const std::string& GetHistory() const { return m_History; }
    /// The set of the module is another one now: its configuration is not the run's.
    bool IsSetChanged() const { return m_Happened.contains(eOtherSet); }

    /// Called when another console has written to the store.
    std::function<void()> OnStoreChanged;

private:
    void Later(std::uint32_t Milliseconds, std::function<void()> What);
    void Happen(Kind What, const std::string& rHow);
    void DrawFrames();
    void DrawLine();
    void DrawStore();
    void DrawNc();
    static std::string StrikeFrames(CSimulator& rSimulator, Kind What, CChance& rChance);
    CSimulator& GetSimulator() const { return *m_rSession.GetSimulator(); }
    void LoseNc(bool bLost);
    void WriteNonsense();
    void LockStore(std::uint32_t RealMilliseconds);

    CConsoleSession& m_rSession;
    std::string m_Connection;
    CChance& m_rChance;
    std::set<Kind> m_Happened;
    std::string m_History;
    std::set<std::uint32_t> m_Timers;
    std::uint64_t m_Begin = 0;
    std::unique_ptr<PreBalDB::CDirectSQL> m_pOther;
    std::unique_ptr<PreBalDB::CTransaction> m_pHolder;
    std::thread m_SlowHolder;
    bool m_bNcLost = false;
    bool m_bSabotaged = false;
};
