// The help over the page, with real keys and real mouse.
#include "console/helpview.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>
#include <set>

#include "platform/qt/helppanel.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"
#include "tests/support/testinstallation.h"
#include "tests/support/testpaths.h"

namespace {

using testing::HasSubstr;

/// A console of a page and a softkey.
class CWindow : public QWidget {
public:
    CWindow() {
        auto* const pColumn = new QVBoxLayout(this);
        m_pPage = new QLineEdit(this);
        m_pPage->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        pColumn->addWidget(m_pPage, 1);
        m_pKey = new QPushButton("Help", this);
        m_pKey->setFocusPolicy(Qt::NoFocus);
        pColumn->addWidget(m_pKey);
        resize(640, 480);
    }

    QLineEdit* m_pPage;
    QPushButton* m_pKey;
    int m_LastKey = 0;

protected:
    void keyPressEvent(QKeyEvent* pEvent) override { m_LastKey = pEvent->key(); }
};

class HelpViewTest : public testing::Test {
protected:
    HelpViewTest() {
        std::filesystem::create_directories(m_Installation.GetRoot() / "ctrl" / "help");
        for (const char* pFile : {"en_Falconet.chm", "de_Falconet.chm"}) {
            std::filesystem::copy(TestProgram("help/") + pFile,
                                  m_Installation.GetRoot() / "ctrl" / "help" / pFile);
        }
        m_Window.show();
        m_Window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_Window));
        m_Window.m_pPage->setFocus();
        QObject::connect(m_Window.m_pKey, &QPushButton::clicked,
                         [this] { m_View.ToggleTopic("RUN_STEP_12"); });
        m_View.OnClosed = [this] { ++m_nClosed; };
    }
    ~HelpViewTest() override { SetLanguage(m_Language); }

    void PressHelp() { QTest::mouseClick(m_Window.m_pKey, Qt::LeftButton); }
    std::string GetText() const { return m_View.GetPanel().GetPlainText().toStdString(); }
    bool HasFocus() const {
        return QApplication::focusWidget() != nullptr && m_View.isAncestorOf(QApplication::focusWidget());
    }

    const std::string m_Language = GetLanguage();
    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CWindow m_Window;
    CHelpView m_View{*m_Window.m_pPage};
    int m_nClosed = 0;
};

TEST_F(HelpViewTest, TheHelpKeyOpensItOverThePageAndClosesIt) {
    EXPECT_FALSE(m_View.IsOpen());
    PressHelp();
    EXPECT_TRUE(m_View.IsOpen());
    EXPECT_EQ(m_View.geometry(), m_Window.m_pPage->geometry());
    EXPECT_EQ(m_Window.childAt(m_Window.m_pPage->geometry().center())->window(), &m_Window);
    EXPECT_TRUE(m_View.isAncestorOf(m_Window.childAt(m_Window.m_pPage->geometry().center())));
    EXPECT_THAT(GetText(), HasSubstr("Pre-balancing: set the correction"));
    PressHelp();
    EXPECT_FALSE(m_View.IsOpen());
    EXPECT_EQ(m_nClosed, 1);
}

TEST_F(HelpViewTest, EscapeTheHelpKeysAndTheButtonCloseItAndThePageHasTheFocusAgain) {
    for (const Qt::Key Key : {Qt::Key_Escape, Qt::Key_Help}) {
        m_View.ShowTopic("RUN_STEP_12");
        EXPECT_TRUE(HasFocus());
        QTest::keyClick(QApplication::focusWidget(), Key);
        EXPECT_FALSE(m_View.IsOpen()) << Key;
        EXPECT_EQ(QApplication::focusWidget(), m_Window.m_pPage) << Key;
    }
    m_View.ShowTopic("RUN_STEP_12");
    QTest::mouseClick(m_View.findChild<QToolButton*>({}, Qt::FindDirectChildrenOnly), Qt::LeftButton);
    EXPECT_FALSE(m_View.IsOpen());
    EXPECT_EQ(QApplication::focusWidget(), m_Window.m_pPage);
    EXPECT_EQ(m_nClosed, 3);
    m_View.Close();
    EXPECT_EQ(m_nClosed, 3) << "was closed";
}

TEST_F(HelpViewTest, EscapeClosesItFromTheSearchToo) {
    m_View.ShowTopic("RUN_STEP_12");
    m_View.GetPanel().findChild<QLineEdit*>()->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(m_View.IsOpen());
    EXPECT_EQ(QApplication::focusWidget(), m_Window.m_pPage);
}

TEST_F(HelpViewTest, KeysThatItHasNoUseForReachTheConsole) {
    m_View.ShowTopic("RUN_STEP_12");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F5);
    EXPECT_EQ(m_Window.m_LastKey, Qt::Key_F5);
    EXPECT_TRUE(m_View.IsOpen());
}

TEST_F(HelpViewTest, TheSoftkeysWorkWhileItIsOpen) {
    PressHelp();
    int nPressed = 0;
    QPushButton Next("Next", &m_Window);
    Next.setFocusPolicy(Qt::NoFocus);
    Next.show();
    QObject::connect(&Next, &QPushButton::clicked, [&] { ++nPressed; });
    QTest::mouseClick(&Next, Qt::LeftButton);
    EXPECT_EQ(nPressed, 1);
    EXPECT_TRUE(m_View.IsOpen());
}

TEST_F(HelpViewTest, TheTabKeyStaysInside) {
    m_View.ShowTopic("RUN_STEP_12");
    std::set<const QWidget*> Reached;
    for (int i = 0; i < 20; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        ASSERT_TRUE(HasFocus());
        Reached.insert(QApplication::focusWidget());
    }
    const auto* const pClose = m_View.findChild<QToolButton*>({}, Qt::FindDirectChildrenOnly);
    EXPECT_TRUE(Reached.contains(pClose));
    m_View.setFocus();
    while (QApplication::focusWidget() != pClose) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_FALSE(m_View.IsOpen());
}

TEST_F(HelpViewTest, AnotherTopicTakesItsPlace) {
    m_View.ShowTopic("RUN_STEP_12");
    m_View.ShowTopic("RUN_WARN_06");
    EXPECT_THAT(GetText(), HasSubstr("Unbalance too large"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), m_Window.m_pPage) << "once opened, once closed";
}

TEST_F(HelpViewTest, WhoeverHasTakenTheFocusMeanwhileKeepsIt) {
    m_View.ShowTopic("RUN_STEP_12");
    QLineEdit Other(&m_Window);
    Other.show();
    Other.setFocus();
    m_View.Close();
    EXPECT_EQ(QApplication::focusWidget(), &Other);
}

TEST_F(HelpViewTest, FollowsTheSizeOfThePage) {
    m_View.ShowTopic("RUN_STEP_12");
    m_Window.resize(1000, 700);
    QApplication::processEvents();
    EXPECT_EQ(m_View.geometry(), m_Window.m_pPage->geometry());
}

TEST_F(HelpViewTest, IsInTheLanguageOfTheTextsWhenItIsShown) {
    SetLanguage("de");
    m_View.ShowTopic("RUN_STEP_12");
    EXPECT_THAT(GetText(), HasSubstr("Vorwuchten: Ausgleich setzen"));
    SetLanguage("en");
    m_View.ShowTopic("RUN_STEP_12");
    EXPECT_THAT(GetText(), HasSubstr("Pre-balancing: set the correction"));
}

TEST_F(HelpViewTest, AMissingTopicIsSaid) {
    m_View.ShowTopic("RUN_STEP_99");
    EXPECT_THAT(GetText(), HasSubstr("There is no help page RUN_STEP_99.htm"));
}

}  // namespace
