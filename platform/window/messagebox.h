#pragma once
#include <functional>
#include <string>
#include <vector>

/// A message box that was shown.
struct CShownMessage {
    std::string m_Title;
    std::string m_Text;
};

/// Shows a message box. Never blocks: the box is modeless, and the window thread goes on. From any thread.
void ShowMessageBox(const std::string& rText, const std::string& rTitle);

/// What was shown since the last call, oldest first; empties the list (which keeps the last 100).
std::vector<CShownMessage> TakeShownMessages();

/// Called on each box by whoever can put it on a screen; null to stop.
void SetMessageBoxPresenter(std::function<void(const CShownMessage&)> Presenter);
