#pragma once
#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <string>

#include "platform/window/webbrowser2.h"
#include "tests/system/mainwindowfixture.h"

/// The real window in front, on the pages of the configuration.
class CPagesTestBase : public CMainWindowTestBase {
protected:
    ~CPagesTestBase() override { Close(); }

    void OpenInFront() {
        Open();
        m_pWindow->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_pWindow.get()));
        m_Loop.Advance(500);
    }
    CShownConfiguration GetShown() {
        return m_pSession->GetShownConfiguration().value_or(CShownConfiguration());
    }
    /// A softkey, on whichever row it is.
    void PressKey(const QString& rText) {
        for (int nRow = 0; nRow < 2 && FindButton(rText) == nullptr; ++nRow) {
            Press("More");
        }
        Press(rText);
    }
    bool IsKeyEnabled(const QString& rText) {
        for (int nRow = 0; nRow < 2 && FindButton(rText) == nullptr; ++nRow) {
            Press("More");
        }
        return FindButton(rText) != nullptr && FindButton(rText)->isEnabled();
    }
    /// Writes over the name in the field that shows it.
    void TypeName(const QString& rOld, const QString& rNew, bool bEnter = true) {
        QLineEdit* pField = nullptr;
        for (QLineEdit* const pEdit : m_pWindow->findChildren<QLineEdit*>()) {
            pField = pEdit->isVisible() && pEdit->text() == rOld ? pEdit : pField;
        }
        ASSERT_NE(pField, nullptr) << rOld.toStdString();
        pField->setFocus();
        pField->selectAll();
        QTest::keyClicks(pField, rNew);
        if (bEnter) {
            QTest::keyClick(pField, Qt::Key_Return);
        }
        m_Loop.Advance(500);
    }
    static const CWebBrowser2* FindBrowser(const CWnd& rWnd) {
        for (const CWnd* const pChild : rWnd.GetChildren()) {
            if (const auto* const pBrowser = dynamic_cast<const CWebBrowser2*>(pChild)) {
                return pBrowser;
            }
            if (const CWebBrowser2* const pBelow = FindBrowser(*pChild)) {
                return pBelow;
            }
        }
        return nullptr;
    }
    std::string GetHelpTopic() {
        const CWebBrowser2* const pBrowser = FindBrowser(m_pSession->GetHost());
        const std::string Url = pBrowser == nullptr ? std::string() : pBrowser->GetLocationURL();
        return Url.substr(Url.find_last_of("/\\") + 1);
    }
    /// Goes down the tree until the help on the right is that of the item.
    void SelectItem(const std::string& rTopic) {
        for (int nTry = 0; nTry < 40; ++nTry) {
            if (GetHelpTopic() == rTopic + ".htm") {
                return;
            }
            PressKey("Item down");
        }
        FAIL() << rTopic << ", at " << GetHelpTopic();
    }
    /// Above the first row.
    void GoToName() {
        for (int nTry = 0; nTry < 40 && GetHelpTopic() != "PB_013.htm"; ++nTry) {
            PressKey("Item up");
        }
        ASSERT_EQ(GetHelpTopic(), "PB_013.htm");
        PressKey("Item up");
    }
};
