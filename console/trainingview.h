#pragma once
#include <QWidget>
#include <cstddef>
#include <functional>

#include "console/traininglesson.h"
#include "console/trainingticks.h"

class QComboBox;
class QLabel;
class QPushButton;

/// The twelve situations with their ticks, what is to be done in the present one, and what happened.
class CTrainingView : public QWidget {
public:
    CTrainingView(CTrainingLesson& rLesson, CTrainingTicks& rTicks, std::size_t Current, QWidget* pParent);

    CTrainingLesson& GetLesson() { return m_rLesson; }
    /// A situation is to begin, maybe the present one again.
    std::function<void(std::size_t Situation)> OnChosen;

protected:
    void changeEvent(QEvent* pEvent) override;

private:
    void OnResult(const CTrainingResult& rResult);
    void SetTexts();
    void FitWindow();
    void Refresh();

    CTrainingLesson& m_rLesson;
    CTrainingTicks& m_rTicks;
    std::size_t m_Current;
    bool m_bKept = true;  ///< the ticks could be written
    QComboBox* m_pChoice = nullptr;
    QPushButton* m_pBegin = nullptr;
    QLabel* m_pText = nullptr;
};
