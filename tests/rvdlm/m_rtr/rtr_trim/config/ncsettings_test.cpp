// Target and rotation that the NC asks for.
#include "contract/ncitems.h"
#include "platform/rvopc/opcconnection.h"
#include "tests/rvdlm/m_rtr/rtr_trim/config/paramstreefixture.h"

using namespace PreBalDB;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr const char* TARGET_ITEM = "nc.target";
constexpr const char* ROTATION_ITEM = "nc.rotation";
constexpr const char* TARGET = "Unbalance target";
constexpr const char* ROTATION = "Direction of rotation";

class NcSettings : public CParamsTreeFixture {
protected:
    void Link(const char* pKey, const char* pItem) {
        COpcDatabase::GetInstance()->SetOpcLinkItem(pKey, pItem);
        COPCConnection::CreateInstance()->Connect("", 0);
    }
    void LinkBoth() {
        Link("PreBalInterfaceFromNCTargetUnbalance", TARGET_ITEM);
        Link("PreBalInterfaceFromNcRotationDirection", ROTATION_ITEM);
    }
    void Write(const char* pItem, const COpcValue& rValue) {
        m_Opc.GetServer().Write(pItem, rValue);
        m_Loop.RunPosted();
    }
};

TEST_F(NcSettings, TheNcsValuesAreShownInPlaceOfTheStoredOnes) {
    LinkBoth();
    Write(TARGET_ITEM, 33.0);
    Write(ROTATION_ITEM, 1);
    ShowWeights();
    EXPECT_EQ(GetValue(TARGET), "33 µm/s");
    EXPECT_EQ(GetValue(ROTATION), "Counter-clockwise");
    EXPECT_EQ(m_Entry.GetTargetUnbalance(), 5u);
    EXPECT_EQ(m_Page.GetConfig(m_Entry), nullptr);
    EXPECT_EQ(m_Entry.GetTargetUnbalance(), 33u);
    EXPECT_EQ(Single().GetRotationDirection(), Type::eCounterClockwise);
    EXPECT_THAT(GetErrors(), IsEmpty());
}

TEST_F(NcSettings, WithoutLinksTheStoredValuesAreShown) {
    COPCConnection::CreateInstance()->Connect("", 0);
    Write(TARGET_ITEM, 33.0);
    ShowWeights();
    EXPECT_EQ(GetValue(TARGET), "5 µm/s");
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 0u);
}

TEST_F(NcSettings, WithoutAConnectionTheLinksAreNotUsed) {
    COpcDatabase::GetInstance()->SetOpcLinkItem("PreBalInterfaceFromNCTargetUnbalance", TARGET_ITEM);
    Write(TARGET_ITEM, 33.0);
    ShowWeights();
    EXPECT_EQ(GetValue(TARGET), "5 µm/s");
    EXPECT_EQ(COpcDatabase::GetInstance()->GetRefCount(), 0u);
}

// The window looks at that one when it decides whether to connect; the page reads the other.
TEST_F(NcSettings, TheOtherSpellingOfTheRotationsKeyDoesntServe) {
    Link("PreBalInterfaceFromNCRotationDirection", ROTATION_ITEM);
    Write(ROTATION_ITEM, 1);
    ShowWeights();
    EXPECT_EQ(GetValue(ROTATION), "Clockwise");
}

TEST_F(NcSettings, AValueThatArrivesGoesIntoTheItem) {
    LinkBoth();
    ShowWeights();
    Write(TARGET_ITEM, 21);
    EXPECT_EQ(GetValue(TARGET), "21 µm/s");
    Write(ROTATION_ITEM, 1);
    EXPECT_EQ(GetValue(ROTATION), "Counter-clockwise");
    EXPECT_EQ(m_Entry.GetTargetUnbalance(), 5u);
}

TEST_F(NcSettings, AValueThatCantBeReadLeavesTheStoredOneAndIsLogged) {
    LinkBoth();
    ShowWeights();  // nobody has written anything
    EXPECT_THAT(GetErrors(), ElementsAre("Opc: SetItemValue failed!", "Opc: SetItemValue failed!"));
    EXPECT_EQ(GetValue(TARGET), "5 µm/s");
    EXPECT_EQ(GetValue(ROTATION), "Clockwise");
}

TEST_F(NcSettings, AnItemThatFailsLaterIsLogged) {
    LinkBoth();
    Write(TARGET_ITEM, 21);
    Write(ROTATION_ITEM, 0);
    ShowWeights();
    m_Opc.GetServer().SetFailing(TARGET_ITEM, true);
    m_Loop.RunPosted();
    EXPECT_THAT(GetErrors(), ElementsAre("OPC Item read failed!"));
    m_Opc.GetServer().SetFailing(ROTATION_ITEM, true);
    m_Loop.RunPosted();
    EXPECT_EQ(GetErrors().size(), 2u);
    EXPECT_EQ(GetValue(TARGET), "21 µm/s");
}

TEST_F(NcSettings, ATargetBeyondTheLimitsIsRefusedAndLogged) {
    LinkBoth();
    Write(TARGET_ITEM, 12);
    Write(ROTATION_ITEM, 0);
    ShowWeights();
    for (const double Target : {0.0, 0.5, 100.5, 101.0, -3.0, 1e300, std::nan("")}) {
        m_Log.Clear();
        Write(TARGET_ITEM, Target);
        EXPECT_EQ(GetValue(TARGET), "12 µm/s") << Target;
        EXPECT_THAT(GetErrors(), ElementsAre(HasSubstr("target is refused"))) << Target;
    }
    // The one that stands there now is refused when the page is shown, too.
    Write(TARGET_ITEM, 500.0);
    Show();
    EXPECT_EQ(GetValue(TARGET), "5 µm/s");
    for (const double Target : {1.0, 100.0}) {
        Write(TARGET_ITEM, Target);
        EXPECT_EQ(GetValue(TARGET), std::to_string(static_cast<int>(Target)) + " µm/s");
    }
}

TEST_F(NcSettings, ARotationThatIsNoneIsRefusedAndLogged) {
    LinkBoth();
    Write(TARGET_ITEM, 12);
    Write(ROTATION_ITEM, 1);
    ShowWeights();
    for (const double Rotation : {2.0, -1.0, 0.5}) {
        m_Log.Clear();
        Write(ROTATION_ITEM, Rotation);
        EXPECT_EQ(GetValue(ROTATION), "Counter-clockwise");
        EXPECT_THAT(GetErrors(), ElementsAre(HasSubstr("rotation is refused")));
    }
    Show();
    EXPECT_EQ(GetValue(ROTATION), "Clockwise");
    EXPECT_EQ(m_Page.GetConfig(m_Entry), nullptr);
}

TEST_F(NcSettings, AnotherRotationClearsTheCalibrationAsByHand) {
    LinkBoth();
    Write(TARGET_ITEM, 12);
    Write(ROTATION_ITEM, 0);
    m_Entry.SetIsCalibrated(1);
    ShowWeights();
    EXPECT_TRUE(StaysCalibrated());
    Write(ROTATION_ITEM, 1);
    EXPECT_FALSE(StaysCalibrated());
    Write(ROTATION_ITEM, 0);
    EXPECT_TRUE(StaysCalibrated());
}

TEST_F(NcSettings, TwoPlanesHaveTheNcsRotationToo) {
    LinkBoth();
    Write(TARGET_ITEM, 12);
    Write(ROTATION_ITEM, 1);
    Two().CreatePlane1WeightCompensationTableEntry();
    Two().CreatePlane2WeightCompensationTableEntry();
    Show(CPreBalDatabase::eModeTwoPlane);
    EXPECT_EQ(GetValue("Direction of rotation Plane 1"), "Counter-clockwise");
    Write(ROTATION_ITEM, 0);
    EXPECT_EQ(GetValue("Direction of rotation Plane 1"), "Clockwise");
}

TEST_F(NcSettings, ShowingAgainLinksAnewAndLeavesNoSubscription) {
    LinkBoth();
    for (int i = 0; i < 10; ++i) {
        ShowWeights();
    }
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 2u);
    EXPECT_EQ(COpcDatabase::GetInstance()->GetRefCount(), 0u);
    m_Page.DeleteItems();
    m_Loop.RunPosted();
    EXPECT_EQ(m_Opc.GetServer().GetSubscriptionCount(), 0u);
}

}  // namespace
