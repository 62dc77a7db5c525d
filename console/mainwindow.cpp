#include "console/mainwindow.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "console/helpview.h"
#include "contract/actions.h"
#include "contract/helptopics.h"
#include "contract/hostmessages.h"
#include "contract/pages.h"
#include "platform/qt/windowview.h"
#include "platform/rvcom/rvcom.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storetexts.h"
#include "platform/system/eventloop.h"
#include "platform/window/messagebox.h"

namespace {

constexpr int MAX_SPEED = 60000;
constexpr std::uint32_t INIT_PERIOD = 5000;

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

/// Broken at the blank nearest to its middle: keys are higher than they are wide.
QString InTwoLines(const QString& rText) {
    const auto Middle = rText.size() / 2;
    const auto Before = rText.lastIndexOf(' ', Middle);
    const auto Behind = rText.indexOf(' ', Middle);
    const bool bBefore = Before >= 0 && (Behind < 0 || Middle - Before <= Behind - Middle);
    const auto Place = bBefore ? Before : Behind;
    constexpr int WIDE = 9;  // characters
    return Place < 0 || rText.size() <= WIDE ? rText : rText.left(Place) + "\n" + rText.mid(Place + 1);
}

}  // namespace

CMainWindow::CMainWindow(CConsoleSession& rSession) : m_rSession(rSession), m_Run(rSession) {
    setWindowTitle(QString::fromUtf8(CHostWindow::TITLE));
    auto* pCentral = new QWidget(this);
    auto* pColumns = new QHBoxLayout(pCentral);
    auto* pLeft = new QVBoxLayout();
    m_pPage = new CWindowView(rSession.GetHost(), pCentral);
    pLeft->addWidget(m_pPage, 1);
    m_pHelp = new CHelpView(*m_pPage);
    m_pConnection = new QLabel(pCentral);
    m_pConnection->setWordWrap(true);
    m_pConnection->setMargin(6);
    m_pConnection->setAutoFillBackground(true);
    m_pConnection->setBackgroundRole(QPalette::ToolTipBase);
    m_pConnection->setForegroundRole(QPalette::ToolTipText);
    pLeft->addWidget(m_pConnection);
    pLeft->addWidget(MakeSoftkeyBar());
    pColumns->addLayout(pLeft, 1);
    if (rSession.GetMachine() != nullptr) {
        pColumns->addWidget(MakeMachinePanel());
    }
    setCentralWidget(pCentral);
    resize(1000, 640);

    m_rSession.OnChanged = [this] {
        CommissionOnce();
        ShowMenu();
        ShowConnection();
        if (m_bCommissioned) {
            m_Run.OnPanelChanged();
        }
    };
    m_rSession.OnSay = [this](const std::string& rText) {
        statusBar()->showMessage(QString::fromStdString(rText));
    };
    m_Run.OnSay = m_rSession.OnSay;
    m_RefreshTimer.StartPeriodic(eRefreshPeriod, [this] {
        ShowMenu();  // a table that has got another name isn't told
        ShowConnection();
        RefreshMachine();
    });
    ShowMenu();
    ShowConnection();
}

CMainWindow::~CMainWindow() {
    m_Lifetime.End();
    m_Run.End(true);
    m_rSession.OnChanged = nullptr;
    m_rSession.OnSay = nullptr;
    m_RefreshTimer.Stop();
    m_InitTimer.Stop();
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
    m_pConnection->setText(Missing.trimmed());
    m_pConnection->setVisible(!Missing.isEmpty());
}

QWidget* CMainWindow::MakeSoftkeyBar() {
    auto* pBar = new QWidget(this);
    auto* pRow = new QHBoxLayout(pBar);
    pRow->setContentsMargins(0, 0, 0, 0);
    for (std::size_t i = 0; i < m_Keys.size(); ++i) {
        m_Keys[i] = new QPushButton(pBar);
        m_Keys[i]->setMinimumHeight(48);
        m_Keys[i]->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        // As the keys beside a panel: an edit that is open in the page stays open, and the key can work on
        // it.
        m_Keys[i]->setFocusPolicy(Qt::NoFocus);
        connect(m_Keys[i], &QPushButton::pressed, this, [this, i] { OnKeyDown(i); });
        connect(m_Keys[i], &QPushButton::released, this, [this, i] { OnKeyUp(i); });
        pRow->addWidget(m_Keys[i], 1);
    }
    return pBar;
}

QWidget* CMainWindow::MakeMachinePanel() {
    auto* pBox = new QGroupBox(Text("CONSOLE_MACHINE"), this);
    pBox->setMinimumWidth(230);
    auto* pColumn = new QVBoxLayout(pBox);
    auto* pForm = new QFormLayout();
    m_pSpeed = new QSpinBox(pBox);
    m_pSpeed->setRange(0, MAX_SPEED);
    m_pSpeed->setSingleStep(100);
    m_pSpeed->setSuffix(" " + Text("RPM"));
    m_pSpeed->setValue(static_cast<int>(m_rSession.GetWorkingSpeed()));
    pForm->addRow(Text("CONSOLE_SPEED"), m_pSpeed);
    pColumn->addLayout(pForm);
    const auto AddButton = [&](const char* pKey, auto OnClick) {
        auto* pButton = new QPushButton(Text(pKey), pBox);
        pButton->setMinimumHeight(40);
        connect(pButton, &QPushButton::clicked, this, OnClick);
        pColumn->addWidget(pButton);
    };
    AddButton("CONSOLE_START", [this] { Command({{"speed", m_pSpeed->value()}}); });
    AddButton("CONSOLE_STOP", [this] { Command({{"speed", 0}}); });
    m_pMachineState = new QLabel(pBox);
    pColumn->addWidget(m_pMachineState);
    AddButton("CONSOLE_FIT", [this] { FitAsShown(); });
    m_pWeights = new QLabel(pBox);
    pColumn->addWidget(m_pWeights);
    m_pResidual = new QLabel(pBox);
    pColumn->addWidget(m_pResidual);
    pColumn->addStretch(1);
    return pBox;
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
        m_Run.OnPanelChanged();
    }));
}

CSoftkeys::CState CMainWindow::GetSoftkeyState() const {
    const CHostWindow& rHost = m_rSession.GetHost();
    const bool bTable = rHost.GetPage() == Pages::eScrewTable;
    const CShownConfiguration Shown = m_rSession.GetShownConfiguration().value_or(CShownConfiguration());
    const std::string& rName = bTable ? Shown.m_ScrewTable : Shown.m_Name;
    return {rHost.IsConfigured(), rHost.GetMenu(), rHost.GetPage(), rHost.GetSoftkeyBits(),
            !rName.empty() && rName != "Default"};
}

void CMainWindow::ShowMenu() {
    m_Softkeys.SetState(GetSoftkeyState());
    const std::vector<CSoftkey>& rShown = m_Softkeys.GetShown();
    for (std::size_t i = 0; i < m_Keys.size(); ++i) {
        const bool bUsed = i < rShown.size() && rShown[i].m_Kind != CSoftkey::eNone;
        m_Keys[i]->setText(bUsed ? InTwoLines(Text(rShown[i].m_pTextKey)) : QString());
        m_Keys[i]->setEnabled(i < rShown.size() && rShown[i].m_bEnabled);
    }
}

void CMainWindow::OnKeyDown(std::size_t Index) {
    if (Index >= m_Softkeys.GetShown().size()) {
        return;
    }
    const CSoftkey Key = m_Softkeys.GetShown()[Index];
    switch (Key.m_Kind) {
        case CSoftkey::eNone:
            break;
        case CSoftkey::eModule:
            m_Down.at(Index) = Key.m_Key;
            m_rSession.SendAction(Key.m_Key.m_Action, Key.m_Key.m_Flag);
            break;
        case CSoftkey::eMore:
            m_Softkeys.More();
            ShowMenu();
            break;
        case CSoftkey::eHelp:
            ShowHelp();
            break;
        case CSoftkey::eDelete:
            AskToDelete();
            break;
    }
}

void CMainWindow::OnKeyUp(std::size_t Index) {
    // The menu may have changed while the key was down: what is let go is what was pressed.
    const std::optional<MenuKeys::CKey> Key = std::exchange(m_Down.at(Index), std::nullopt);
    if (Key && Key->m_bRepeats) {
        m_rSession.SendAction(Key->m_Action, Actions::eNone);
    }
}

void CMainWindow::ShowHelp() {
    // Between runs the page has a pane for the help; the key then shows it large.
    const CSituation Situation = m_rSession.Look();
    const bool bTable = m_rSession.GetHost().GetPage() == Pages::eScrewTable;
    const char* pTopic = bTable ? HelpTopics::SCREW_TABLE_PAGE : HelpTopics::SETTINGS_PAGE;
    if (Situation.m_bRunning) {
        pTopic = HelpTopics::Find(Situation.m_Progress);
    }
    m_pHelp->ToggleTopic(pTopic);
}

void CMainWindow::AskToDelete() {
    const std::optional<CShownConfiguration> Shown = m_rSession.GetShownConfiguration();
    if (!Shown) {
        return;
    }
    const bool bTable = m_rSession.GetHost().GetPage() == Pages::eScrewTable;
    const QString Question = Text(bTable ? "CONSOLE_ASK_DELETE_TABLE" : "CONSOLE_ASK_DELETE_CONFIGURATION")
                                 .arg(QString::fromStdString(bTable ? Shown->m_ScrewTable : Shown->m_Name));
    auto* const pBox =
        new QMessageBox(QMessageBox::Question, Text("CONSOLE_DELETE"), Question, QMessageBox::NoButton, this);
    pBox->setAttribute(Qt::WA_DeleteOnClose);
    const QPushButton* const pDelete = pBox->addButton(Text("CONSOLE_DELETE"), QMessageBox::DestructiveRole);
    pBox->setDefaultButton(pBox->addButton(Text("CONSOLE_KEEP"), QMessageBox::RejectRole));
    connect(pDelete, &QPushButton::clicked, this, [this, Shown, bTable] { Delete(*Shown, bTable); });
    pBox->open();
}

void CMainWindow::Delete(const CShownConfiguration& rShown, bool bTable) {
    try {
        PreBalDB::CPreBalDatabase Database(rShown.m_Machine);
        const int bDeleted = bTable ? Database.DeleteScrewTable(rShown.m_ScrewTable)
                                    : Database.DeleteConfiguration(rShown.m_Name);
        if (bDeleted == 0) {
            ShowMessageBox(PreBalDB::StoreTexts::GetDeletion(bTable ? rShown.m_ScrewTable : rShown.m_Name,
                                                             Database.GetOutcome()),
                           GetText("CONSOLE_DELETE"));
            return;
        }
    } catch (const PreBalDB::CDatabaseError& rError) {
        ShowMessageBox(rError.what(), GetText("CONSOLE_DELETE"));
        return;
    }
    m_rSession.GetModule().SendMessage(WM_RV_STORECHANGED);
    ShowMenu();
}

void CMainWindow::Command(const nlohmann::json& rRequest) {
    m_rSession.GetMachine()->Request(rRequest, m_Lifetime.Guard([this](const nlohmann::json& rAnswer) {
        if (rAnswer.contains("error")) {
            m_rSession.Say(rAnswer["error"].get<std::string>());
        }
    }));
}

void CMainWindow::FitAsShown() {
    const CSituation Situation = m_rSession.Look();
    if (!Situation.m_bRunning) {
        return;
    }
    for (const CFitting& rFitting : FindFittings(Situation, m_rSession.GetHoleRings())) {
        Command(MakeRequest(rFitting));
    }
}

void CMainWindow::RefreshMachine() {
    if (m_rSession.GetMachine() == nullptr) {
        return;
    }
    m_rSession.GetMachine()->Request(
        {{"state", nlohmann::json::object()}}, m_Lifetime.Guard([this](const nlohmann::json& rState) {
            if (!rState.contains("fitted")) {
                return;
            }
            m_pMachineState->setText(
                QString("%1 %2, %3")
                    .arg(rState.value("speed", 0.0), 0, 'f', 0)
                    .arg(Text("RPM"),
                         Text(rState.value("lock", false) ? "CONSOLE_LOCKED" : "CONSOLE_NOT_LOCKED")));
            QStringList Angles;
            for (const nlohmann::json& rAngle : rState["fitted"].front()["weights"]) {
                Angles << QString("%1°").arg(rAngle.get<int>());
            }
            m_pWeights->setText(Text("CONSOLE_WEIGHTS") + " " + (Angles.isEmpty() ? "–" : Angles.join(", ")));
            m_pResidual->setText(QString("%1: %2")
                                     .arg(Text("CONSOLE_RESIDUAL"))
                                     .arg(rState["residual"].front()["amount"].get<double>(), 0, 'f', 4));
        }));
}
