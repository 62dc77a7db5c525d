#include "platform/window/webbrowser2.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(WebBrowser2Test, AnAddressIsShownAsSoonAsAViewerIsThere) {
    CWebBrowser2 Browser;
    std::vector<std::string> Shown;
    const auto Viewer = [&](const std::string& rUrl) { Shown.push_back(rUrl); };
    Browser.AttachViewer(Viewer);
    EXPECT_TRUE(Shown.empty()) << "nothing to show yet";
    Browser.AttachViewer(nullptr);
    Browser.Navigate("first");
    EXPECT_EQ(Browser.GetLocationURL(), "first");
    Browser.AttachViewer(Viewer);
    Browser.Navigate("second");
    EXPECT_EQ(Shown, (std::vector<std::string>{"first", "second"}));
}

}  // namespace
