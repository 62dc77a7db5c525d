#pragma once
#include <functional>
#include <string>

#include "platform/window/wnd.h"

/// The help pane: shows the page of a URL.
class CWebBrowser2 : public CWnd {
public:
    /// Remembers the address and shows it as soon as a help viewer is attached.
    void Navigate(const std::string& rUrl);
    const std::string& GetLocationURL() const { return m_Url; }

    /// Shows the page of an address on the screen.
    using Viewer = std::function<void(const std::string& rUrl)>;
    /// From now on Shower gets the addresses; at once the present one, if there is one. Null to detach.
    void AttachViewer(Viewer Shower);

private:
    Viewer m_Viewer;
    std::string m_Url;
};
