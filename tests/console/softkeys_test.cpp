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
                                        "SK_PREVIOUS_VALUE", "SK_NEXT_VALUE", "SK_HELP", "SK_MORE"}));
    Keys.More();
    EXPECT_EQ(GetTexts(Keys),
              (std::vector<std::string>{"SK_ACCEPT", "SK_NEXT_TAB", "SK_EXPAND", "SK_DELETE_CONFIGURATION",
                                        "SK_CODE", "SK_SERVICE", "SK_HELP", "SK_MORE"}));
    Keys.More();
    EXPECT_EQ(GetTexts(Keys).front(), "SK_PREBALANCE");
}

TEST(Softkeys, ScrewTableFitsInOneRow) {
    CSoftkeys Keys;
    Keys.SetState(ScrewTable());
    EXPECT_EQ(GetTexts(Keys),
              (std::vector<std::string>{"SK_PREVIOUS_CELL", "SK_NEXT_CELL", "SK_PREVIOUS_TABLE",
                                        "SK_NEXT_TABLE", "SK_NEXT_TAB", "SK_DELETE_TABLE", "SK_HELP", ""}));
    Keys.More();
    EXPECT_EQ(GetTexts(Keys).front(), "SK_PREVIOUS_CELL");
}

TEST(Softkeys, SecondRowStaysWhenOnlyAnEnablementChanges) {
    CSoftkeys Keys;
    Keys.SetState(Settings());
    Keys.More();
    Keys.SetState(Settings(SoftkeyMask::eScrewPage));
    EXPECT_EQ(GetTexts(Keys).front(), "SK_ACCEPT");
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
    EXPECT_EQ(GetTexts(Keys), (std::vector<std::string>{"", "", "", "", "", "", "SK_HELP", ""}));
}

TEST(Softkeys, RunHasTheKeysOfItsMenuAndNoOthers) {
    for (std::int32_t Menu = 0; Menu < 40; ++Menu) {
        CSoftkeys Keys;
        Keys.SetState({true, Menu, Pages::eSettings});
        std::vector<std::string> Shown;
        for (const CSoftkey& rKey : Keys.GetShown()) {
            EXPECT_EQ(rKey.m_bEnabled, rKey.m_Kind != CSoftkey::eNone) << "menu " << Menu;
            if (rKey.m_Kind == CSoftkey::eModule) {
                Shown.emplace_back(rKey.m_pTextKey);
            }
        }
        std::vector<std::string> Expected;
        for (const MenuKeys::CKey& rKey : MenuKeys::GetKeys(Menu)) {
            Expected.emplace_back(rKey.m_pTextKey);
        }
        EXPECT_THAT(Shown, testing::UnorderedElementsAreArray(Expected)) << "menu " << Menu;
    }
}

// By the action: what is written on the key doesn't matter to a thumb that knows the place.
TEST(Softkeys, TheLastPlaceEndsARunAndNoOtherPlaceOfItDoes) {
    for (std::int32_t Menu = 0; Menu < 40; ++Menu) {
        CSoftkeys Keys;
        Keys.SetState({true, Menu, Pages::eSettings});
        ASSERT_EQ(Keys.GetShown().size(), 8U) << "menu " << Menu;
        for (std::size_t Place = 0; Place < 8; ++Place) {
            const CSoftkey& rKey = Keys.GetShown()[Place];
            EXPECT_EQ(rKey.IsAction(Actions::eTerminate), Place == 7) << "menu " << Menu;
            EXPECT_FALSE(rKey.IsAction(Actions::eNext) && Place != 0) << "menu " << Menu;
            EXPECT_FALSE(rKey.IsAction(Actions::eRebalance) && Place == 0) << "it is no way to confirm";
        }
        EXPECT_EQ(Keys.GetShown()[6].m_Kind, CSoftkey::eHelp) << "menu " << Menu;
    }
}

TEST(Softkeys, BetweenRunsTheLastPlaceDoesNoHarm) {
    for (const CSoftkeys::CState& rState : {Settings(-1), ScrewTable(-1)}) {
        CSoftkeys Keys;
        Keys.SetState(rState);
        for (int nRow = 0; nRow < 3; ++nRow, Keys.More()) {
            const CSoftkey::Kind Kind = Keys.GetShown().back().m_Kind;
            EXPECT_TRUE(Kind == CSoftkey::eMore || Kind == CSoftkey::eNone);
            EXPECT_EQ(Keys.GetShown()[6].m_Kind, CSoftkey::eHelp);
        }
    }
}

TEST(Softkeys, KeysOfTheActiveWeightSayWhichItIsAndHowFarItMoves) {
    struct CCase {
        std::int32_t m_Menu;
        const char* m_pPlus;
        const char* m_pMinus;
    };
    for (const CCase& rCase : {CCase{20, "Weight 1 +1°", "Weight 1 −1°"},
                               {21, "Weight 2 +1°", "Weight 2 −1°"},
                               {22, "Weight 1 +10°", "Weight 1 −10°"},
                               {23, "Weight 2 +10°", "Weight 2 −10°"},
                               {24, "Weight 1 +1°", "Weight 1 −1°"},
                               {25, "Weight 2 +1°", "Weight 2 −1°"},
                               {26, "Weight 1 +10°", "Weight 1 −10°"},
                               {27, "Weight 2 +10°", "Weight 2 −10°"}}) {
        EXPECT_EQ(Find({true, rCase.m_Menu}, "SK_PLUS")->GetLabel(), rCase.m_pPlus) << rCase.m_Menu;
        EXPECT_EQ(Find({true, rCase.m_Menu}, "SK_MINUS")->GetLabel(), rCase.m_pMinus) << rCase.m_Menu;
    }
}

TEST(Softkeys, AKeyThatMovesAnotherWeightMeansSomethingElse) {
    const CSoftkey Key = *Find({true, Menus::eChangeWeight1By10}, "SK_PLUS");
    EXPECT_TRUE(Key.MeansTheSame(*Find({true, Menus::eChangeWeight1By10}, "SK_PLUS")));
    EXPECT_FALSE(Key.MeansTheSame(*Find({true, Menus::eChangeWeight2By10}, "SK_PLUS")));
    EXPECT_FALSE(Key.MeansTheSame(*Find({true, Menus::eChangeWeight1By1}, "SK_PLUS")));
    EXPECT_FALSE(Key.MeansTheSame(*Find({true, Menus::eChangeWeight1By10}, "SK_MINUS")));
}

TEST(Softkeys, AQuestionHasItsAnswersInTheirPlaceAndNoneAtTheLast) {
    CSoftkeys::CState State{true, Menus::eConfirm};
    State.m_Answers = {"CONSOLE_GO_ON", "CONSOLE_END_RUN"};
    CSoftkeys Keys;
    Keys.SetState(State);
    EXPECT_EQ(GetTexts(Keys),
              (std::vector<std::string>{"CONSOLE_GO_ON", "", "CONSOLE_END_RUN", "", "", "", "", ""}));
    EXPECT_EQ(Keys.GetShown()[2].m_Answer, 1U);
}

TEST(Softkeys, EveryKeyHasASymbol) {
    for (std::int32_t Menu = -1; Menu < 40; ++Menu) {
        for (const std::uint32_t Page : {Pages::eSettings, Pages::eScrewTable}) {
            CSoftkeys Keys;
            Keys.SetState({true, Menu, Page});
            for (int nRow = 0; nRow < 2; ++nRow, Keys.More()) {
                for (const CSoftkey& rKey : Keys.GetShown()) {
                    EXPECT_EQ(std::string(rKey.GetSymbolName()).empty(), rKey.m_Kind == CSoftkey::eNone)
                        << rKey.m_pTextKey;
                }
            }
        }
    }
}

TEST(Softkeys, WhatIsLockedByTheCodeCannotBePressedAndTheRestCan) {
    CSoftkeys::CState State = Settings(-1);
    State.m_bLocked = true;
    for (const char* const pKey :
         {"SK_PREVIOUS_VALUE", "SK_NEXT_VALUE", "SK_ACCEPT", "SK_DELETE_CONFIGURATION", "SK_SERVICE"}) {
        EXPECT_FALSE(IsEnabled(State, pKey)) << pKey;
    }
    for (const char* const pKey : {"SK_PREBALANCE", "SK_REBALANCE", "SK_PREVIOUS_ITEM", "SK_NEXT_ITEM",
                                   "SK_NEXT_TAB", "SK_EXPAND", "SK_HELP", "SK_MORE", "SK_UNLOCK"}) {
        EXPECT_TRUE(IsEnabled(State, pKey)) << pKey;
    }
    State.m_Menu = Menus::eChangeWeight1By1;
    EXPECT_TRUE(IsEnabled(State, "SK_PLUS")) << "a run isn't affected";
}

TEST(Softkeys, KeysThatRepeatAreThoseOfValues) {
    for (const char* const pKey : {"SK_PREVIOUS_VALUE", "SK_NEXT_VALUE"}) {
        EXPECT_TRUE(Find(Settings(), pKey)->m_Key.m_bRepeats) << pKey;
    }
    EXPECT_FALSE(Find(Settings(), "SK_NEXT_ITEM")->m_Key.m_bRepeats);
    EXPECT_FALSE(Find(ScrewTable(), "SK_NEXT_TABLE")->m_Key.m_bRepeats) << "one table at a press";
}
