#pragma once
#include <QFrame>
#include <QPointer>
#include <functional>

class QHBoxLayout;
class QLabel;
class QToolButton;
class QVBoxLayout;

/// Something to read over the page: it covers the page, with a title and a key that closes it, until that key
/// or Escape is pressed, and gives the focus back then. All else goes on below: keys that it has no use for
/// reach the console.
class CPageCover : public QFrame {
public:
    /// Over rPage, and as large as it; hidden at first. It is a sibling of the page.
    explicit CPageCover(QWidget& rPage);

    void Close();
    /// Open, whether the window of the console is shown or not.
    bool IsOpen() const { return !isHidden(); }

    /// Called after it was closed, by whatever.
    std::function<void()> OnClosed;

protected:
    /// To be hit by a finger, in the usual window.
    static constexpr int BUTTON_SIZE = 40;

    /// Covers the page, and gives the focus to its proxy.
    void Open();
    void SetTitle(const QString& rText);
    /// Below the title.
    QVBoxLayout& GetColumn() { return *m_pColumn; }
    /// Where the title stands, for what goes beside it.
    QHBoxLayout& GetTitleRow() { return *m_pTitleRow; }
    /// Letters and keys for the window's present size.
    virtual void FitWindow() {}
    QToolButton& GetCloseButton() { return *m_pClose; }

    void keyPressEvent(QKeyEvent* pEvent) override;
    /// Follows the page.
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void Follow();

    QWidget& m_rPage;
    QVBoxLayout* m_pColumn = nullptr;
    QHBoxLayout* m_pTitleRow = nullptr;
    QLabel* m_pTitle = nullptr;
    QToolButton* m_pClose = nullptr;
    QPointer<QWidget> m_pFocusBefore;
};
