#include "archive/isostore.h"

#include "platform/rvmdb/prebaldatabase.h"
#include "tests/platform/rvmdb/databasefixture.h"

namespace {

CIsoData MakeData() {
    CIsoData Data;
    Data.m_RotorMass = 12.25;
    Data.m_ServiceSpeed = 6000.0;
    Data.m_Grade = 6.3;
    Data.m_Unit = {45.5, 60.0};
    Data.m_Distance = {80.0, 120.0};
    return Data;
}

class IsoStore : public CStoreTest {
protected:
    /// A configuration in the store.
    void MakeConfiguration(const std::string& rName) {
        const auto pDatabase = Open();
        pDatabase->ReadConfiguration(rName);
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    }
};

}  // namespace

TEST_P(IsoStore, WhatWasWrittenIsRead) {
    MakeConfiguration("Default");
    {
        PreBalDB::CDirectSQL Connection(m_Connection);
        CIsoStore Store(Connection);
        EXPECT_FALSE(Store.Read("M-1", "Default"));
        EXPECT_TRUE(Store.Write("M-1", "Default", CIsoData()));
        EXPECT_TRUE(Store.Write("M-1", "Default", MakeData())) << "in place of the former";
    }
    PreBalDB::CDirectSQL Connection(m_Connection);
    CIsoStore Store(Connection);
    EXPECT_EQ(Store.Read("M-1", "Default"), MakeData());
    EXPECT_FALSE(Store.Read("M-2", "Default"));
    EXPECT_NE(Open(), nullptr) << "the module still knows its store";
}

TEST_P(IsoStore, AConfigurationThatIsNotStoredHasNone) {
    MakeConfiguration("Default");
    PreBalDB::CDirectSQL Connection(m_Connection);
    CIsoStore Store(Connection);
    EXPECT_FALSE(Store.Write("M-1", "Other", MakeData()));
    EXPECT_FALSE(Store.Read("M-1", "Other"));
}

TEST_P(IsoStore, ItGoesWithItsConfiguration) {
    MakeConfiguration("Default");
    MakeConfiguration("Other");
    PreBalDB::CDirectSQL Connection(m_Connection);
    CIsoStore Store(Connection);
    ASSERT_TRUE(Store.Write("M-1", "Other", MakeData()));
    ASSERT_NE(Open()->DeleteConfiguration("Other"), 0);
    EXPECT_FALSE(Store.Read("M-1", "Other"));
}

TEST_P(IsoStore, OneOfANewerVersionIsLeftAsItIs) {
    MakeConfiguration("Default");
    PreBalDB::CDirectSQL Connection(m_Connection);
    { const CIsoStore Store(Connection); }
    Connection.Execute("UPDATE iso_version SET version = 7");
    EXPECT_THROW(const CIsoStore Store(Connection), PreBalDB::CDatabaseError);
    EXPECT_EQ(Connection.Query("SELECT version FROM iso_version").at(0).GetInteger(0), 7);
}

INSTANTIATE_TEST_SUITE_P(Stores, IsoStore, testing::ValuesIn(GetStoresForTests()), GetStoreName);
