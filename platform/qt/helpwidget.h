#pragma once
#include "platform/qt/controlwidget.h"
#include "platform/qt/helppanel.h"
#include "platform/window/webbrowser2.h"

/// The help pane for a CWebBrowser2.
class CHelpWidget : public CControlWidget<CHelpPanel, CWebBrowser2> {
public:
    CHelpWidget(CWebBrowser2& rBrowser, QWidget* pParent) : CControlWidget(rBrowser, pParent) {}

protected:
    void FollowState(const CWebBrowser2& rBrowser) override {
        // What the operator has gone to since stays until the program navigates again.
        if (std::exchange(m_nNavigation, rBrowser.GetNavigation()) != rBrowser.GetNavigation()) {
            ShowAddress(rBrowser.GetLocationURL());
        }
    }
    void OnMovedByOperator() override {
        Tell([this](CWebBrowser2& rBrowser) { rBrowser.NavigateByOperator(GetAddress()); });
    }

private:
    std::uint64_t m_nNavigation = 0;
};
