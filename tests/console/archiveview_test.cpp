// The page of archived runs, pressed as an operator presses it.
#include "console/archiveview.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <memory>

#include "console/reportview.h"
#include "platform/system/virtualeventloop.h"
#include "tests/support/archivedrun.h"
#include "tests/support/tempdirectory.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ArchiveViewTest : public testing::Test {
protected:
    ArchiveViewTest() {
        m_Window.resize(900, 600);
        m_pPage = new QWidget(&m_Window);
        m_pPage->setGeometry(0, 0, 900, 600);
        m_pView = new CArchiveView(*m_pPage);
        m_pView->SetArchive(m_pArchive.get());
        m_pView->ShowMachine("A-1", "Spindle 7");
        m_Window.show();
    }
    /// Minutes after a moment.
    void Keep(const std::string& rRotor, int nMinute, const std::function<void(CRunRecord&)>& rChange = {}) {
        CRunRecord Record = MakeArchivedRun();
        Record.m_Rotor = rRotor;
        Record.m_Started =
            std::chrono::sys_days(std::chrono::year(2026) / 3 / 1) + std::chrono::minutes(nMinute);
        if (rChange) {
            rChange(Record);
        }
        m_pArchive->Keep(CRunArchive::MakeMark(), Record);
    }
    /// What was asked of the archive is there.
    void Settle() {
        ASSERT_TRUE(m_pArchive->Finish(CRunArchive::LIMIT));
        m_Loop.Advance(10);
    }
    void Open() {
        m_pView->Toggle();
        Settle();
    }
    QTreeWidget& GetList() { return *m_pView->findChild<QTreeWidget*>(); }
    std::vector<std::string> GetRotors() {
        std::vector<std::string> Names;
        for (int i = 0; i < GetList().topLevelItemCount(); ++i) {
            Names.push_back(GetList().topLevelItem(i)->text(1).toStdString());
        }
        return Names;
    }
    void Tap(int nLine) {
        const QRect Line = GetList().visualItemRect(GetList().topLevelItem(nLine));
        QTest::mouseClick(GetList().viewport(), Qt::LeftButton, {}, Line.center());
    }
    QPushButton& FindKey(const QString& rText) {
        for (QPushButton* const pKey : m_pView->findChildren<QPushButton*>()) {
            if (pKey->text() == rText && pKey->isVisible()) {
                return *pKey;
            }
        }
        throw std::runtime_error("no key " + rText.toStdString());
    }
    void Press(const QString& rText) {
        QPushButton& rKey = FindKey(rText);
        ASSERT_TRUE(rKey.isEnabled()) << rText.toStdString();
        QTest::mouseClick(&rKey, Qt::LeftButton);
        Settle();
    }
    void Choose(QComboBox& rBox, int nItem) {
        rBox.setFocus();
        rBox.setCurrentIndex(nItem);
        emit rBox.activated(nItem);
        Settle();
    }
    std::vector<std::string> GetReports() {
        std::vector<std::string> Texts;
        for (const CReportView* const pView : m_pView->findChildren<CReportView*>()) {
            if (pView->isVisible()) {
                Texts.push_back(pView->toPlainText().toStdString());
            }
        }
        return Texts;
    }

    CVirtualEventLoop m_Loop;
    CTempDirectory m_Directory;
    std::unique_ptr<CRunArchive> m_pArchive =
        std::make_unique<CRunArchive>("sqlite:" + m_Directory.At("prebal.db"));
    QWidget m_Window;
    QWidget* m_pPage = nullptr;
    CArchiveView* m_pView = nullptr;
};

}  // namespace

TEST_F(ArchiveViewTest, ListsTheRunsTheNewestFirst) {
    Keep("Spindle 7", 1);
    Keep("Spindle 8", 2);
    Open();
    EXPECT_THAT(GetRotors(), ElementsAre("Spindle 8", "Spindle 7"));
    EXPECT_FALSE(FindKey("Show").isEnabled()) << "nothing is chosen";
}

TEST_F(ArchiveViewTest, FiltersByRotorAndResult) {
    Keep("Spindle 7", 1, [](CRunRecord& rRun) { rRun.m_Result = "SetupSuccess"; });
    Keep("Spindle 8", 2, [](CRunRecord& rRun) { rRun.m_Result = "SetupOverTarget"; });
    Open();
    const auto Boxes = m_pView->findChildren<QComboBox*>();
    ASSERT_EQ(Boxes.size(), 2);
    ASSERT_EQ(Boxes[0]->count(), 3);
    Choose(*Boxes[0], 1);
    EXPECT_THAT(GetRotors(), ElementsAre("Spindle 7"));
    Choose(*Boxes[1], 2);
    EXPECT_THAT(GetRotors(), IsEmpty());
    Choose(*Boxes[0], 0);
    EXPECT_THAT(GetRotors(), ElementsAre("Spindle 8"));
}

TEST_F(ArchiveViewTest, ShowsTheReportOfARun) {
    Keep("Spindle 7", 1);
    Open();
    Tap(0);
    Press("Show");
    EXPECT_THAT(GetReports(), ElementsAre(HasSubstr("Spindle 7")));
    Press("Back to the list");
    EXPECT_THAT(GetReports(), IsEmpty());
}

TEST_F(ArchiveViewTest, ShowsTwoRunsSideBySide) {
    Keep("Spindle 7", 1);
    Keep("Spindle 8", 2);
    Keep("Spindle 9", 3);
    Open();
    Tap(0);
    Tap(2);
    Press("Compare");
    EXPECT_THAT(GetReports(), ElementsAre(HasSubstr("Spindle 9"), HasSubstr("Spindle 7")));
}

TEST_F(ArchiveViewTest, ThreeRunsAreNotCompared) {
    for (int i = 0; i < 3; ++i) {
        Keep("Spindle", i);
    }
    Open();
    for (int i = 0; i < 3; ++i) {
        Tap(i);
    }
    EXPECT_FALSE(FindKey("Show").isEnabled());
    Tap(1);
    EXPECT_TRUE(FindKey("Compare").isEnabled()) << "a further tap takes it back";
}

TEST_F(ArchiveViewTest, TheTrendIsThatOfTheChosenRunsRotor) {
    Keep("Spindle 7", 1);
    Keep("Spindle 8", 2);
    Keep("Spindle 7", 3);
    Open();
    Tap(2);
    Press("Trend");
    const std::vector<std::string> Reports = GetReports();
    ASSERT_EQ(Reports.size(), 1U);
    EXPECT_THAT(Reports[0], HasSubstr("Spindle 7"));
    EXPECT_THAT(Reports[0], testing::Not(HasSubstr("Spindle 8")));
}

TEST_F(ArchiveViewTest, AnInterruptedRunIsCalledSo) {
    Keep("Spindle 7", 1, [](CRunRecord& rRun) { rRun.m_State = CRunRecord::State::eRunning; });
    Open();
    EXPECT_EQ(GetList().topLevelItem(0)->text(5), "interrupted");
}

TEST_F(ArchiveViewTest, TheNameOfTheRotorInTheMachineIsTakenOver) {
    std::string Name;
    m_pView->OnRotorName = [&Name](const std::string& rName) { Name = rName; };
    Open();
    auto* const pField = m_pView->findChild<QLineEdit*>();
    EXPECT_EQ(pField->text(), "Spindle 7");
    pField->selectAll();
    QTest::keyClicks(pField, "Ä <9>");
    QTest::keyClick(pField, Qt::Key_Return);
    EXPECT_EQ(Name, "Ä <9>");
}

TEST_F(ArchiveViewTest, AReportIsAskedForByTheRunsNumber) {
    std::int64_t Id = 0;
    m_pView->OnReport = [&Id](std::int64_t nNumber) { Id = nNumber; };
    Keep("Spindle 7", 1);
    Open();
    Tap(0);
    Press("Write report");
    EXPECT_EQ(Id, 1);
}

TEST_F(ArchiveViewTest, NamesFromOutsideAreNoMarkup) {
    Keep("<img src=x><b>Spindle</b>", 1);
    Open();
    EXPECT_THAT(GetRotors(), ElementsAre("<img src=x><b>Spindle</b>"));
    Tap(0);
    Press("Show");
    EXPECT_THAT(GetReports(), ElementsAre(HasSubstr("<b>Spindle</b>")));
}

TEST_F(ArchiveViewTest, WithoutAnArchiveItIsSaid) {
    m_pView->SetArchive(nullptr);
    m_pView->Toggle();
    std::vector<std::string> Told;
    for (const QLabel* const pLabel : m_pView->findChildren<QLabel*>()) {
        Told.push_back(pLabel->text().toStdString());
    }
    EXPECT_THAT(Told, testing::Contains("Runs aren't kept in this session."));
}

TEST_F(ArchiveViewTest, WhatComesTooLateIsNotShown) {
    Keep("Spindle 7", 1);
    Open();
    Tap(0);
    QTest::mouseClick(&FindKey("Show"), Qt::LeftButton);
    m_pView->Toggle();  // closed,
    m_pView->Toggle();  // and opened anew before the run has come
    Settle();
    EXPECT_THAT(GetReports(), IsEmpty());
    EXPECT_THAT(GetRotors(), ElementsAre("Spindle 7"));
}

TEST_F(ArchiveViewTest, EscapeClosesIt) {
    Open();
    EXPECT_TRUE(m_pView->IsOpen());
    QTest::keyClick(m_pView, Qt::Key_Escape);
    EXPECT_FALSE(m_pView->IsOpen());
}
