#include "console/mainwindow.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "console/access.h"
#include "console/archivedreports.h"
#include "console/archiveview.h"
#include "console/demoview.h"
#include "console/headline.h"
#include "console/helpview.h"
#include "console/isoaccess.h"
#include "console/isoview.h"
#include "console/language.h"
#include "console/liveview.h"
#include "console/logsettings.h"
#include "console/machineview.h"
#include "console/messagelist.h"
#include "console/pagepicture.h"
#include "console/pagequestion.h"
#include "console/panelkeys.h"
#include "console/panelobserver.h"
#include "console/rundisplay.h"
#include "console/runsetup.h"
#include "console/servicebundle.h"
#include "console/sidepanel.h"
#include "console/softkeybar.h"
#include "console/softkeycontrol.h"
#include "console/trainingview.h"
#include "console/verdictband.h"
#include "console/windowscale.h"
#include "contract/hostmessages.h"
#include "contract/menus.h"
#include "platform/qt/windowview.h"
#include "platform/rvcom/rvcom.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/eventloop.h"
#include "platform/system/files.h"
#include "platform/system/localtime.h"
#include "platform/window/messagebox.h"
#include "rvlib/settings/installation.h"

namespace {

constexpr std::uint32_t INIT_PERIOD = 5000;
constexpr QSize SMALLEST(800, 480);
constexpr int BELOW_THE_PAGE = 2;  // row of what explains the run

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

}  // namespace

CMainWindow::CMainWindow(CConsoleSession& rSession)
    : m_rSession(rSession), m_Run(rSession), m_pMessageLog(std::make_unique<CMessageLog>()) {
    setWindowTitle(QString::fromUtf8(CHostWindow::TITLE));
    auto* pCentral = new QWidget(this);
    auto* pRows = new QVBoxLayout(pCentral);
    m_pHeadLine = new CHeadLine(pCentral);
    pRows->addWidget(m_pHeadLine);
    auto* pColumns = new QHBoxLayout();
    pRows->addLayout(pColumns, 1);
    m_pLeft = new QVBoxLayout();
    m_pPage = new CWindowView(rSession.GetHost(), pCentral);
    m_pLeft->addWidget(m_pPage, 1);
    m_pHelp = new CHelpView(*m_pPage);
    m_pBand = new CVerdictBand(pCentral);
    pRows->addWidget(m_pBand);
    m_pSoftkeyBar = new CSoftkeyBar(pCentral);
    pRows->addWidget(m_pSoftkeyBar);
    m_pLive = new CLiveView(pCentral);
    m_pDisplay = std::make_unique<CRunDisplay>(rSession, *m_pBand, *m_pLive);
    m_pDisplay->GetAdvice = [this] { return m_Run.GetAdviser().Get(); };
    pColumns->addLayout(m_pLeft, 1);
    m_pSide = new CSidePanel(pCentral);
    pColumns->addWidget(m_pSide);
    m_pSide->AddView(m_pLive, "SIDE_LIVE", "crosshair");
    MakeMachineView();
    MakeIsoView();
    m_pMessages = new CMessageList(*m_pMessageLog, pCentral);
    m_pMessages->OnService = [this] { MakeServiceFile(); };
    m_pSide->AddView(m_pMessages, "SIDE_MESSAGES", "message-square");
    MakeArchiveView();
    m_pSide->AddKey([] { return QString::fromStdString(GetNativeName(GetNextLanguage())); }, "languages",
                    [this] { SwitchLanguage(GetNextLanguage()); });
    m_pSide->Unfold(m_pMachine != nullptr ? static_cast<QWidget*>(m_pMachine) : m_pLive);
    if (rSession.GetOptions().m_bDemo && rSession.GetMachine() != nullptr) {
        m_pDemo = new CDemoView(rSession, *rSession.GetMachine(), rSession.GetWorkingSpeed(), pCentral);
    }
    setCentralWidget(pCentral);
    if (m_pDemo != nullptr) {
        PlaceLesson(*m_pDemo);
    }
    // What is large for a large window is no reason not to make it smaller.
    layout()->setSizeConstraint(QLayout::SetNoConstraint);
    setMinimumSize(SMALLEST);
    resize(1000, 640);
    MakeSoftkeys();
    MakeHeadLine();
    MakeAccess();

    m_rSession.OnChanged = [this] {
        CommissionOnce();
        m_pSoftkeys->Refresh();
        ShowConnection();
        m_pDisplay->Look();
        ShowMachineMeans();
        if (m_bCommissioned) {
            m_Run.OnPanelChanged();
        }
    };
    m_rSession.OnSay = [this](const std::string& rText) {
        m_pObserver->Say(rText);
        m_pMessageLog->Say(rText);
        m_pHeadLine->Show(m_pObserver->Look());
    };
    m_Run.OnSay = m_rSession.OnSay;
    m_RefreshTimer.StartPeriodic(REFRESH_PERIOD, [this] {
        m_pSoftkeys->Refresh();  // a table that has got another name isn't told
        ShowConnection();
        m_pHeadLine->Show(m_pObserver->Look());
        m_pDisplay->Look();
    });
    m_pSoftkeys->Refresh();
    ShowConnection();
}

CMainWindow::~CMainWindow() {
    m_Lifetime.End();
    m_pReports.reset();
    m_Run.End(true);
    m_rSession.OnChanged = nullptr;
    m_rSession.OnSay = nullptr;
    m_RefreshTimer.Stop();
    m_InitTimer.Stop();
    m_pObserver.reset();
    m_pDisplay.reset();
    m_rSession.Close();
}

void CMainWindow::AskForModule() {
    m_rSession.SendInit();
    // A module that is switched on later answers a later question. Without a link none can be asked.
    m_InitTimer.StartPeriodic(INIT_PERIOD, [this] {
        if (m_rSession.GetHost().IsConfigured()) {
            m_InitTimer.Stop();
        } else if (rvCOM::IsLinkOpen()) {
            m_rSession.SendInit();
        }
    });
}

void CMainWindow::ShowConnection() {
    const bool bOpen = rvCOM::IsLinkOpen();
    const bool bConfigured = m_rSession.GetHost().IsConfigured();
    if (!std::exchange(m_bLinkOpen, bOpen) && bOpen && !bConfigured) {
        AskForModule();
    }
    QString Missing;
    if (!bOpen || !bConfigured) {
        const COptions& rOptions = m_rSession.GetOptions();
        QStringList Addresses;
        for (const std::uint8_t Address : rOptions.m_Addresses) {
            Addresses << QString::number(Address);
        }
        Missing = Text(bOpen ? "CONSOLE_WAITING" : "CONSOLE_NO_LINK")
                      .arg(QString::fromStdString(rOptions.m_Link), Addresses.join(", "));
        if (!bOpen) {
            Missing += " " + QString::fromStdString(rvCOM::GetOutageReason());
        }
    }
    m_pBand->ShowMissing(Missing.trimmed());
}

void CMainWindow::MakeSoftkeys() {
    m_pQuestion = new CPageQuestion(*m_pPage);
    m_pSoftkeys = std::make_unique<CSoftkeyControl>(m_rSession, *m_pSoftkeyBar, *m_pQuestion, *m_pHelp);
    m_pSoftkeys->OnClose = [this] { close(); };
    m_pSoftkeys->GetDoubt = [this] { return m_Run.GetAdviser().GetDoubt(); };
    m_pKeys = std::make_unique<CPanelKeys>(*this, *m_pSoftkeyBar, *m_pQuestion);
    m_pKeys->OnFullScreen = [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); };
    m_pKeys->OnPicture = [this] { TakePicture(); };
    m_pKeys->IsRunOnPage = [this] {
        return m_rSession.GetHost().GetMenu() != Menus::eNone && !m_pHelp->IsOpen() && !m_pQuestion->IsOpen();
    };
}

void CMainWindow::MakeHeadLine() {
    m_pObserver = std::make_unique<CPanelObserver>(m_rSession);
    const auto Tell = [this](const char* pTitleKey, std::function<std::string()> GetWords) {
        m_pQuestion->Ask({pTitleKey, std::move(GetWords), {{"CONSOLE_UNDERSTOOD", {}}}});
    };
    m_pHeadLine->OnLight = [this, Tell](CHeadState::Place Place) {
        Tell(CHeadLine::GetNameKey(Place),
             [this, Place] { return m_pObserver->Look().m_Lights.at(Place).m_Text; });
    };
    m_pHeadLine->OnMachine = [this, Tell] {
        Tell("HEAD_MACHINE", [this] {
            const CHeadState State = m_pObserver->Look();
            return State.m_Machine + "\n" + State.m_Configuration;
        });
    };
    m_pHeadLine->OnMessage = [this] { m_pSide->Unfold(m_pMessages->isHidden() ? m_pMessages : nullptr); };
    m_pHeadLine->Show(m_pObserver->Look());
}

void CMainWindow::SwitchLanguage(const std::string& rCode) {
    if (UseLanguage(rCode)) {
        m_rSession.GetModule().SendMessage(WM_RV_LANGUAGECHANGED);
        WriteChosenLanguage(Files::ToNative(GetConfigDirectory().GetText()), rCode);
    }
}

void CMainWindow::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::LanguageChange) {
        m_pSoftkeys->Refresh();
        ShowConnection();
        m_pHeadLine->Show(m_pObserver->Look());
        m_pDisplay->Look();
    }
    QMainWindow::changeEvent(pEvent);
}

void CMainWindow::resizeEvent(QResizeEvent* pEvent) {
    m_pSide->FitWindow();
    if (m_pLesson != nullptr) {
        ScaleFont(*m_pLesson);
    }
    m_pBand->updateGeometry();  // its height goes with the window's
    QMainWindow::resizeEvent(pEvent);
}

void CMainWindow::closeEvent(QCloseEvent* pEvent) {
    // Who ends the program doesn't wait for an answer.
    const bool bMayClose = !m_rSession.GetOptions().GetEndRequest().empty() || m_pSoftkeys->MayClose();
    pEvent->setAccepted(bMayClose);
}

void CMainWindow::MakeAccess() {
    m_pAccess = std::make_unique<CAccess>(*m_pPage, *m_pQuestion,
                                          Files::ToNative(GetConfigDirectory().GetText()) + "/code.json");
    m_pAccess->IsRunning = [this] { return m_rSession.GetHost().GetMenu() != Menus::eNone; };
    m_pAccess->OnChanged = [this] { m_pSoftkeys->Refresh(); };
    m_pAccess->OnSay = [this](const std::string& rText) { m_rSession.Say(rText); };
    m_pSoftkeys->IsLocked = [this] { return m_pAccess->IsLocked(); };
    m_pSoftkeys->OnCode = [this] { m_pAccess->OnKey(); };
    m_pSoftkeys->OnService = [this] { MakeServiceFile(); };
}

void CMainWindow::MakeServiceFile() {
    if (m_pAccess->IsLocked()) {
        m_rSession.Say(GetText("CODE_WITHHELD"));
        return;
    }
    const std::filesystem::path Root = Files::ToNative(GetRootDirectory().GetText());
    const std::filesystem::path File =
        Root / "service" /
        FormatLocalTime(IFEventLoop::Current().WallClock(), "service-%Y%m%d-%H%M%S.tar.gz");
    const std::string Trouble =
        MakeServiceBundle({Root,
                           Lights::LookAtDatabase(PreBalDB::GetDatabaseConnection()).m_File,
                           {m_rSession.GetOptions().m_ReportFile}},
                          File);
    m_rSession.Say(Text(Trouble.empty() ? "SERVICE_MADE" : "SERVICE_FAILED")
                       .arg(QString::fromStdString(Trouble.empty() ? File.string() : Trouble))
                       .toStdString());
}

void CMainWindow::OfferTraces(CLogSettings& rLog) {
    m_pMessages->OfferTraces([&rLog](bool bTrace) { rLog.TraceLine(bTrace); });
}

void CMainWindow::TakePicture() {
    const std::string& rWanted = m_rSession.GetOptions().m_ScreenshotDirectory;
    const std::string Directory =
        rWanted.empty() ? Files::ToNative(GetRootDirectory().GetText()) + "/pictures" : rWanted;
    const std::string File = SavePagePicture(m_rSession, Directory);
    m_rSession.Say(Text(File.empty() ? "CONSOLE_NOT_WRITTEN" : "CONSOLE_PICTURE")
                       .arg(QString::fromStdString(File.empty() ? Directory : File))
                       .toStdString());
}

void CMainWindow::CommissionOnce() {
    if (m_bConfigured || !m_rSession.GetHost().IsConfigured()) {
        return;
    }
    m_bConfigured = true;
    // Not from within the module's own message: it reads its configuration anew then.
    IFEventLoop::Current().Post(m_Lifetime.Guard([this] {
        try {
            m_rSession.Commission();
        } catch (const CSessionError& rError) {
            m_Refusal = rError.what();
            close();
            return;
        } catch (const std::runtime_error& rError) {
            ShowMessageBox(rError.what(), "Error");
        }
        m_bCommissioned = true;
        ShowMachineMeans();
        if (m_pDemo != nullptr) {
            m_pDemo->GetDemo().Start(m_rSession.GetHoleRings());
        }
        m_Run.OnPanelChanged();
    }));
}

void CMainWindow::MakeMachineView() {
    if (m_rSession.GetMachine() == nullptr) {
        return;
    }
    m_pMachine = new CMachineView(*m_rSession.GetMachine(), m_rSession.GetWorkingSpeed(), this);
    m_pMachine->GetFittings = [this] {
        const CSituation Situation = m_rSession.Look();
        return Situation.m_bRunning ? FindFittings(Situation, m_rSession.GetHoleRings())
                                    : std::vector<CFitting>();
    };
    m_pMachine->OnSay = [this](const std::string& rText) { m_rSession.Say(rText); };
    m_pSide->AddView(m_pMachine, "SIDE_MACHINE", "rotate-cw");
}

void CMainWindow::MakeArchiveView() {
    m_pArchive = new CArchiveView(*m_pPage);
    m_pArchive->SetArchive(m_Run.GetArchive());
    m_pArchive->OnRotorName = [this](const std::string& rName) { m_rSession.SetRotorName(rName); };
    m_pReports =
        std::make_unique<CArchivedReports>(Files::ToNative(GetRootDirectory().GetText()) + "/reports");
    m_pReports->OnSay = [this](const std::string& rText) { m_rSession.Say(rText); };
    m_pArchive->OnReport = [this](std::int64_t Id) { m_pReports->Write(*m_Run.GetArchive(), Id); };
    m_pSide->AddKey([] { return Text("SIDE_ARCHIVE"); }, "history",
                    [this] {
                        m_pArchive->ShowMachine(m_rSession.GetMachineName(),
                                                m_rSession.GetOptions().m_RotorName);
                        m_pArchive->Toggle();
                    });
}

void CMainWindow::MakeIsoView() {
    if (m_rSession.GetOptions().IsLesson()) {
        return;
    }
    auto* const pIso = new CIsoView(m_pSide->parentWidget());
    pIso->GetKey = [this] {
        const CShownConfiguration Shown = m_rSession.GetShownConfiguration().value_or(CShownConfiguration());
        return Shown.m_Machine + "\n" + Shown.m_Name;
    };
    pIso->GetSetup = [this]() -> std::optional<CRunSetup> {
        return m_rSession.GetShownConfiguration() ? std::optional(ReadRunSetup(m_rSession)) : std::nullopt;
    };
    pIso->OnChanged = [this](const CIsoData& rData) {
        const CShownConfiguration Shown = m_rSession.GetShownConfiguration().value_or(CShownConfiguration());
        return IsoAccess::Write(Shown.m_Machine, Shown.m_Name, rData);
    };
    m_pSide->AddView(pIso, "SIDE_ISO", "gauge");
}

void CMainWindow::ShowMachineMeans() {
    if (m_pMachine != nullptr) {
        m_pMachine->Show(m_rSession.GetMachineMeans());
    }
}

void CMainWindow::PlaceLesson(QWidget& rLesson) {
    m_pLesson = &rLesson;
    auto* const pRows = static_cast<QVBoxLayout*>(centralWidget()->layout());
    pRows->insertWidget(BELOW_THE_PAGE, m_pLesson);
    // The band makes room for it: below the page only.
    pRows->removeWidget(m_pBand);
    m_pLeft->addWidget(m_pBand);
}

void CMainWindow::Train(CTrainingView& rView) {
    PlaceLesson(rView);
    ScaleFont(rView);
    m_pMachine->GetFittings = [Wanted = m_pMachine->GetFittings, &rView] {
        return rView.GetLesson().Fit(Wanted());
    };
}
