// The window's keys, by the keyboard and by the mouse: what each press does, and what it must not do.
#include <QApplication>
#include <QLineEdit>
#include <QTest>

#include "console/codepage.h"
#include "console/headline.h"
#include "console/pagequestion.h"
#include "console/softkeybar.h"
#include "contract/actions.h"
#include "contract/ncitems.h"
#include "contract/ncrequests.h"
#include "contract/pages.h"
#include "platform/qt/windowview.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvopc/inprocessopcserver.h"
#include "platform/rvopc/opcdatabase.h"
#include "tests/support/logcapture.h"
#include "tests/system/pagesfixture.h"

namespace {

class WindowKeysTest : public CPagesTestBase {
protected:
    ~WindowKeysTest() override {
        Close();  // while what it tells is still there
        SetLanguage("en");
    }

    CSoftkeyBar& GetBar() { return FindPart<CSoftkeyBar>(); }
    CPageQuestion& GetQuestion() { return FindPart<CPageQuestion>(); }
    QWidget* GetFocus() {
        QWidget* const pFocus = QApplication::focusWidget();
        return pFocus == nullptr ? m_pWindow.get() : pFocus;
    }
    void Type(Qt::Key Key, Qt::KeyboardModifiers Modifiers = Qt::NoModifier) {
        QTest::keyClick(GetFocus(), Key, Modifiers);
    }
    void TypeAndWait(Qt::Key Key) {
        Type(Key);
        m_Loop.Advance(500);
    }
    void SendAutoRepeat(Qt::Key Key) {
        QKeyEvent Up(QEvent::KeyRelease, Key, Qt::NoModifier, {}, true);
        QApplication::sendEvent(GetFocus(), &Up);
        QKeyEvent Down(QEvent::KeyPress, Key, Qt::NoModifier, {}, true);
        QApplication::sendEvent(GetFocus(), &Down);
    }
    /// From the configuration to a step that would be lost.
    void RunBeyondTheFirstStep() {
        OpenInFront();
        TypeAndWait(Qt::Key_F1);
        Press("Fit as shown");
        TypeAndWait(Qt::Key_F1);
        ASSERT_EQ(GetState(), "eNeutralPosRPMStart");
    }
    const std::vector<Actions::Action>& RecordReleases() {
        const auto Former = GetBar().OnReleased;
        GetBar().OnReleased = [this, Former](const CSoftkey& rKey) {
            m_LetGo.push_back(rKey.m_Key.m_Action);
            Former(rKey);
        };
        return m_LetGo;
    }
    bool IsRunning() { return m_pSession->Look().m_bRunning; }
    std::vector<int> GetAngles() { return m_pSession->Look().GetAngles(0); }

    std::vector<Actions::Action> m_LetGo;
};

}  // namespace

TEST_F(WindowKeysTest, TheFunctionKeysAreTheSoftkeysWhereverTheFocusIs) {
    OpenInFront();
    QLineEdit* pField = nullptr;
    for (QLineEdit* const pEdit : m_pWindow->findChildren<QLineEdit*>()) {
        pField = pEdit->isVisible() && pEdit->text() == "Default" ? pEdit : pField;
    }
    ASSERT_NE(pField, nullptr);
    pField->setFocus();
    TypeAndWait(Qt::Key_F8);
    EXPECT_NE(FindButton("Edit / accept"), nullptr) << "the second row";
    TypeAndWait(Qt::Key_F8);
    TypeAndWait(Qt::Key_F1);
    EXPECT_EQ(m_pSession->GetHost().GetActivity(), 1);
}

TEST_F(WindowKeysTest, AWholeRunByFunctionKeysBalancesTheRotor) {
    OpenInFront();
    TypeAndWait(Qt::Key_F1);
    const auto Next = [this] { TypeAndWait(Qt::Key_F1); };
    Press("Fit as shown");
    Next();
    Press("Start spindle");
    m_Loop.Advance(3500);
    Next();
    m_Loop.Advance(6000);
    Next();
    for (int nMeasurement = 0; nMeasurement < 2; ++nMeasurement) {
        Press("Stop spindle");
        m_Loop.Advance(3000);
        Press("Fit as shown");
        TypeAndWait(nMeasurement == 0 ? Qt::Key_Return : Qt::Key_Enter);
        Press("Start spindle");
        m_Loop.Advance(9000);
        if (nMeasurement == 0) {
            Next();
        }
    }
    EXPECT_EQ(m_pSession->Look().m_Notification.GetStep(), CPreBalCodes::eSetupSuccess);
    EXPECT_LT(std::abs(m_pSession->GetSimulator()->GetRotor().GetResidual(0)), 0.05);
    TypeAndWait(Qt::Key_F8);
    EXPECT_FALSE(IsRunning()) << "a verdict that stands needs no question";
    EXPECT_TRUE(m_pSession->GetHost().IsCalibrated());
}

TEST_F(WindowKeysTest, ADoublePressOfNextConfirmsOneStepOnly) {
    OpenInFront();
    TypeAndWait(Qt::Key_F1);
    Press("Fit as shown");
    Type(Qt::Key_F1);
    const std::string State = GetState();
    EXPECT_EQ(State, "eNeutralPosRPMStart");
    Press("Start spindle");
    m_Loop.Advance(3500);
    ASSERT_NE(FindButton("Next"), nullptr);
    Type(Qt::Key_F1);
    const std::string Further = GetState();
    EXPECT_NE(Further, State);
    Type(Qt::Key_F1);
    EXPECT_EQ(GetState(), Further);
    Type(Qt::Key_Return);
    EXPECT_EQ(GetState(), Further);
}

TEST_F(WindowKeysTest, ADoublePressOfPreBalanceBeginsOneRun) {
    OpenInFront();
    const CLogCapture Log;
    Type(Qt::Key_F1);
    Type(Qt::Key_F1);
    m_Loop.Advance(500);
    EXPECT_EQ(GetState(), "eNeutralPosRemoveWeights");
    EXPECT_TRUE(Log.GetAssertions().empty()) << Log.GetAssertions().front();
}

TEST_F(WindowKeysTest, AKeyThatHasChangedTakesAPressAfterFourHundredMilliseconds) {
    OpenInFront();
    Type(Qt::Key_F8);
    m_Loop.Advance(399);
    Type(Qt::Key_F5);  // another key in each row
    EXPECT_FALSE(FindPart<CCodePage>().IsOpen());
    m_Loop.Advance(1);
    Type(Qt::Key_F5);
    EXPECT_TRUE(FindPart<CCodePage>().IsOpen());
}

TEST_F(WindowKeysTest, EndAsksBeyondTheFirstStepAndTheRunGoesOn) {
    RunBeyondTheFirstStep();
    TypeAndWait(Qt::Key_F8);
    EXPECT_TRUE(GetQuestion().IsOpen());
    EXPECT_TRUE(IsRunning());
    TypeAndWait(Qt::Key_F8);
    EXPECT_TRUE(GetQuestion().IsOpen()) << "one more press is no answer";
    EXPECT_TRUE(IsRunning());
    Press("Start spindle");
    m_Loop.Advance(4000);
    EXPECT_NE(GetState(), "") << "what runs goes on beneath";
    TypeAndWait(Qt::Key_F1);
    EXPECT_FALSE(GetQuestion().IsOpen());
    EXPECT_TRUE(IsRunning());
    TypeAndWait(Qt::Key_F8);
    TypeAndWait(Qt::Key_F3);
    EXPECT_FALSE(IsRunning());
    EXPECT_FALSE(GetQuestion().IsOpen());
}

TEST_F(WindowKeysTest, EscapeEndsInARunAndGivesTheHarmlessAnswerToTheQuestion) {
    RunBeyondTheFirstStep();
    TypeAndWait(Qt::Key_Escape);
    ASSERT_TRUE(GetQuestion().IsOpen());
    TypeAndWait(Qt::Key_Escape);
    EXPECT_FALSE(GetQuestion().IsOpen());
    EXPECT_TRUE(IsRunning());
}

TEST_F(WindowKeysTest, EnterGivesTheAnswerThatHasTheFocusWhichIsTheHarmlessOne) {
    RunBeyondTheFirstStep();
    TypeAndWait(Qt::Key_F8);
    TypeAndWait(Qt::Key_Return);
    EXPECT_FALSE(GetQuestion().IsOpen());
    EXPECT_TRUE(IsRunning());
    TypeAndWait(Qt::Key_F8);
    Type(Qt::Key_Tab);
    TypeAndWait(Qt::Key_Return);
    EXPECT_FALSE(IsRunning());
}

TEST_F(WindowKeysTest, TheWindowStaysOpenUntilTheQuestionIsAnswered) {
    RunBeyondTheFirstStep();
    EXPECT_FALSE(m_pWindow->close());
    EXPECT_FALSE(m_pWindow->close()) << "once more is no answer";
    m_Loop.Advance(500);
    EXPECT_TRUE(GetQuestion().IsOpen());
    Press("Go on");
    EXPECT_TRUE(m_pWindow->isVisible());
    EXPECT_TRUE(IsRunning());
    m_pWindow->close();
    m_Loop.Advance(500);
    Press("End the run");
    EXPECT_FALSE(m_pWindow->isVisible());
    EXPECT_FALSE(IsRunning());
}

TEST_F(WindowKeysTest, AProgramThatIsToldToEndAsksNobody) {
    std::string Request;
    m_Run.m_Options.m_GetEndRequest = [&Request] { return Request; };
    RunBeyondTheFirstStep();
    Request = "SIGTERM";
    EXPECT_TRUE(m_pWindow->close());
}

TEST_F(WindowKeysTest, TheQuestionGoesWhenTheRunEndsByItself) {
    RunBeyondTheFirstStep();
    TypeAndWait(Qt::Key_F8);
    ASSERT_TRUE(GetQuestion().IsOpen());
    m_pSession->SendAction(Actions::eTerminate, Actions::eNone);
    m_Loop.Advance(500);
    EXPECT_FALSE(GetQuestion().IsOpen());
    EXPECT_NE(FindButton("Pre-balance"), nullptr);
}

TEST_F(WindowKeysTest, TheQuestionGoesWhenAnNcTakesOver) {
    COpcDatabase::GetInstance()->SetOpcLinkItem(NcItems::REQUEST, "request");
    RunBeyondTheFirstStep();
    TypeAndWait(Qt::Key_F8);
    ASSERT_TRUE(GetQuestion().IsOpen());
    CInProcessOpcServer::Find("console")->Write("request", std::int32_t{NcRequests::eNext});
    m_Loop.Advance(1000);
    EXPECT_FALSE(GetQuestion().IsOpen());
    EXPECT_TRUE(IsRunning());
}

TEST_F(WindowKeysTest, BetweenRunsEnterAndEscapeBelongToThePage) {
    OpenInFront();
    TypeAndWait(Qt::Key_Escape);
    TypeAndWait(Qt::Key_Return);
    EXPECT_FALSE(IsRunning());
    EXPECT_TRUE(m_pWindow->isVisible());
}

TEST_F(WindowKeysTest, AKeyThatIsHeldRepeatsByTheModuleAndNotByTheKeyboard) {
    OpenInFront();
    TypeAndWait(Qt::Key_F1);
    TypeAndWait(Qt::Key_F2);
    ASSERT_NE(FindButton("Weight 1 +1°"), nullptr);
    const std::vector<int> Before = GetAngles();
    const auto Place = GetBar().FindPlace(Actions::eIncActiveWeight);
    ASSERT_TRUE(Place);
    const auto Key = static_cast<Qt::Key>(Qt::Key_F1 + static_cast<int>(*Place));
    QTest::keyPress(GetFocus(), Key);
    for (int nRepeat = 0; nRepeat < 5; ++nRepeat) {
        SendAutoRepeat(Key);
    }
    QTest::keyRelease(GetFocus(), Key);
    m_Loop.Advance(100);
    EXPECT_EQ(GetAngles().at(0), Before.at(0) + 1) << "five repeats of the keyboard are none";
    QTest::keyPress(GetFocus(), Key);
    for (int nRepeat = 0; nRepeat < 30; ++nRepeat) {
        m_Loop.Advance(100);
        SendAutoRepeat(Key);
    }
    QTest::keyRelease(GetFocus(), Key);
    m_Loop.Advance(100);
    const std::vector<int> Held = GetAngles();
    EXPECT_GT(Held.at(0), Before.at(0) + 5);
    m_Loop.Advance(3000);
    EXPECT_EQ(GetAngles(), Held);
}

TEST_F(WindowKeysTest, AHeldKeyIsLetGoWhenTheWindowIsNoLongerInFront) {
    OpenInFront();
    TypeAndWait(Qt::Key_F1);
    TypeAndWait(Qt::Key_F2);
    const auto Place = GetBar().FindPlace(Actions::eIncActiveWeight);
    ASSERT_TRUE(Place);
    const std::vector<Actions::Action>& rLetGo = RecordReleases();
    QTest::keyPress(GetFocus(), static_cast<Qt::Key>(Qt::Key_F1 + static_cast<int>(*Place)));
    m_Loop.Advance(1000);
    EXPECT_TRUE(rLetGo.empty());
    QWidget Other;
    Other.show();
    Other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Other));
    EXPECT_EQ(rLetGo, std::vector{Actions::eIncActiveWeight});
}

TEST_F(WindowKeysTest, AHeldKeyIsLetGoWhenTheRunEndsUnderIt) {
    OpenInFront();
    TypeAndWait(Qt::Key_F1);
    TypeAndWait(Qt::Key_F2);
    const auto Place = GetBar().FindPlace(Actions::eIncActiveWeight);
    ASSERT_TRUE(Place);
    const std::vector<Actions::Action>& rLetGo = RecordReleases();
    QTest::keyPress(GetFocus(), static_cast<Qt::Key>(Qt::Key_F1 + static_cast<int>(*Place)));
    m_pSession->SendAction(Actions::eTerminate, Actions::eNone);
    m_Loop.Advance(500);
    EXPECT_EQ(rLetGo, std::vector{Actions::eIncActiveWeight});
}

TEST_F(WindowKeysTest, AWindowMayGoWithAKeyHeldDown) {
    OpenInFront();
    TypeAndWait(Qt::Key_F1);
    TypeAndWait(Qt::Key_F2);
    const auto Place = GetBar().FindPlace(Actions::eIncActiveWeight);
    ASSERT_TRUE(Place);
    QTest::keyPress(GetFocus(), static_cast<Qt::Key>(Qt::Key_F1 + static_cast<int>(*Place)));
    Close();
    m_Loop.Advance(1000);
}

TEST_F(WindowKeysTest, F11ShowsTheWindowOnTheWholeScreenAndBack) {
    OpenInFront();
    Type(Qt::Key_F11);
    EXPECT_TRUE(m_pWindow->isFullScreen());
    Type(Qt::Key_F11);
    EXPECT_FALSE(m_pWindow->isFullScreen());
}

TEST_F(WindowKeysTest, F12SavesAPictureOfThePageAndSaysWhere) {
    OpenInFront();
    Type(Qt::Key_F12);
    Type(Qt::Key_F12);
    std::vector<std::string> Pictures;
    for (const auto& rEntry :
         std::filesystem::directory_iterator(m_Run.m_Installation.GetRoot() / "pictures")) {
        if (rEntry.path().extension() == ".png" && rEntry.file_size() > 1000) {
            Pictures.push_back(rEntry.path().string());
        }
    }
    EXPECT_EQ(Pictures.size(), 2U) << "the second one doesn't write over the first";
    const std::string Message = GetMessage();
    EXPECT_EQ(
        std::ranges::count_if(Pictures, [&](const std::string& rFile) { return Message.ends_with(rFile); }),
        1)
        << Message;
}

TEST_F(WindowKeysTest, AltF4IsNoSoftkey) {
    OpenInFront();
    Type(Qt::Key_F1, Qt::AltModifier);
    m_Loop.Advance(500);
    EXPECT_FALSE(IsRunning());
}

// Every menu, both languages, from the smallest window to the largest.
TEST_F(WindowKeysTest, NoTextOfAKeyIsCutOff) {
    Open();
    CSoftkeyBar& rBar = GetBar();
    for (const QSize& rSize : {QSize(800, 480), QSize(1024, 768), QSize(1920, 1080), QSize(3840, 2160)}) {
        m_pWindow->resize(rSize);
        QApplication::processEvents();
        for (const char* const pLanguage : {"en", "de"}) {
            SetLanguage(pLanguage);
            for (std::int32_t Menu = -1; Menu < 40; ++Menu) {
                for (const Pages::Page Page : {Pages::eSettings, Pages::eScrewTable}) {
                    CSoftkeys Keys;
                    Keys.SetState({true, Menu, Page});
                    for (int nRow = 0; nRow < 2; ++nRow, Keys.More()) {
                        rBar.Show(Keys.GetShown(), {});
                        for (const CSoftkeyBar::CLabelPlace& rLabel : rBar.MeasureLabels()) {
                            EXPECT_LE(rLabel.m_Size.width(), rLabel.m_Place.width())
                                << rLabel.m_Text.toStdString() << " at " << rSize.width();
                            EXPECT_LE(rLabel.m_Size.height(), rLabel.m_Place.height())
                                << rLabel.m_Text.toStdString() << " at " << rSize.width();
                            EXPECT_GE(rLabel.m_LetterPixels, 9)
                                << rLabel.m_Text.toStdString() << " at " << rSize.width();
                        }
                    }
                }
            }
        }
        EXPECT_GE(rBar.height(), 45);
        EXPECT_LE(rBar.mapTo(m_pWindow.get(), QPoint(rBar.width(), 0)).x(), rSize.width());
    }
}

TEST_F(WindowKeysTest, ALightSaysOnAPressHowItStandsAndTheRunGoesOn) {
    RunBeyondTheFirstStep();
    FindPart<CHeadLine>().OnLight(CHeadState::eModule);
    EXPECT_TRUE(GetQuestion().IsOpen());
    EXPECT_NE(FindButton("End"), nullptr) << "it is no question: the keys stay";
    EXPECT_TRUE(GetQuestion().accessibleDescription().contains("Kestrel module 5"))
        << GetQuestion().accessibleDescription().toStdString();
    Press("Back to the page");
    EXPECT_FALSE(GetQuestion().IsOpen());
    EXPECT_TRUE(IsRunning());
}

/// With a code of four characters, entered where it is asked for.
class CodeTest : public WindowKeysTest {
protected:
    void EnterCode(const QString& rCode) {
        QTest::keyClicks(GetFocus(), rCode);
        QTest::keyClick(GetFocus(), Qt::Key_Return);
        m_Loop.Advance(500);
    }
    void OpenWithCode() {
        OpenInFront();
        PressKey("Code");
        EnterCode("1234");
        EnterCode("1234");
        Close();
        OpenInFront();
    }
    QWidget& GetPage() { return FindPart<CWindowView>(); }
};

TEST_F(CodeTest, ANewCodeIsEnteredTwiceAlike) {
    OpenInFront();
    PressKey("Code");
    EnterCode("123");
    EXPECT_TRUE(FindPart<CCodePage>().IsOpen()) << "too short";
    EnterCode("1234");
    EnterCode("4321");
    EXPECT_TRUE(FindPart<CCodePage>().IsOpen()) << "not the same";
    EnterCode("1234");
    EnterCode("1234");
    EXPECT_FALSE(FindPart<CCodePage>().IsOpen());
    PressKey("Code");
    EXPECT_TRUE(GetQuestion().IsOpen()) << "what is to be done with it";
    PressKey("Lock");
    EXPECT_TRUE(IsKeyEnabled("Unlock"));
}

TEST_F(CodeTest, LockedSettingsAreBrowsedButNotChanged) {
    OpenWithCode();
    SelectItem("PB_007");
    EXPECT_FALSE(IsKeyEnabled("Value +"));
    EXPECT_FALSE(IsKeyEnabled("Delete configuration"));
    const QImage Before = GetPage().grab().toImage();
    QWidget* const pUnder = GetPage().childAt(QPoint(GetPage().width() / 3, GetPage().height() / 3));
    ASSERT_NE(pUnder, nullptr);
    QTest::mouseDClick(pUnder, Qt::LeftButton, Qt::NoModifier, QPoint(20, 60));
    QTest::keyClicks(GetFocus(), "9");
    QTest::keyClick(GetFocus(), Qt::Key_Return);
    m_Loop.Advance(500);
    EXPECT_EQ(GetPage().grab().toImage(), Before);
    EXPECT_THAT(GetMessage(), testing::HasSubstr("Locked"));
}

TEST_F(CodeTest, TheRightCodeOpensThemAndAWrongOneMakesTheNextWait) {
    OpenWithCode();
    PressKey("Unlock");
    EnterCode("0000");
    EXPECT_TRUE(FindPart<CCodePage>().IsOpen());
    EnterCode("1234");
    EXPECT_TRUE(FindPart<CCodePage>().IsOpen()) << "too soon";
    m_Loop.Advance(1000);
    EnterCode("1234");
    EXPECT_FALSE(FindPart<CCodePage>().IsOpen());
    EXPECT_TRUE(IsKeyEnabled("Value +"));
}

TEST_F(CodeTest, ARunIsNotAffected) {
    OpenWithCode();
    PressKey("Pre-balance");
    Press("Change positions");
    const std::vector<int> Before = GetAngles();
    Press("Weight 1 +1°");
    EXPECT_NE(GetAngles(), Before);
    Press("Next");
    Press("End");
    EXPECT_TRUE(IsRunning() == GetQuestion().IsOpen());
}

TEST_F(CodeTest, TheDigitsOnThePageEnterACodeWithoutAKeyboard) {
    OpenWithCode();
    PressKey("Unlock");
    for (const char* const pDigit : {"1", "2", "3", "9", "Erase", "4", "Enter"}) {
        QTest::mouseClick(FindButton(pDigit), Qt::LeftButton);
    }
    EXPECT_FALSE(FindPart<CCodePage>().IsOpen());
}
