// Configurations in a store: what is written comes back, under its name, and nothing else changes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <limits>

#include "tests/platform/rvmdb/calibrated.h"
#include "tests/platform/rvmdb/databasefixture.h"
#include "tests/platform/rvmdb/makematrix.h"
#include "tests/support/casenames.h"
#include "tests/support/logcapture.h"

using namespace PreBalDB;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Limits = std::numeric_limits<double>;

std::vector<std::uint64_t> GetBits(const math::matrix<double>& rMatrix) {
    std::vector<std::uint64_t> Bits = {rMatrix.RowNo(), rMatrix.ColNo()};
    for (std::uint32_t i = 0; i < rMatrix.RowNo(); ++i) {
        for (std::uint32_t j = 0; j < rMatrix.ColNo(); ++j) {
            Bits.push_back(std::bit_cast<std::uint64_t>(rMatrix(i, j)));
        }
    }
    return Bits;
}

std::vector<std::string> GetNames(const CPreBalDatabase& rDatabase,
                                  CPreBalDatabase::BalancingMode Mode = CPreBalDatabase::eModePlane1,
                                  CTypeBase::AffectedPlane Input = CTypeBase::ePlane1,
                                  std::uint8_t Sensor1 = 3, std::uint8_t Sensor2 = 255) {
    const Base::CStringArray Names = rDatabase.GetProcessNames(Mode, Input, Sensor1, Sensor2);
    return {Names.begin(), Names.end()};
}

double GetStoredInvA(const std::string& rName, const std::string& rMachine = "M-1") {
    CPreBalDatabase Other(rMachine);
    CPreBalBaseTableEntry& rEntry = Other.ReadConfiguration(rName);
    return rEntry.GetSinglePlane() == nullptr ? Limits::quiet_NaN()
                                              : rEntry.GetSinglePlane()->GetInvA()(0, 0);
}

}  // namespace

using CConfigurationTest = CStoreTest;
INSTANTIATE_TEST_SUITE_P(Stores, CConfigurationTest, testing::ValuesIn(GetStoresForTests()), GetStoreName);

TEST_P(CConfigurationTest, DefaultOfANewStoreIsAnUncalibratedEntry) {
    const auto pDatabase = Open();
    const CPreBalBaseTableEntry& rEntry = pDatabase->ReadConfiguration("Default");
    EXPECT_EQ(rEntry.GetMachineName(), "M-1");
    EXPECT_EQ(rEntry.GetProcessName(), "Default");
    EXPECT_EQ(rEntry.IsCalibrated(), 0);
    EXPECT_EQ(rEntry.GetSinglePlane(), nullptr);
    EXPECT_EQ(rEntry.GetTwoPlane(), nullptr);
}

TEST_P(CConfigurationTest, ANewStoreHasNoProcessNames) {
    const auto pDatabase = Open();
    for (const auto Mode :
         {CPreBalDatabase::eModePlane1, CPreBalDatabase::eModePlane2, CPreBalDatabase::eModeTwoPlane}) {
        EXPECT_THAT(GetNames(*pDatabase, Mode), IsEmpty());
    }
}

TEST_P(CConfigurationTest, AMissingOneIsInMemoryOnlyUntilItIsWritten) {
    const auto pDatabase = Open();
    MakeCalibrated(*pDatabase, "Wheel");
    EXPECT_THAT(GetNames(*pDatabase), IsEmpty());
    EXPECT_EQ(pDatabase->ReadConfiguration("Wheel").IsCalibrated(), 0) << "reading anew drops it";
    MakeCalibrated(*pDatabase, "Wheel");
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    EXPECT_THAT(GetNames(*pDatabase), ElementsAre("Wheel"));
}

TEST_P(CConfigurationTest, WritingWithoutReadingIsRefused) {
    CLogCapture Log;
    const auto pDatabase = Open();
    EXPECT_EQ(pDatabase->WriteConfiguration(), 0);
    EXPECT_THAT(Log.GetTexts("Error"), ElementsAre(HasSubstr("no configuration written")));
}

TEST_P(CConfigurationTest, EveryFieldOfTheBaseComesBack) {
    const auto When = std::chrono::sys_days{std::chrono::year{2031} / 12 / 24} + std::chrono::seconds(86399);
    {
        const auto pDatabase = Open();
        CPreBalBaseTableEntry& rEntry = pDatabase->ReadConfiguration("Wheel");
        rEntry.SetIsCalibrated(1);
        rEntry.SetCalibrationDateTime(When);
        rEntry.SetCalibratedRPM(65535);
        rEntry.SetRPMTolerance(17);
        rEntry.SetTargetUnbalance(23);
        rEntry.SetNumberOfSamples(300);
        EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    }
    const auto pDatabase = Open();
    const CPreBalBaseTableEntry& rEntry = pDatabase->ReadConfiguration("Wheel");
    EXPECT_EQ(rEntry.IsCalibrated(), 1);
    EXPECT_EQ(rEntry.GetCalibrationDateTime(), When);
    EXPECT_EQ(rEntry.GetCalibratedRPM(), 65535U);
    EXPECT_EQ(rEntry.GetRPMTolerance(), 17U);
    EXPECT_EQ(rEntry.GetTargetUnbalance(), 23U);
    EXPECT_EQ(rEntry.GetNumberOfSamples(), 300U);
    EXPECT_EQ(rEntry.GetSinglePlane(), nullptr);
    EXPECT_EQ(rEntry.GetTwoPlane(), nullptr);
}

TEST_P(CConfigurationTest, EveryFieldOfOnePlaneWithWeightsComesBack) {
    {
        const auto pDatabase = Open();
        CSinglePlaneBalancingTableEntry& rSingle = pDatabase->ReadConfiguration("Wheel").CreateSinglePlane();
        rSingle.SetRotationDirection(CTypeBase::eCounterClockwise);
        rSingle.SetProximitySwitchInput(CTypeBase::ePlane2);
        rSingle.SetSensorAdaption(254);
        rSingle.SetInvA(MakeMatrix(2, 2, {1, 2, 3, 4}));
        rSingle.SetUA(MakeMatrix(2, 1, {5, 6}));
        rSingle.CreateWeightCompensationTableEntry().SetScalingDirection(CTypeBase::eCounterClockwise);
        EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    }
    const auto pDatabase = Open();
    const CPreBalBaseTableEntry& rEntry = pDatabase->ReadConfiguration("Wheel");
    ASSERT_NE(rEntry.GetSinglePlane(), nullptr);
    EXPECT_EQ(rEntry.GetTwoPlane(), nullptr);
    const CSinglePlaneBalancingTableEntry& rSingle = *rEntry.GetSinglePlane();
    EXPECT_EQ(rSingle.GetRotationDirection(), CTypeBase::eCounterClockwise);
    EXPECT_EQ(rSingle.GetProximitySwitchInput(), CTypeBase::ePlane2);
    EXPECT_EQ(rSingle.GetSensorAdaption(), 254);
    EXPECT_EQ(rSingle.GetInvA(), MakeMatrix(2, 2, {1, 2, 3, 4}));
    EXPECT_EQ(rSingle.GetUA(), MakeMatrix(2, 1, {5, 6}));
    EXPECT_EQ(rSingle.GetUsedCompensationMethod(), CCompensationTableEntry::eWeights);
    EXPECT_EQ(rSingle.GetWeightCompensationTableEntry()->GetScalingDirection(), CTypeBase::eCounterClockwise);
}

TEST_P(CConfigurationTest, EveryFieldOfTwoPlanesWithWeightsAndScrewsComesBack) {
    math::matrix<double> InvA(4, 4);
    for (std::uint32_t i = 0; i < 16; ++i) {
        InvA(i / 4, i % 4) = 1.0 / (i + 3.0);
    }
    {
        const auto pDatabase = Open();
        CTwoPlaneBalancingTableEntry& rTwo = pDatabase->ReadConfiguration("Spindle").CreateTwoPlane();
        rTwo.SetRotationDirection(CTypeBase::eCounterClockwise);
        rTwo.SetProximitySwitchInput(CTypeBase::ePlane1);
        rTwo.SetPlane1SensorAdaption(1);
        rTwo.SetPlane2SensorAdaption(2);
        rTwo.SetInvA(InvA);
        rTwo.SetUAPlane1(MakeMatrix(2, 1, {1, 2}));
        rTwo.SetUAPlane2(MakeMatrix(2, 1, {3, 4}));
        rTwo.CreatePlane1WeightCompensationTableEntry().SetScalingDirection(CTypeBase::eCounterClockwise);
        CScrewCompensationTableEntry& rScrew = rTwo.CreatePlane2ScrewCompensationTableEntry();
        rScrew.SetPlane(CTypeBase::ePlane2);
        rScrew.SetScalingDirection(CTypeBase::eCounterClockwise);
        rScrew.SetScrewTableName("M6");
        rScrew.SetNumberOfHoles(24);
        rScrew.SetNumberOfScrews(3);
        rScrew.SetReferenceWeight(0.1);
        EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    }
    const auto pDatabase = Open();
    const CPreBalBaseTableEntry& rEntry = pDatabase->ReadConfiguration("Spindle");
    ASSERT_NE(rEntry.GetTwoPlane(), nullptr);
    EXPECT_EQ(rEntry.GetSinglePlane(), nullptr);
    const CTwoPlaneBalancingTableEntry& rTwo = *rEntry.GetTwoPlane();
    EXPECT_EQ(rTwo.GetRotationDirection(), CTypeBase::eCounterClockwise);
    EXPECT_EQ(rTwo.GetProximitySwitchInput(), CTypeBase::ePlane1);
    EXPECT_EQ(rTwo.GetPlane1SensorAdaption(), 1);
    EXPECT_EQ(rTwo.GetPlane2SensorAdaption(), 2);
    EXPECT_EQ(rTwo.GetInvA(), InvA);
    EXPECT_EQ(rTwo.GetUAPlane1(), MakeMatrix(2, 1, {1, 2}));
    EXPECT_EQ(rTwo.GetUAPlane2(), MakeMatrix(2, 1, {3, 4}));
    ASSERT_EQ(rTwo.GetPlane1UsedCompensationMethod(), CCompensationTableEntry::eWeights);
    EXPECT_EQ(rTwo.GetPlane1WeightCompensationTableEntry()->GetScalingDirection(),
              CTypeBase::eCounterClockwise);
    ASSERT_EQ(rTwo.GetPlane2UsedCompensationMethod(), CCompensationTableEntry::eScrews);
    const CScrewCompensationTableEntry& rScrew = *rTwo.GetPlane2ScrewCompensationTableEntry();
    EXPECT_EQ(rScrew.GetScalingDirection(), CTypeBase::eCounterClockwise);
    EXPECT_EQ(rScrew.GetNumberOfHoles(), 24U);
    EXPECT_EQ(rScrew.GetNumberOfScrews(), 3);
    EXPECT_EQ(rScrew.GetReferenceWeight(), 0.1);
    EXPECT_EQ(rScrew.GetRadius(), 100.0);
}

TEST_P(CConfigurationTest, MatricesComeBackBitByBit) {
    const auto InvA = MakeMatrix(2, 2, {-0.0, Limits::denorm_min(), 0.1, -Limits::max()});
    const auto UA = MakeMatrix(2, 1, {Limits::min(), -1.0 / 3.0});
    {
        const auto pDatabase = Open();
        CSinglePlaneBalancingTableEntry& rSingle = pDatabase->ReadConfiguration("Wheel").CreateSinglePlane();
        rSingle.SetInvA(InvA);
        rSingle.SetUA(UA);
        EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    }
    const auto pDatabase = Open();
    const CPreBalBaseTableEntry& rEntry = pDatabase->ReadConfiguration("Wheel");
    EXPECT_EQ(GetBits(rEntry.GetSinglePlane()->GetInvA()), GetBits(InvA));
    EXPECT_EQ(GetBits(rEntry.GetSinglePlane()->GetUA()), GetBits(UA));
}

TEST_P(CConfigurationTest, ReferenceWeightsComeBackBitByBit) {
    const auto pDatabase = Open();
    for (const double Weight : {0.1 + 0.2, 1e-300, Limits::denorm_min(), Limits::max(), 2.0}) {
        pDatabase->ReadConfiguration("Wheel")
            .CreateSinglePlane()
            .CreateScrewCompensationTableEntry()
            .SetReferenceWeight(Weight);
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
        EXPECT_EQ(pDatabase->ReadConfiguration("Wheel")
                      .GetSinglePlane()
                      ->GetScrewCompensationTableEntry()
                      ->GetReferenceWeight(),
                  Weight);
    }
}

TEST_P(CConfigurationTest, AChangeOfMethodLeavesNothingOfTheFormerOne) {
    const auto pDatabase = Open();
    MakeCalibrated(*pDatabase, "Wheel");
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    pDatabase->ReadConfiguration("Wheel").CreateSinglePlane().CreateScrewCompensationTableEntry();
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    EXPECT_EQ(pDatabase->ReadConfiguration("Wheel").GetSinglePlane()->GetUsedCompensationMethod(),
              CCompensationTableEntry::eScrews);
    CDirectSQL Sql(m_Connection);
    EXPECT_EQ(Sql.Query("SELECT count(*) FROM weight_compensation")[0].GetInteger(0), 0);
}

TEST_P(CConfigurationTest, AnEntryWithoutCompensationComesBackWithout) {
    const auto pDatabase = Open();
    pDatabase->ReadConfiguration("Wheel").CreateSinglePlane();
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    EXPECT_EQ(pDatabase->ReadConfiguration("Wheel").GetSinglePlane()->GetUsedCompensationMethod(),
              CCompensationTableEntry::eNotChosen);
}

TEST_P(CConfigurationTest, NamesFitModeInputAndSensors) {
    const auto pDatabase = Open();
    const auto WriteSingle = [&](const char* pName, CTypeBase::AffectedPlane Plane,
                                 CTypeBase::AffectedPlane Input, std::uint8_t Sensor) {
        CSinglePlaneBalancingTableEntry& rSingle = pDatabase->ReadConfiguration(pName).CreateSinglePlane();
        rSingle.SetProximitySwitchInput(Input);
        rSingle.SetSensorAdaption(Sensor);
        rSingle.CreateWeightCompensationTableEntry().SetPlane(Plane);
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    };
    const auto WriteTwo = [&](const char* pName, CTypeBase::AffectedPlane Input, std::uint8_t Sensor1,
                              std::uint8_t Sensor2) {
        CTwoPlaneBalancingTableEntry& rTwo = pDatabase->ReadConfiguration(pName).CreateTwoPlane();
        rTwo.SetProximitySwitchInput(Input);
        rTwo.SetPlane1SensorAdaption(Sensor1);
        rTwo.SetPlane2SensorAdaption(Sensor2);
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    };
    WriteSingle("plane 1", CTypeBase::ePlane1, CTypeBase::ePlane1, 3);
    WriteSingle("plane 1, other input", CTypeBase::ePlane1, CTypeBase::ePlane2, 3);
    WriteSingle("plane 1, other sensor", CTypeBase::ePlane1, CTypeBase::ePlane1, 4);
    WriteSingle("plane 2", CTypeBase::ePlane2, CTypeBase::ePlane1, 3);
    WriteTwo("two", CTypeBase::ePlane1, 3, 7);
    WriteTwo("two, other input", CTypeBase::ePlane2, 3, 7);
    WriteTwo("two, other sensor 1", CTypeBase::ePlane1, 4, 7);
    WriteTwo("two, other sensor 2", CTypeBase::ePlane1, 3, 8);

    EXPECT_THAT(GetNames(*pDatabase, CPreBalDatabase::eModePlane1, CTypeBase::ePlane1, 3, 255),
                ElementsAre("plane 1"));
    EXPECT_THAT(GetNames(*pDatabase, CPreBalDatabase::eModePlane1, CTypeBase::ePlane1, 3, 9),
                ElementsAre("plane 1"))
        << "sensor 2 doesn't count";
    EXPECT_THAT(GetNames(*pDatabase, CPreBalDatabase::eModePlane1, CTypeBase::ePlane2, 3, 255),
                ElementsAre("plane 1, other input"));
    EXPECT_THAT(GetNames(*pDatabase, CPreBalDatabase::eModePlane2, CTypeBase::ePlane1, 3, 255),
                ElementsAre("plane 2"));
    EXPECT_THAT(GetNames(*pDatabase, CPreBalDatabase::eModeTwoPlane, CTypeBase::ePlane1, 3, 7),
                ElementsAre("two"));
    EXPECT_THAT(GetNames(*pDatabase, CPreBalDatabase::eModeTwoPlane, CTypeBase::ePlane1, 7, 3), IsEmpty());
}

TEST_P(CConfigurationTest, ASinglePlaneOneThatNamesNoPlaneFitsBothModes) {
    const auto pDatabase = Open();
    CSinglePlaneBalancingTableEntry& rSingle = pDatabase->ReadConfiguration("Wheel").CreateSinglePlane();
    rSingle.SetProximitySwitchInput(CTypeBase::ePlane1);
    rSingle.SetSensorAdaption(3);
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    EXPECT_THAT(GetNames(*pDatabase, CPreBalDatabase::eModePlane1), ElementsAre("Wheel"));
    EXPECT_THAT(GetNames(*pDatabase, CPreBalDatabase::eModePlane2), ElementsAre("Wheel"));
}

TEST_P(CConfigurationTest, NamesComeInAlphabeticalOrderWithDefaultFirst) {
    const auto pDatabase = Open();
    for (const char* pName : {"wheel 2", "Zinc", "apple", "Default", "Wheel 1", "default", "Apple"}) {
        MakeCalibrated(*pDatabase, pName);
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    }
    EXPECT_THAT(GetNames(*pDatabase),
                ElementsAre("Default", "Apple", "apple", "default", "Wheel 1", "wheel 2", "Zinc"));
}

TEST_P(CConfigurationTest, NamesMayHoldAnyCharacters) {
    const auto pDatabase = Open("0#3#255-0-4711-12-2");
    for (const std::string Name : {"it's", "\"quoted\"",
                                   "Gr\xC3\xB6\xC3\x9F"
                                   "e",
                                   "50 % _", ";--", "a\nb"}) {
        MakeCalibrated(*pDatabase, Name, 0.75);
        ASSERT_NE(pDatabase->WriteConfiguration(), 0) << Name;
        EXPECT_EQ(GetStoredInvA(Name, "0#3#255-0-4711-12-2"), 0.75) << Name;
    }
}

TEST_P(CConfigurationTest, AnEmptyNameIsRefused) {
    CLogCapture Log;
    const auto pDatabase = Open();
    MakeCalibrated(*pDatabase, "Wheel");
    ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    pDatabase->ReadConfiguration("Wheel").SetProcessName("");
    EXPECT_EQ(pDatabase->WriteConfiguration(), 0);
    EXPECT_THAT(Log.GetTexts("Error"), ElementsAre(HasSubstr("needs a name")));
    EXPECT_EQ(GetStoredInvA("Wheel"), 0.5);
}

TEST_P(CConfigurationTest, AChangedNameMakesAFurtherConfiguration) {
    const auto pDatabase = Open();
    MakeCalibrated(*pDatabase, "Wheel");
    ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    CPreBalBaseTableEntry& rEntry = pDatabase->ReadConfiguration("Wheel");
    rEntry.SetProcessName("Wheel 500 mm");
    rEntry.SetTargetUnbalance(9);
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    EXPECT_THAT(GetNames(*pDatabase), ElementsAre("Wheel", "Wheel 500 mm"));
    EXPECT_EQ(GetStoredInvA("Wheel"), 0.5);
    EXPECT_EQ(GetStoredInvA("Wheel 500 mm"), 0.5);
    // From now on the new one is the one that is written.
    rEntry.SetTargetUnbalance(11);
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    EXPECT_THAT(GetNames(*pDatabase), ElementsAre("Wheel", "Wheel 500 mm"));
    EXPECT_EQ(pDatabase->ReadConfiguration("Wheel 500 mm").GetTargetUnbalance(), 11U);
    EXPECT_EQ(pDatabase->ReadConfiguration("Wheel").GetTargetUnbalance(), 5U)
        << "the old one stays as it was";
}

TEST_P(CConfigurationTest, ANameThatAnotherOneHasIsRefused) {
    CLogCapture Log;
    const auto pDatabase = Open();
    MakeCalibrated(*pDatabase, "A", 1.0);
    ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    CPreBalBaseTableEntry& rEntry = MakeCalibrated(*pDatabase, "B", 2.0);
    ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    rEntry.SetProcessName("A");
    EXPECT_EQ(pDatabase->WriteConfiguration(), 0);
    EXPECT_EQ(pDatabase->GetOutcome().m_Cause, StoreFailure::eNameTaken);
    EXPECT_THAT(Log.GetTexts("Error"), ElementsAre(HasSubstr("\"A\" exists already")));
    EXPECT_EQ(GetStoredInvA("A"), 1.0);
    EXPECT_EQ(GetStoredInvA("B"), 2.0);
    // The entry in memory is as it was and can go elsewhere.
    rEntry.SetProcessName("C");
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    EXPECT_THAT(GetNames(*pDatabase), ElementsAre("A", "B", "C"));
    EXPECT_EQ(pDatabase->ReadConfiguration("A").GetSinglePlane()->GetInvA()(0, 0), 1.0);
}

TEST_P(CConfigurationTest, ANewOneMayNotTakeTheNameOfAnotherEither) {
    const auto pDatabase = Open();
    MakeCalibrated(*pDatabase, "A", 1.0);
    ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    MakeCalibrated(*pDatabase, "B", 2.0).SetProcessName("A");
    EXPECT_EQ(pDatabase->WriteConfiguration(), 0);
    EXPECT_EQ(GetStoredInvA("A"), 1.0);
}

TEST_P(CConfigurationTest, AMachineSeesItsOwnOnly) {
    const auto pFirst = Open("M-1");
    const auto pSecond = Open("M-2");
    MakeCalibrated(*pFirst, "Wheel", 1.0);
    ASSERT_NE(pFirst->WriteConfiguration(), 0);
    EXPECT_THAT(GetNames(*pSecond), IsEmpty());
    EXPECT_EQ(pSecond->ReadConfiguration("Wheel").IsCalibrated(), 0);
    MakeCalibrated(*pSecond, "Wheel", 2.0);
    ASSERT_NE(pSecond->WriteConfiguration(), 0);
    EXPECT_EQ(GetStoredInvA("Wheel", "M-1"), 1.0);
    EXPECT_EQ(GetStoredInvA("Wheel", "M-2"), 2.0);
}

TEST_P(CConfigurationTest, AllThatBelongsToAMachineGoesWithIt) {
    const auto pDatabase = Open();
    MakeCalibrated(*pDatabase, "Wheel");
    pDatabase->ReadConfiguration("Wheel").CreateTwoPlane().CreatePlane1ScrewCompensationTableEntry();
    MakeCalibrated(*pDatabase, "Wheel").CreateTwoPlane().CreatePlane1ScrewCompensationTableEntry();
    ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    CDirectSQL Sql(m_Connection);
    Sql.Execute("DELETE FROM machine");
    for (const char* pTable : {"configuration", "single_plane", "two_plane", "weight_compensation",
                               "screw_compensation", "screw_table", "screw"}) {
        EXPECT_EQ(Sql.Query(std::string("SELECT count(*) FROM ") + pTable)[0].GetInteger(0), 0) << pTable;
    }
}

TEST_P(CConfigurationTest, TwoDatabasesOfOneMachineSeeEachOthersWrites) {
    const auto pFirst = Open();
    const auto pSecond = Open();
    for (int i = 1; i <= 20; ++i) {
        MakeCalibrated(i % 2 == 0 ? *pFirst : *pSecond, "Wheel", i);
        ASSERT_NE((i % 2 == 0 ? *pFirst : *pSecond).WriteConfiguration(), 0);
        const CPreBalBaseTableEntry& rEntry = (i % 2 == 0 ? *pSecond : *pFirst).ReadConfiguration("Wheel");
        ASSERT_NE(rEntry.GetSinglePlane(), nullptr);
        EXPECT_EQ(rEntry.GetSinglePlane()->GetInvA()(0, 0), i);
    }
}

TEST_P(CConfigurationTest, OpenDatabasesAreListedInOrderOfOpening) {
    EXPECT_THAT(CPreBalDatabase::GetOpenMachineNames(), IsEmpty());
    auto pFirst = Open("M-2");
    auto pSecond = Open("M-1");
    auto pThird = Open("M-2");
    EXPECT_THAT(CPreBalDatabase::GetOpenMachineNames(), ElementsAre("M-2", "M-1", "M-2"));
    pThird.reset();
    EXPECT_THAT(CPreBalDatabase::GetOpenMachineNames(), ElementsAre("M-2", "M-1"));
    pFirst.reset();
    EXPECT_THAT(CPreBalDatabase::GetOpenMachineNames(), ElementsAre("M-1"));
    pSecond.reset();
    EXPECT_THAT(CPreBalDatabase::GetOpenMachineNames(), IsEmpty());
}

using CServerTest = CStoreTest;
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(CServerTest);
INSTANTIATE_TEST_SUITE_P(Servers, CServerTest, testing::ValuesIn(GetServersForTests()), GetStoreName);

TEST_P(CServerTest, ALostConnectionIsMadeAnew) {
    const auto pDatabase = Open();
    const auto BreakConnections = [this] {
        CDirectSQL Sql(m_Connection);
        Sql.Query(
            "SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE pid <> pg_backend_pid() AND "
            "backend_type = 'client backend'");
    };
    MakeCalibrated(*pDatabase, "Wheel");
    BreakConnections();
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    BreakConnections();
    EXPECT_EQ(pDatabase->ReadConfiguration("Wheel").IsCalibrated(), 1);
    BreakConnections();
    EXPECT_THAT(GetNames(*pDatabase), ElementsAre("Wheel"));
    BreakConnections();
    EXPECT_EQ(pDatabase->GetScrewTableNames().GetSize(), 1U);
    BreakConnections();
    EXPECT_FALSE(pDatabase->ReadScrewTable("Default").GetScrewArray().IsEmpty());
    BreakConnections();
    EXPECT_EQ(pDatabase->TestAndSetDefaults(), 0);
}

namespace {

/// Makes every insertion into a table fail: in the middle of a write, after its first statements.
class CWriteFailureTest : public CStoreFileTest, public testing::WithParamInterface<const char*> {};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Tables, CWriteFailureTest,
                         testing::Values("configuration", "single_plane", "two_plane", "weight_compensation",
                                         "screw_compensation"),
                         CaseNames::BY_TEXT);

TEST_P(CWriteFailureTest, AFailureInTheMiddleLeavesTheOldCalibrationIntact) {
    const auto pDatabase = Open();
    const auto MakeFull = [&pDatabase](double InvA) -> CPreBalBaseTableEntry& {
        CPreBalBaseTableEntry& rEntry = MakeCalibrated(*pDatabase, "Wheel", InvA);
        rEntry.CreateTwoPlane().SetPlane1SensorAdaption(7);
        rEntry.CreateTwoPlane().CreatePlane2ScrewCompensationTableEntry().SetNumberOfHoles(7);
        return rEntry;
    };
    MakeFull(1.0);
    ASSERT_NE(pDatabase->WriteConfiguration(), 0);

    CLogCapture Log;
    CDirectSQL Sql(m_Connection);
    Sql.Execute(std::string("CREATE TRIGGER sabotage BEFORE INSERT ON ") + GetParam() +
                " BEGIN SELECT RAISE(ABORT, 'disk trouble'); END");
    MakeFull(2.0).SetProcessName("Renamed");
    EXPECT_EQ(pDatabase->WriteConfiguration(), 0);
    EXPECT_THAT(Log.GetTexts("Error"), ElementsAre(HasSubstr("disk trouble")));
    {
        CPreBalDatabase Other("M-1");
        EXPECT_THAT(GetNames(Other), ElementsAre("Wheel"));
        const CPreBalBaseTableEntry& rStored = Other.ReadConfiguration("Wheel");
        EXPECT_EQ(rStored.IsCalibrated(), 1);
        ASSERT_NE(rStored.GetSinglePlane(), nullptr);
        EXPECT_EQ(rStored.GetSinglePlane()->GetInvA()(0, 0), 1.0);
        EXPECT_NE(rStored.GetSinglePlane()->GetWeightCompensationTableEntry(), nullptr);
        ASSERT_NE(rStored.GetTwoPlane(), nullptr);
        EXPECT_EQ(rStored.GetTwoPlane()->GetPlane1SensorAdaption(), 7);
        ASSERT_NE(rStored.GetTwoPlane()->GetPlane2ScrewCompensationTableEntry(), nullptr);
        EXPECT_EQ(rStored.GetTwoPlane()->GetPlane2ScrewCompensationTableEntry()->GetNumberOfHoles(), 7U);
    }
    // The next try writes what is still in memory.
    Sql.Execute("DROP TRIGGER sabotage");
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    EXPECT_EQ(GetStoredInvA("Renamed"), 2.0);
    EXPECT_THAT(GetNames(*pDatabase), ElementsAre("Renamed", "Wheel"));
}
