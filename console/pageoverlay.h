#pragma once
#include <QFrame>
#include <QPointer>
#include <functional>

/// Lies over the page: a card in front of the page in the shade. Waits for nobody; what runs goes on beneath.
/// It is a sibling of the page, as large as it, and hidden at first; while it is open it has the focus, and
/// gives it back.
class CPageOverlay : public QFrame {
public:
    explicit CPageOverlay(QWidget& rPage);

    bool IsOpen() const { return !isHidden(); }
    void Close();

    /// Called when it has been opened, changed or closed.
    std::function<void()> OnChanged;

protected:
    static constexpr int MARGIN = 16;
    /// 14 mm at 96 dpi: keys that mean opposite things.
    static constexpr int BUTTON_HEIGHT = 53;

    QFrame& GetCard() { return *m_pCard; }
    void Open(QWidget& rFocus);
    void Follow();
    /// Height that the card takes if it is so wide.
    virtual int GetHeightFor(int Width) const = 0;
    /// In the usual window.
    virtual int GetWidest() const = 0;
    /// Keys and letters for the window's present size.
    virtual void FitWindow() = 0;
    virtual void SetTexts() = 0;

    void mousePressEvent(QMouseEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    /// The Tab key stays inside.
    bool focusNextPrevChild(bool bNext) override;

private:
    QWidget& m_rPage;
    QFrame* m_pCard;
    QPointer<QWidget> m_pFocusBefore;
};
