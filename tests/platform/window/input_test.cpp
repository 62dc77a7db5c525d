#include "platform/window/input.h"

#include <gtest/gtest.h>

namespace {

class InputTest : public testing::Test {
protected:
    ~InputTest() override {
        SetMouseButtons(false, false);
        SetMouseButtonsSwapped(false);
    }
};

TEST_F(InputTest, ThePrimaryButtonIsTheLeftOne) {
    EXPECT_FALSE(IsPrimaryButtonDown());
    SetMouseButtons(true, false);
    EXPECT_TRUE(IsPrimaryButtonDown());
    SetMouseButtons(false, true);
    EXPECT_FALSE(IsPrimaryButtonDown());
}

TEST_F(InputTest, WithSwappedButtonsThePrimaryButtonIsTheRightOne) {
    SetMouseButtonsSwapped(true);
    SetMouseButtons(true, false);
    EXPECT_FALSE(IsPrimaryButtonDown());
    SetMouseButtons(false, true);
    EXPECT_TRUE(IsPrimaryButtonDown());
}

}  // namespace
