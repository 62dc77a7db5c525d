#pragma once
#include <functional>
#include <string>
#include <vector>

#include "console/pageoverlay.h"

class QBoxLayout;
class QLabel;
class QPushButton;

/// What there is to ask or to tell, in the page's own place. One at a time; a new one takes the place of the
/// last, which is then unanswered.
class CPageQuestion : public CPageOverlay {
public:
    /// Texts by their keys, so that they follow the language.
    struct CAnswer {
        const char* m_pTextKey;
        std::function<void()> m_Do;  ///< may be empty
    };
    struct CQuestion {
        const char* m_pTitleKey = "";
        /// The text, made anew when the language changes.
        std::function<std::string()> m_Text;
        /// The first one is harmless: it has the focus, and Escape gives it. Something to be told has one.
        std::vector<CAnswer> m_Answers;
    };

    explicit CPageQuestion(QWidget& rPage);

    void Ask(CQuestion Question);
    void Answer(std::size_t Index);
    /// Text keys of the answers; none while nothing is open, or while there is only something to be told.
    std::vector<const char*> GetChoices() const;

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;
    int GetHeightFor(int Width) const override;
    int GetWidest() const override;
    void FitWindow() override;
    void SetTexts() override;

private:
    CQuestion m_Question;
    QLabel* m_pTitle = nullptr;
    QLabel* m_pText = nullptr;
    QBoxLayout* m_pRow = nullptr;
    std::vector<QPushButton*> m_Buttons;
};
