#pragma once
#include <cstdint>
#include <functional>
#include <optional>

#include "console/pagequestion.h"
#include "console/softkeys.h"
#include "contract/shownconfiguration.h"

class CConsoleSession;
class CHelpView;
class CSoftkeyBar;
struct CSituation;

/// What the softkeys of the window do, and the questions before what can't be undone: a run that ends before
/// its time, a configuration that goes.
class CSoftkeyControl {
public:
    CSoftkeyControl(CConsoleSession& rSession, CSoftkeyBar& rBar, CPageQuestion& rQuestion, CHelpView& rHelp);
    ~CSoftkeyControl();
    CSoftkeyControl(const CSoftkeyControl&) = delete;
    CSoftkeyControl& operator=(const CSoftkeyControl&) = delete;

    /// Shows the keys of the present menu, and takes away a question that is none any more.
    void Refresh();
    /// Whether the window may close now. If not, the question whether it shall is open; OnClose follows when
    /// it is answered so.
    bool MayClose();

    std::function<void()> OnClose;
    std::function<void()> OnCode;
    std::function<void()> OnService;
    /// What speaks against keeping the calibration of the run; empty: nothing does.
    std::function<std::string()> GetDoubt;
    /// Only what changes nothing may be done between runs.
    std::function<bool()> IsLocked;

private:
    enum class About { eNothing, eEnd, eClose, eDelete };

    void OnPressed(const CSoftkey& rKey);
    void OnReleased(const CSoftkey& rKey);
    void ShowHelp();
    /// Whether ending the run now loses anything that was done for it.
    bool WouldLose(const CSituation& rSituation) const;
    /// Whether ending the run now would keep a calibration that there is a doubt about.
    bool IsDoubted(const CSituation& rSituation) const;
    /// Whether to keep it; Then comes after an answer that ends the run.
    void AskToKeep(About What, std::function<void()> Then);
    void AskToEnd(About What, const char* pTitleKey, std::function<void()> Do);
    void AskToDelete();
    void Ask(About What, CPageQuestion::CQuestion Question);
    /// Whether what was asked about is gone, or somebody else has taken over.
    bool IsOutOfDate() const;
    /// Says that an NC acts where the operator did last.
    void NoticeNc();
    CSoftkeys::CState GetState() const;

    CConsoleSession& m_rSession;
    CSoftkeyBar& m_rBar;
    CPageQuestion& m_rQuestion;
    CHelpView& m_rHelp;
    CSoftkeys m_Softkeys;
    About m_About = About::eNothing;
    std::int32_t m_Activity = 0;      ///< when the question was asked
    std::uint32_t m_nNcRequests = 0;  ///< likewise
    std::uint32_t m_nNcSeen = 0;      ///< requests, at the last look
    bool m_bByPanel = false;          ///< the last action came from here
};
