#pragma once
#include <QWidget>
#include <memory>

#include "console/demo.h"

class QLabel;
class QProgressBar;
class QPushButton;

/// The words of a demonstration, with keys to hold it, to go on at once, and to take the run over.
class CDemoView : public QWidget {
public:
    CDemoView(IFOperatorPanel& rPanel, IFMachine& rMachine, std::uint32_t WorkingSpeed, QWidget* pParent);
    CDemo& GetDemo() { return m_Demo; }

protected:
    void changeEvent(QEvent* pEvent) override;

private:
    QPushButton* MakeKey(const char* pSymbol);
    void SetTexts();
    void FitWindow();
    void Refresh();

    CDemo m_Demo;
    QLabel* m_pText = nullptr;
    QProgressBar* m_pTime = nullptr;
    QPushButton* m_pPause = nullptr;
    QPushButton* m_pNext = nullptr;
    QPushButton* m_pBreakOff = nullptr;
    std::uint32_t m_Whole = 1;  ///< reading time of the text on show, ms
};
