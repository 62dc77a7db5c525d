// The head line and the list of messages, as widgets.
#include "console/headline.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QTest>
#include <QVBoxLayout>

#include "console/headbutton.h"
#include "console/messagelist.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"

namespace {

class HeadLineTest : public testing::Test {
protected:
    HeadLineTest() {
        auto* const pCentral = new QWidget(&m_Window);
        auto* const pColumn = new QVBoxLayout(pCentral);
        m_pLine = new CHeadLine(pCentral);
        pColumn->addWidget(m_pLine);
        pColumn->addStretch(1);
        m_Window.setCentralWidget(pCentral);
        m_Window.show();
    }
    ~HeadLineTest() override { SetLanguage("en"); }

    CVirtualEventLoop m_Loop;
    QMainWindow m_Window;
    CHeadLine* m_pLine = nullptr;
};

}  // namespace

TEST_F(HeadLineTest, EveryWordOfALightIsWholeInBothLanguagesFromTheSmallestWindowOn) {
    constexpr std::array LINK = {"LIGHT_OPEN", "LIGHT_SIMULATED", "LIGHT_CLOSED"};
    constexpr std::array MODULE = {"LIGHT_NO_ANSWER", "LIGHT_HEARD",       "LIGHT_SILENT", "LIGHT_STANDING",
                                   "LIGHT_LOCKED",    "LIGHT_OUT_OF_LOCK", "LIGHT_UNKNOWN"};
    constexpr std::array NC = {"LIGHT_CONNECTED", "LIGHT_CONNECTING", "LIGHT_LOST", "LIGHT_NONE"};
    constexpr std::array DATABASE = {"LIGHT_READY", "LIGHT_READ_ONLY", "LIGHT_UNREADABLE", "LIGHT_TROUBLE"};
    for (const QSize& rSize : {QSize(800, 480), QSize(1024, 768), QSize(1920, 1080), QSize(3840, 2160)}) {
        m_Window.resize(rSize);
        for (const char* const pLanguage : {"en", "de"}) {
            SetLanguage(pLanguage);
            for (std::size_t i = 0; i < MODULE.size(); ++i) {
                CHeadState State;
                State.m_Machine = "0#1#255-0-486107-930938880-1";
                State.m_Configuration = "Wheel 400, with the large flange";
                State.m_Message = "A message that is longer than what there is room for, and then some more.";
                State.m_Clock = "23:59";
                const auto Set = [&State](CHeadState::Place Place, const char* pKey) {
                    State.m_Lights.at(Place) = {CLight::Level::eTrouble, GetText(pKey), "text"};
                };
                Set(CHeadState::eLink, LINK.at(i % LINK.size()));
                Set(CHeadState::eModule, MODULE.at(i));
                Set(CHeadState::eNc, NC.at(i % NC.size()));
                Set(CHeadState::eDatabase, DATABASE.at(i % DATABASE.size()));
                m_pLine->Show(State);
                QCoreApplication::processEvents();
                EXPECT_LE(m_Window.width(), rSize.width()) << "it doesn't push the window wider";
                for (const CHeadButton* const pButton : m_pLine->findChildren<CHeadButton*>()) {
                    EXPECT_GE(pButton->height(), 45);
                    EXPECT_LE(pButton->geometry().right(), m_pLine->width());
                    if (pButton->accessibleDescription() == "text") {
                        EXPECT_TRUE(pButton->IsWhole()) << pButton->accessibleName().toStdString() << " at "
                                                        << rSize.width() << " " << pLanguage;
                    }
                }
            }
        }
    }
}

TEST_F(HeadLineTest, APressOnALightTellsWhichOne) {
    std::vector<int> Pressed;
    m_pLine->OnLight = [&](CHeadState::Place Place) { Pressed.push_back(Place); };
    CHeadState State;
    for (CLight& rLight : State.m_Lights) {
        rLight = {CLight::Level::eGood, "word", "text"};
    }
    m_pLine->Show(State);
    for (CHeadButton* const pButton : m_pLine->findChildren<CHeadButton*>()) {
        QTest::mouseClick(pButton, Qt::LeftButton);
    }
    EXPECT_EQ(Pressed, (std::vector<int>{0, 1, 2, 3}));
}

namespace {

class MessageListTest : public testing::Test {
protected:
    MessageListTest() {
        m_List.resize(400, 500);
        m_List.show();
    }
    std::vector<std::string> GetShown() const {
        const auto* const pList = m_List.findChild<QListWidget*>();
        std::vector<std::string> Texts;
        for (int i = 0; i < pList->count(); ++i) {
            Texts.push_back(pList->item(i)->text().section('\n', 1).toStdString());
        }
        return Texts;
    }

    CVirtualEventLoop m_Loop;
    CMessageLog m_Log;
    CMessageList m_List{m_Log};
};

}  // namespace

TEST_F(MessageListTest, ShowsWhatComesAndFiltersByWords) {
    m_Log.Say("red car");
    m_Log.Say("green car");
    m_Loop.Advance(300);
    EXPECT_EQ(GetShown(), (std::vector<std::string>{"red car", "green car"}));
    QTest::keyClicks(m_List.findChild<QLineEdit*>(), "GREEN");
    EXPECT_EQ(GetShown(), (std::vector<std::string>{"green car"}));
    m_Log.Say("blue car");
    m_Log.Say("light green car");
    m_Loop.Advance(300);
    EXPECT_EQ(GetShown(), (std::vector<std::string>{"green car", "light green car"}));
    m_List.findChild<QLineEdit*>()->clear();
    m_List.findChild<QComboBox*>()->setCurrentIndex(2);
    EXPECT_TRUE(GetShown().empty()) << "errors only";
}

TEST_F(MessageListTest, DropsTheOldestLines) {
    for (int nLine = 0; nLine < 1990; ++nLine) {
        m_Log.Say(std::to_string(nLine));
    }
    m_List.Refresh();
    for (int nLine = 1990; nLine < 2100; ++nLine) {
        m_Log.Say(std::to_string(nLine));
    }
    m_List.Refresh();
    ASSERT_EQ(GetShown().size(), 2000U);
    EXPECT_EQ(GetShown().front(), "100");
    EXPECT_EQ(GetShown().back(), "2099");
}
