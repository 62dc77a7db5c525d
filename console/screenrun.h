#pragma once
#include <functional>
#include <string>
#include <vector>

#include "console/ncwatch.h"
#include "console/runrecorder.h"
#include "console/session.h"
#include "contract/actions.h"

/// The runs of a session with a window, which a person drives at the panel, or an NC: begins with the
/// procedures that the command line asks for, keeps pictures, and writes the report of each run when it ends.
class CScreenRun {
public:
    explicit CScreenRun(CConsoleSession& rSession);
    ~CScreenRun();
    CScreenRun(const CScreenRun&) = delete;
    CScreenRun& operator=(const CScreenRun&) = delete;

    /// To be called when menu, activity, notification or warning have changed.
    void OnPanelChanged() { m_Recorder.RecordLater(); }
    /// Where the runs are kept; null if they aren't.
    CRunArchive* GetArchive() { return m_Recorder.GetArchivist().GetArchive(); }
    CRunAdviser& GetAdviser() { return m_Recorder.GetAdviser(); }
    /// Ends a run that is under way. bKeep: as the key that finishes it does, which keeps a result that may
    /// be kept.
    void End(bool bKeep);

    /// Takes what the operator has to know.
    std::function<void(const std::string&)> OnSay;

private:
    /// Looks at what there is after a change, and begins what is to be begun.
    void GoOn();
    void StartNext();
    void FinishRun(bool bFinished);

    CConsoleSession& m_rSession;
    CRunRecorder m_Recorder;
    CNcWatch m_Watch;
    std::vector<Actions::Action> m_ToStart;  ///< last one first
    bool m_bRunning = false;                 ///< at the last look
    bool m_bPrebalanced = false;             ///< in the run that the report is of
    bool m_bRebalanced = false;
};
