#pragma once
#include <QObject>
#include <cstddef>
#include <functional>
#include <map>

class CPageQuestion;
class CSoftkeyBar;
class QKeyEvent;
class QWidget;

/// The keyboard of the panel, wherever in the window the focus is: F1 to F8 are the softkeys, F11 and F12 the
/// window's own. In a run Enter is the key that confirms and Escape the one that ends; between runs, and in a
/// field that is being edited, both belong to whoever has the focus.
class CPanelKeys : public QObject {
public:
    CPanelKeys(QWidget& rWindow, CSoftkeyBar& rBar, CPageQuestion& rQuestion);

    std::function<void()> OnFullScreen;
    std::function<void()> OnPicture;
    /// Whether a run is on the page, with nothing of its own over it.
    std::function<bool()> IsRunOnPage;

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    bool OnKeyDown(const QKeyEvent& rEvent, bool bInWindow);
    bool OnKeyUp(const QKeyEvent& rEvent);
    bool TakesRunKey() const;

    QWidget& m_rWindow;
    CSoftkeyBar& m_rBar;
    CPageQuestion& m_rQuestion;
    std::map<int, std::size_t> m_Down;  ///< places of the softkeys by the keys that hold them
};
