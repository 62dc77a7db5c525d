#include "console/machineview.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QStackedWidget>
#include <QToolButton>
#include <algorithm>
#include <iterator>
#include <utility>

#include "console/machinefaults.h"
#include "console/rotorview.h"
#include "console/windowscale.h"
#include "platform/rvldb/gettext.h"

namespace {

constexpr int MAX_SPEED = 60000;
constexpr std::uint32_t REFUSAL_TIME = 5000;  // ms
constexpr int KEY_HEIGHT = 46;                // 12 mm at 96 dpi
constexpr int SWITCH_HEIGHT = 32;             // of what isn't used within a run
constexpr int GAP = 2;
constexpr double LOW = 1.4;  // height to width

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

/// Broken at the blank nearest to its middle.
QString InTwoLines(const QString& rText) {
    const auto Middle = rText.size() / 2;
    const auto Before = rText.lastIndexOf(' ', Middle);
    const auto Behind = rText.indexOf(' ', Middle);
    const bool bBefore = Before >= 0 && (Behind < 0 || Middle - Before <= Behind - Middle);
    const auto Place = bBefore ? Before : Behind;
    return Place < 0 ? rText : rText.left(Place) + "\n" + rText.mid(Place + 1);
}

}  // namespace

CMachineView::CMachineView(IFMachine& rMachine, std::uint32_t WorkingSpeed, QWidget* pParent)
    : QWidget(pParent), m_Model(rMachine) {
    auto* pColumn = new QVBoxLayout(this);
    pColumn->setContentsMargins(4, 4, 4, 4);
    pColumn->setSpacing(GAP);
    MakeHead(*pColumn);
    MakeNotes(*pColumn);
    m_pBody = new QBoxLayout(QBoxLayout::TopToBottom);
    pColumn->addLayout(m_pBody, 1);
    MakeRotors(*m_pBody);
    MakeFaults();
    MakeSpindle(*m_pBody);
    m_pSpeed->setValue(static_cast<int>(WorkingSpeed));
    SetTexts();
    FitWindow();
    m_Model.OnChanged = [this] { Refresh(); };
    m_Model.OnRefused = [this](const std::string& rWhy) { Refuse(rWhy); };
    Refresh();
    m_Model.Start();
}

CMachineView::~CMachineView() {
    m_RefusalTimer.Stop();
}

QToolButton* CMachineView::MakeSwitch(QBoxLayout& rRow) {
    auto* pSwitch = new QToolButton(this);
    pSwitch->setCheckable(true);
    pSwitch->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    rRow.addWidget(pSwitch, 1);
    return pSwitch;
}

void CMachineView::MakeHead(QBoxLayout& rColumn) {
    auto* pRow = new QHBoxLayout();
    for (std::size_t Plane = 0; Plane < m_PlaneKeys.size(); ++Plane) {
        m_PlaneKeys.at(Plane) = MakeSwitch(*pRow);
        connect(m_PlaneKeys.at(Plane), &QToolButton::clicked, this, [this, Plane] { ChoosePlane(Plane); });
    }
    m_pCovers = MakeSwitch(*pRow);
    connect(m_pCovers, &QToolButton::toggled, this, [this] { Refresh(); });
    m_pFaultsKey = MakeSwitch(*pRow);
    connect(m_pFaultsKey, &QToolButton::toggled, this,
            [this](bool bShown) { m_pPages->setCurrentIndex(bShown ? 1 : 0); });
    rColumn.addLayout(pRow);
}

void CMachineView::MakeRotors(QBoxLayout& rColumn) {
    m_pPages = new QStackedWidget(this);
    auto* pRotors = new QWidget(m_pPages);
    auto* pColumn = new QVBoxLayout(pRotors);
    pColumn->setContentsMargins(0, 0, 0, 0);
    for (std::size_t Plane = 0; Plane < m_Rotors.size(); ++Plane) {
        auto* const pRotor = new CRotorView(pRotors);
        pRotor->OnWeight = [this, Plane](std::size_t Slot, std::optional<int> Angle) {
            m_Model.SetWeight(Plane, Slot, Angle);
        };
        pRotor->OnHole = [this, Plane](int Hole) { OnHole(Plane, Hole); };
        pRotor->MayTouch = [this] { return MayTouch(); };
        pColumn->addWidget(pRotor, 1);
        m_Rotors.at(Plane) = pRotor;
    }
    m_pPages->addWidget(pRotors);
    rColumn.addWidget(m_pPages, 1);
}

void CMachineView::MakeFaults() {
    m_pFaults = new QWidget(m_pPages);
    auto* pKeys = new QVBoxLayout(m_pFaults);
    pKeys->setContentsMargins(0, 0, 0, 0);
    for (const CMachineFault& rFault : GetMachineFaults()) {
        auto* pKey = new QPushButton(m_pFaults);
        pKey->setCheckable(rFault.m_bLasts);
        connect(pKey, &QPushButton::clicked, this, [this, pKey, &rFault] {
            m_Model.SetFault(rFault.MakeRequest(!rFault.m_bLasts || pKey->isChecked()));
        });
        pKeys->addWidget(pKey);
        m_FaultKeys.push_back({pKey, rFault.m_pTextKey});
    }
    pKeys->addStretch(1);
    m_pPages->addWidget(m_pFaults);
}

void CMachineView::MakeNotes(QBoxLayout& rColumn) {
    m_pState = new QLabel(this);
    m_pState->setWordWrap(true);
    m_pState->setAlignment(Qt::AlignCenter);
    rColumn.addWidget(m_pState);
    m_pRamp = new QProgressBar(this);
    m_pRamp->setTextVisible(false);
    m_pRamp->setFixedHeight(6);
    rColumn.addWidget(m_pRamp);
    m_pResidual = new QLabel(this);
    m_pResidual->setWordWrap(true);
    m_pResidual->setAlignment(Qt::AlignCenter);
    rColumn.addWidget(m_pResidual);
}

void CMachineView::MakeSpindle(QBoxLayout& rColumn) {
    m_pFields = new QBoxLayout(QBoxLayout::LeftToRight);
    m_pFields->setSpacing(GAP);
    m_pSpeed = new QSpinBox(this);
    m_pSpeed->setRange(0, MAX_SPEED);
    m_pSpeed->setSingleStep(100);
    m_pScrews = new QComboBox(this);
    m_pScrews->setMinimumContentsLength(1);
    m_pScrews->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    for (QWidget* pField : std::initializer_list<QWidget*>{m_pSpeed, m_pScrews}) {
        m_pFields->addWidget(pField, 1);
    }
    m_pKeys = new QBoxLayout(QBoxLayout::LeftToRight);
    m_pKeys->setSpacing(GAP);
    auto* pControls = new QBoxLayout(QBoxLayout::TopToBottom);
    pControls->setSpacing(GAP);
    pControls->addLayout(m_pFields);
    pControls->addLayout(m_pKeys);
    m_pStart = MakeKey(*m_pKeys, [this] { m_Model.SetSpeed(m_pSpeed->value()); });
    m_pStop = MakeKey(*m_pKeys, [this] { m_Model.SetSpeed(0.0); });
    m_pFit =
        MakeKey(*m_pKeys, [this] { m_Model.Fit(GetFittings ? GetFittings() : std::vector<CFitting>()); });
    pControls->addStretch(0);
    rColumn.addLayout(pControls);
}

QPushButton* CMachineView::MakeKey(QBoxLayout& rRow, std::function<void()> OnPressed) {
    auto* pKey = new QPushButton(this);
    connect(pKey, &QPushButton::clicked, this, std::move(OnPressed));
    rRow.addWidget(pKey, 1);
    return pKey;
}

void CMachineView::SetTexts() {
    const auto Label = [](QAbstractButton* pKey, const QString& rText) {
        pKey->setText(rText);
        pKey->setToolTip(rText);
        pKey->setAccessibleName(rText);
    };
    // Three of them side by side: in two lines each.
    const auto LabelKey = [&Label](QPushButton* pKey, const char* pTextKey) {
        Label(pKey, Text(pTextKey));
        pKey->setText(InTwoLines(Text(pTextKey)));
    };
    for (std::size_t Plane = 0; Plane < m_PlaneKeys.size(); ++Plane) {
        Label(m_PlaneKeys.at(Plane), Text("PB_PLANE_TEXT") + QString(" %1").arg(Plane + 1));
    }
    Label(m_pCovers, Text("MACHINE_COVERS"));
    m_pCovers->setToolTip(Text("MACHINE_COVERS_TIP"));
    Label(m_pFaultsKey, Text("MACHINE_FAULTS"));
    LabelKey(m_pStart, "CONSOLE_START");
    LabelKey(m_pStop, "CONSOLE_STOP");
    LabelKey(m_pFit, "CONSOLE_FIT");
    for (const CFaultKey& rKey : m_FaultKeys) {
        Label(rKey.m_pButton, Text(rKey.m_pTextKey));
    }
    m_pSpeed->setSuffix(" " + Text("RPM"));
    m_pSpeed->setAccessibleName(Text("CONSOLE_SPEED"));
    m_pRamp->setAccessibleName(Text("CONSOLE_SPEED"));
    m_pScrews->setAccessibleName(Text("MACHINE_SCREW_TO_PUT"));
    setAccessibleName(Text("CONSOLE_MACHINE"));
}

void CMachineView::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::LanguageChange) {
        SetTexts();
        m_ShownChoices.clear();
        Refresh();
    }
    if (pEvent->type() == QEvent::FontChange) {
        FitWindow();
    }
    QWidget::changeEvent(pEvent);
}

void CMachineView::FitWindow() {
    for (QWidget* pKey : std::initializer_list<QWidget*>{m_pStart, m_pStop, m_pFit, m_pScrews}) {
        pKey->setMinimumHeight(ScaleLength(*this, KEY_HEIGHT));
    }
    std::vector<QWidget*> Switches{m_PlaneKeys[0], m_PlaneKeys[1], m_pCovers, m_pFaultsKey, m_pSpeed};
    std::ranges::transform(m_FaultKeys, std::back_inserter(Switches), &CFaultKey::m_pButton);
    for (QWidget* pSwitch : Switches) {
        pSwitch->setMinimumHeight(ScaleLength(*this, SWITCH_HEIGHT));
    }
}

void CMachineView::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    Arrange();
}

void CMachineView::Show(const CMachineMeans& rMeans) {
    if (rMeans == m_Means) {
        return;
    }
    m_Means = rMeans;
    if (!m_bPlaneChosen) {
        m_Plane = !m_Means[0].m_bUsed && m_Means[1].m_bUsed ? 1 : 0;
    }
    Refresh();
}

void CMachineView::ChoosePlane(std::size_t Plane) {
    m_bPlaneChosen = true;
    m_Plane = Plane;
    m_pFaultsKey->setChecked(false);
    Refresh();
}

void CMachineView::Refresh() {
    RefreshRotors();
    RefreshScrews();
    RefreshState();
    Arrange();
}

void CMachineView::RefreshRotors() {
    const std::optional<CMachineState>& rState = m_Model.GetState();
    for (std::size_t Plane = 0; Plane < m_Rotors.size(); ++Plane) {
        CRotorView::CShown Shown;
        Shown.m_Plane = Plane;
        Shown.m_bScrews = m_Means.at(Plane).m_bScrews;
        Shown.m_Weights = m_Model.GetWeights(Plane);
        if (rState && Plane < rState->m_Planes.size()) {
            Shown.m_State = rState->m_Planes[Plane];
            Shown.m_bCounterClockwise = rState->m_bCounterClockwise;
            Shown.m_bTurning = rState->IsTurning();
            Shown.m_bResidual = m_pCovers->isChecked();
            if (!Shown.m_bResidual) {
                Shown.m_State.m_Residual = Shown.m_State.m_ResidualAngle = 0.0;
            }
        }
        m_Rotors.at(Plane)->Show(Shown);
    }
}

void CMachineView::RefreshScrews() {
    const CPlaneMeans& rMeans = m_Means.at(m_Plane);
    const auto AnyScrews = std::ranges::find_if(m_Means, &CPlaneMeans::m_bScrews);
    m_pScrews->setVisible(AnyScrews != m_Means.end());
    const CPlaneMeans& rShown = rMeans.m_bScrews || AnyScrews == m_Means.end() ? rMeans : *AnyScrews;
    if (rShown.m_Choices == m_ShownChoices && m_pScrews->count() > 0) {
        return;
    }
    m_ShownChoices = rShown.m_Choices;
    m_pScrews->clear();
    for (const CScrewChoice& rChoice : m_ShownChoices) {
        const QString Name = QString::fromStdString(rChoice.m_Name);
        const QString Grams = QString("%1 g").arg(rChoice.m_Grams);
        m_pScrews->addItem(Name.isEmpty() || Name == Grams ? Grams : Grams + ", " + Name, rChoice.m_Grams);
    }
}

void CMachineView::RefreshState() {
    const std::optional<CMachineState>& rState = m_Model.GetState();
    QString Shown = QString::fromStdString(m_Refusal);
    if (Shown.isEmpty() && !rState) {
        Shown = Text("MACHINE_SILENT");
    } else if (Shown.isEmpty()) {
        const QString Speed = QString::number(rState->m_Speed, 'f', 0);
        const QString Commanded = QString::number(rState->m_Commanded, 'f', 0);
        Shown = (Speed == Commanded ? Speed : Speed + " → " + Commanded) + " " + Text("RPM") + ", " +
                Text(!rState->IsTurning() ? "LIGHT_STANDING"
                     : rState->m_bLock    ? "CONSOLE_LOCKED"
                                          : "CONSOLE_NOT_LOCKED");
    }
    QFont Font;  // all else as the view's
    Font.setBold(!m_Refusal.empty());
    m_pState->setFont(Font);
    m_pState->setText(Shown);
    m_pRamp->setRange(0, std::max(1, m_pSpeed->value()));
    m_pRamp->setValue(rState ? std::min(static_cast<int>(rState->m_Speed), m_pRamp->maximum()) : 0);
    m_pResidual->setVisible(m_pCovers->isChecked());
    QStringList Residuals;
    for (std::size_t Plane = 0; rState && Plane < rState->m_Planes.size(); ++Plane) {
        Residuals << QString::number(rState->m_Planes[Plane].m_Residual, 'f', 4);
    }
    m_pResidual->setText(Text("CONSOLE_RESIDUAL") + ": " + Residuals.join(" / "));
}

void CMachineView::Arrange() {
    // Where it is low the keys stand beside the rotor, so that this one stays large.
    const bool bLow = height() < width() * LOW;
    m_pBody->setDirection(bLow ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    for (QBoxLayout* pRow : {m_pFields, m_pKeys}) {
        pRow->setDirection(bLow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    }
    const std::optional<CMachineState>& rState = m_Model.GetState();
    const std::size_t nPlanes = rState ? rState->m_Planes.size() : 1;
    const int Apart = 2 * m_Rotors[0]->sizeHint().height();
    const bool bBoth = nPlanes > 1 && m_pPages->height() >= Apart;
    m_Plane = std::min(m_Plane, nPlanes - 1);
    for (std::size_t Plane = 0; Plane < m_Rotors.size(); ++Plane) {
        m_Rotors.at(Plane)->setVisible(Plane < nPlanes && (bBoth || Plane == m_Plane));
        m_PlaneKeys.at(Plane)->setVisible(nPlanes > 1 && !bBoth);
        m_PlaneKeys.at(Plane)->setChecked(Plane == m_Plane);
    }
}

void CMachineView::OnHole(std::size_t Plane, int Hole) {
    const std::optional<CMachineState>& rState = m_Model.GetState();
    if (!rState || Plane >= rState->m_Planes.size()) {
        return;
    }
    const auto Number = static_cast<std::uint32_t>(Hole);
    const bool bFilled =
        std::ranges::any_of(rState->m_Planes[Plane].m_Screws,
                            [Number](const CRotorScrew& rScrew) { return rScrew.m_Hole == Number; });
    if (bFilled) {
        m_Model.TakeScrew(Plane, Number);
    } else if (m_pScrews->currentIndex() >= 0) {
        m_Model.PutScrew(Plane, Number, m_pScrews->currentData().toDouble());
    } else {
        Refuse(GetText("MACHINE_NO_SCREWS"));
    }
}

bool CMachineView::MayTouch() {
    const std::string Why = m_Model.GetRefusal();
    if (!Why.empty()) {
        Refuse(Why);
    }
    return Why.empty();
}

void CMachineView::Refuse(const std::string& rWhy) {
    m_Refusal = rWhy;
    m_RefusalTimer.StartOnce(REFUSAL_TIME, [this] {
        m_Refusal.clear();
        RefreshState();
    });
    RefreshState();
    if (OnSay) {
        OnSay(rWhy);
    }
}
