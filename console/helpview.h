#pragma once
#include <string>

#include "console/pagecover.h"

class CHelpPanel;

/// The help over the page, for a run, in which the page has no pane for it.
///
/// The softkey Help: ToggleTopic(HelpTopics::Find(progress)).
class CHelpView : public CPageCover {
public:
    explicit CHelpView(QWidget& rPage);

    /// Opens the help at a topic (contract/helptopics.h), in the language of the texts; goes there if it is
    /// open.
    void ShowTopic(const std::string& rTopic);
    /// What the help key does: closes the help if it is open, else shows the topic.
    void ToggleTopic(const std::string& rTopic);
    const CHelpPanel& GetPanel() const { return *m_pPanel; }

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;
    /// The Tab key stays inside.
    bool focusNextPrevChild(bool bNext) override;

private:
    CHelpPanel* m_pPanel = nullptr;
};
