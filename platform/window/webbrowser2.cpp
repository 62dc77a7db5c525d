#include "platform/window/webbrowser2.h"

CWebBrowser2::CWebBrowser2() {
    ModifyStyle(0, WS_TABSTOP);
}

void CWebBrowser2::Navigate(const std::string& rUrl) {
    m_Url = rUrl;
    ++m_nNavigation;
    NotifyPeer();
}
