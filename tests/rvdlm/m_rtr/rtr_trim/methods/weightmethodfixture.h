#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "platform/system/virtualeventloop.h"
#include "rvdlm/m_rtr/rtr_trim/methods/weightbalancingmethod.h"
#include "rvlib/math/vector.h"
#include "tests/support/fakemainwnd.h"
#include "tests/support/logcapture.h"
#include "tests/support/testinstallation.h"

/// A weight method under virtual time, with a window that notes what it is told.
class WeightMethodTest : public testing::Test {
protected:
    using Key = CKeyActions;
    using Method = CWeightBalancingMethod;
    using Positions = std::pair<int, int>;
    static constexpr auto CW = PreBalDB::CTypeBase::eClockwise;
    static constexpr auto CCW = PreBalDB::CTypeBase::eCounterClockwise;

    std::unique_ptr<Method> Make(PreBalDB::CTypeBase::Direction Scaling = CW, unsigned Plane = 0,
                                 int IgnoreRebalWeights = 0, bool bUseOldMenu = false) {
        PreBalDB::CWeightCompensationTableEntry Entry;
        Entry.SetScalingDirection(Scaling);
        return std::make_unique<Method>(Entry, &m_MainWnd, Plane, 3, IgnoreRebalWeights, &m_Selection,
                                        bUseOldMenu);
    }
    static Positions At(Method& rMethod) {
        Positions Result(-1, -1);
        rMethod.GetWeightPositions(Result.first, Result.second);
        return Result;
    }
    static void Put(Method& rMethod, int Angle1, int Angle2) {
        rMethod.SetTestUnbalanceVectorInDeg(math::MakeVector(Angle1, Angle2));
    }
    /// Presses and releases a key of weight 1 or 2 for its single step.
    static void Tap(Method& rMethod, Key::KeyAction Down, int Step) {
        EXPECT_TRUE(rMethod.KeyPressed(Down, Step));
        EXPECT_TRUE(rMethod.KeyPressed(static_cast<Key::KeyAction>(Down + 1), Step));
    }

    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CFakeMainWnd m_MainWnd;
    int m_Selection = 0;
};
