// Whole runs of a console whose store lies on a server that goes away.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "archive/runstore.h"
#include "platform/rvmdb/directsql.h"
#include "tests/platform/rvmdb/databasefixture.h"
#include "tests/support/postgresserver.h"
#include "tests/system/wholerun.h"

namespace {

class COfflineRunTest : public CStoreTest {
protected:
    COfflineRunTest() {
        setenv("CORVANE_DATABASE", m_Connection.c_str(), 1);
        // The installation is one that stays.
        m_Run.m_Options.m_ConfigDirectory = m_Run.m_Installation.GetRoot().string();
        m_Run.m_Options.m_bArchive = true;
    }
    ~COfflineRunTest() override { unsetenv("CORVANE_DATABASE"); }
    void AtTheEnd(const std::function<void()>& rDo) {
        m_Run.OnSituation = [rDo, bDone = false](const CSituation& rSituation, CConsoleSession&) mutable {
            if (!bDone && rSituation.m_Progress.m_Step == rSituation.m_Progress.m_NumberOfSteps) {
                bDone = true;
                rDo();
            }
        };
    }
    void Expect(bool bDelivered) {
        EXPECT_EQ(m_Run.m_Report.at("saved"), true);
        EXPECT_EQ(m_Run.m_Report.at("delivered"), bDelivered);
        EXPECT_EQ(m_Run.m_Report.at("assertions").size(), 0U);
    }
    bool IsCalibratedOnServer() {
        PreBalDB::CDirectSQL Sql(m_Connection);
        return Sql.Query("SELECT is_calibrated FROM configuration")[0].GetInteger(0) == 1;
    }
    std::vector<CRunSummary> ListRuns() { return CRunStore(m_Connection).List({}); }

    CPostgresServer m_Server;
    CWholeRun m_Run{CRotorFile::GetBuiltIn(CRotorFile::eKestrel)};
};

}  // namespace

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(COfflineRunTest);
INSTANTIATE_TEST_SUITE_P(Servers, COfflineRunTest, testing::ValuesIn(GetServersForTests()), GetStoreName);

TEST_P(COfflineRunTest, ARunOnAServerIsSavedAndDelivered) {
    EXPECT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitWithinTarget);
    Expect(true);
    EXPECT_TRUE(IsCalibratedOnServer());
    EXPECT_EQ(ListRuns().size(), 1U);
}

TEST_P(COfflineRunTest, AServerThatStopsInMidRunHasItsResultLater) {
    AtTheEnd([this] { m_Server.Stop(); });
    EXPECT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitWithinTarget);
    Expect(false);
    EXPECT_TRUE(m_Run.HasLine("on this console's disk"));
    EXPECT_TRUE(m_Run.HasLine("The server of the database is away"));
    m_Server.Start();
    EXPECT_FALSE(IsCalibratedOnServer());
    // The next console brings it.
    m_Run.OnSituation = nullptr;
    EXPECT_EQ(m_Run.Run(COptions::Procedure::eRebalance), eExitWithinTarget);
    EXPECT_TRUE(IsCalibratedOnServer());
    ASSERT_TRUE(CPostgresServer::WaitFor([this] { return ListRuns().size() == 2; }));
    for (const CRunSummary& rRun : ListRuns()) {
        EXPECT_EQ(rRun.m_State, CRunRecord::State::eFinished);
        EXPECT_TRUE(rRun.m_bSaved);
    }
}

TEST_P(COfflineRunTest, AServerThatFreezesInMidRunHasItsResultLater) {
    AtTheEnd([this] { m_Server.Freeze(); });
    EXPECT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitWithinTarget);
    Expect(false);
    m_Server.Thaw();
    m_Run.OnSituation = nullptr;
    EXPECT_EQ(m_Run.Run(COptions::Procedure::eRebalance), eExitWithinTarget);
    EXPECT_TRUE(IsCalibratedOnServer());
    EXPECT_EQ(ListRuns().size(), 2U);
}

TEST_P(COfflineRunTest, AConsoleThatStartsWithoutItsServerRebalancesWithWhatItReadLast) {
    EXPECT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitWithinTarget);
    m_Server.Stop();
    EXPECT_EQ(m_Run.Run(COptions::Procedure::eRebalance), eExitWithinTarget);
    Expect(false);
    m_Server.Start();
    EXPECT_EQ(ListRuns().size(), 1U);
    EXPECT_EQ(m_Run.Run(COptions::Procedure::eRebalance), eExitWithinTarget);
    EXPECT_EQ(ListRuns().size(), 3U);
}

TEST_P(COfflineRunTest, AServerThatIsRestartedInMidRunIsNotMissed) {
    AtTheEnd([this] { m_Server.Restart(); });
    EXPECT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_EQ(m_Run.m_Report.at("saved"), true);
    // Whoever asked for it just then has found it away, and the next console brings what that has kept.
    m_Run.OnSituation = nullptr;
    EXPECT_EQ(m_Run.Run(COptions::Procedure::eRebalance), eExitWithinTarget);
    EXPECT_TRUE(IsCalibratedOnServer());
    EXPECT_EQ(ListRuns().size(), 2U);
}

// What a run in a temporary installation keeps on its own disk would go with it.
TEST_P(COfflineRunTest, ARunThatKeepsNothingFailsWithoutItsServer) {
    m_Run.m_Options.m_ConfigDirectory.clear();
    AtTheEnd([this] { m_Server.Stop(); });
    EXPECT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitFailed);
    EXPECT_EQ(m_Run.m_Report.at("saved"), false);
    EXPECT_EQ(m_Run.m_Report.at("delivered"), true) << "nothing waits";
}
