#include "platform/window/webbrowser2.h"

#include <gtest/gtest.h>

namespace {

TEST(WebBrowser2Test, KeepsItsAddressWithoutAViewAndWithoutAWindow) {
    CWebBrowser2 Browser;
    EXPECT_EQ(Browser.GetLocationURL(), "");
    Browser.Navigate("first");
    EXPECT_EQ(Browser.GetLocationURL(), "first");
    Browser.NavigateByOperator("second");
    EXPECT_EQ(Browser.GetLocationURL(), "second");
}

/// A view sees by this number that it is to show the address again.
TEST(WebBrowser2Test, OnlyTheProgramsNavigationsCount) {
    CWebBrowser2 Browser;
    Browser.Navigate("first");
    const std::uint64_t nFirst = Browser.GetNavigation();
    Browser.NavigateByOperator("second");
    EXPECT_EQ(Browser.GetNavigation(), nFirst);
    Browser.Navigate("first");
    EXPECT_NE(Browser.GetNavigation(), nFirst);
}

}  // namespace
