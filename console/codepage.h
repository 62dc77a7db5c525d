#pragma once
#include <functional>
#include <string>

#include "console/pageoverlay.h"

class QLabel;
class QLineEdit;
class QPushButton;

/// Where a code is entered, over the page: by keyboard, or by the digits on the page itself.
class CCodePage : public CPageOverlay {
public:
    explicit CCodePage(QWidget& rPage);

    /// What is to be entered, by the key of its text. It stays open until it is closed: the code may be
    /// wrong.
    void Ask(const char* pTextKey, std::function<void(const std::string&)> OnCode);
    /// What is wrong with what was entered, which is forgotten.
    void Tell(const std::string& rText);

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;
    int GetHeightFor(int Width) const override;
    int GetWidest() const override;
    void FitWindow() override;
    void SetTexts() override;

private:
    void MakeDigits();
    void Enter();

    const char* m_pTextKey = "";
    std::function<void(const std::string&)> m_OnCode;
    QLabel* m_pText = nullptr;
    QLabel* m_pTrouble = nullptr;
    QLineEdit* m_pCode = nullptr;
    QPushButton* m_pCancel = nullptr;
    QPushButton* m_pEnter = nullptr;
    QPushButton* m_pErase = nullptr;
    QWidget* m_pDigits = nullptr;
};
