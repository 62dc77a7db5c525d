// The values of the properties on their way between entry and store.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/rvmdb/prebalbasetableentry.h"
#include "tests/platform/rvmdb/databasefixture.h"
#include "tests/platform/rvmdb/makematrix.h"
#include "tests/platform/rvmdb/otherthandefault.h"

using namespace PreBalDB;
using testing::IsEmpty;

namespace {

/// A part is balanced with one method: all fields are seen in two entries.
enum class Means { eWeights, eScrews };

bool HasRecord(const CRecordLayout& rLayout, Means Used) {
    return rLayout.m_Part.empty() || (rLayout.m_Table == "screw_compensation") == (Used == Means::eScrews);
}

/// The defaults of all fields that an entry with these means can have.
CFieldValues GetDefaults(Means Used) {
    CFieldValues Values;
    for (const CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
        for (const std::string& rColumn : rLayout.m_Columns) {
            if (HasRecord(rLayout, Used)) {
                const std::string Field = rLayout.GetFieldName(rColumn);
                Values[Field] = ConfigurationFields::GetDefaults().at(Field);
            }
        }
    }
    return Values;
}

CFieldValues MakeOthersThanDefault(Means Used) {
    CFieldValues Values = GetDefaults(Used);
    for (auto& [rField, rValue] : Values) {
        rValue = MakeOtherThanDefault(*ConfigurationFields::FindProperty(rField));
    }
    return Values;
}

/// Names of the fields that only one of them has, or with another value.
std::vector<std::string> GetDifferences(const CFieldValues& rLeft, const CFieldValues& rRight) {
    std::vector<std::string> Names;
    const auto Add = [&Names](const CFieldValues& rOf, const CFieldValues& rIn) {
        for (const auto& [rField, rValue] : rOf) {
            const auto Found = rIn.find(rField);
            if (Found == rIn.end() || Found->second != rValue) {
                Names.push_back(rField);
            }
        }
    };
    Add(rLeft, rRight);
    Add(rRight, rLeft);
    return Names;
}

void CreateAll(CPreBalBaseTableEntry& rEntry, Means Used) {
    CSinglePlaneBalancingTableEntry& rSingle = rEntry.CreateSinglePlane();
    CTwoPlaneBalancingTableEntry& rTwo = rEntry.CreateTwoPlane();
    if (Used == Means::eWeights) {
        rSingle.CreateWeightCompensationTableEntry();
        rTwo.CreatePlane1WeightCompensationTableEntry();
        rTwo.CreatePlane2WeightCompensationTableEntry();
    } else {
        rSingle.CreateScrewCompensationTableEntry();
        rTwo.CreatePlane1ScrewCompensationTableEntry();
        rTwo.CreatePlane2ScrewCompensationTableEntry();
    }
}

}  // namespace

TEST(PropertyValues, OfANewEntryAreTheDefaults) {
    for (const Means Used : {Means::eWeights, Means::eScrews}) {
        CPreBalBaseTableEntry Entry("M-1", "Wheel");
        CreateAll(Entry, Used);
        EXPECT_THAT(GetDifferences(ConfigurationFields::Read(Entry), GetDefaults(Used)), IsEmpty());
    }
}

TEST(PropertyValues, TheDefaultsOfANewConfiguration) {
    const std::string Zero2x2 = "2x2: 0 0; 0 0";
    const std::string Zero2x1 = "2x1: 0; 0";
    CFieldValues Expected = {
        {"configuration.is_calibrated", std::int64_t{0}},
        {"configuration.calibrated_unix_time", std::int64_t{0}},
        {"configuration.calibrated_rpm", std::int64_t{0}},
        {"configuration.rpm_tolerance", std::int64_t{50}},
        {"configuration.target_unbalance", std::int64_t{5}},
        {"configuration.number_of_samples", std::int64_t{40}},
        {"single_plane.rotation_direction", std::int64_t{0}},
        {"single_plane.proximity_switch_input", std::int64_t{255}},
        {"single_plane.sensor_adaption", std::int64_t{255}},
        {"single_plane.inv_a", Zero2x2},
        {"single_plane.ua", Zero2x1},
        {"two_plane.rotation_direction", std::int64_t{0}},
        {"two_plane.proximity_switch_input", std::int64_t{255}},
        {"two_plane.plane1_sensor_adaption", std::int64_t{255}},
        {"two_plane.plane2_sensor_adaption", std::int64_t{255}},
        {"two_plane.inv_a", "4x4: 0 0 0 0; 0 0 0 0; 0 0 0 0; 0 0 0 0"},
        {"two_plane.ua_plane1", Zero2x1},
        {"two_plane.ua_plane2", Zero2x1},
    };
    for (const std::string Part : {"single", "plane1", "plane2"}) {
        Expected["weight_compensation." + Part + ".plane"] = std::int64_t{255};
        Expected["weight_compensation." + Part + ".scaling_direction"] = std::int64_t{0};
        Expected["screw_compensation." + Part + ".plane"] = std::int64_t{255};
        Expected["screw_compensation." + Part + ".scaling_direction"] = std::int64_t{0};
        Expected["screw_compensation." + Part + ".screw_table"] = "Default";
        Expected["screw_compensation." + Part + ".number_of_holes"] = std::int64_t{12};
        Expected["screw_compensation." + Part + ".number_of_screws"] = std::int64_t{2};
        Expected["screw_compensation." + Part + ".reference_weight"] = 1.0;
        Expected["screw_compensation." + Part + ".radius"] = 100.0;
    }
    EXPECT_THAT(GetDifferences(ConfigurationFields::GetDefaults(), Expected), IsEmpty());
}

// Which accessor a field belongs to: a value that only the entry has got shows under the field's name.
TEST(PropertyValues, EachFieldIsThatOfItsAccessor) {
    CPreBalBaseTableEntry Entry("M-1", "Wheel");
    CreateAll(Entry, Means::eScrews);
    CSinglePlaneBalancingTableEntry& rSingle = *Entry.GetSinglePlane();
    CTwoPlaneBalancingTableEntry& rTwo = *Entry.GetTwoPlane();
    CScrewCompensationTableEntry& rScrew = rTwo.CreatePlane2ScrewCompensationTableEntry();
    CWeightCompensationTableEntry& rWeight = rTwo.CreatePlane1WeightCompensationTableEntry();
    struct CCase {
        const char* m_pField;
        CDirectSQL::CValue m_Value;
        std::function<void()> m_Set;
    };
    const CCase Cases[] = {
        {"configuration.is_calibrated", std::int64_t{1}, [&] { Entry.SetIsCalibrated(1); }},
        {"configuration.calibrated_unix_time", std::int64_t{1700000000},
         [&] { Entry.SetCalibrationDateTime(std::chrono::sys_seconds(std::chrono::seconds(1700000000))); }},
        {"configuration.calibrated_rpm", std::int64_t{3000}, [&] { Entry.SetCalibratedRPM(3000); }},
        {"configuration.rpm_tolerance", std::int64_t{17}, [&] { Entry.SetRPMTolerance(17); }},
        {"configuration.target_unbalance", std::int64_t{23}, [&] { Entry.SetTargetUnbalance(23); }},
        {"configuration.number_of_samples", std::int64_t{300}, [&] { Entry.SetNumberOfSamples(300); }},
        {"single_plane.rotation_direction", std::int64_t{1},
         [&] { rSingle.SetRotationDirection(CTypeBase::eCounterClockwise); }},
        {"single_plane.proximity_switch_input", std::int64_t{1},
         [&] { rSingle.SetProximitySwitchInput(CTypeBase::ePlane2); }},
        {"single_plane.sensor_adaption", std::int64_t{9}, [&] { rSingle.SetSensorAdaption(9); }},
        {"single_plane.inv_a", "2x2: 1 2; 3 4",
         [&] {
             rSingle.SetInvA(MakeMatrix(2, 2, {1, 2, 3, 4}));
         }},
        {"single_plane.ua", "2x1: 5; 6",
         [&] {
             rSingle.SetUA(MakeMatrix(2, 1, {5, 6}));
         }},
        {"two_plane.rotation_direction", std::int64_t{1},
         [&] { rTwo.SetRotationDirection(CTypeBase::eCounterClockwise); }},
        {"two_plane.proximity_switch_input", std::int64_t{0},
         [&] { rTwo.SetProximitySwitchInput(CTypeBase::ePlane1); }},
        {"two_plane.plane1_sensor_adaption", std::int64_t{11}, [&] { rTwo.SetPlane1SensorAdaption(11); }},
        {"two_plane.plane2_sensor_adaption", std::int64_t{12}, [&] { rTwo.SetPlane2SensorAdaption(12); }},
        {"two_plane.inv_a", "4x4: 1 0 0 0; 0 2 0 0; 0 0 3 0; 0 0 0 4",
         [&] {
             rTwo.SetInvA(MakeMatrix(4, 4, {1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4}));
         }},
        {"two_plane.ua_plane1", "2x1: 1; 2",
         [&] {
             rTwo.SetUAPlane1(MakeMatrix(2, 1, {1, 2}));
         }},
        {"two_plane.ua_plane2", "2x1: 3; 4",
         [&] {
             rTwo.SetUAPlane2(MakeMatrix(2, 1, {3, 4}));
         }},
        {"weight_compensation.plane1.plane", std::int64_t{0}, [&] { rWeight.SetPlane(CTypeBase::ePlane1); }},
        {"weight_compensation.plane1.scaling_direction", std::int64_t{1},
         [&] { rWeight.SetScalingDirection(CTypeBase::eCounterClockwise); }},
        {"screw_compensation.plane2.plane", std::int64_t{1}, [&] { rScrew.SetPlane(CTypeBase::ePlane2); }},
        {"screw_compensation.plane2.scaling_direction", std::int64_t{1},
         [&] { rScrew.SetScalingDirection(CTypeBase::eCounterClockwise); }},
        {"screw_compensation.plane2.screw_table", "M6", [&] { rScrew.SetScrewTableName("M6"); }},
        {"screw_compensation.plane2.number_of_holes", std::int64_t{18}, [&] { rScrew.SetNumberOfHoles(18); }},
        {"screw_compensation.plane2.number_of_screws", std::int64_t{3}, [&] { rScrew.SetNumberOfScrews(3); }},
        {"screw_compensation.plane2.reference_weight", 2.5, [&] { rScrew.SetReferenceWeight(2.5); }},
    };
    for (const CCase& rCase : Cases) {
        CFieldValues Expected = ConfigurationFields::Read(Entry);
        rCase.m_Set();
        Expected[rCase.m_pField] = rCase.m_Value;
        EXPECT_THAT(GetDifferences(ConfigurationFields::Read(Entry), Expected), IsEmpty()) << rCase.m_pField;
    }
}

TEST(PropertyValues, EachIsEnteredWithoutAnyOther) {
    for (const Means Used : {Means::eWeights, Means::eScrews}) {
        for (const auto& [rField, rOther] : MakeOthersThanDefault(Used)) {
            CFieldValues Values = GetDefaults(Used);
            EXPECT_NE(Values.at(rField), rOther) << rField;
            Values[rField] = rOther;
            CPreBalBaseTableEntry Entry("M-1", "Wheel");
            EXPECT_THAT(ConfigurationFields::Write(Values, Entry), IsEmpty());
            EXPECT_THAT(GetDifferences(ConfigurationFields::Read(Entry), Values), IsEmpty()) << rField;
        }
    }
}

class CPropertyStoreTest : public CStoreTest {
protected:
    /// A configuration that names no table of the store would get the default one.
    void SetUp() override {
        const auto pDatabase = Open();
        pDatabase->ReadScrewTable("Default, another").SetScrewArray({CScrew("M6", 2.0)});
        ASSERT_NE(pDatabase->WriteScrewTable(), 0);
    }
};
INSTANTIATE_TEST_SUITE_P(Stores, CPropertyStoreTest, testing::ValuesIn(GetStoresForTests()), GetStoreName);

TEST_P(CPropertyStoreTest, EachPropertyComesBackWithAnotherValueThanItsDefault) {
    for (const Means Used : {Means::eWeights, Means::eScrews}) {
        const std::string Name = Used == Means::eWeights ? "Weights" : "Screws";
        const CFieldValues Values = MakeOthersThanDefault(Used);
        {
            const auto pDatabase = Open();
            ASSERT_THAT(ConfigurationFields::Write(Values, pDatabase->ReadConfiguration(Name)), IsEmpty());
            ASSERT_NE(pDatabase->WriteConfiguration(), 0);
        }
        const auto pDatabase = Open();
        EXPECT_THAT(GetDifferences(ConfigurationFields::Read(pDatabase->ReadConfiguration(Name)), Values),
                    IsEmpty());
        EXPECT_THAT(pDatabase->GetOutcome().m_Problems, IsEmpty());
    }
}

// A change of one property writes its column, and no other one.
TEST_P(CPropertyStoreTest, EachPropertyIsWrittenToItsColumnWithoutAnyOther) {
    for (const Means Used : {Means::eWeights, Means::eScrews}) {
        const std::string Name = Used == Means::eWeights ? "Weights" : "Screws";
        const auto pDatabase = Open();
        CreateAll(pDatabase->ReadConfiguration(Name), Used);
        ASSERT_NE(pDatabase->WriteConfiguration(), 0);
        const auto pReader = Open();
        CDirectSQL Sql(m_Connection);
        for (const CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
            if (!HasRecord(rLayout, Used)) {
                continue;
            }
            for (const std::string& rColumn : rLayout.m_Columns) {
                const std::string Field = rLayout.GetFieldName(rColumn);
                SCOPED_TRACE(Field);
                CPreBalBaseTableEntry& rEntry = pDatabase->ReadConfiguration(Name);
                CFieldValues Values = ConfigurationFields::Read(rEntry);
                Values[Field] = MakeOtherThanDefault(*ConfigurationFields::FindProperty(Field));
                ConfigurationFields::Write(Values, rEntry);
                ASSERT_NE(pDatabase->WriteConfiguration(), 0);
                EXPECT_THAT(
                    GetDifferences(ConfigurationFields::Read(pReader->ReadConfiguration(Name)), Values),
                    IsEmpty());
                const auto Rows = Sql.Query(
                    "SELECT " + rColumn + " FROM " + rLayout.m_Table + " WHERE " + rLayout.m_KeyColumn +
                        " = ?" + (rLayout.m_Part.empty() ? "" : " AND part = ?"),
                    rLayout.m_Part.empty() ? std::vector<CDirectSQL::CValue>{Name}
                                           : std::vector<CDirectSQL::CValue>{Name, rLayout.m_Part});
                ASSERT_EQ(Rows.size(), 1U);
                EXPECT_EQ(Rows[0].GetValue(0), Values[Field]);
            }
        }
    }
}

namespace {

/// Name and type of each column of a table.
std::map<std::string, std::string> GetColumns(CDirectSQL& rSql, const std::string& rTable) {
    std::map<std::string, std::string> Columns;
    for (const auto& rRow :
         rSql.IsSqlite()
             ? rSql.Query("SELECT name, lower(type), \"notnull\" FROM pragma_table_info(?)", {rTable})
             : rSql.Query("SELECT column_name, data_type, CASE is_nullable WHEN 'NO' THEN 1 ELSE 0 END FROM "
                          "information_schema.columns WHERE table_name = ?",
                          {rTable})) {
        Columns[rRow.GetText(0)] = rRow.GetText(1) + (rRow.GetInteger(2) != 0 ? " not null" : "");
    }
    return Columns;
}

}  // namespace

TEST_P(CPropertyStoreTest, ANewStoreHasAColumnForEachPropertyAndItsKeys) {
    Open();
    CDirectSQL Sql(m_Connection);
    const std::map<PropertyType, std::string> Types = {
        {PropertyType::eFlag, "smallint"},   {PropertyType::eByte, "smallint"},
        {PropertyType::eChoice, "smallint"}, {PropertyType::eTime, "bigint"},
        {PropertyType::eWhole, "bigint"},    {PropertyType::eReal, "double precision"},
        {PropertyType::eText, "text"},       {PropertyType::eMatrix, "text"}};
    for (const CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
        std::map<std::string, std::string> Expected = {{"machine", "text not null"},
                                                       {rLayout.m_KeyColumn, "text not null"}};
        if (rLayout.m_Table == "configuration") {
            Expected["revision"] = "bigint not null";
        }
        if (!rLayout.m_Part.empty()) {
            Expected["part"] = "text not null";
        }
        for (const CProperty* const pProperty : rLayout.m_Properties) {
            if (pProperty->IsStored()) {
                Expected[pProperty->m_pColumn] = Types.at(pProperty->m_Type) + " not null";
            }
        }
        EXPECT_EQ(GetColumns(Sql, rLayout.m_Table), Expected) << rLayout.m_Table;
    }
}

TEST_P(CPropertyStoreTest, ANewStoreTakesNoRecordOfAPartThatThereIsNot) {
    const auto pDatabase = Open();
    CreateAll(pDatabase->ReadConfiguration("Wheel"), Means::eScrews);
    ASSERT_NE(pDatabase->WriteConfiguration(), 0);
    CDirectSQL Sql(m_Connection);
    EXPECT_THROW(Sql.Execute("UPDATE screw_compensation SET part = 'plane3' WHERE part = 'plane2'"),
                 CSqlError);
}
