// The connection, and the link items.
#include <gmock/gmock.h>

#include "platform/rvlog/logcomponent.h"
#include "tests/support/logcapture.h"
#include "tests/support/opcstate.h"

using testing::ElementsAre;

namespace {

TEST(COpcDatabaseTest, KeepsItsLinksWhenTheLastHolderGoes) {
    const CCleanOpcState Opc;
    COpcDatabase* const pDatabase = COpcDatabase::GetInstance();
    pDatabase->SetOpcLinkItem("key", "item");
    {
        const COpcDatabaseRef Reference("holder");
        EXPECT_EQ(pDatabase->GetRefCount(), 1U);
        EXPECT_EQ(Reference->GetOpcLinkItem("key"), "item");
    }
    EXPECT_EQ(pDatabase->GetRefCount(), 0U);
    EXPECT_EQ(pDatabase->GetOpcLinkItem("key"), "item");
    pDatabase->SetOpcLinkItem("key", "");
    EXPECT_EQ(pDatabase->GetOpcLinkItem("key"), "");
}

TEST(COpcDatabaseTest, ReleaseWithoutAddRefAssertsAndDoesNothing) {
    CLogComponent::Register("CorvaneBase", {});
    const CLogCapture Log;
    COpcDatabase::GetInstance()->Release("nobody");
    EXPECT_EQ(COpcDatabase::GetInstance()->GetRefCount(), 0U);
    EXPECT_THAT(Log.GetAssertions(),
                ElementsAre("Release makes only sense on a AddRefed object (COpcDatabase)!"));
}

TEST(COPCConnectionTest, GivesGroupsOnlyWhileConnected) {
    const CCleanOpcState Opc;
    COPCConnection* const pConnection = COPCConnection::CreateInstance();
    EXPECT_FALSE(pConnection->IsConnected());
    EXPECT_EQ(pConnection->CreateGroup(100, 0), nullptr);
    EXPECT_TRUE(pConnection->Connect("", 0));
    const auto pGroup = pConnection->CreateGroup(100, 2);
    ASSERT_NE(pGroup, nullptr);
    EXPECT_EQ(pGroup->GetUpdateRate(), 100U);
    EXPECT_EQ(pGroup->GetMode(), 2);
    pConnection->Disconnect();
    EXPECT_FALSE(pConnection->IsConnected());
}

TEST(COPCConnectionTest, ConnectsByTheConnectorAndOnlyOnce) {
    const CCleanOpcState Opc;
    COPCConnection* const pConnection = COPCConnection::CreateInstance();
    std::vector<std::string> Asked;
    pConnection->SetConnector([&Asked](const std::string& rServer, int) -> std::shared_ptr<IFOpcServer> {
        Asked.push_back(rServer);
        return Asked.size() < 2 ? nullptr : std::make_shared<CInProcessOpcServer>();
    });
    EXPECT_FALSE(pConnection->Connect("first", 0));
    EXPECT_TRUE(pConnection->Connect("second", 0));
    EXPECT_TRUE(pConnection->Connect("third", 0));
    EXPECT_THAT(Asked, ElementsAre("first", "second"));
}

}  // namespace
