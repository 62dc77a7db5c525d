#pragma once
#include <string>

#include "platform/window/wnd.h"

/// The help pane: shows the page of a URL.
class CWebBrowser2 : public CWnd {
public:
    /// Remembers the address and shows it as soon as a help viewer is attached.
    void Navigate(const std::string& rUrl);
    const std::string& GetLocationURL() const { return m_Url; }

private:
    std::string m_Url;
};
