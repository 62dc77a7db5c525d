#include "console/mainwindow.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "contract/actions.h"
#include "platform/qt/windowview.h"
#include "platform/rvcom/rvcom.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/eventloop.h"

namespace {

constexpr int MAX_SPEED = 60000;
constexpr std::uint32_t INIT_PERIOD = 5000;

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

}  // namespace

CMainWindow::CMainWindow(CConsoleSession& rSession) : m_rSession(rSession), m_Run(rSession) {
    setWindowTitle(QString::fromUtf8(CHostWindow::TITLE));
    auto* pCentral = new QWidget(this);
    auto* pColumns = new QHBoxLayout(pCentral);
    auto* pLeft = new QVBoxLayout();
    m_pPage = new CWindowView(rSession.GetHost(), pCentral);
    pLeft->addWidget(m_pPage, 1);
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
        ShowMenu();
        ShowConnection();
        m_Run.OnPanelChanged();
    };
    m_rSession.OnSay = [this](const std::string& rText) {
        statusBar()->showMessage(QString::fromStdString(rText));
    };
    m_Run.OnSay = m_rSession.OnSay;
    m_RefreshTimer.StartPeriodic(eRefreshPeriod, [this] {
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
    for (std::size_t i = 0; i < eNumberOfKeys; ++i) {
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

void CMainWindow::ShowMenu() {
    const bool bReady = m_rSession.GetHost().IsConfigured();
    const std::span<const MenuKeys::CKey> Keys = MenuKeys::GetKeys(m_rSession.GetHost().GetMenu());
    m_Shown.assign(Keys.begin(), Keys.end());
    for (std::size_t i = 0; i < eNumberOfKeys; ++i) {
        const bool bUsed = bReady && i < m_Shown.size();
        const bool bNeedsCalibration =
            bUsed && m_rSession.GetHost().GetActivity() == 0 && m_Shown[i].m_Action == Actions::eRebalance;
        m_Keys[i]->setText(bUsed ? Text(m_Shown[i].m_pTextKey) : QString());
        m_Keys[i]->setEnabled(bUsed && (!bNeedsCalibration || m_rSession.GetHost().IsCalibrated()));
    }
}

void CMainWindow::OnKeyDown(std::size_t Index) {
    if (Index < m_Shown.size()) {
        const MenuKeys::CKey Key = m_Shown[Index];
        m_rSession.SendAction(Key.m_Action, Key.m_Flag);
    }
}

void CMainWindow::OnKeyUp(std::size_t Index) {
    // The menu may have changed while the key was down; only a repeating key has to be let go.
    if (Index < m_Shown.size() && m_Shown[Index].m_bRepeats) {
        m_rSession.SendAction(m_Shown[Index].m_Action, Actions::eNone);
    }
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
    for (std::size_t Plane = 0; Plane < Situation.m_Progress.m_Readings.size(); ++Plane) {
        const std::vector<int> Angles = Situation.GetAngles(Plane);
        if (Situation.m_bRunning && !Angles.empty()) {
            Command({{"weights", {{"plane", Plane + 1}, {"angles", Angles}}}});
        }
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
