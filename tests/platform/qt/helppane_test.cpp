// The help pane as operators use it: shown in a window, with real mouse and keys.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPointingDevice>
#include <QProcess>
#include <QScrollBar>
#include <QTest>
#include <QTextBrowser>
#include <QTextCursor>
#include <QToolButton>
#include <memory>

#include "platform/help/helpaddress.h"
#include "platform/qt/bitmapimpl.h"
#include "platform/qt/helppanel.h"
#include "platform/qt/windowview.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/edit.h"
#include "platform/window/webbrowser2.h"
#include "tests/support/listeningwnd.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/testpaths.h"
#include "tests/support/textfiles.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class HelpPaneTest : public testing::Test {
protected:
    HelpPaneTest() {
        QApplication::setCursorFlashTime(0);
        m_Top.Create(nullptr, CRect(0, 0, 600, 440), 0);
        m_Edit.Create(&m_Top, CRect(0, 0, 100, 20), 101);
        m_Browser.Create(&m_Top, CRect(300, 0, 600, 440), 103);
        m_pView = std::make_unique<CWindowView>(m_Top);
        m_pView->show();
        m_pView->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_pView.get()));
        m_Loop.RunPosted();
    }
    ~HelpPaneTest() override { SetLanguage(m_Language); }

    CHelpPanel& GetPanel() const { return dynamic_cast<CHelpPanel&>(*m_pView->FindWidget(m_Browser)); }
    QTextBrowser& GetPage() const { return *GetPanel().findChild<QTextBrowser*>(); }
    QLineEdit& GetSearch() const { return *GetPanel().findChild<QLineEdit*>(); }
    /// Above the page, from the left: back, contents, index.
    QToolButton& GetButton(int i) const { return *GetPanel().findChildren<QToolButton*>()[i]; }
    std::string GetText() const { return GetPanel().GetPlainText().toStdString(); }

    static std::string MakeUrl(const std::string& rTopic, const std::string& rLanguage = "en",
                               const std::string& rDirectory = TestProgram("help")) {
        return CHelpAddress::OfTopic(rDirectory, rLanguage, rTopic).MakeUrl();
    }
    void ClickOnLink(const QString& rText) const {
        QTextCursor Cursor = GetPage().document()->find(rText);
        ASSERT_FALSE(Cursor.isNull()) << rText.toStdString();
        Cursor.setPosition(Cursor.anchor() + 2);
        GetPage().setTextCursor(Cursor);
        GetPage().ensureCursorVisible();
        QTest::mouseClick(GetPage().viewport(), Qt::LeftButton, {}, GetPage().cursorRect(Cursor).center());
    }
    void Search(const QString& rWords) const {
        GetSearch().clear();
        for (const QChar c : rWords) {
            QTest::sendKeyEvent(QTest::Click, &GetSearch(), Qt::Key_unknown, QString(c), Qt::NoModifier);
        }
        QTest::keyClick(&GetSearch(), Qt::Key_Return);
    }
    /// A compiled help of that one page, and of another one called b.htm.
    std::string Compile(const std::string& rPage) const {
        WriteTestFile(m_Place.At("a.htm"), rPage);
        WriteTestFile(m_Place.At("b.htm"),
                      "<html><head><title>b</title></head><body>the other page</body></html>");
        WriteTestFile(m_Place.At("x.hhp"),
                      "[OPTIONS]\nCompiled file=xx_Falconet.chm\n\n[FILES]\na.htm\nb.htm\n");
        QProcess Compiler;
        Compiler.setWorkingDirectory(QString::fromStdString(m_Place.GetPath().string()));
        Compiler.start("chmcmd", {"x.hhp"});
        EXPECT_TRUE(Compiler.waitForFinished() && Compiler.exitCode() == 0);
        return MakeUrl("a", "xx", m_Place.GetPath().string());
    }

    const std::string m_Language = GetLanguage();
    CTempDirectory m_Place;
    CVirtualEventLoop m_Loop;
    CListeningWnd m_Top{RGB(0x20, 0x80, 0x40)};
    CEdit m_Edit;
    CWebBrowser2 m_Browser;
    std::unique_ptr<CWindowView> m_pView;
};

TEST_F(HelpPaneTest, ATopicIsShown) {
    m_Browser.Navigate(MakeUrl("PB_004"));
    EXPECT_THAT(GetText(), HasSubstr("1 to 100 rpm"));
    m_Browser.Navigate(MakeUrl("PB_004", "de"));
    EXPECT_THAT(GetText(), HasSubstr("1 bis 100 1/min"));
    EXPECT_THAT(m_Browser.GetLocationURL(), EndsWith("/de_Falconet.chm::/PB_004.htm"));
}

TEST_F(HelpPaneTest, WhatIsMissingIsSaidAndWhereItWasLookedFor) {
    m_Browser.Navigate(MakeUrl("PB_004", "fr", "/nowhere"));
    EXPECT_EQ(GetText(), "There is no help: the file fr_Falconet.chm isn't in /nowhere.");
    m_Browser.Navigate(MakeUrl("PB_099"));
    EXPECT_EQ(GetText(), "There is no help page PB_099.htm: it isn't in en_Falconet.chm in " +
                             TestProgram("help") + ".");
    WriteTestFile(m_Place.At("en_Falconet.chm"), "ITSF and nothing else");
    m_Browser.Navigate(MakeUrl("PB_004", "en", m_Place.GetPath().string()));
    EXPECT_EQ(GetText(), "The help can't be read: the file en_Falconet.chm in " + m_Place.GetPath().string() +
                             " is damaged.");
    m_Browser.Navigate("about:blank");
    EXPECT_EQ(GetText(), "This is no address of a help page: about:blank");
    m_Browser.Navigate(MakeUrl("PB_004"));
    EXPECT_THAT(GetText(), HasSubstr("1 to 100 rpm")) << "and all is well again";
}

TEST_F(HelpPaneTest, AFingerScrollsAndItsWayIsNoTap) {
    m_Browser.Navigate(MakeUrl("_PB001"));
    QWidget& rPage = *GetPage().viewport();
    static QPointingDevice* const s_pScreen = QTest::createTouchDevice();
    const std::string Url = m_Browser.GetLocationURL();
    for (const int nFrom : {300, 280, 260}) {  // on links and beside them
        GetPage().verticalScrollBar()->setValue(0);
        const QPoint From(60, nFrom);
        QTest::touchEvent(&rPage, s_pScreen).press(0, From, &rPage);
        QTest::touchEvent(&rPage, s_pScreen).move(0, From - QPoint(0, 40), &rPage);
        QTest::touchEvent(&rPage, s_pScreen).move(0, From - QPoint(0, 100), &rPage);
        QTest::touchEvent(&rPage, s_pScreen).release(0, From - QPoint(0, 100), &rPage);
        EXPECT_EQ(GetPage().verticalScrollBar()->value(), 100);
        EXPECT_FALSE(GetPage().textCursor().hasSelection());
    }
    EXPECT_EQ(m_Browser.GetLocationURL(), Url);
    EXPECT_THAT(GetText(), HasSubstr("Settings"));
}

TEST_F(HelpPaneTest, AFingerTapsOnALink) {
    m_Browser.Navigate(MakeUrl("_PB001"));
    QTextCursor Cursor = GetPage().document()->find("calibrated.");
    Cursor.setPosition(Cursor.anchor() + 2);
    GetPage().setTextCursor(Cursor);
    GetPage().ensureCursorVisible();
    QWidget& rPage = *GetPage().viewport();
    static QPointingDevice* const s_pScreen = QTest::createTouchDevice();
    const QPoint Link = GetPage().cursorRect(Cursor).center();
    QTest::touchEvent(&rPage, s_pScreen).press(0, Link, &rPage);
    QTest::touchEvent(&rPage, s_pScreen).release(0, Link, &rPage);
    EXPECT_THAT(GetText(), Not(HasSubstr("What you see")));
}

TEST_F(HelpPaneTest, AHelpThatComesLaterIsFound) {
    const std::string Url = MakeUrl("PB_004", "en", m_Place.GetPath().string());
    m_Browser.Navigate(Url);
    EXPECT_THAT(GetText(), HasSubstr("There is no help"));
    std::filesystem::copy(TestProgram("help/en_Falconet.chm"), m_Place.At("en_Falconet.chm"));
    m_Browser.Navigate(Url);
    EXPECT_THAT(GetText(), HasSubstr("1 to 100 rpm"));
}

TEST_F(HelpPaneTest, ALinkLeadsToItsPageAndBackLeadsBack) {
    m_Browser.Navigate(MakeUrl("PB_004"));
    EXPECT_FALSE(GetButton(0).isEnabled()) << "nowhere to go back to";
    ClickOnLink("calibrated speed");
    EXPECT_THAT(GetText(), HasSubstr("The speed in rpm at which"));
    EXPECT_EQ(m_Browser.GetLocationURL(), MakeUrl("PB_003"));
    QTest::mouseClick(&GetButton(0), Qt::LeftButton);
    EXPECT_THAT(GetText(), HasSubstr("1 to 100 rpm"));
    EXPECT_EQ(m_Browser.GetLocationURL(), MakeUrl("PB_004"));
    EXPECT_FALSE(GetButton(0).isEnabled());
}

TEST_F(HelpPaneTest, ALinkIsFollowedByKeysAlone) {
    m_Browser.Navigate(MakeUrl("PB_004"));
    ASSERT_TRUE(m_Browser.SetFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(m_Browser.GetLocationURL(), MakeUrl("PB_003"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(m_Browser.GetLocationURL(), MakeUrl("PB_004"));
}

TEST_F(HelpPaneTest, TheSelectionsTopicComesBackAfterTheOperatorWentElsewhere) {
    m_Browser.Navigate(MakeUrl("PB_004"));
    ClickOnLink("calibrated speed");
    m_Browser.MoveWindow(CRect(250, 0, 600, 440));
    EXPECT_EQ(m_Browser.GetLocationURL(), MakeUrl("PB_003")) << "a change of size is no reason to go";
    EXPECT_THAT(GetText(), HasSubstr("The speed in rpm at which"));
    QTest::mouseClick(&GetButton(1), Qt::LeftButton);
    m_Browser.MoveWindow(CRect(300, 0, 600, 440));
    EXPECT_THAT(GetText(), testing::StartsWith("Contents\n")) << "nor from a page that has no address";
    m_Browser.Navigate(MakeUrl("PB_004"));
    EXPECT_THAT(GetText(), HasSubstr("1 to 100 rpm"));
}

TEST_F(HelpPaneTest, ContentsAndIndexLeadToPages) {
    m_Browser.Navigate(MakeUrl("PB_004"));
    QTest::mouseClick(&GetButton(1), Qt::LeftButton);
    EXPECT_THAT(GetText(), testing::StartsWith("Contents\nSettings\n"));
    ClickOnLink("Measuring time");
    EXPECT_EQ(m_Browser.GetLocationURL(), MakeUrl("PB_012"));
    QTest::mouseClick(&GetButton(2), Qt::LeftButton);
    EXPECT_THAT(GetText(), testing::StartsWith("Index\n"));
    ClickOnLink("Ring of holes");
    EXPECT_EQ(m_Browser.GetLocationURL(), MakeUrl("PB_009"));
}

/// Neither behind Z, as by their numbers, nor in the order of the file.
TEST_F(HelpPaneTest, UmlautsStandWithTheirVowelsInTheIndex) {
    SetLanguage("de");
    m_Browser.Navigate(MakeUrl("PB_004", "de"));
    QTest::mouseClick(&GetButton(2), Qt::LeftButton);
    const std::string Text = GetText();
    EXPECT_LT(Text.find("Übernehmen gespeicherter"), Text.find("Verstellen") == std::string::npos
                                                         ? Text.find("Vorwuchten")
                                                         : Text.find("Verstellen"));
    EXPECT_LT(Text.find("Übernehmen gespeicherter"), Text.find("Zählrichtung"));
}

TEST_F(HelpPaneTest, ASearchFindsWordsInAnyCaseAndTitlesFirst) {
    SetLanguage("de");
    m_Browser.Navigate(MakeUrl("PB_004", "de"));
    for (const char* pWords : {"Zählrichtung", "ZÄHLRICHTUNG", "zählrichtung skala", "za\u0308hlrichtung"}) {
        Search(QString::fromUtf8(pWords));
        EXPECT_THAT(GetText(), HasSubstr("\nZählrichtung der Skala\n")) << pWords;
        EXPECT_LT(GetText().find("Zählrichtung der Skala"), GetText().find("Drehrichtung")) << pWords;
    }
    for (const char* pWord : {"gleichmäßig", "GLEICHMÄSSIG"}) {
        Search(QString::fromUtf8(pWord));
        EXPECT_THAT(GetText(), HasSubstr("Anzahl der Bohrungen")) << pWord;
    }
    ClickOnLink("Anzahl der Bohrungen");
    EXPECT_EQ(m_Browser.GetLocationURL(), MakeUrl("PB_009", "de"));
}

TEST_F(HelpPaneTest, ASearchMustFindAllWordsAndSaysWhenItFindsNone) {
    m_Browser.Navigate(MakeUrl("PB_004"));
    Search("resonance");
    EXPECT_THAT(GetText(), HasSubstr("Calibrated speed"));
    Search("resonance zebra");
    EXPECT_THAT(GetText(), HasSubstr("No page has \"resonance zebra\"."));
    Search("<b>%20#?&");
    EXPECT_THAT(GetText(), HasSubstr("No page has \"<b>%20#?&\"."));
}

/// Markup isn't text.
TEST_F(HelpPaneTest, ASearchDoesNotFindWhatNobodySees) {
    m_Browser.Navigate(MakeUrl("PB_004"));
    Search("stylesheet");
    EXPECT_THAT(GetText(), HasSubstr("No page has"));
}

TEST_F(HelpPaneTest, TheButtonsFollowTheLanguageOfTheTexts) {
    m_Browser.Navigate(MakeUrl("PB_004"));
    EXPECT_EQ(GetButton(1).text(), "Contents");
    SetLanguage("de");
    m_Browser.Navigate(MakeUrl("PB_004", "de"));
    EXPECT_EQ(GetButton(1).text(), "Inhalt");
    EXPECT_EQ(GetSearch().placeholderText(), "Suchen");
}

TEST_F(HelpPaneTest, PicturesFitIntoTheWidth) {
    m_Browser.Navigate(MakeUrl("PB_005"));
    EXPECT_EQ(GetPage().horizontalScrollBar()->maximum(), 0);
    m_Browser.MoveWindow(CRect(400, 0, 600, 440));
    EXPECT_EQ(GetPage().horizontalScrollBar()->maximum(), 0);
    m_Browser.MoveWindow(CRect(0, 0, 600, 440));
    EXPECT_GT(GetPage().document()->idealWidth(), 400) << "and grow again, up to their own size";
}

TEST_F(HelpPaneTest, NothingIsReadFromOutsideTheFile) {
    QImage Secret(300, 200, QImage::Format_RGB32);
    Secret.fill(Qt::red);
    const std::string Picture = m_Place.At("secret.png");
    ASSERT_TRUE(Secret.save(QString::fromStdString(Picture)));
    const std::string Url = Compile("<html><body><p>text</p><img src=\"file://" + Picture + "\"><img src=\"" +
                                    Picture + "\"><img src=\"../secret.png\"><a href=\"file://" + Picture +
                                    "\">outside</a> <a href=\"http://example.org/\">net</a></body></html>");
    m_Browser.Navigate(Url);
    EXPECT_THAT(GetText(), HasSubstr("text"));
    const QImage Shown = GetPage().grab().toImage();
    for (int y = 0; y < Shown.height(); ++y) {
        for (int x = 0; x < Shown.width(); ++x) {
            ASSERT_NE(Shown.pixelColor(x, y), QColor(Qt::red)) << x << ", " << y;
        }
    }
    EXPECT_THAT(GetPage().loadResource(QTextDocument::StyleSheetResource, QUrl("file:///etc/passwd")),
                QVariant(QByteArray("")));
    ClickOnLink("outside");
    EXPECT_THAT(GetText(), HasSubstr("There is no help page"));
    QTest::mouseClick(&GetButton(0), Qt::LeftButton);
    ClickOnLink("net");
    EXPECT_THAT(GetText(), HasSubstr("There is no help page"));
}

TEST_F(HelpPaneTest, APageWithoutAStyleAListOrAnEndIsShown) {
    m_Browser.Navigate(Compile("<p>Grüße<table><tr><td>cell"));
    EXPECT_THAT(GetText(), HasSubstr("cell"));
    QTest::mouseClick(&GetButton(1), Qt::LeftButton);
    EXPECT_EQ(GetText(), "Contents") << "it has none";
}

TEST_F(HelpPaneTest, TheTabKeyLeadsInThroughTheLinksAndOut) {
    m_Browser.Navigate(MakeUrl("PB_002"));  // one link
    ASSERT_TRUE(m_Edit.SetFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(CWnd::GetFocus(), &m_Browser);
    EXPECT_EQ(QApplication::focusWidget(), &GetPage());
    QTest::keyClick(&GetPage(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &GetPage()) << "its link";
    QTest::keyClick(&GetPage(), Qt::Key_Tab);
    EXPECT_NE(CWnd::GetFocus(), &m_Browser);
    ASSERT_TRUE(m_Browser.SetFocus());
    QTest::keyClick(&GetPage(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), &GetPage()) << "its link, backwards";
    QTest::keyClick(&GetPage(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), &GetSearch());
    EXPECT_EQ(CWnd::GetFocus(), &m_Browser);
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    }
    EXPECT_EQ(CWnd::GetFocus(), &m_Edit) << "nothing to go back to: index, contents, and out";
}

TEST_F(HelpPaneTest, ItRemembersSoManyPlacesAndNoMore) {
    for (int i = 0; i < 500; ++i) {
        m_Browser.Navigate(MakeUrl(i % 2 == 0 ? "PB_001" : "PB_002"));
    }
    int nSteps = 0;
    while (GetButton(0).isEnabled() && nSteps < 1000) {
        QTest::mouseClick(&GetButton(0), Qt::LeftButton);
        ++nSteps;
    }
    EXPECT_EQ(nSteps, 50);
}

/// A picture is the same whether somebody looks at the window or not.
TEST_F(HelpPaneTest, ItIsPartOfThePageWithAndWithoutAView) {
    m_Browser.Navigate(MakeUrl("PB_005"));
    const QImage Shown = m_Top.Compose().GetImpl().GetImage();
    m_pView.reset();
    const QImage Unshown = m_Top.Compose().GetImpl().GetImage();
    ASSERT_EQ(Shown.size(), Unshown.size());
    const QRect Pane(300, 40, 300, 400);  // without the buttons, one of which may have the focus
    EXPECT_EQ(Shown.copy(Pane), Unshown.copy(Pane));
    int nInk = 0;
    for (int x = 300; x < 600; ++x) {
        nInk += Unshown.pixelColor(x, 57) == QColor(Qt::white) ? 0 : 1;
    }
    EXPECT_GT(nInk, 5) << "the heading";
}

TEST_F(HelpPaneTest, AWindowThatIsMadeAnewShowsItsPageAgain) {
    m_Browser.Navigate(MakeUrl("PB_004"));
    m_Browser.DestroyWindow();
    m_Browser.Create(&m_Top, CRect(300, 0, 600, 440), 103);
    EXPECT_THAT(GetText(), HasSubstr("1 to 100 rpm"));
}

TEST_F(HelpPaneTest, WithoutAnAddressItIsEmpty) {
    EXPECT_EQ(GetText(), "");
    EXPECT_THAT(GetText(), Not(HasSubstr("no address")));
}

}  // namespace
