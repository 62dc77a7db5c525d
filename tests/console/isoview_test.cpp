#include "console/isoview.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "console/isofigures.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"
#include "tests/support/runrecords.h"

namespace {

/// 12 kg at 6000 rpm and G 6.3, weights of 45 g·mm; 150 counts a weight.
CRunSetup MakeSetup() {
    const CRunRecord Record = RunRecords::MakeWeights();
    CRunSetup Setup = Record.m_Setup;
    Setup.m_InvA = Record.m_Calibration->m_InvA;
    return Setup;
}

class IsoView : public testing::Test {
protected:
    IsoView() {
        m_View.GetKey = [this] { return m_Setup.m_Configuration; };
        m_View.GetSetup = [this] { return std::optional(m_Setup); };
        m_View.OnChanged = [this](const CIsoData& rData) {
            m_Setup.m_Iso = rData;
            ++m_nChanges;
            return m_Trouble;
        };
        m_View.resize(300, 600);
        m_View.show();
    }
    QLineEdit* Find(const char* pName) {
        for (QLineEdit* const pEdit : m_View.findChildren<QLineEdit*>()) {
            if (pEdit->accessibleName() == pName && pEdit->isVisible()) {
                return pEdit;
            }
        }
        return nullptr;
    }
    void Enter(const char* pName, const char* pText) {
        QLineEdit* const pEdit = Find(pName);
        ASSERT_NE(pEdit, nullptr) << pName;
        pEdit->selectAll();
        QTest::keyClicks(pEdit, pText);
        QTest::keyClick(pEdit, Qt::Key_Return);
    }
    std::string GetLabels() {
        std::string Text;
        for (const QLabel* const pLabel : m_View.findChildren<QLabel*>()) {
            Text += pLabel->isVisible() ? pLabel->text().toStdString() + "|" : "";
        }
        return Text;
    }

    CVirtualEventLoop m_Loop;
    CRunSetup m_Setup = MakeSetup();
    std::string m_Trouble;
    int m_nChanges = 0;
    CIsoView m_View;
};

}  // namespace

// U_per = 120.3 g·mm; of 45 g·mm a weight with 150 counts, 401 counts.
TEST(IsoFigures, TellPermissibleAndTarget) {
    EXPECT_EQ(CIsoFigures(MakeSetup()).GetResult(), "Permissible: 120 g·mm\nTarget: 401 µm/s");
    CRunSetup Setup = MakeSetup();
    Setup.m_Iso.m_Grade = 0.0;
    EXPECT_EQ(CIsoFigures(Setup).GetResult(), GetText("ISO_MISSING"));
    Setup = MakeSetup();
    Setup.m_InvA.Null();
    EXPECT_EQ(CIsoFigures(Setup).GetResult(), "Permissible: 120 g·mm\n" + GetText("ISO_NO_TARGET"));
}

TEST(IsoFigures, TheTargetOfAGradeIsRoundedToTheSafeSide) {
    CRunSetup Setup = MakeSetup();
    Setup.m_Iso.m_Grade = 0.1;  // 6.37 counts
    EXPECT_EQ(CIsoFigures(Setup).GetTargetOfGrade(),
              "G 0.1 means a target of 6 µm/s at most; it is set on the settings page.\n"
              "The present target of 5 µm/s comes to G 0.079.");
    Setup.m_Iso.m_Grade = 0.01;
    EXPECT_EQ(CIsoFigures(Setup).GetTargetOfGrade(),
              "G 0.01 would need a target of 0.64 µm/s, which is too fine for a whole number.\n"
              "The present target of 5 µm/s comes to G 0.079.");
}

TEST_F(IsoView, ShowsTheFieldsOfThePlanesThatAreBalanced) {
    EXPECT_EQ(Find("Rotor mass")->text(), "12");
    EXPECT_EQ(Find("One weight, plane 1")->text(), "45");
    EXPECT_EQ(Find("One weight, plane 2"), nullptr);
    EXPECT_EQ(Find("Plane 1 to centre of mass"), nullptr) << "one plane takes all";
    m_Setup = RunRecords::MakePublishedTwoPlane().m_Setup;
    m_View.Refresh();
    EXPECT_EQ(Find("Radius of the holes, plane 2")->text(), "120");
    EXPECT_EQ(Find("Plane 2 to centre of mass")->text(), "300");
}

TEST_F(IsoView, WhatIsEnteredIsKeptAndShowsAtOnceWhatItComesTo) {
    Enter("Rotor mass", "24");
    EXPECT_EQ(m_Setup.m_Iso.m_RotorMass, 24.0);
    EXPECT_NE(GetLabels().find("Permissible: 241 g·mm"), std::string::npos) << GetLabels();
    Enter("Grade asked for (G)", "2,5");
    EXPECT_EQ(m_Setup.m_Iso.m_Grade, 2.5) << "with a comma";
    QLineEdit* const pMass = Find("Rotor mass");
    pMass->selectAll();
    QTest::keyClick(pMass, Qt::Key_Delete);
    QTest::keyClick(pMass, Qt::Key_Return);
    EXPECT_EQ(m_Setup.m_Iso.m_RotorMass, 0.0) << "nothing: not known";
}

TEST_F(IsoView, AValueThatCantBeIsToldAndNotKept) {
    for (const char* pText : {"x", "-3", "1e9", "inf", "nan"}) {
        Enter("Rotor mass", pText);
        EXPECT_EQ(m_nChanges, 0) << pText;
        EXPECT_NE(GetLabels().find("Rotor mass: a number from 0.001 to 100000"), std::string::npos);
    }
    Enter("Rotor mass", "13");
    EXPECT_EQ(m_nChanges, 1);
    EXPECT_EQ(GetLabels().find("a number from"), std::string::npos);
}

TEST_F(IsoView, WhatCantBeSavedIsTold) {
    m_Trouble = "Not saved: locked";
    Enter("Rotor mass", "24");
    EXPECT_NE(GetLabels().find("Not saved: locked"), std::string::npos);
}

TEST_F(IsoView, TheKeyShowsWhichTargetTheGradeMeans) {
    EXPECT_EQ(GetLabels().find("means a target"), std::string::npos);
    auto* const pKey = m_View.findChild<QPushButton*>();
    ASSERT_NE(pKey, nullptr);
    QTest::mouseClick(pKey, Qt::LeftButton);
    EXPECT_NE(GetLabels().find("G 6.3 means a target of 401 µm/s at most"), std::string::npos) << GetLabels();
}

// Values begun for one configuration must not come to another.
TEST_F(IsoView, AnotherConfigurationOnShowIsFollowedAndSparesIt) {
    QLineEdit* const pMass = Find("Rotor mass");
    pMass->selectAll();
    QTest::keyClicks(pMass, "99");
    m_Setup.m_Configuration = "Other";
    m_Setup.m_Iso.m_RotorMass = 7.0;
    QTest::keyClick(pMass, Qt::Key_Return);
    EXPECT_EQ(m_nChanges, 0);
    EXPECT_EQ(pMass->text(), "7");
    m_Setup.m_Configuration = "Third";
    m_Setup.m_Iso.m_RotorMass = 8.0;
    m_Loop.RunUntil([] { return false; }, 600);
    EXPECT_EQ(pMass->text(), "8") << "without anything entered";
}

TEST_F(IsoView, FieldsAreAsHighAsAFingerNeedsAndNamed) {
    for (const QLineEdit* const pEdit : m_View.findChildren<QLineEdit*>()) {
        EXPECT_GE(pEdit->minimumHeight(), 45);
        EXPECT_FALSE(pEdit->accessibleName().isEmpty());
    }
}
