#pragma once
#include <QFrame>
#include <QPointer>
#include <functional>
#include <string>

class CHelpPanel;
class QLabel;
class QToolButton;

/// The help over the page, for a run, in which the page has no pane for it: it covers the page until it is
/// closed by the help key, Escape or its own button, and gives the focus back then. All else goes on below:
/// keys that it has no use for reach the console.
///
/// The softkey Help: ToggleTopic(HelpTopics::Find(progress)).
class CHelpView : public QFrame {
public:
    /// Over rPage, and as large as it; hidden at first. It is a sibling of the page.
    explicit CHelpView(QWidget& rPage);

    /// Opens the help at a topic (contract/helptopics.h), in the language of the texts; goes there if it is
    /// open.
    void ShowTopic(const std::string& rTopic);
    /// What the help key does: closes the help if it is open, else shows the topic.
    void ToggleTopic(const std::string& rTopic);
    void Close();
    /// Open, whether the window of the console is shown or not.
    bool IsOpen() const { return !isHidden(); }
    const CHelpPanel& GetPanel() const { return *m_pPanel; }

    /// Called after it was closed, by whatever.
    std::function<void()> OnClosed;

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;
    /// The Tab key stays inside.
    bool focusNextPrevChild(bool bNext) override;
    /// Follows the page.
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    QWidget& m_rPage;
    QLabel* m_pTitle = nullptr;
    QToolButton* m_pClose = nullptr;
    CHelpPanel* m_pPanel = nullptr;
    QPointer<QWidget> m_pFocusBefore;
};
