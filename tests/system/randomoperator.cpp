#include "tests/system/randomoperator.h"

#include <QPointer>

#include "console/operatorrules.h"
#include "console/pagequestion.h"
#include "console/softkeybar.h"
#include "platform/rvldb/gettext.h"
#include "platform/window/messagebox.h"

namespace {

const std::vector<std::uint32_t> PAUSES = {0, 0, 1, 30, 150, 250, 399, 400, 401, 500, 500, 1000, 3000, 6000};

bool IsOneOf(const std::vector<const char*>& rKeys, const std::string& rKey) {
    return std::ranges::any_of(rKeys, [&rKey](const char* pKey) { return rKey == pKey; });
}

}  // namespace

CRandomOperatorTestBase::~CRandomOperatorTestBase() {
    Close();
    SetLanguage("en");
}

CSoftkeyBar& CRandomOperatorTestBase::GetBar() {
    return FindPart<CSoftkeyBar>();
}

CPageQuestion& CRandomOperatorTestBase::GetQuestion() {
    return FindPart<CPageQuestion>();
}

bool CRandomOperatorTestBase::IsEndAsked() {
    return IsOneOf(GetQuestion().GetChoices(), "CONSOLE_END_RUN");
}

QWidget& CRandomOperatorTestBase::GetFocus() {
    QWidget* const pFocus = QApplication::focusWidget();
    return pFocus == nullptr ? *m_pWindow : *pFocus;
}

void CRandomOperatorTestBase::Play(std::uint32_t Seed, int nActions) {
    m_Random.seed(Seed);
    OpenInFront();
    m_pStore =
        std::make_unique<PreBalDB::CDirectSQL>("sqlite:" + m_Run.m_Installation.GetDatabaseFile().string());
    m_pLog = std::make_unique<CLogCapture>();
    for (int nAction = 1; nAction <= nActions && !HasFailure(); ++nAction) {
        SCOPED_TRACE("seed " + std::to_string(Seed) + ", action " + std::to_string(nAction));
        // Now and then somebody looks; painting is most of the work.
        constexpr int LOOKS_EVERY = 20;
        m_pWindow->setUpdatesEnabled(nAction % LOOKS_EVERY == 0);
        BeforeActing();
        Act();
        LookAtStore();
        TakeShownMessages();
        if (HasFailure()) {
            std::string Done;
            for (const std::string& rWhat : m_History) {
                Done += rWhat + "; ";
            }
            ADD_FAILURE() << "the last things done: " << Done;
        }
    }
}

void CRandomOperatorTestBase::Do(By Kind, const std::string& rWhat, const Deed& rDeed) {
    if (m_Last != rWhat) {
        constexpr std::size_t KEPT = 15;
        m_History.push_back(rWhat);
        if (m_History.size() > KEPT) {
            m_History.pop_front();
        }
    }
    m_Last = rWhat;
    m_Before = m_pSession->Look();
    m_Shown = GetShown();
    m_bEndAsked = IsEndAsked();
    m_bDeleteAsked = IsOneOf(GetQuestion().GetChoices(), "CONSOLE_DELETE");
    rDeed();
    LookForTrouble(Kind);
    if (!m_pWindow->isVisible()) {
        Reopen();
    }
}

void CRandomOperatorTestBase::Wait(std::uint32_t Milliseconds) {
    constexpr std::uint32_t LOOK = 250;
    for (std::uint32_t Left = Milliseconds; Left > 0 && !HasFailure();) {
        const std::uint32_t Part = std::min(Left, LOOK);
        Do(By::eTime, "time", [&] { m_Loop.Advance(Part); });
        Left -= Part;
    }
}

void CRandomOperatorTestBase::Act() {
    if (QWidget* const pPopup = QApplication::activePopupWidget()) {
        Do(By::ePage, "popup", [&] {
            QTest::keyClick(pPopup, Chance(50) ? Qt::Key_Escape : Qt::Key_Return);
            if (QWidget* const pStill = QApplication::activePopupWidget()) {
                pStill->close();
            }
        });
    }
    if (Chance(60)) {
        ActPatiently();
    } else {
        ActAnyhow();
    }
    if (!HasFailure()) {
        Wait(Pick(PAUSES));
    }
}

void CRandomOperatorTestBase::ActPatiently() {
    const auto Key = [this](const char* pWhat, Qt::Key What) {
        Do(By::ePage, pWhat, [&] { QTest::keyClick(&GetFocus(), What); });
    };
    const auto OnMachine = [this](const char* pTextKey) {
        Do(By::eMachine, pTextKey, [&] {
            const QString Text = QString::fromStdString(GetText(pTextKey));
            if (QAbstractButton* const pButton = FindButton(Text)) {
                pButton->click();
            }
        });
    };
    if (!GetQuestion().GetChoices().empty()) {
        Key("harmless answer", Qt::Key_Escape);
        return;
    }
    const CSituation Situation = m_pSession->Look();
    if (!Situation.m_bRunning) {
        Key("begin", m_pSession->GetHost().IsCalibrated() && Chance(50) ? Qt::Key_F2 : Qt::Key_F1);
        return;
    }
    switch (ChooseDeed(Situation)) {
        case ::Deed::eWait:
            OnMachine("CONSOLE_START");
            Wait(4000);
            break;
        case ::Deed::eStopSpindle:
            OnMachine("CONSOLE_STOP");
            Wait(1000);
            break;
        case ::Deed::eStartSpindle:
            OnMachine("CONSOLE_START");
            Wait(1000);
            break;
        case ::Deed::eFitAndConfirm:
            OnMachine("CONSOLE_STOP");
            Wait(1000);
            OnMachine("CONSOLE_FIT");
            Wait(500);
            Key("next", Qt::Key_F1);
            break;
        case ::Deed::eConfirm:
            Key("next", Chance(50) ? Qt::Key_F1 : Qt::Key_Return);
            break;
        case ::Deed::eJudge:
        case ::Deed::eGiveUp:
            Key("end", Qt::Key_F8);
            break;
    }
}

void CRandomOperatorTestBase::ActAnyhow() {
    switch (Draw(18)) {
        case 0:
        case 1:
        case 2:
            return PressSomeKey();
        case 3:
        case 4:
        case 5:
            return ClickSoftkey();
        case 6:
        case 7:
            return HoldSomething();
        case 8:
        case 9:
            return LetGo();
        case 10:
        case 11:
        case 12:
            return ClickSomeButton();
        case 13:
            return ClickSomewhere();
        case 14:
            return Resize();
        case 15:
            return Deactivate();
        case 16:
            return AskToClose();
        default:
            return SwitchLanguage();
    }
}

void CRandomOperatorTestBase::PressSomeKey() {
    static const std::vector<Qt::Key> KEYS = {
        Qt::Key_F1,     Qt::Key_F2,     Qt::Key_F3,   Qt::Key_F4,     Qt::Key_F5,     Qt::Key_F6,
        Qt::Key_F7,     Qt::Key_F8,     Qt::Key_F8,   Qt::Key_F9,     Qt::Key_F11,    Qt::Key_F12,
        Qt::Key_1,      Qt::Key_Tab,    Qt::Key_Down, Qt::Key_Return, Qt::Key_Return, Qt::Key_Enter,
        Qt::Key_Escape, Qt::Key_Escape, Qt::Key_Space};
    const Qt::Key Key = Pick(KEYS);
    const int nTimes = 1 + (Chance(30) ? 1 : 0);
    for (int nTime = 0; nTime < nTimes && !HasFailure(); ++nTime) {
        Do(By::ePage, "key " + std::to_string(Key), [&] { QTest::keyClick(&GetFocus(), Key); });
    }
}

void CRandomOperatorTestBase::ClickSoftkey() {
    const int Place = Chance(25) ? 7 : Draw(8);
    const int nTimes = 1 + (Chance(40) ? 1 : 0);
    for (int nTime = 0; nTime < nTimes && !HasFailure(); ++nTime) {
        Do(By::ePage, "click on softkey " + std::to_string(Place + 1),
           [&] { QTest::mouseClick(GetBar().findChildren<QAbstractButton*>().at(Place), Qt::LeftButton); });
        if (nTime == 0 && nTimes > 1 && Chance(50)) {
            Wait(static_cast<std::uint32_t>(Draw(400)));
        }
    }
}

void CRandomOperatorTestBase::HoldSomething() {
    if (Chance(50) && !m_HeldKey) {
        m_HeldKey = static_cast<Qt::Key>(Qt::Key_F1 + Draw(8));
        Do(By::ePage, "hold F" + std::to_string(*m_HeldKey - Qt::Key_F1 + 1),
           [&] { QTest::keyPress(&GetFocus(), *m_HeldKey); });
    } else if (!m_pHeld) {
        m_pHeld = GetBar().findChildren<QAbstractButton*>().at(Draw(8));
        Do(By::ePage, "hold a softkey by mouse", [&] { QTest::mousePress(m_pHeld, Qt::LeftButton); });
    }
}

void CRandomOperatorTestBase::LetGo() {
    if (m_HeldKey) {
        const Qt::Key Key = *std::exchange(m_HeldKey, std::nullopt);
        Do(By::ePage, "let go a key", [&] { QTest::keyRelease(&GetFocus(), Key); });
    }
    if (m_pHeld) {
        Do(By::ePage, "let go the mouse", [&] {
            const QPoint Where = Chance(50) ? m_pHeld->rect().center() : QPoint(-Draw(200), -Draw(200));
            QTest::mouseRelease(m_pHeld, Qt::LeftButton, Qt::NoModifier, Where);
        });
        m_pHeld = nullptr;
    }
}

void CRandomOperatorTestBase::ClickSomeButton() {
    std::vector<QAbstractButton*> Buttons;
    for (QAbstractButton* const pButton : m_pWindow->findChildren<QAbstractButton*>()) {
        if (pButton->isVisible() && pButton->isEnabled() && !GetBar().isAncestorOf(pButton)) {
            Buttons.push_back(pButton);
        }
    }
    if (Buttons.empty()) {
        return;
    }
    QAbstractButton* const pButton = Pick(Buttons);
    Do(By::ePage, "click on " + pButton->accessibleName().toStdString(),
       [&] { QTest::mouseClick(pButton, Qt::LeftButton); });
}

void CRandomOperatorTestBase::ClickSomewhere() {
    const QPoint Where(Draw(m_pWindow->width()), Draw(m_pWindow->height()));
    QWidget* const pWidget = m_pWindow->childAt(Where);
    if (pWidget == nullptr || !pWidget->isEnabled()) {
        return;
    }
    const QPointer<QWidget> pThere(pWidget);
    const QPoint There = pWidget->mapFrom(m_pWindow.get(), Where);
    Do(By::ePage, std::string("click on a ") + pWidget->metaObject()->className(), [&] {
        QTest::mousePress(pThere, Qt::LeftButton, Qt::NoModifier, There);
        if (pThere) {
            QTest::mouseMove(pThere, There + QPoint(Draw(60) - 30, Draw(60) - 30));
        }
        if (pThere) {
            QTest::mouseRelease(pThere, Qt::LeftButton, Qt::NoModifier, There);
        }
    });
}

void CRandomOperatorTestBase::Resize() {
    static const std::vector<QSize> SIZES = {{800, 480}, {1024, 768}, {1280, 800}, {1920, 1080}};
    const QSize Size = Chance(50) ? Pick(SIZES) : QSize(800 + Draw(1120), 480 + Draw(600));
    Do(By::ePanel, "resize", [&] {
        m_pWindow->setWindowState(m_pWindow->windowState() & ~Qt::WindowFullScreen);
        m_pWindow->resize(Size);
        QApplication::processEvents();
        EXPECT_EQ(m_pWindow->size(), Size) << "the window takes no more room than it has";
    });
}

void CRandomOperatorTestBase::Deactivate() {
    Do(By::ePanel, "another window in front", [&] {
        QWidget Other;
        Other.show();
        Other.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&Other));
    });
    m_HeldKey.reset();
    Do(By::ePanel, "the window in front again", [&] {
        m_pWindow->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_pWindow.get()));
    });
}

void CRandomOperatorTestBase::AskToClose() {
    const int nTimes = 1 + (Chance(30) ? 1 : 0);
    for (int nTime = 0; nTime < nTimes && !HasFailure(); ++nTime) {
        Do(By::eClose, "close", [&] { m_pWindow->close(); });
    }
}

void CRandomOperatorTestBase::SwitchLanguage() {
    Do(By::ePanel, "language", [&] {
        const QString Names = QString::fromUtf8("English Deutsch");
        for (QAbstractButton* const pButton : m_pWindow->findChildren<QAbstractButton*>()) {
            if (!pButton->text().isEmpty() && Names.contains(pButton->text())) {
                pButton->click();
                return;
            }
        }
        FAIL() << "no key for the language";
    });
}

void CRandomOperatorTestBase::Reopen() {
    m_HeldKey.reset();
    Close();
    LookAtStore();
    OpenInFront();
    m_bEndAsked = false;
}
