#pragma once
#include <cstdint>
#include <string>

#include "platform/window/control.h"

/// The help pane: shows the page of an address (platform/help/helpaddress.h), and lets the operator go on
/// from there by links, contents, index and search. A tab stop.
class CWebBrowser2 : public CControl {
public:
    CWebBrowser2();

    /// Shows the page of an address, also when it is the present one and the operator has left it.
    void Navigate(const std::string& rUrl);
    const std::string& GetLocationURL() const { return m_Url; }
    /// Counts the calls of Navigate: a view shows the address when this is another number than it knows.
    std::uint64_t GetNavigation() const { return m_nNavigation; }

    /// The operator has gone to another page.
    void NavigateByOperator(const std::string& rUrl) { m_Url = rUrl; }

private:
    std::string m_Url;
    std::uint64_t m_nNavigation = 0;
};
