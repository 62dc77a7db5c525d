#include "platform/window/webbrowser2.h"

#include <utility>

void CWebBrowser2::Navigate(const std::string& rUrl) {
    m_Url = rUrl;
    if (m_Viewer) {
        m_Viewer(m_Url);
    }
}

void CWebBrowser2::AttachViewer(Viewer Shower) {
    m_Viewer = std::move(Shower);
    if (m_Viewer && !m_Url.empty()) {
        m_Viewer(m_Url);
    }
}
