#pragma once
#include <QObject>
#include <functional>

class QWidget;

/// Keeps mouse and keyboard from changing what the page shows, while that is locked: one can go through it,
/// by keys, wheel, scroll bars and tabs, and read its help.
class CPageLock : public QObject {
public:
    explicit CPageLock(QWidget& rPage);

    std::function<bool()> IsLocked;
    /// Something was kept away.
    std::function<void()> OnWithheld;

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    bool IsBrowsing(const QWidget& rWidget, const QEvent& rEvent) const;

    QWidget& m_rPage;
};
