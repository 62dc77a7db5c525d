#include "archive/runarchive.h"

#include <gmock/gmock.h>

#include "archive/runstore.h"
#include "platform/system/virtualeventloop.h"
#include "tests/platform/rvmdb/databasefixture.h"
#include "tests/support/archivedrun.h"

namespace {

using testing::HasSubstr;

class RunArchiveTest : public CStoreFileTest {
protected:
    CVirtualEventLoop m_Loop;
};

CRunRecord MakeBegun() {
    CRunRecord Record = MakeArchivedRun();
    Record.m_Measurements.clear();
    Record.m_State = CRunRecord::State::eRunning;
    return Record;
}

}  // namespace

TEST_F(RunArchiveTest, KeepsARunAsItGoesOn) {
    CRunArchive Archive(m_Connection);
    EXPECT_EQ(Archive.GetId("a"), 0);
    Archive.Keep("a", MakeBegun());
    ASSERT_TRUE(Archive.Finish(CRunArchive::LIMIT));
    EXPECT_EQ(Archive.GetId("a"), 1);
    EXPECT_TRUE(CRunStore(m_Connection).Load(1)->m_Measurements.empty());
    Archive.KeepPicture("a", "final", {1, 2, 3});
    Archive.Keep("a", MakeArchivedRun());
    ASSERT_TRUE(Archive.Finish(CRunArchive::LIMIT));
    EXPECT_EQ(CRunStore(m_Connection).Load(1)->m_Measurements, MakeArchivedRun().m_Measurements);
    EXPECT_EQ(CRunStore(m_Connection).LoadPicture(1, "final"), (std::vector<unsigned char>{1, 2, 3}));
    EXPECT_EQ(Archive.TakeTrouble(), "");
}

TEST_F(RunArchiveTest, ItsEndWaitsForWhatIsToBeWritten) {
    {
        CRunArchive Archive(m_Connection);
        Archive.Keep("a", MakeArchivedRun());
    }
    EXPECT_EQ(CRunStore(m_Connection).List({}).size(), 1U);
}

TEST_F(RunArchiveTest, WhatCouldNotBeWrittenIsToldAndWrittenLater) {
    { const CRunStore Made(m_Connection); }
    CRunArchive Archive(m_Connection);
    PreBalDB::CDirectSQL Other(m_Connection);
    Other.Execute("CREATE TRIGGER fault AFTER INSERT ON run BEGIN SELECT RAISE(ABORT, 'no room'); END");
    Archive.Keep("a", MakeBegun());
    ASSERT_TRUE(Archive.Finish(CRunArchive::LIMIT));
    EXPECT_THAT(Archive.TakeTrouble(), HasSubstr("no room"));
    EXPECT_EQ(Archive.TakeTrouble(), "") << "once";
    Other.Execute("DROP TRIGGER fault");
    Archive.Keep("a", MakeArchivedRun());
    ASSERT_TRUE(Archive.Finish(CRunArchive::LIMIT));
    EXPECT_EQ(CRunStore(m_Connection).Load(Archive.GetId("a"))->m_Measurements.size(), 2U);
    EXPECT_EQ(CRunStore(m_Connection).List({}).size(), 1U);
}

TEST_F(RunArchiveTest, TheEndTriesOnceMore) {
    { const CRunStore Made(m_Connection); }
    PreBalDB::CDirectSQL Other(m_Connection);
    Other.Execute("CREATE TRIGGER fault AFTER INSERT ON run BEGIN SELECT RAISE(ABORT, 'no room'); END");
    CRunArchive Archive(m_Connection);
    Archive.Keep("a", MakeArchivedRun());
    ASSERT_TRUE(Archive.Finish(CRunArchive::LIMIT));
    Other.Execute("DROP TRIGGER fault");
    ASSERT_TRUE(Archive.Finish(CRunArchive::LIMIT));
    EXPECT_EQ(CRunStore(m_Connection).List({}).size(), 1U);
}

TEST_F(RunArchiveTest, AStoreThatCannotBeOpenedIsToldAndHoldsNobodyUp) {
    CRunArchive Archive("sqlite:" + m_Path + "/no/such.db");
    Archive.Keep("a", MakeArchivedRun());
    ASSERT_TRUE(Archive.Finish(CRunArchive::LIMIT));
    EXPECT_THAT(Archive.TakeTrouble(), HasSubstr("doesn't exist"));
    EXPECT_EQ(Archive.GetId("a"), 0);
}

TEST_F(RunArchiveTest, AnswersComeOnTheLoop) {
    CRunArchive Archive(m_Connection);
    Archive.Keep("a", MakeArchivedRun());
    std::size_t nRuns = 0;
    Archive.Ask(
        [&nRuns](CRunStore& rStore) -> std::function<void()> {
            const std::size_t nFound = rStore.List({}).size();
            return [&nRuns, nFound] { nRuns = nFound; };
        },
        [](const std::string& rWhy) { ADD_FAILURE() << rWhy; });
    ASSERT_TRUE(Archive.Finish(CRunArchive::LIMIT));
    EXPECT_EQ(nRuns, 0U) << "not in between";
    m_Loop.Advance(1);
    EXPECT_EQ(nRuns, 1U);
}

TEST_F(RunArchiveTest, AQuestionThatFailsIsToldOnTheLoop) {
    CRunArchive Archive("sqlite:" + m_Path + "/no/such.db");
    std::string Why;
    Archive.Ask([](CRunStore&) -> std::function<void()> { return [] {}; },
                [&Why](const std::string& rWhy) { Why = rWhy; });
    ASSERT_TRUE(Archive.Finish(CRunArchive::LIMIT));
    m_Loop.Advance(1);
    EXPECT_THAT(Why, HasSubstr("doesn't exist"));
    EXPECT_EQ(Archive.TakeTrouble(), "");
}

TEST_F(RunArchiveTest, MarksDiffer) {
    EXPECT_NE(CRunArchive::MakeMark(), CRunArchive::MakeMark());
    EXPECT_EQ(CRunArchive::MakeMark().size(), 32U);
}
