#pragma once
#include <QMainWindow>
#include <memory>
#include <string>

#include "console/screenrun.h"
#include "console/session.h"
#include "platform/system/lifetime.h"
#include "platform/system/timer.h"

class CAccess;
class CArchivedReports;
class CArchiveView;
class CHeadLine;
class CDemoView;
class CHelpView;
class CMachineView;
class CMessageList;
class CMessageLog;
class CPageQuestion;
class CPanelKeys;
class CPanelObserver;
class CSoftkeyBar;
class CSoftkeyControl;
class CLiveView;
class CLogSettings;
class CSidePanel;
class CRunDisplay;
class CTrainingView;
class CVerdictBand;
class CWindowView;
class QVBoxLayout;

/// The console with a screen: the module's page, a bar of softkeys below it, and, with a machine to command,
/// a panel that stands for the machine: spindle, fitted weights and the rotor's true unbalance.
class CMainWindow : public QMainWindow {
public:
    explicit CMainWindow(CConsoleSession& rSession);
    ~CMainWindow() override;

    /// Why the window has ended itself: the options don't go with what the machine is configured for. Empty
    /// if it hasn't.
    const std::string& GetRefusal() const { return m_Refusal; }
    /// Shows the lesson of a training, whose helper fits the weights from now on.
    void Train(CTrainingView& rView);
    /// Offers to switch the traces of the line on.
    void OfferTraces(CLogSettings& rLog);
    /// Ends a run that is under way, and keeps nothing of it.
    void BreakOff() { m_Run.End(false); }

protected:
    void closeEvent(QCloseEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    static constexpr int REFRESH_PERIOD = 250;  ///< ms, of the machine panel

    void MakeSoftkeys();
    /// Asks the module's window to find its module, and again until it has.
    void AskForModule();
    /// Says what is missing while the link isn't open or the module doesn't answer.
    void ShowConnection();
    /// The first time that the module has a configuration: sets it up if nobody has yet.
    void CommissionOnce();
    void MakeHeadLine();
    void MakeAccess();
    void TakePicture();
    void MakeMachineView();
    void MakeArchiveView();
    void MakeIsoView();
    void SwitchLanguage(const std::string& rCode);
    void ShowMachineMeans();
    void PlaceLesson(QWidget& rLesson);
    /// Puts log, configuration and reports into one file for service staff, and says where it lies.
    void MakeServiceFile();

    CConsoleSession& m_rSession;
    CScreenRun m_Run;
    QVBoxLayout* m_pLeft = nullptr;  ///< the page, and what stands right below it
    CWindowView* m_pPage = nullptr;
    CHelpView* m_pHelp = nullptr;
    CArchiveView* m_pArchive = nullptr;
    std::unique_ptr<CArchivedReports> m_pReports;
    CVerdictBand* m_pBand = nullptr;
    CLiveView* m_pLive = nullptr;
    std::unique_ptr<CRunDisplay> m_pDisplay;
    bool m_bLinkOpen = false;  ///< at the last look
    CHeadLine* m_pHeadLine = nullptr;
    std::unique_ptr<CPanelObserver> m_pObserver;
    CSoftkeyBar* m_pSoftkeyBar = nullptr;
    CPageQuestion* m_pQuestion = nullptr;
    std::unique_ptr<CSoftkeyControl> m_pSoftkeys;
    std::unique_ptr<CPanelKeys> m_pKeys;
    std::unique_ptr<CAccess> m_pAccess;
    std::unique_ptr<CMessageLog> m_pMessageLog;
    CMessageList* m_pMessages = nullptr;
    bool m_bConfigured = false;    ///< the module has found its configuration
    bool m_bCommissioned = false;  ///< behind that: no run begins before
    std::string m_Refusal;
    CSidePanel* m_pSide = nullptr;
    CMachineView* m_pMachine = nullptr;
    CDemoView* m_pDemo = nullptr;  ///< with --demo
    QWidget* m_pLesson = nullptr;  ///< of it or of a training, below the page
    CTimer m_RefreshTimer;
    CTimer m_InitTimer;
    CLifetime m_Lifetime;
};
