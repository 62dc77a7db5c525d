#include "console/sidepanel.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QTest>
#include <QToolButton>

#include "console/language.h"

namespace {

class SidePanelTest : public testing::Test {
protected:
    SidePanelTest() {
        UseLanguage("en");
        m_Panel.AddView(m_pLive, "SIDE_LIVE", "crosshair");
        m_Panel.AddView(m_pMachine, "SIDE_MACHINE", "rotate-cw");
        m_Panel.AddKey([this] { return m_Name; }, "languages", [this] { ++m_nPressed; });
        m_Panel.resize(500, 400);
        m_Panel.show();
    }
    ~SidePanelTest() override { UseLanguage("en"); }

    QToolButton* Find(const QString& rText) {
        for (auto* const pKey : m_Panel.findChildren<QToolButton*>()) {
            if (pKey->text() == rText) {
                return pKey;
            }
        }
        return nullptr;
    }
    void Press(const QString& rText) {
        ASSERT_NE(Find(rText), nullptr) << rText.toStdString();
        QTest::mouseClick(Find(rText), Qt::LeftButton);
    }

    CSidePanel m_Panel;
    QLabel* m_pLive = new QLabel("live");
    QLabel* m_pMachine = new QLabel("machine");
    QString m_Name = "Deutsch";
    int m_nPressed = 0;
};

TEST_F(SidePanelTest, FromTheStartEverythingIsFolded) {
    EXPECT_EQ(m_Panel.GetUnfolded(), nullptr);
    EXPECT_FALSE(m_pLive->isVisible());
}

TEST_F(SidePanelTest, AKeyUnfoldsItsViewAndFoldsTheOther) {
    Press("Readings");
    EXPECT_TRUE(m_pLive->isVisible());
    Press("Machine");
    EXPECT_FALSE(m_pLive->isVisible());
    EXPECT_TRUE(m_pMachine->isVisible());
    EXPECT_EQ(m_Panel.GetUnfolded(), m_pMachine);
    EXPECT_FALSE(Find("Readings")->isChecked());
}

TEST_F(SidePanelTest, TheSameKeyFoldsAgain) {
    Press("Readings");
    const int nWide = m_Panel.sizeHint().width();
    Press("Readings");
    EXPECT_FALSE(m_pLive->isVisible());
    EXPECT_EQ(m_Panel.GetUnfolded(), nullptr);
    EXPECT_FALSE(Find("Readings")->isChecked());
    EXPECT_LT(m_Panel.sizeHint().width(), nWide) << "the page gets the room";
}

TEST_F(SidePanelTest, AKeyWithoutAViewFoldsNothing) {
    Press("Machine");
    Press("Deutsch");
    EXPECT_EQ(m_nPressed, 1);
    EXPECT_EQ(m_Panel.GetUnfolded(), m_pMachine);
}

TEST_F(SidePanelTest, TextsFollowTheLanguage) {
    m_Name = "English";
    UseLanguage("de");
    EXPECT_NE(Find("Messwerte"), nullptr);
    EXPECT_NE(Find("English"), nullptr);
    EXPECT_EQ(Find("Messwerte")->accessibleName(), "Messwerte");
}

TEST_F(SidePanelTest, TheViewTakesItsShareOfTheWindowWithinLimits) {
    Press("Machine");
    const auto GetWidth = [this](int nWindow) {
        m_Panel.resize(nWindow, 600);
        m_Panel.FitWindow();
        return m_pMachine->parentWidget()->width();
    };
    EXPECT_GE(GetWidth(800), 280) << "usable on the smallest window";
    EXPECT_LT(GetWidth(800), 400) << "and the page keeps its half";
    EXPECT_GT(GetWidth(1920), GetWidth(1024));
    EXPECT_LE(GetWidth(3840), 1000);
}

}  // namespace
