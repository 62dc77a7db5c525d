#pragma once
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "console/headline.h"
#include "console/mainwindow.h"
#include "platform/system/virtualeventloop.h"
#include "tests/support/jsonschema.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/widgetparts.h"
#include "tests/system/wholerun.h"

/// The newest message, whole: the last part of the head line.
inline QString GetMessage(const CMainWindow& rWindow) {
    return FindPart<CHeadLine>(rWindow).findChildren<QToolButton*>().back()->accessibleName();
}

/// A window on the simulator, with the options that a test wants.
class CMainWindowTestBase : public testing::Test {
protected:
    CMainWindowTestBase() { m_Run.m_Options.m_bHeadless = false; }

    void Open() {
        m_pSession = std::make_unique<CConsoleSession>(m_Run.m_Options, &m_Run.m_Rotor,
                                                       m_Run.m_Installation.GetDatabaseFile().string());
        m_pWindow = std::make_unique<CMainWindow>(*m_pSession);
        m_pWindow->show();
        m_Loop.Advance(3000);
    }
    void Close() {
        m_pWindow.reset();
        m_pSession.reset();
    }

    template <typename T>
    T& FindPart() {
        return ::FindPart<T>(*m_pWindow);
    }
    /// By its text, however that is broken into lines.
    QAbstractButton* FindButton(const QString& rText) {
        for (QAbstractButton* pButton : m_pWindow->findChildren<QAbstractButton*>()) {
            if (pButton->text().replace('\n', ' ') == rText) {
                return pButton;
            }
        }
        return nullptr;
    }
    /// The newest message, as the head line has it for those who can't see it.
    std::string GetMessage() { return ::GetMessage(*m_pWindow).toStdString(); }
    std::string GetState() { return m_pSession->Look().m_Progress.m_State; }
    void Press(const QString& rText) {
        QAbstractButton* pButton = FindButton(rText);
        ASSERT_NE(pButton, nullptr) << rText.toStdString();
        ASSERT_TRUE(pButton->isEnabled()) << rText.toStdString();
        pButton->click();
        m_Loop.Advance(500);
    }

    /// From the neutral position to the verdict on the screen.
    void BalanceByButtons() {
        Press("Fit as shown");
        Press("Next");
        Press("Start spindle");
        m_Loop.Advance(3500);
        Press("Next");
        m_Loop.Advance(6000);
        Press("Next");
        EXPECT_EQ(GetState(), "eTestUnbalanceSpindleStop");
        Press("Stop spindle");
        m_Loop.Advance(3000);
        EXPECT_EQ(GetState(), "eTestUnbalanceSetWeights");
        Press("Fit as shown");
        Press("Next");
        Press("Start spindle");
        m_Loop.Advance(9000);
        Press("Next");
        Press("Stop spindle");
        m_Loop.Advance(3000);
        EXPECT_EQ(GetState(), "ePreBalanceSetWeights");
        Press("Fit as shown");
        Press("Next");
        Press("Start spindle");
        m_Loop.Advance(9000);
    }

    CVirtualEventLoop m_Loop;
    CWholeRun m_Run{CRotorFile::GetBuiltIn()};
    std::unique_ptr<CConsoleSession> m_pSession;
    std::unique_ptr<CMainWindow> m_pWindow;
};

/// With what the command line asks for beside the window.
class MainWindowOptionsTest : public CMainWindowTestBase {
protected:
    MainWindowOptionsTest() {
        m_Run.m_Options.m_ReportFile = m_Directory.At("report.json");
        m_Run.m_Options.m_ScreenshotDirectory = m_Directory.GetPath().string();
    }
    void AskFor(COptions::Procedure Procedure) {
        m_Run.m_Options.m_Procedure = Procedure;
        m_Run.m_Options.m_bProcedureGiven = true;
    }
    /// Of which run of the window, from 1.
    nlohmann::json ReadReport(int Run = 1) const {
        std::ifstream In(Run == 1 ? m_Run.m_Options.m_ReportFile
                                  : m_Directory.At("report-" + std::to_string(Run) + ".json"));
        auto Report = nlohmann::json::parse(In, nullptr, false);
        if (In.is_open()) {
            EXPECT_EQ(CheckReport(Report), "");
        }
        return Report;
    }
    std::size_t CountPictures() const {
        std::size_t nFound = 0;
        for (const auto& rEntry : std::filesystem::directory_iterator(m_Directory.GetPath())) {
            nFound += rEntry.path().extension() == ".png" && rEntry.file_size() > 1000 ? 1 : 0;
        }
        return nFound;
    }

    CTempDirectory m_Directory;
};
