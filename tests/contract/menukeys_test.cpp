#include "contract/menukeys.h"

#include <gtest/gtest.h>

TEST(MenuKeys, EveryMenuOfARunCanBeLeft) {
    for (std::int32_t Menu = 0; Menu < 40; ++Menu) {
        EXPECT_NE(MenuKeys::FindKey(Menu, Actions::eTerminate), nullptr) << "menu " << Menu;
        EXPECT_LE(MenuKeys::GetKeys(Menu).size(), 8U) << "menu " << Menu;
    }
}

TEST(MenuKeys, OnlyTheConfigurationStartsARun) {
    EXPECT_NE(MenuKeys::FindKey(-1, Actions::eStart), nullptr);
    EXPECT_EQ(MenuKeys::FindKey(4, Actions::eStart), nullptr);
}

TEST(MenuKeys, MenusThatChangeWeightsOfTwoPlanesCanChangeThePlane) {
    for (const std::int32_t Menu : {9, 20, 21, 22, 23}) {
        EXPECT_NE(MenuKeys::FindKey(Menu, Actions::eTogglePlane), nullptr) << "menu " << Menu;
    }
    for (const std::int32_t Menu : {6, 24, 25, 26, 27}) {
        EXPECT_EQ(MenuKeys::FindKey(Menu, Actions::eTogglePlane), nullptr) << "menu " << Menu;
    }
}
