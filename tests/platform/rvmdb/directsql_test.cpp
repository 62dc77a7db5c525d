// Plain SQL: what goes in and comes out, and what is said when it fails.
#include "platform/rvmdb/directsql.h"

#include <gmock/gmock.h>

#include "tests/platform/rvmdb/databasefixture.h"

using PreBalDB::CDirectSQL;
using PreBalDB::CSqlError;
using PreBalDB::CSqlValue;
using PreBalDB::CTransaction;
using PreBalDB::StoreFailure;
using testing::HasSubstr;

namespace {

class CDirectSqlTest : public CStoreFileTest {
protected:
    CDirectSQL::CRow Select(const std::string& rWhat, const std::vector<CSqlValue>& rValues = {}) {
        const auto Rows = m_Store.Query("SELECT " + rWhat, rValues);
        EXPECT_EQ(Rows.size(), 1U);
        return Rows.at(0);
    }

    CDirectSQL m_Store{m_Connection};
};

TEST_F(CDirectSqlTest, ValuesComeBackAsTheyWentIn) {
    const CDirectSQL::CRow Row =
        Select("?, ?, ?, ?", {std::int64_t{-9007199254740993}, 0.1, std::string("µm's"), std::string()});
    EXPECT_EQ(Row.GetValue(0), CSqlValue(std::int64_t{-9007199254740993}));
    EXPECT_EQ(Row.GetValue(1), CSqlValue(0.1));
    EXPECT_EQ(Row.GetValue(2), CSqlValue(std::string("µm's")));
    EXPECT_EQ(Row.GetValue(3), CSqlValue(std::string()));
    EXPECT_EQ(m_Store.Query("SELECT ? IS NULL", {std::string()}).at(0).GetInteger(0), 0);
    EXPECT_EQ(Select("NULL").GetValue(0), CSqlValue(std::string()));
}

TEST_F(CDirectSqlTest, ValuesOfAnotherKindAreConverted) {
    const CDirectSQL::CRow Row = Select("7, 2.5, ' 12 ', '1.5e3', 'none', -2.5, ''");
    EXPECT_EQ(Row.GetDouble(0), 7.0);
    EXPECT_EQ(Row.GetText(0), "7");
    EXPECT_EQ(Row.GetInteger(1), 3);
    EXPECT_EQ(Row.GetText(1), "2.5");
    EXPECT_EQ(Row.GetInteger(2), 12);
    EXPECT_EQ(Row.GetDouble(2), 12.0);
    EXPECT_EQ(Row.GetDouble(3), 1500.0);
    EXPECT_EQ(Row.GetInteger(3), 0);
    EXPECT_EQ(Row.GetInteger(4), 0);
    EXPECT_EQ(Row.GetDouble(4), 0.0);
    EXPECT_EQ(Row.GetInteger(5), -3);
    EXPECT_EQ(Row.GetInteger(6), 0);
}

TEST_F(CDirectSqlTest, ChangedRowsAreCounted) {
    m_Store.Execute("CREATE TABLE T (A INTEGER)");
    EXPECT_EQ(m_Store.Execute("INSERT INTO T VALUES (?), (?)", {std::int64_t{1}, std::int64_t{2}}), 2);
    EXPECT_EQ(m_Store.Execute("UPDATE T SET A = 3 WHERE A > 5"), 0);
    EXPECT_TRUE(m_Store.HasTable("T"));
    EXPECT_FALSE(m_Store.HasTable("U"));
    EXPECT_TRUE(m_Store.HasTables());
}

TEST_F(CDirectSqlTest, AFailureHasTheDatabasesTextAndItsCause) {
    CDirectSQL Other(m_Connection, 1);
    m_Store.Execute("BEGIN IMMEDIATE");
    try {
        Other.Execute("BEGIN IMMEDIATE");
        ADD_FAILURE() << "the store is locked";
    } catch (const CSqlError& rError) {
        EXPECT_EQ(rError.GetCause(), StoreFailure::eLocked);
        EXPECT_THAT(rError.what(), HasSubstr("locked"));
    }
    try {
        m_Store.Query("SELECT one FROM nowhere");
        ADD_FAILURE() << "there is no such table";
    } catch (const CSqlError& rError) {
        EXPECT_EQ(rError.GetCause(), StoreFailure::eOther);
        EXPECT_THAT(rError.what(), HasSubstr("nowhere"));
    }
}

TEST_F(CDirectSqlTest, NothingButTheWayBackIsDoneAfterAnInterruption) {
    m_Store.Execute("BEGIN IMMEDIATE");
    m_Store.Interrupt();
    EXPECT_THROW(m_Store.Execute("COMMIT"), CSqlError);
    EXPECT_THROW(m_Store.Query("SELECT 1"), CSqlError);
    m_Store.Execute("ROLLBACK");
    m_Store.Resume();
    EXPECT_EQ(Select("1").GetInteger(0), 1);
}

// EXTRA is 3, NORMAL 1: only a noting transaction waits for no disk, and nothing behind it goes without.
TEST_F(CDirectSqlTest, ANotingTransactionAloneWaitsForNoDisk) {
    const auto GetSynchronous = [this] { return m_Store.Query("PRAGMA synchronous").at(0).GetInteger(0); };
    EXPECT_EQ(GetSynchronous(), 3);
    {
        CTransaction Noting(m_Store, CTransaction::eNoting);
        EXPECT_EQ(GetSynchronous(), 1);
        Noting.Commit();
    }
    EXPECT_EQ(GetSynchronous(), 3);
    { const CTransaction GivenUp(m_Store, CTransaction::eNoting); }
    EXPECT_EQ(GetSynchronous(), 3);
    CDirectSQL Other(m_Connection, 1);
    Other.Execute("BEGIN IMMEDIATE");
    m_Store.Execute("PRAGMA busy_timeout = 1");
    EXPECT_THROW(CTransaction(m_Store, CTransaction::eNoting), CSqlError);
    EXPECT_EQ(GetSynchronous(), 3) << "refused";
}

TEST_F(CDirectSqlTest, AStoreThatSomebodyReadsTheOtherWayGoesOnWithoutTheWriteAheadLog) {
    m_Store.Execute("CREATE TABLE T (A INTEGER)");
    const auto GetMode = [this] { return m_Store.Query("PRAGMA journal_mode").at(0).GetText(0); };
    {
        CDirectSQL Other(m_Connection);
        const CTransaction Reading(Other, CTransaction::eReading);
        Other.Query("SELECT count(*) FROM T");
        EXPECT_NO_THROW(m_Store.UseWriteAheadLog());
        EXPECT_EQ(GetMode(), "delete");
    }
    m_Store.UseWriteAheadLog();
    EXPECT_EQ(GetMode(), "wal");
}

}  // namespace
