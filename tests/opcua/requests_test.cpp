// The NC's requests and the module's answers over a real OPC UA connection: module, gateway and server, each
// where it belongs, in real time.
#include <gmock/gmock.h>

#include "console/installation.h"
#include "console/session.h"
#include "contract/actions.h"
#include "contract/hostmessages.h"
#include "platform/qt/qteventloop.h"
#include "platform/window/messages.h"
#include "simulator/simulator.h"
#include "tests/opcua/ncserver.h"
#include "tests/support/logcapture.h"
#include "tests/support/testpaths.h"

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;

namespace {

constexpr int DONE = 0;
constexpr int REFUSED = -1;

class CRequestsTest : public testing::Test {
protected:
    CRequestsTest() {
        m_Nc.Start();
        m_Options.m_bHeadless = true;
        m_Options.m_ModuleLibrary = TestProgram("librtr_trim.so");
        m_Options.m_Opc = m_Nc.GetSetup();
    }
    void Open() {
        m_pSession =
            std::make_unique<CConsoleSession>(m_Options, &m_Rotor, m_Installation.GetDatabaseFile().string());
    }
    /// The module finds its configuration, and says so.
    void Initialise() {
        ASSERT_TRUE(m_pSession->Initialise());
        ASSERT_EQ(NextStep(), CPreBalCodes::eParameter);
        ASSERT_EQ(m_Nc.NextValue("Request"), DONE);
    }
    /// Step of the next notification; 99 if none comes.
    int NextStep() {
        const auto Notification = m_Nc.NextValue("Notification");
        return Notification ? Notification->at(0).get<int>() : 99;
    }
    /// As a finished pre-balancing leaves it.
    void Calibrate() {
        {
            math::matrix<double> InvA(2, 2);
            InvA.Null();
            PreBalDB::CPreBalDatabase Database(m_pSession->GetMachineName());
            PreBalDB::CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration("Default");
            rEntry.SetCalibratedRPM(3000);
            rEntry.SetIsCalibrated(1);
            rEntry.CreateSinglePlane().SetInvA(InvA);
            Database.WriteConfiguration();
        }
        m_pSession->GetModule().SendMessage(WM_RV_STORECHANGED);
    }
    bool IsRunning() { return m_pSession->Look().m_bRunning; }

    CQtEventLoop m_Loop;
    CNcServer m_Nc;
    CConsoleInstallation m_Installation{"", true};
    COptions m_Options;
    CRotorFile m_Rotor = CRotorFile::GetBuiltIn(CRotorFile::eKestrel);
    std::unique_ptr<CConsoleSession> m_pSession;
};

TEST_F(CRequestsTest, WithoutAProcedureOnlyAStartIsTaken) {
    const CLogCapture Log;
    Open();
    Initialise();
    EXPECT_EQ(m_Nc.Ask(3), REFUSED);
    EXPECT_EQ(m_Nc.Ask(4), REFUSED);
    EXPECT_EQ(m_Nc.Ask(2), REFUSED) << "the configuration isn't calibrated";
    EXPECT_EQ(m_Nc.Ask(5), REFUSED);
    EXPECT_THAT(Log.GetTexts("Warning"), Contains("Unknown Request received: 5 (0x5)!"));
    // Idle is no request: the answer that comes next is the one to what follows.
    m_Nc.Write("Request", 0);
    EXPECT_EQ(m_Nc.Ask(1), DONE);
    EXPECT_EQ(NextStep(), CPreBalCodes::eSetup);
}

TEST_F(CRequestsTest, AProcedureIsStartedStepsOnAndEnds) {
    Open();
    Initialise();
    EXPECT_EQ(m_Nc.Ask(1), DONE);
    const auto First = m_Nc.NextValue("Notification");
    ASSERT_TRUE(First);
    EXPECT_EQ(First->at(0), CPreBalCodes::eSetup);
    EXPECT_EQ(First->at(1), CPreBalCodes::eSetWeights);
    EXPECT_EQ(First->size(), 14U);

    EXPECT_EQ(m_Nc.Ask(1), REFUSED) << "a procedure runs";
    EXPECT_EQ(m_Nc.Ask(2), REFUSED) << "a procedure runs";
    EXPECT_EQ(m_Nc.Ask(77), REFUSED);
    EXPECT_FALSE(m_Nc.HasNews("Notification")) << "refusals disturb nothing";
    EXPECT_TRUE(IsRunning());

    EXPECT_EQ(m_Nc.Ask(3), DONE);
    const auto Second = m_Nc.NextValue("Notification");
    ASSERT_TRUE(Second);
    EXPECT_NE(*Second, *First);
    EXPECT_EQ(m_Nc.Ask(4), DONE);
    EXPECT_FALSE(IsRunning());
}

TEST_F(CRequestsTest, ACalibratedConfigurationIsRebalanced) {
    Open();
    Initialise();
    Calibrate();
    EXPECT_EQ(m_Nc.Ask(2), DONE);
    EXPECT_TRUE(CNcServer::RunUntil([this] { return IsRunning(); }, CNcServer::PATIENCE));
    ASSERT_TRUE(
        m_Nc.NextValue("Notification", [](const json& r) { return r[0] == CPreBalCodes::eReBalActive; }));
    EXPECT_EQ(m_Nc.Ask(4), DONE);
}

/// Over the wire to the page, and with the start from the page to the configuration that the run works with.
TEST_F(CRequestsTest, ARunTakesTargetAndRotationThatTheNcHasSet) {
    constexpr double TARGET = 33.0;
    auto& rLinks = m_Options.m_Opc->m_Configuration.m_LinkItems;
    rLinks[NcItems::TARGET_UNBALANCE] = m_Nc.GetItem("TargetUnbalance");
    rLinks[NcItems::ROTATION_DIRECTION] = m_Nc.GetItem("RotationDirection");
    Open();
    Initialise();
    m_Nc.Write("TargetUnbalance", TARGET);
    m_Nc.Write("RotationDirection", 1);
    const auto IsStored = [this] {
        PreBalDB::CPreBalDatabase Database(m_pSession->GetMachineName());
        PreBalDB::CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration("Default");
        return rEntry.GetTargetUnbalance() == TARGET && rEntry.GetSinglePlane() != nullptr &&
               rEntry.GetSinglePlane()->GetRotationDirection() == PreBalDB::CTypeBase::eCounterClockwise;
    };
    EXPECT_FALSE(IsStored()) << "what the page shows isn't saved by that";
    // Each value gets there in a time of its own; a start that comes too early is ended and asked for again.
    const auto StartsWithThem = [&] {
        EXPECT_EQ(m_Nc.Ask(1), DONE);
        const bool bStored = IsStored();
        EXPECT_EQ(m_Nc.Ask(4), DONE);
        return bStored;
    };
    bool bStarted = false;
    for (int i = 0; i < 100 && !bStarted; ++i) {
        bStarted = StartsWithThem();
    }
    EXPECT_TRUE(bStarted);
}

/// What failed for good stays on the panel until somebody has seen it.
TEST_F(CRequestsTest, AFailureWithoutReturnStaysOnThePanel) {
    Open();
    Initialise();
    EXPECT_EQ(m_Nc.Ask(1), DONE);
    m_pSession->GetSimulator()->Carry({{"set", {{"number", 2}}}});
    ASSERT_TRUE(m_Nc.NextValue("Notification", [](const json& r) { return r[0] == CPreBalCodes::eFailure; }));
    EXPECT_EQ(m_Nc.Ask(4), DONE);
    EXPECT_TRUE(IsRunning());
    m_pSession->SendAction(Actions::eTerminate, Actions::eNone);
    EXPECT_FALSE(IsRunning());
}

TEST_F(CRequestsTest, BeforeTheConfigurationIsFoundAStartIsRefused) {
    m_Options.m_Addresses = {7};  // nobody has that address on this line: the simulator is told another one
    Open();
    // The item is subscribed to some time after the window was created: the first requests may come too
    // early.
    m_Nc.Write("Request", 1);
    const auto Answer = m_Nc.NextValue("Request");
    ASSERT_TRUE(Answer);
    EXPECT_EQ(*Answer, REFUSED);
    EXPECT_FALSE(IsRunning());
}

/// A request from before the module was there is too old to be obeyed when it comes.
TEST_F(CRequestsTest, ARequestOlderThanTheModuleIsNotObeyed) {
    m_Nc.Write("Request", 1);
    Open();
    ASSERT_TRUE(m_pSession->Initialise());
    ASSERT_TRUE(m_Nc.NextValue("Request", [](const json& r) { return r == 0; }));
    EXPECT_FALSE(IsRunning());
    EXPECT_EQ(m_Nc.Ask(1), DONE);
}

/// Faster than the module takes them: each is answered, whether or not its answer is seen, and none is obeyed
/// that must be refused.
TEST_F(CRequestsTest, ABurstOfRequestsHarmsNothing) {
    Open();
    Initialise();
    for (int i = 0; i < 50; ++i) {
        m_Nc.Write("Request", i % 2 == 0 ? 3 : 5);
    }
    ASSERT_TRUE(m_Nc.NextValue("Request"));
    EXPECT_FALSE(IsRunning());
    // What comes after the storm is obeyed.
    m_Nc.Write("Request", 0);
    EXPECT_TRUE(CNcServer::RunUntil(
        [this] {
            if (!IsRunning()) {
                m_Nc.Write("Request", 0);
                m_Nc.Write("Request", 1);
            }
            return IsRunning();
        },
        CNcServer::PATIENCE));
}

}  // namespace
