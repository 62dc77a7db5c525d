// Runs that go on while the server of the archive is away.
#include <gmock/gmock.h>

#include "archive/runarchive.h"
#include "archive/runstore.h"
#include "platform/rvmdb/offline.h"
#include "platform/system/virtualeventloop.h"
#include "tests/platform/rvmdb/databasefixture.h"
#include "tests/support/archivedrun.h"
#include "tests/support/postgresserver.h"

namespace {

using PreBalDB::Offline::GetState;

class OfflineArchiveTest : public CStoreTest {
protected:
    void SetUp() override {
        PreBalDB::Offline::SetFile(m_File);
        const CRunStore Made(m_Connection);
    }
    void TearDown() override { PreBalDB::Offline::SetFile(""); }
    static CRunRecord MakeBegun() {
        CRunRecord Record = MakeArchivedRun();
        Record.m_Measurements.clear();
        Record.m_State = CRunRecord::State::eRunning;
        return Record;
    }
    static void Finish(CRunArchive& rArchive) {
        ASSERT_TRUE(CPostgresServer::WaitFor([&] { return rArchive.Finish(CRunArchive::LIMIT); }));
    }
    static void WaitForDelivery() {
        ASSERT_TRUE(CPostgresServer::WaitFor([] { return !GetState().m_bAway && !GetState().IsWaiting(); }))
            << GetState().m_Why;
    }
    /// The runs on the server, each with all of its measurements.
    void ExpectRuns(std::size_t nRuns) {
        CRunStore Store(m_Connection);
        const std::vector<CRunSummary> Runs = Store.List({});
        ASSERT_EQ(Runs.size(), nRuns);
        for (const CRunSummary& rRun : Runs) {
            EXPECT_EQ(Store.Load(rRun.m_Id)->m_Measurements, MakeArchivedRun().m_Measurements);
        }
    }

    CVirtualEventLoop m_Loop;
    CPostgresServer m_Server;
    std::string m_File = m_Directory.filePath("offline.db").toStdString();
};

}  // namespace

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OfflineArchiveTest);
INSTANTIATE_TEST_SUITE_P(Servers, OfflineArchiveTest, testing::ValuesIn(GetServersForTests()), GetStoreName);

TEST_P(OfflineArchiveTest, ARunWhoseServerStopsIsKeptHereAndDeliveredAsAWhole) {
    CRunArchive Archive(m_Connection, m_File);
    Archive.Keep("a", MakeBegun());
    Finish(Archive);
    m_Server.Stop();
    Archive.Keep("a", MakeArchivedRun());
    Archive.KeepPicture("a", "final", {1, 2, 3});
    Finish(Archive);
    EXPECT_EQ(Archive.TakeTrouble(), "");
    EXPECT_EQ(GetState().m_nRuns, 1U);
    EXPECT_EQ(CRunStore("sqlite:" + m_File).List({}).size(), 1U);
    m_Server.Start();
    WaitForDelivery();
    ExpectRuns(1);
    EXPECT_EQ(CRunStore(m_Connection).LoadPicture(1, "final"), (std::vector<unsigned char>{1, 2, 3}));
    EXPECT_TRUE(CRunStore("sqlite:" + m_File).List({}).empty());
}

TEST_P(OfflineArchiveTest, AServerThatComesBackInMidRunHasTheRestAsWell) {
    CRunArchive Archive(m_Connection, m_File);
    m_Server.Stop();
    Archive.Keep("a", MakeBegun());
    Finish(Archive);
    m_Server.Start();
    WaitForDelivery();
    Archive.Keep("a", MakeArchivedRun());
    Finish(Archive);
    ExpectRuns(1);
    EXPECT_EQ(GetState().m_nRuns, 0U);
}

TEST_P(OfflineArchiveTest, RunsOfAnEarlierConsoleAreDeliveredByTheNext) {
    {
        CRunArchive Archive(m_Connection, m_File);
        m_Server.Stop();
        Archive.Keep("a", MakeArchivedRun());
        Archive.Keep("b", MakeArchivedRun());
        Finish(Archive);
    }
    PreBalDB::Offline::SetFile("");  // all that the process knows of it
    PreBalDB::Offline::SetFile(m_File);
    m_Server.Start();
    CRunArchive Archive(m_Connection, m_File);
    Archive.DeliverEarlier();
    Finish(Archive);
    WaitForDelivery();
    ExpectRuns(2);
}

TEST_P(OfflineArchiveTest, AFrozenServerIsGivenUpAndTheRunKeptHere) {
    CRunArchive Archive(m_Connection, m_File);
    Archive.Keep("a", MakeBegun());
    Finish(Archive);
    m_Server.Freeze();
    Archive.Keep("a", MakeArchivedRun());
    Finish(Archive);
    EXPECT_EQ(CRunStore("sqlite:" + m_File).List({}).size(), 1U);
    EXPECT_TRUE(GetState().m_bAway);
    m_Server.Thaw();
    WaitForDelivery();
    ExpectRuns(1);
}

// What is asked for meanwhile is what there is here.
TEST_P(OfflineArchiveTest, TheListShowsTheRunsThatAreHere) {
    CRunArchive Archive(m_Connection, m_File);
    m_Server.Stop();
    Archive.Keep("a", MakeArchivedRun());
    std::size_t nRuns = 0;
    Archive.Ask(
        [&nRuns](CRunStore& rStore) {
            nRuns = rStore.List({}).size();
            return [] {};
        },
        [](const std::string& rWhy) { ADD_FAILURE() << rWhy; });
    Finish(Archive);
    EXPECT_EQ(nRuns, 1U);
}

TEST_P(OfflineArchiveTest, ARunThatHadArrivedIsWrittenOnce) {
    {
        CRunArchive Archive(m_Connection, m_File);
        Archive.Keep("a", MakeArchivedRun());
        Finish(Archive);
    }
    // As if its answer had been lost: it waits here all the same.
    CRunStore("sqlite:" + m_File).Write(MakeArchivedRun(), "a", {});
    CRunArchive Archive(m_Connection, m_File);
    Archive.DeliverEarlier();
    Finish(Archive);
    WaitForDelivery();
    ExpectRuns(1);
}

TEST_P(OfflineArchiveTest, TwoConsolesWriteTheirRunsAtOnce) {
    constexpr std::size_t RUNS = 15;
    CRunArchive First(m_Connection);
    CRunArchive Second(m_Connection);
    for (std::size_t i = 0; i < RUNS; ++i) {
        for (CRunArchive* const pArchive : {&First, &Second}) {
            const std::string Mark = (pArchive == &First ? "first" : "second") + std::to_string(i);
            pArchive->Keep(Mark, MakeBegun());
            pArchive->Keep(Mark, MakeArchivedRun());
        }
    }
    Finish(First);
    Finish(Second);
    EXPECT_EQ(First.TakeTrouble() + Second.TakeTrouble(), "");
    ExpectRuns(2 * RUNS);
}
