#include "console/softkeys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "contract/pages.h"
#include "contract/softkeymask.h"

using testing::IsEmpty;

namespace {

CSoftkeys::CState Settings(std::int32_t Bits = 0) {
    return {true, Menus::eNone, Pages::eSettings, Bits, true};
}

CSoftkeys::CState ScrewTable(std::int32_t Bits = 0) {
    return {true, Menus::eNone, Pages::eScrewTable, Bits, true};
}

std::vector<std::string> GetTexts(const CSoftkeys& rKeys) {
    std::vector<std::string> Texts;
    for (const CSoftkey& rKey : rKeys.GetShown()) {
        Texts.emplace_back(rKey.m_pTextKey);
    }
    return Texts;
}

/// On any row; null if there is none.
std::optional<CSoftkey> Find(const CSoftkeys::CState& rState, const std::string& rTextKey) {
    CSoftkeys Keys;
    Keys.SetState(rState);
    for (int nRow = 0; nRow < 3; ++nRow) {
        for (const CSoftkey& rKey : Keys.GetShown()) {
            if (rKey.m_pTextKey == rTextKey) {
                return rKey;
            }
        }
        Keys.More();
    }
    return std::nullopt;
}

bool IsEnabled(const CSoftkeys::CState& rState, const std::string& rTextKey) {
    const std::optional<CSoftkey> Key = Find(rState, rTextKey);
    EXPECT_TRUE(Key) << rTextKey;
    return Key && Key->m_bEnabled;
}

}  // namespace

TEST(Softkeys, BeginWithNone) {
    EXPECT_THAT(CSoftkeys().GetShown(), IsEmpty());
}

TEST(Softkeys, SettingsHaveTheMostUsedKeysInTheFirstRowAndTheOthersBehindMore) {
    CSoftkeys Keys;
    Keys.SetState(Settings());
    EXPECT_EQ(GetTexts(Keys),
              (std::vector<std::string>{"SK_PREBALANCE", "SK_REBALANCE", "SK_PREVIOUS_ITEM", "SK_NEXT_ITEM",
                                        "SK_PREVIOUS_VALUE", "SK_NEXT_VALUE", "SK_ACCEPT", "SK_MORE"}));
    Keys.More();
    EXPECT_EQ(GetTexts(Keys), (std::vector<std::string>{"SK_NEXT_TAB", "SK_EXPAND", "SK_DELETE_CONFIGURATION",
                                                        "SK_HELP", "", "", "", "SK_MORE"}));
    Keys.More();
    EXPECT_EQ(GetTexts(Keys).front(), "SK_PREBALANCE");
}

TEST(Softkeys, ScrewTableFitsInOneRow) {
    CSoftkeys Keys;
    Keys.SetState(ScrewTable());
    EXPECT_EQ(GetTexts(Keys),
              (std::vector<std::string>{"SK_PREVIOUS_CELL", "SK_NEXT_CELL", "SK_PREVIOUS_TABLE",
                                        "SK_NEXT_TABLE", "SK_NEXT_TAB", "SK_DELETE_TABLE", "", "SK_HELP"}));
    Keys.More();
    EXPECT_EQ(GetTexts(Keys).front(), "SK_PREVIOUS_CELL");
}

TEST(Softkeys, SecondRowStaysWhenOnlyAnEnablementChanges) {
    CSoftkeys Keys;
    Keys.SetState(Settings());
    Keys.More();
    Keys.SetState(Settings(SoftkeyMask::eScrewPage));
    EXPECT_EQ(GetTexts(Keys).front(), "SK_NEXT_TAB");
}

TEST(Softkeys, AnotherPageAndAnotherMenuBeginWithTheFirstRow) {
    CSoftkeys Keys;
    Keys.SetState(Settings());
    Keys.More();
    Keys.SetState(ScrewTable());
    EXPECT_EQ(GetTexts(Keys).front(), "SK_PREVIOUS_CELL");
    Keys.SetState(Settings());
    EXPECT_EQ(GetTexts(Keys).front(), "SK_PREBALANCE");
}

TEST(Softkeys, RebalancingNeedsACalibration) {
    EXPECT_FALSE(IsEnabled(Settings(), "SK_REBALANCE"));
    EXPECT_TRUE(IsEnabled(Settings(SoftkeyMask::eReBalancing), "SK_REBALANCE"));
}

TEST(Softkeys, NextPageNeedsTheScrewPage) {
    EXPECT_FALSE(IsEnabled(Settings(SoftkeyMask::eReBalancing), "SK_NEXT_TAB"));
    EXPECT_TRUE(IsEnabled(Settings(SoftkeyMask::eScrewPage), "SK_NEXT_TAB"));
}

TEST(Softkeys, TablesAreSteppedThroughInTheListModeOnly) {
    EXPECT_FALSE(IsEnabled(ScrewTable(SoftkeyMask::eScrewPage), "SK_NEXT_TABLE"));
    EXPECT_FALSE(IsEnabled(ScrewTable(SoftkeyMask::eScrewPage), "SK_PREVIOUS_TABLE"));
    EXPECT_TRUE(IsEnabled(ScrewTable(SoftkeyMask::ePages), "SK_NEXT_TABLE"));
    EXPECT_TRUE(IsEnabled(Settings(), "SK_NEXT_VALUE")) << "of the settings they are always there";
}

TEST(Softkeys, WhatCantBeDeletedHasADeadKey) {
    CSoftkeys::CState State = Settings();
    EXPECT_TRUE(IsEnabled(State, "SK_DELETE_CONFIGURATION"));
    State.m_bDeletable = false;
    EXPECT_FALSE(IsEnabled(State, "SK_DELETE_CONFIGURATION"));
}

TEST(Softkeys, WithoutAConfigurationThereIsOnlyHelp) {
    CSoftkeys::CState State = Settings(SoftkeyMask::eReBalancing | SoftkeyMask::eScrewPage);
    State.m_bReady = false;
    CSoftkeys Keys;
    Keys.SetState(State);
    EXPECT_EQ(GetTexts(Keys), (std::vector<std::string>{"", "", "", "", "", "", "", "SK_HELP"}));
}

TEST(Softkeys, RunHasTheKeysOfItsMenuAndHelpAtTheLastPlace) {
    for (std::int32_t Menu = 0; Menu < 40; ++Menu) {
        CSoftkeys Keys;
        Keys.SetState({true, Menu, Pages::eSettings, 0, false});
        ASSERT_EQ(Keys.GetShown().size(), CSoftkeys::PLACES) << "menu " << Menu;
        EXPECT_EQ(Keys.GetShown().back().m_Kind, CSoftkey::eHelp) << "menu " << Menu;
        const std::span<const MenuKeys::CKey> Expected = MenuKeys::GetKeys(Menu);
        for (std::size_t i = 0; i + 1 < CSoftkeys::PLACES; ++i) {
            const CSoftkey& rKey = Keys.GetShown()[i];
            EXPECT_EQ(rKey.m_bEnabled, i < Expected.size()) << "menu " << Menu << ", place " << i;
            EXPECT_STREQ(rKey.m_pTextKey, i < Expected.size() ? Expected[i].m_pTextKey : "")
                << "menu " << Menu;
        }
    }
}

TEST(Softkeys, KeysThatRepeatAreThoseOfValues) {
    for (const char* const pKey : {"SK_PREVIOUS_VALUE", "SK_NEXT_VALUE"}) {
        EXPECT_TRUE(Find(Settings(), pKey)->m_Key.m_bRepeats) << pKey;
    }
    EXPECT_FALSE(Find(Settings(), "SK_NEXT_ITEM")->m_Key.m_bRepeats);
    EXPECT_FALSE(Find(ScrewTable(), "SK_NEXT_TABLE")->m_Key.m_bRepeats) << "one table at a press";
}
