#pragma once
#include <QWidget>
#include <cstdint>
#include <functional>

#include "console/messagelog.h"
#include "platform/system/timer.h"

class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;

/// The list of messages, newest last, to be filtered by level and by words.
class CMessageList : public QWidget {
public:
    explicit CMessageList(CMessageLog& rLog, QWidget* pParent = nullptr);

    /// Shows what has come since.
    void Refresh();

    /// Makes the file for service staff.
    std::function<void()> OnService;
    /// Offers a key that is down while it is so, and what it does.
    void OfferTraces(std::function<void(bool)> OnTrace);

protected:
    void showEvent(QShowEvent* pEvent) override;
    void hideEvent(QHideEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;

private:
    static constexpr std::uint32_t PERIOD = 250;  ///< ms

    void SetTexts();
    void FitWindow();
    void Rebuild();
    void Append(const CMessageLog::CLine& rLine);

    CMessageLog& m_rLog;
    QComboBox* m_pLevel = nullptr;
    QLineEdit* m_pWords = nullptr;
    QListWidget* m_pList = nullptr;
    QPushButton* m_pTraces = nullptr;
    QPushButton* m_pService = nullptr;
    std::uint64_t m_nShown = 0;  ///< number of the last line that was looked at
    CTimer m_Timer;
};
