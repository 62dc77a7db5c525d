#include "platform/system/lifetime.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

TEST(Lifetime, ACallbackIsCalledWhileItsOwnerIsThere) {
    const CLifetime Owner;
    int Sum = 0;
    const std::function<void(int)> Callback = Owner.Guard([&Sum](int Value) { Sum += Value; });
    Callback(3);
    Callback(4);
    EXPECT_EQ(Sum, 7);
}

TEST(Lifetime, ACallbackOfAnOwnerThatIsGoneDoesNothing) {
    int nCalls = 0;
    std::optional<CLifetime> Owner(std::in_place);
    const std::function<void()> Callback = Owner->Guard([&nCalls] { ++nCalls; });
    Owner.reset();
    Callback();
    EXPECT_EQ(nCalls, 0);
}

TEST(Lifetime, AnOwnerMayEndItBeforeItGoes) {
    CLifetime Owner;
    int nCalls = 0;
    const std::function<void()> Callback = Owner.Guard([&nCalls] { ++nCalls; });
    Owner.End();
    Callback();
    EXPECT_EQ(nCalls, 0);
    EXPECT_TRUE(Owner.GetToken().expired());
}
