#include "tests/windows/windowstage.h"

#include <QAbstractButton>
#include <utility>

#include "console/helpfiles.h"
#include "console/language.h"
#include "console/sidepanel.h"
#include "console/softkeybar.h"
#include "console/trainingsituations.h"
#include "console/trainingview.h"
#include "contract/hostmessages.h"
#include "platform/rvldb/gettext.h"
#include "rvlib/settings/installation.h"

namespace {

constexpr std::uint32_t LONGEST = 600000;  // ms of a run
constexpr std::uint32_t A_LOOK = 500;      // ms: the window looks at the panel four times a second

}  // namespace

CWindowStage::CFreshRoot::CFreshRoot() {
    ResetInstallationRootForTest();
}

CWindowStage::CWindowStage(const COptions& rOptions, CRotorFile Rotor)
    : m_Rotor(std::move(Rotor)),
      m_Session(rOptions, rOptions.IsSimulated() ? &m_Rotor : nullptr,
                m_Installation.GetDatabaseFile().string()) {
    UseLanguage("en");
    const std::filesystem::path Library(rOptions.m_ModuleLibrary);
    ProvideHelp(m_Installation, Library.empty() ? GetHelpOfProgram() : Library.parent_path() / "help");
    m_pWindow = std::make_unique<CMainWindow>(m_Session);
    m_pWindow->show();
    m_pWindow->setUpdatesEnabled(false);  // pictures are grabbed; nobody sees what is between them
    Settle();
    m_Loop.Advance(3000);
}

CWindowStage::~CWindowStage() {
    m_pOperator.reset();
    m_pWindow->BreakOff();
    m_pWindow.reset();
    UseLanguage("en");
}

void CWindowStage::Settle() {
    // The toolkit's own events wait under virtual time until somebody sends them, and a place found by a
    // layout may ask for another.
    constexpr int ROUNDS = 5;
    constexpr std::uint32_t BETWEEN = 20;
    for (int i = 0; i < ROUNDS; ++i) {
        QApplication::sendPostedEvents();
        m_Loop.Advance(BETWEEN);
    }
}

void CWindowStage::ShowIn(const QSize& rSize, const char* pLanguage) {
    if (GetLanguage() != pLanguage) {
        UseLanguage(pLanguage);
        m_Session.GetModule().SendMessage(WM_RV_LANGUAGECHANGED);
    }
    m_pWindow->resize(rSize);
    Settle();
}

void CWindowStage::Train(std::size_t Situation) {
    m_pTicksDirectory = std::make_unique<CTemporaryDirectory>();
    m_pTicks = std::make_unique<CTrainingTicks>(std::filesystem::path(m_pTicksDirectory->GetPath()) /
                                                "training.json");
    m_pLesson = std::make_unique<CTrainingLesson>(GetTrainingSituations()[Situation], m_Session);
    m_pWindow->Train(*new CTrainingView(*m_pLesson, *m_pTicks, Situation, m_pWindow.get()));
    Settle();
}

void CWindowStage::Start() {
    m_Session.StartProcedure(Actions::eStart);
    m_pOperator = std::make_unique<COperator>(m_Session, m_Session.GetMachine(), m_Session.GetWorkingSpeed());
    m_pOperator->SetHoleRings(m_Session.GetHoleRings());
    m_pOperator->IsHeld = [this] { return m_bReached = m_bReached || m_Moment(m_Session.Look()); };
    m_pOperator->Start();
    Wait(A_LOOK);
}

void CWindowStage::PlayUntil(const Moment& rMoment) {
    m_Moment = rMoment;
    m_bReached = false;
    if (!m_Loop.RunUntil([this] { return m_bReached; }, LONGEST)) {
        throw std::runtime_error("the run stays at " + m_Session.Look().m_Progress.m_State);
    }
    Wait(A_LOOK);
}

void CWindowStage::Wait(std::uint32_t Milliseconds) {
    m_Loop.Advance(Milliseconds);
    Settle();
}

void CWindowStage::Press(std::size_t Place) {
    Wait(A_LOOK);  // a key that has just changed takes no press
    auto& rBar = Find<CSoftkeyBar>();
    rBar.Press(Place);
    rBar.Release(Place);
    Wait(A_LOOK);
}

void CWindowStage::PressButton(const char* pTextKey) {
    const QString Text = QString::fromStdString(GetText(pTextKey));
    for (QAbstractButton* const pButton : m_pWindow->findChildren<QAbstractButton*>()) {
        if (pButton->isVisible() && pButton->text().replace('\n', ' ') == Text) {
            pButton->click();
            Wait(A_LOOK);
            return;
        }
    }
    throw std::logic_error(std::string("there is no button ") + pTextKey);
}

void CWindowStage::Request(const nlohmann::json& rRequest) {
    m_Session.GetMachine()->Request(rRequest, [](const nlohmann::json&) {});
}

void CWindowStage::Unfold(QWidget* pView) {
    Find<CSidePanel>().Unfold(pView);
    Settle();
}
