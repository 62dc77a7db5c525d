#include "rvdlm/m_rtr/rtr_trim/prebalancing/keyaction.h"

#include <gtest/gtest.h>

#include "tests/support/logcapture.h"

namespace {

// The enumerators' values are a contract: softkeys and NC requests are mapped to them.
TEST(KeyActionTest, NamesAndNumbers) {
    const std::vector<std::pair<int, const char*>> Names = {{0, "eNext"},
                                                            {1, "eRebalance"},
                                                            {2, "eIncrement"},
                                                            {3, "eDecrement"},
                                                            {4, "eUp"},
                                                            {5, "eDown"},
                                                            {6, "eExtras"},
                                                            {7, "eIncPosWeight1Down"},
                                                            {8, "eIncPosWeight1Up"},
                                                            {9, "eDecPosWeight1Down"},
                                                            {10, "eDecPosWeight1Up"},
                                                            {11, "eIncPosWeight2Down"},
                                                            {12, "eIncPosWeight2Up"},
                                                            {13, "eDecPosWeight2Down"},
                                                            {14, "eDecPosWeight2Up"},
                                                            {15, "eCheckWeightPositions"},
                                                            {16, "eTogglePlane"},
                                                            {17, "eNeutralPosition"},
                                                            {18, "eChangeWeightPositions"},
                                                            {19, "eNeutralPositionAdjusted"},
                                                            {20, "ePositionAdoption"},
                                                            {21, "eWeightSelection"},
                                                            {22, "eStepSelection"},
                                                            {23, "eDecPosActiveWeightDown"},
                                                            {24, "eDecPosActiveWeightUp"},
                                                            {25, "eIncPosActiveWeightDown"},
                                                            {26, "eIncPosActiveWeightUp"}};
    const CLogCapture Log;
    for (const auto& [Value, pName] : Names) {
        EXPECT_STREQ(CKeyActions::KeyActionToString(static_cast<CKeyActions::KeyAction>(Value)), pName);
    }
    EXPECT_TRUE(Log.GetAssertions().empty());
    EXPECT_EQ(CKeyActions::eNext, 0);
    EXPECT_EQ(CKeyActions::eCheckWeightPositions, 15);
    EXPECT_EQ(CKeyActions::eIncPosActiveWeightUp, 26);
}

TEST(KeyActionTest, UnknownActionAsserts) {
    for (const int Value : {27, 31, -1}) {
        const CLogCapture Log;
        // An int held by the enumeration, as it comes from a message's parameter.
        EXPECT_STREQ(CKeyActions::KeyActionToString(static_cast<CKeyActions::KeyAction>(Value)),
                     "unknown action");
        EXPECT_EQ(Log.GetAssertions(), std::vector<std::string>{"impossible"});
    }
}

}  // namespace
