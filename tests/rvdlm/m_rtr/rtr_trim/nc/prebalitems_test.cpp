// The items by which the module and the NC speak.
#include <gmock/gmock.h>

#include "platform/system/virtualeventloop.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacefromnc.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacefromncrotationdirection.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacefromnctargetunbalance.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacefromnctestweight.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacetonc.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacetoncwarnings.h"
#include "tests/support/opcstate.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CRequests : public CPreBalFromNCInterface {
public:
    void OnValueFromNCChanged(std::int32_t Value) override { m_Values.push_back(Value); }
    std::vector<std::int32_t> m_Values;
};

class CNumbers : public CPreBalTargetUnbalanceInterface, public CPreBalRotationDirectionInterface {
public:
    void OnValueFromNC(double Value) override { m_Values.push_back(Value); }
    void OnValueFromNCTargetUnbalanceFailure() override { ++m_nTargetFailures; }
    void OnValueFromNCRotationDirectionFailure() override { ++m_nDirectionFailures; }
    std::vector<double> m_Values;
    int m_nTargetFailures = 0;
    int m_nDirectionFailures = 0;
};

class COpcItemsTest : public testing::Test {
protected:
    COpcItemsTest() {
        for (const char* pKey :
             {CPreBalInterfaceFromNC::KEY, CPreBalInterfaceToNC::KEY, CPreBalInterfaceToNCWarnings::KEY,
              CPreBalInterfaceFromNcTargetUnbalance::KEY, CPreBalInterfaceFromNcRotationDirection::KEY,
              CPreBalInterfaceFromNcTestWeight::KEY}) {
            COpcDatabase::GetInstance()->SetOpcLinkItem(pKey, std::string("item.") + pKey);
        }
        COPCConnection::CreateInstance()->Connect("", 0);
        m_pGroup = COPCConnection::CreateInstance()->CreateGroup(100, 0);
    }

    CVirtualEventLoop m_Loop;
    CCleanOpcState m_Opc;
    std::shared_ptr<COPCGroup> m_pGroup;
};

TEST_F(COpcItemsTest, RequestsOfTheNCReachTheTarget) {
    CRequests Target;
    CPreBalInterfaceFromNC Item(m_pGroup, "name", &Target);
    m_Opc.GetServer().Write("item.PreBalInterfaceFromNC", 3);
    m_Loop.RunPosted();
    EXPECT_THAT(Target.m_Values, ElementsAre(3));
    EXPECT_EQ(Item.GetName(), "name");
}

TEST_F(COpcItemsTest, AnAnswerIsNoRequest) {
    CRequests Target;
    CPreBalInterfaceFromNC Item(m_pGroup, "name", &Target);
    m_Opc.GetServer().Write("item.PreBalInterfaceFromNC", 3);
    m_Loop.RunPosted();
    EXPECT_NE(Item.SetValueFromNC(-1), 0);
    EXPECT_EQ(m_Opc.GetServer().Read("item.PreBalInterfaceFromNC"), COpcValue(-1));
    m_Loop.RunPosted();
    // The same request again is one: the answer lay between.
    m_Opc.GetServer().Write("item.PreBalInterfaceFromNC", 3);
    m_Loop.RunPosted();
    EXPECT_THAT(Target.m_Values, ElementsAre(3, 3));
}

TEST_F(COpcItemsTest, ValuesThatAreNoWholeNumberAreAnUnknownRequest) {
    CRequests Target;
    CPreBalInterfaceFromNC Item(m_pGroup, "name", &Target);
    CInProcessOpcServer& rServer = m_Opc.GetServer();
    rServer.Write("item.PreBalInterfaceFromNC", 1.5);
    rServer.Write("item.PreBalInterfaceFromNC", std::string("start"));
    rServer.Write("item.PreBalInterfaceFromNC", 1e300);
    rServer.Write("item.PreBalInterfaceFromNC", std::vector<std::int32_t>{1});
    rServer.Write("item.PreBalInterfaceFromNC", std::string("4"));
    rServer.Write("item.PreBalInterfaceFromNC", 2.0);
    m_Loop.RunPosted();
    EXPECT_THAT(Target.m_Values, ElementsAre(0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 4, 2));
}

TEST_F(COpcItemsTest, AnItemThatCannotBeReadIsNoRequest) {
    CRequests Target;
    CPreBalInterfaceFromNC Item(m_pGroup, "name", &Target);
    m_Opc.GetServer().SetFailing("item.PreBalInterfaceFromNC", true);
    m_Loop.RunPosted();
    EXPECT_THAT(Target.m_Values, IsEmpty());
    EXPECT_EQ(Item.SetValueFromNC(0), 0);
}

TEST_F(COpcItemsTest, NotificationsAreFourteenValues) {
    CPreBalInterfaceToNC Item(m_pGroup, "name");
    const std::vector<std::int32_t> Data{3, 4, 0, -1, 180, -1, -1, -1, -1, -1, -1, -1, -1, -1};
    EXPECT_NE(Item.SetNCData(Data), 0);
    EXPECT_EQ(m_Opc.GetServer().Read("item.PreBalInterfaceToNC"), COpcValue(Data));
    EXPECT_EQ(Item.SetNCData({1, 2, 3}), 0);
    EXPECT_EQ(m_Opc.GetServer().Read("item.PreBalInterfaceToNC"), COpcValue(Data));
}

TEST_F(COpcItemsTest, WritesThatTheServerRefusesAreReported) {
    CPreBalInterfaceToNC Data(m_pGroup, "name");
    CPreBalInterfaceToNCWarnings Warnings(m_pGroup, "name");
    m_Opc.GetServer().SetFailing("item.PreBalInterfaceToNC", true);
    EXPECT_EQ(Data.SetNCData(std::vector<std::int32_t>(14, 0)), 0);
    EXPECT_NE(Warnings.SetWarningMode(9), 0);
    EXPECT_EQ(m_Opc.GetServer().Read("item.PreBalInterfaceToNCWarnings"), COpcValue(9));
}

TEST_F(COpcItemsTest, TargetUnbalanceIsReadAndReported) {
    CNumbers Target;
    m_Opc.GetServer().Write("item.PreBalInterfaceFromNCTargetUnbalance", 12);
    CPreBalInterfaceFromNcTargetUnbalance Item(m_pGroup, "name", &Target);
    double Value = 0.0;
    EXPECT_NE(Item.GetValueFromNC(Value), 0);
    EXPECT_EQ(Value, 12.0);
    m_Opc.GetServer().Write("item.PreBalInterfaceFromNCTargetUnbalance", 15);
    m_Opc.GetServer().Write("item.PreBalInterfaceFromNCTargetUnbalance", std::string("none"));
    m_Opc.GetServer().SetFailing("item.PreBalInterfaceFromNCTargetUnbalance", true);
    m_Loop.RunPosted();
    EXPECT_THAT(Target.m_Values, ElementsAre(12.0, 15.0));
    EXPECT_EQ(Target.m_nTargetFailures, 2);
}

// "NC" and "Nc": the deliberate difference between the two keys.
TEST_F(COpcItemsTest, RotationDirectionHasItsOwnSpellingOfTheKey) {
    COpcDatabase::GetInstance()->SetOpcLinkItem("PreBalInterfaceFromNCRotationDirection", "elsewhere");
    CNumbers Target;
    CPreBalInterfaceFromNcRotationDirection Item(m_pGroup, "name", &Target);
    m_Opc.GetServer().Write("elsewhere", 1);
    double Value = 5.0;
    EXPECT_EQ(Item.GetValueFromNC(Value), 0);
    EXPECT_EQ(Value, 5.0);
    m_Opc.GetServer().Write("item.PreBalInterfaceFromNcRotationDirection", 1);
    m_Opc.GetServer().SetFailing("item.PreBalInterfaceFromNcRotationDirection", true);
    m_Loop.RunPosted();
    EXPECT_THAT(Target.m_Values, ElementsAre(1.0));
    EXPECT_EQ(Target.m_nDirectionFailures, 1);
}

TEST_F(COpcItemsTest, TestWeightIsReadInGrams) {
    CPreBalInterfaceFromNcTestWeight Item(m_pGroup, "name");
    double Value = 0.0;
    EXPECT_EQ(Item.GetValueFromNC(Value), 0);
    m_Opc.GetServer().Write("item.PreBalInterfaceFromNcTestWeight", 2.75);
    EXPECT_NE(Item.GetValueFromNC(Value), 0);
    EXPECT_EQ(Value, 2.75);
}

}  // namespace
