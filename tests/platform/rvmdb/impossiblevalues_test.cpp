// Values in the store that can't be: left out by name, and kept as they are until something better is
// written.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "tests/platform/rvmdb/calibrated.h"
#include "tests/platform/rvmdb/databasefixture.h"
#include "tests/support/logcapture.h"

using namespace PreBalDB;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class CImpossibleValuesTest : public CStoreTest {
protected:
    void SetUp() override {
        const auto pDatabase = Open();
        MakeCalibrated(*pDatabase, "Wheel").SetTargetUnbalance(9);
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    }
    void Spoil(const std::string& rAssignment, const std::string& rTable) {
        CDirectSQL(m_Connection).Execute("UPDATE " + rTable + " SET " + rAssignment);
    }
    std::string GetText(const std::string& rColumn, const std::string& rTable) {
        CDirectSQL Sql(m_Connection);
        return Sql.Query("SELECT " + rColumn + " FROM " + rTable)[0].GetText(0);
    }
};

struct CCase {
    const char* m_pTable;
    const char* m_pAssignment;
    const char* m_pProblem;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Stores, CImpossibleValuesTest, testing::ValuesIn(GetStoresForTests()), GetStoreName);

TEST_P(CImpossibleValuesTest, EachIsToldByItsNameAndTheEntryCountsAsNotCalibrated) {
    for (const CCase& rCase : {
             CCase{"configuration", "number_of_samples = 4294967295",
                   "configuration.number_of_samples: 4294967295 isn't within 1 to 12000"},
             CCase{"configuration", "number_of_samples = 0", "0 isn't within"},
             CCase{"configuration", "calibrated_rpm = -1", "configuration.calibrated_rpm: -1"},
             CCase{"configuration", "target_unbalance = 65536", "configuration.target_unbalance: 65536"},
             CCase{"configuration", "rpm_tolerance = 70000", "configuration.rpm_tolerance: 70000"},
             CCase{"configuration", "is_calibrated = 7", "configuration.is_calibrated: 7"},
             CCase{"configuration", "calibrated_unix_time = -5", "configuration.calibrated_unix_time: -5"},
             CCase{"single_plane", "inv_a = '2x2: nan 0; 0 1'", "single_plane.inv_a: "},
             CCase{"single_plane", "inv_a = '2x2: inf 0; 0 1'", "no finite number"},
             CCase{"single_plane", "inv_a = '2x2: 1 2; 3 four'", "\"2x2: 1 2; 3 four\" is no matrix"},
             CCase{"single_plane", "inv_a = '2x1: 1; 2'", "isn't 2 by 2"},
             CCase{"single_plane", "ua = ''", "single_plane.ua: \"\" is no matrix"},
             CCase{"single_plane", "rotation_direction = 2", "single_plane.rotation_direction: 2"},
             CCase{"single_plane", "proximity_switch_input = 7", "single_plane.proximity_switch_input: 7"},
             CCase{"single_plane", "sensor_adaption = 300", "single_plane.sensor_adaption: 300"},
             CCase{"weight_compensation", "scaling_direction = 9",
                   "weight_compensation.single.scaling_direction: 9"},
             CCase{"weight_compensation", "plane = 2", "weight_compensation.single.plane: 2"},
         }) {
        SCOPED_TRACE(rCase.m_pAssignment);
        const auto pFresh = Open();
        CDirectSQL(m_Connection).Execute("DELETE FROM configuration");
        MakeCalibrated(*pFresh, "Wheel").SetTargetUnbalance(9);
        ASSERT_NE(pFresh->WriteConfiguration(), 0);
        Spoil(rCase.m_pAssignment, rCase.m_pTable);

        CLogCapture Log;
        const auto pDatabase = Open();
        EXPECT_EQ(pDatabase->ReadConfiguration("Wheel").IsCalibrated(), 0);
        EXPECT_THAT(pDatabase->GetOutcome().m_Problems, ElementsAre(HasSubstr(rCase.m_pProblem)));
        EXPECT_THAT(Log.GetTexts("Error"), ElementsAre(HasSubstr(rCase.m_pProblem)));
    }
}

// Of each field that only two planes and screws have, what it can just be and what it can't.
TEST_P(CImpossibleValuesTest, SoAreThoseOfTwoPlanesAndScrews) {
    const auto Reset = [this] {
        CDirectSQL(m_Connection).Execute("DELETE FROM configuration");
        const auto pFresh = Open();
        CTwoPlaneBalancingTableEntry& rTwo = MakeCalibrated(*pFresh, "Wheel").CreateTwoPlane();
        rTwo.CreatePlane1ScrewCompensationTableEntry();
        ASSERT_NE(pFresh->WriteConfiguration(), 0);
    };
    for (const CCase& rCase : {
             CCase{"two_plane", "inv_a = '2x2: 1 0; 0 1'", "two_plane.inv_a: \"2x2: 1 0; 0 1\" isn't 4 by 4"},
             CCase{"two_plane", "ua_plane1 = '2x1: inf; 0'", "two_plane.ua_plane1: "},
             CCase{"two_plane", "ua_plane2 = '1x2: 0 1'", "two_plane.ua_plane2: \"1x2: 0 1\" isn't 2 by 1"},
             CCase{"two_plane", "rotation_direction = -1", "two_plane.rotation_direction: -1"},
             CCase{"two_plane", "proximity_switch_input = 2", "two_plane.proximity_switch_input: 2"},
             CCase{"two_plane", "plane1_sensor_adaption = 256", "two_plane.plane1_sensor_adaption: 256"},
             CCase{"two_plane", "plane2_sensor_adaption = -1", "two_plane.plane2_sensor_adaption: -1"},
             CCase{"screw_compensation", "plane = 3", "screw_compensation.plane1.plane: 3"},
             CCase{"screw_compensation", "scaling_direction = 2",
                   "screw_compensation.plane1.scaling_direction: 2"},
             CCase{"screw_compensation", "number_of_holes = 361",
                   "screw_compensation.plane1.number_of_holes: 361 isn't within 0 to 360"},
             CCase{"screw_compensation", "number_of_screws = 256",
                   "screw_compensation.plane1.number_of_screws: 256"},
             CCase{"screw_compensation", "reference_weight = 0.0",
                   "screw_compensation.plane1.reference_weight: 0.000000 isn't above 0"},
             CCase{"screw_compensation", "reference_weight = -2.5",
                   "screw_compensation.plane1.reference_weight: -2.5"},
             CCase{"screw_compensation", "radius = 0.0", "screw_compensation.plane1.radius: 0.0"},
         }) {
        SCOPED_TRACE(rCase.m_pAssignment);
        Reset();
        Spoil(rCase.m_pAssignment, rCase.m_pTable);
        const auto pDatabase = Open();
        EXPECT_EQ(pDatabase->ReadConfiguration("Wheel").IsCalibrated(), 0);
        EXPECT_THAT(pDatabase->GetOutcome().m_Problems, ElementsAre(HasSubstr(rCase.m_pProblem)));
    }
    for (const CCase& rCase : {
             CCase{"two_plane", "plane1_sensor_adaption = 255, plane2_sensor_adaption = 0", ""},
             CCase{"two_plane", "proximity_switch_input = 255", ""},
             CCase{"screw_compensation", "plane = 255", ""},
             CCase{"screw_compensation", "number_of_holes = 360", ""},
             CCase{"screw_compensation", "reference_weight = 0.001, radius = 0.5", ""},
         }) {
        SCOPED_TRACE(rCase.m_pAssignment);
        Reset();
        Spoil(rCase.m_pAssignment, rCase.m_pTable);
        const auto pDatabase = Open();
        EXPECT_EQ(pDatabase->ReadConfiguration("Wheel").IsCalibrated(), 1);
        EXPECT_THAT(pDatabase->GetOutcome().m_Problems, IsEmpty());
    }
}

TEST_P(CImpossibleValuesTest, TheOtherFieldsAreRead) {
    Spoil("inv_a = '2x2: nan 0; 0 1', rotation_direction = 1", "single_plane");
    const auto pDatabase = Open();
    const CPreBalBaseTableEntry& rEntry = pDatabase->ReadConfiguration("Wheel");
    EXPECT_EQ(rEntry.GetTargetUnbalance(), 9U);
    EXPECT_EQ(rEntry.GetSinglePlane()->GetRotationDirection(), CTypeBase::eCounterClockwise);
    EXPECT_EQ(rEntry.GetSinglePlane()->GetInvA(), MakeMatrix(2, 2, {0, 0, 0, 0}));
}

// A value that can't be read must not be answered by defaults that then take its place.
TEST_P(CImpossibleValuesTest, TheStoredValueStaysUntilAnotherOneIsSet) {
    Spoil("number_of_samples = 4294967295", "configuration");
    const auto pDatabase = Open();
    CPreBalBaseTableEntry& rEntry = pDatabase->ReadConfiguration("Wheel");
    EXPECT_EQ(rEntry.GetNumberOfSamples(), 40U);
    rEntry.SetTargetUnbalance(11);
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    EXPECT_EQ(GetText("number_of_samples", "configuration"), "4294967295");
    EXPECT_EQ(GetText("is_calibrated", "configuration"), "1");
    rEntry.SetNumberOfSamples(60);
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    EXPECT_EQ(Open()->ReadConfiguration("Wheel").GetNumberOfSamples(), 60U);
}

TEST_P(CImpossibleValuesTest, ANewCalibrationTakesThePlaceOfADamagedOne) {
    Spoil("inv_a = '2x2: 1 2; 3 four', ua = '2x1: nan; nan'", "single_plane");
    const auto pDatabase = Open();
    MakeCalibrated(*pDatabase, "Wheel", 0.75);
    EXPECT_NE(pDatabase->WriteConfiguration(), 0);
    const auto pReader = Open();
    const CPreBalBaseTableEntry& rEntry = pReader->ReadConfiguration("Wheel");
    EXPECT_THAT(pReader->GetOutcome().m_Problems, IsEmpty());
    EXPECT_EQ(rEntry.IsCalibrated(), 1);
    EXPECT_EQ(rEntry.GetSinglePlane()->GetInvA()(0, 0), 0.75);
}

TEST_P(CImpossibleValuesTest, NoneIsWritten) {
    CLogCapture Log;
    const auto pDatabase = Open();
    MakeCalibrated(*pDatabase, "Wheel", std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(pDatabase->WriteConfiguration(), 0);
    EXPECT_THAT(Log.GetTexts("Error"), ElementsAre(HasSubstr("single_plane.inv_a")));
    EXPECT_EQ(pDatabase->GetOutcome().m_Cause, StoreFailure::eRefused);
    EXPECT_EQ(Open()->ReadConfiguration("Wheel").GetSinglePlane()->GetInvA()(0, 0), 0.5);
}

// SQLite lets any column hold any type.
TEST_F(CStoreFileTest, ATextInPlaceOfANumberIsLeftOut) {
    {
        const auto pDatabase = Open();
        MakeCalibrated(*pDatabase, "Wheel");
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    }
    CDirectSQL(m_Connection).Execute("UPDATE configuration SET rpm_tolerance = 'wide'");
    const auto pDatabase = Open();
    EXPECT_EQ(pDatabase->ReadConfiguration("Wheel").GetRPMTolerance(), 50U);
    EXPECT_THAT(pDatabase->GetOutcome().m_Problems,
                ElementsAre("configuration.rpm_tolerance: \"wide\" is no number"));
}

TEST_F(CStoreFileTest, AFractionInPlaceOfAWholeNumberIsLeftOutAndAnInfiniteWeightToo) {
    {
        const auto pDatabase = Open();
        MakeCalibrated(*pDatabase, "Wheel").CreateSinglePlane().CreateScrewCompensationTableEntry();
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    }
    CDirectSQL Sql(m_Connection);
    Sql.Execute("UPDATE configuration SET rpm_tolerance = 12.5");
    Sql.Execute("UPDATE screw_compensation SET reference_weight = 9e999");
    const auto pDatabase = Open();
    EXPECT_EQ(pDatabase->ReadConfiguration("Wheel").GetRPMTolerance(), 50U) << "that of a new configuration";
    EXPECT_THAT(pDatabase->GetOutcome().m_Problems,
                ElementsAre("configuration.rpm_tolerance: 12.500000 is no whole number",
                            "screw_compensation.single.reference_weight: inf isn't above 0"));
}
