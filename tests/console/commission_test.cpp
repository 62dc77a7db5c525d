// Which configurations are set up for a rotor, which count as somebody has set them.
#include "console/commission.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "console/sessionerror.h"
#include "platform/rvmdb/configurationfields.h"
#include "tests/support/tempdirectory.h"

using namespace PreBalDB;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr const char* MACHINE = "0#5#255-0-1-1-1";

class CCommissionTest : public testing::Test {
protected:
    CCommissionTest() {
        SetDatabaseConnection("sqlite:" + m_Directory.At("prebal.db"));
        m_Rotor.m_Planes.resize(2);
    }
    ~CCommissionTest() override { SetDatabaseConnection(""); }

    CCommission::COutcome SetUpFor(CPreBalDatabase::BalancingMode Mode = CPreBalDatabase::eModePlane1) {
        return CCommission(m_Options, m_Rotor, Mode).SetUp(MACHINE, "Default");
    }
    /// Changes the stored configuration.
    void Change(const std::function<void(CPreBalBaseTableEntry&)>& rChange) {
        CPreBalDatabase Database(MACHINE);
        CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration("Default");
        rEntry.CreateSinglePlane();
        rChange(rEntry);
        ASSERT_NE(Database.WriteConfiguration(), 0);
    }
    /// Looks at the stored configuration.
    template <typename Getter>
    auto Get(Getter Value) {
        CPreBalDatabase Database(MACHINE);
        return Value(Database.ReadConfiguration("Default"));
    }
    CTypeBase::Direction GetRotation() {
        return Get(
            [](CPreBalBaseTableEntry& rEntry) { return rEntry.CreateSinglePlane().GetRotationDirection(); });
    }
    auto GetMethod() {
        return Get([](CPreBalBaseTableEntry& rEntry) {
            return rEntry.CreateSinglePlane().GetUsedCompensationMethod();
        });
    }

    CTempDirectory m_Directory;
    COptions m_Options;
    CRotorFile m_Rotor;
};

void Calibrate(CPreBalBaseTableEntry& rEntry) {
    rEntry.SetIsCalibrated(1);
    rEntry.SetCalibratedRPM(3000);
}

}  // namespace

TEST_F(CCommissionTest, NewConfigurationIsSetUpFromTheRotorFile) {
    m_Rotor.m_Rotation = CRotorFile::eCounterClockwise;
    m_Rotor.m_Planes[0].m_Scale = CRotorFile::eCounterClockwise;
    const CCommission::COutcome Outcome = SetUpFor();
    EXPECT_TRUE(Outcome.m_bWritten);
    EXPECT_THAT(Outcome.m_Disagreement, IsEmpty());
    EXPECT_EQ(GetRotation(), CTypeBase::eCounterClockwise);
    EXPECT_EQ(
        Get([](CPreBalBaseTableEntry& rEntry) {
            return rEntry.CreateSinglePlane().CreateWeightCompensationTableEntry().GetScalingDirection();
        }),
        CTypeBase::eCounterClockwise);
}

TEST_F(CCommissionTest, PlaneTwoSeesTheRotationFromItsOwnEnd) {
    m_Rotor.m_Rotation = CRotorFile::eClockwise;
    SetUpFor(CPreBalDatabase::eModePlane2);
    EXPECT_EQ(GetRotation(), CTypeBase::eCounterClockwise);
}

TEST_F(CCommissionTest, ScrewsGetHolesAndScaleOfTheirPlane) {
    m_Options.m_Methods = {"weights", "screws"};
    m_Options.m_nScrews = 3;
    m_Rotor.m_Planes[1].m_Holes = 18;
    m_Rotor.m_Planes[1].m_Scale = CRotorFile::eCounterClockwise;
    EXPECT_TRUE(SetUpFor(CPreBalDatabase::eModeTwoPlane).m_bWritten);
    CPreBalDatabase Database(MACHINE);
    const CTwoPlaneBalancingTableEntry& rPlanes = Database.ReadConfiguration("Default").CreateTwoPlane();
    EXPECT_EQ(rPlanes.GetPlane1UsedCompensationMethod(), CCompensationTableEntry::eWeights);
    const CScrewCompensationTableEntry* const pScrews = rPlanes.GetPlane2ScrewCompensationTableEntry();
    ASSERT_NE(pScrews, nullptr);
    EXPECT_EQ(pScrews->GetNumberOfHoles(), 18U);
    EXPECT_EQ(pScrews->GetNumberOfScrews(), 3);
    EXPECT_EQ(pScrews->GetScalingDirection(), CTypeBase::eCounterClockwise);
}

TEST_F(CCommissionTest, ARingThatThePagesDontTakeIsRefused) {
    for (const int nHoles : {2, 25, 36}) {
        m_Rotor.m_Planes[0].m_Holes = nHoles;
        m_Options.m_Methods = {"screws"};
        try {
            SetUpFor();
            ADD_FAILURE() << nHoles;
        } catch (const CSessionError& rError) {
            EXPECT_THAT(rError.what(),
                        AllOf(HasSubstr(std::to_string(nHoles) + " holes"), HasSubstr("3 to 24")));
        }
    }
    m_Options.m_Methods = {"weights"};
    EXPECT_NO_THROW(SetUpFor()) << "weights need no holes";
}

TEST_F(CCommissionTest, ConfigurationThatAgreesIsLeftAloneWithoutAWord) {
    EXPECT_TRUE(SetUpFor().m_bWritten || GetRotation() == CTypeBase::eClockwise);
    Change(Calibrate);
    const CCommission::COutcome Outcome = SetUpFor();
    EXPECT_FALSE(Outcome.m_bWritten);
    EXPECT_THAT(Outcome.m_Disagreement, IsEmpty());
    EXPECT_EQ(Get([](const CPreBalBaseTableEntry& rEntry) { return rEntry.IsCalibrated(); }), 1);
}

TEST_F(CCommissionTest, WhatSomebodyHasSetIsKeptAndTold) {
    Change([](CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(7); });
    m_Rotor.m_Rotation = CRotorFile::eCounterClockwise;
    const CCommission::COutcome Outcome = SetUpFor();
    EXPECT_FALSE(Outcome.m_bWritten);
    EXPECT_THAT(Outcome.m_Disagreement,
                AllOf(HasSubstr("\"Default\""),
                      HasSubstr(ConfigurationFields::GetLabel("single_plane.rotation_direction")),
                      Not(HasSubstr("\n"))));
    EXPECT_EQ(GetRotation(), CTypeBase::eClockwise);
}

TEST_F(CCommissionTest, CalibratedConfigurationOfDefaultsIsNotNew) {
    Change(Calibrate);
    m_Rotor.m_Rotation = CRotorFile::eCounterClockwise;
    EXPECT_FALSE(SetUpFor().m_bWritten);
    EXPECT_EQ(GetRotation(), CTypeBase::eClockwise);
}

TEST_F(CCommissionTest, EachValueThatPeopleSetMakesAConfigurationNoLongerNew) {
    const auto IsNewWith = [](const std::function<void(CPreBalBaseTableEntry&)>& rChange) {
        CTempDirectory Directory;
        SetDatabaseConnection("sqlite:" + Directory.At("prebal.db"));
        CPreBalDatabase Database(MACHINE);
        CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration("Default");
        rChange(rEntry);
        return CCommission::IsNew(rEntry);
    };
    using Entry = CPreBalBaseTableEntry;
    EXPECT_TRUE(IsNewWith([](Entry&) {}));
    EXPECT_TRUE(IsNewWith([](Entry& r) { r.CreateSinglePlane().SetSensorAdaption(3); })) << "the module's";
    EXPECT_FALSE(IsNewWith([](Entry& r) { r.SetTargetUnbalance(6); }));
    EXPECT_FALSE(IsNewWith([](Entry& r) { r.SetRPMTolerance(9); }));
    EXPECT_FALSE(IsNewWith([](Entry& r) { r.SetNumberOfSamples(41); }));
    EXPECT_FALSE(IsNewWith([](Entry& r) { r.SetIsCalibrated(1); }));
    EXPECT_FALSE(IsNewWith(
        [](Entry& r) { r.CreateSinglePlane().SetRotationDirection(CTypeBase::eCounterClockwise); }));
    EXPECT_FALSE(IsNewWith([](Entry& r) { r.CreateSinglePlane().CreateScrewCompensationTableEntry(); }));
    EXPECT_FALSE(IsNewWith([](Entry& r) { r.CreateTwoPlane().CreatePlane2ScrewCompensationTableEntry(); }));
    EXPECT_FALSE(IsNewWith([](Entry& r) {
        r.CreateTwoPlane().CreatePlane1WeightCompensationTableEntry().SetScalingDirection(
            CTypeBase::eCounterClockwise);
    }));
}

TEST_F(CCommissionTest, CommissioningSetsUpWhatSomebodyHasSetAndClearsTheCalibration) {
    Change(Calibrate);
    m_Rotor.m_Rotation = CRotorFile::eCounterClockwise;
    m_Options.m_bCommission = true;
    EXPECT_TRUE(SetUpFor().m_bWritten);
    EXPECT_EQ(GetRotation(), CTypeBase::eCounterClockwise);
    EXPECT_EQ(Get([](const CPreBalBaseTableEntry& rEntry) { return rEntry.IsCalibrated(); }), 0);
}

TEST_F(CCommissionTest, CommissioningClearsTheCalibrationEvenIfNothingDiffers) {
    Change(Calibrate);
    m_Options.m_bCommission = true;
    EXPECT_TRUE(SetUpFor().m_bWritten);
    EXPECT_EQ(Get([](const CPreBalBaseTableEntry& rEntry) { return rEntry.IsCalibrated(); }), 0);
}

TEST_F(CCommissionTest, CommissioningKeepsTheMeansUnlessOthersAreAskedFor) {
    m_Options.m_Methods = {"screws"};
    SetUpFor();
    m_Options = {};
    m_Options.m_bCommission = true;
    m_Rotor.m_Planes[0].m_Holes = 20;
    EXPECT_TRUE(SetUpFor().m_bWritten);
    EXPECT_EQ(GetMethod(), CCompensationTableEntry::eScrews);
}

TEST_F(CCommissionTest, OtherMeansThanSomebodyHasSetAreRefused) {
    Change(Calibrate);
    m_Options.m_Methods = {"screws"};
    try {
        SetUpFor();
        FAIL() << "not refused";
    } catch (const CSessionError& rError) {
        EXPECT_THAT(rError.what(), AllOf(HasSubstr("--method"), HasSubstr("--commission")));
    }
    EXPECT_NE(GetMethod(), CCompensationTableEntry::eScrews);
    EXPECT_EQ(Get([](const CPreBalBaseTableEntry& rEntry) { return rEntry.IsCalibrated(); }), 1);
}

TEST_F(CCommissionTest, AnotherNumberOfScrewsThanSomebodyHasSetIsRefused) {
    m_Options.m_Methods = {"screws"};
    SetUpFor();
    m_Options.m_Methods.clear();
    m_Options.m_nScrews = 3;
    try {
        SetUpFor();
        FAIL() << "not refused";
    } catch (const CSessionError& rError) {
        EXPECT_THAT(rError.what(), AllOf(HasSubstr("--screws"), Not(HasSubstr("--method"))));
    }
}

TEST_F(CCommissionTest, MethodThatIsConfiguredAlreadyIsNoDisagreement) {
    m_Options.m_Methods = {"screws"};
    SetUpFor();
    EXPECT_THAT(SetUpFor().m_Disagreement, IsEmpty());
}
