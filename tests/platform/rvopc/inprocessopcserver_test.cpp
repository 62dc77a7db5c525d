#include "platform/rvopc/inprocessopcserver.h"

#include <gmock/gmock.h>

#include "platform/system/virtualeventloop.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CInProcessOpcServerTest : public testing::Test {
protected:
    std::shared_ptr<void> Listen(const std::string& rItem) {
        return m_Server.Subscribe(rItem, 100, [this](const COpcValue* pValue) {
            m_Seen.push_back(pValue == nullptr ? -999 : std::get<std::int32_t>(*pValue));
        });
    }

    CVirtualEventLoop m_Loop;
    CInProcessOpcServer m_Server;
    std::vector<std::int32_t> m_Seen;
};

TEST_F(CInProcessOpcServerTest, AnItemNeverWrittenHasNoValue) {
    EXPECT_EQ(m_Server.Read("a"), std::nullopt);
}

TEST_F(CInProcessOpcServerTest, WhatIsWrittenIsRead) {
    EXPECT_TRUE(m_Server.Write("a", 2.5));
    EXPECT_TRUE(m_Server.Write("b", std::vector<std::int32_t>{1, 2}));
    EXPECT_EQ(m_Server.Read("a"), COpcValue(2.5));
    EXPECT_EQ(m_Server.Read("b"), COpcValue(std::vector<std::int32_t>{1, 2}));
}

TEST_F(CInProcessOpcServerTest, ChangesArriveThroughTheLoopInOrder) {
    const auto pGuard = Listen("a");
    m_Server.Write("a", 1);
    m_Server.Write("a", 2);
    m_Server.Write("other", 3);
    EXPECT_THAT(m_Seen, IsEmpty());
    m_Loop.RunPosted();
    EXPECT_THAT(m_Seen, ElementsAre(1, 2));
}

TEST_F(CInProcessOpcServerTest, WritingTheSameValueIsNoChange) {
    const auto pGuard = Listen("a");
    m_Server.Write("a", 1);
    m_Server.Write("a", 1);
    m_Loop.RunPosted();
    EXPECT_THAT(m_Seen, ElementsAre(1));
}

TEST_F(CInProcessOpcServerTest, TheValueOnHandIsReportedAtFirst) {
    m_Server.Write("a", 7);
    const auto pGuard = Listen("a");
    m_Loop.RunPosted();
    EXPECT_THAT(m_Seen, ElementsAre(7));
}

TEST_F(CInProcessOpcServerTest, NothingIsReportedAfterTheSubscriptionHasGone) {
    auto pGuard = Listen("a");
    m_Server.Write("a", 1);
    pGuard.reset();
    m_Loop.RunPosted();
    EXPECT_THAT(m_Seen, IsEmpty());
    EXPECT_EQ(m_Server.GetSubscriptionCount(), 0U);
}

TEST_F(CInProcessOpcServerTest, AHandlerMayEndItsOwnSubscription) {
    std::shared_ptr<void> pGuard;
    int nCalls = 0;
    pGuard = m_Server.Subscribe("a", 100, [&](const COpcValue*) {
        ++nCalls;
        pGuard.reset();
    });
    m_Server.Write("a", 1);
    m_Server.Write("a", 2);
    m_Loop.RunPosted();
    EXPECT_EQ(nCalls, 1);
}

TEST_F(CInProcessOpcServerTest, AnItemOutOfOrderRefusesAndTellsItsSubscribers) {
    const auto pGuard = Listen("a");
    m_Server.Write("a", 1);
    m_Server.SetFailing("a", true);
    EXPECT_FALSE(m_Server.Write("a", 2));
    EXPECT_EQ(m_Server.Read("a"), std::nullopt);
    m_Loop.RunPosted();
    EXPECT_THAT(m_Seen, ElementsAre(1, -999));
    m_Server.SetFailing("a", false);
    EXPECT_TRUE(m_Server.Write("a", 2));
}

TEST_F(CInProcessOpcServerTest, ServersAreToldApartByName) {
    EXPECT_EQ(CInProcessOpcServer::Find("x"), CInProcessOpcServer::Find("x"));
    EXPECT_NE(CInProcessOpcServer::Find("x"), CInProcessOpcServer::Find("y"));
}

}  // namespace
