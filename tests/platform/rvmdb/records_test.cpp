// The records by themselves, without a store.
#include <gtest/gtest.h>

#include "platform/rvmdb/prebalbasetableentry.h"
#include "platform/rvmdb/screw.h"

using namespace PreBalDB;

namespace {

void ExpectZero(const math::matrix<double>& rMatrix, std::uint32_t nRows, std::uint32_t nColumns) {
    EXPECT_EQ(rMatrix.RowNo(), nRows);
    EXPECT_EQ(rMatrix.ColNo(), nColumns);
    EXPECT_EQ(rMatrix.Norm(), 0.0);
}

}  // namespace

TEST(PreBalBaseTableEntry, ANewOneIsUncalibratedWithTheDefaultsAndWithoutPlanes) {
    const CPreBalBaseTableEntry Entry("M-1", "Wheel");
    EXPECT_EQ(Entry.GetMachineName(), "M-1");
    EXPECT_EQ(Entry.GetProcessName(), "Wheel");
    EXPECT_EQ(Entry.IsCalibrated(), 0);
    EXPECT_EQ(Entry.GetCalibratedRPM(), 0U);
    EXPECT_EQ(Entry.GetRPMTolerance(), 50U);
    EXPECT_EQ(Entry.GetTargetUnbalance(), 5U);
    EXPECT_EQ(Entry.GetNumberOfSamples(), 40U);
    EXPECT_EQ(Entry.GetSinglePlane(), nullptr);
    EXPECT_EQ(Entry.GetTwoPlane(), nullptr);
}

TEST(PreBalBaseTableEntry, CreateMakesAPlaneOnceAndGivesItAgain) {
    CPreBalBaseTableEntry Entry("M-1", "Wheel");
    CSinglePlaneBalancingTableEntry& rSingle = Entry.CreateSinglePlane();
    rSingle.SetSensorAdaption(3);
    EXPECT_EQ(&Entry.CreateSinglePlane(), &rSingle);
    EXPECT_EQ(Entry.GetSinglePlane(), &rSingle);
    EXPECT_EQ(Entry.GetSinglePlane()->GetSensorAdaption(), 3);
    CTwoPlaneBalancingTableEntry& rTwo = Entry.CreateTwoPlane();
    EXPECT_EQ(&Entry.CreateTwoPlane(), &rTwo);
    EXPECT_EQ(Entry.GetTwoPlane(), &rTwo);
}

TEST(PlaneBalancingTableEntry, NeverCalibratedMatricesAreZero) {
    const CSinglePlaneBalancingTableEntry Single;
    ExpectZero(Single.GetInvA(), 2, 2);
    ExpectZero(Single.GetUA(), 2, 1);
    const CTwoPlaneBalancingTableEntry Two;
    ExpectZero(Two.GetInvA(), 4, 4);
    ExpectZero(Two.GetUAPlane1(), 2, 1);
    ExpectZero(Two.GetUAPlane2(), 2, 1);
}

TEST(PlaneBalancingTableEntry, StartsClockwiseWithNoInputAndNoSensor) {
    const CSinglePlaneBalancingTableEntry Single;
    EXPECT_EQ(Single.GetRotationDirection(), CTypeBase::eClockwise);
    EXPECT_EQ(Single.GetProximitySwitchInput(), CTypeBase::eUnknownPlane);
    EXPECT_EQ(Single.GetSensorAdaption(), 255);
}

TEST(CompensationMethod, IsNotChosenUntilAnEntryExistsAndFollowsFromIt) {
    CSinglePlaneBalancingTableEntry Single;
    EXPECT_EQ(Single.GetUsedCompensationMethod(), 255);
    EXPECT_EQ(Single.GetWeightCompensationTableEntry(), nullptr);
    EXPECT_EQ(Single.GetScrewCompensationTableEntry(), nullptr);
    Single.CreateWeightCompensationTableEntry().SetScalingDirection(CTypeBase::eCounterClockwise);
    EXPECT_EQ(Single.GetUsedCompensationMethod(), CCompensationTableEntry::eWeights);
    Single.CreateWeightCompensationTableEntry();
    EXPECT_EQ(Single.GetWeightCompensationTableEntry()->GetScalingDirection(), CTypeBase::eCounterClockwise)
        << "made once";
}

TEST(CompensationMethod, CreatingOneKindDropsTheOther) {
    CSinglePlaneBalancingTableEntry Single;
    Single.CreateWeightCompensationTableEntry();
    Single.CreateScrewCompensationTableEntry();
    EXPECT_EQ(Single.GetUsedCompensationMethod(), CCompensationTableEntry::eScrews);
    EXPECT_EQ(Single.GetWeightCompensationTableEntry(), nullptr);
    Single.CreateWeightCompensationTableEntry();
    EXPECT_EQ(Single.GetUsedCompensationMethod(), CCompensationTableEntry::eWeights);
    EXPECT_EQ(Single.GetScrewCompensationTableEntry(), nullptr);
}

TEST(CompensationMethod, OfTheTwoPlanesAreIndependent) {
    CTwoPlaneBalancingTableEntry Two;
    Two.CreatePlane1ScrewCompensationTableEntry();
    EXPECT_EQ(Two.GetPlane1UsedCompensationMethod(), CCompensationTableEntry::eScrews);
    EXPECT_EQ(Two.GetPlane2UsedCompensationMethod(), CCompensationTableEntry::eNotChosen);
    Two.CreatePlane2WeightCompensationTableEntry();
    EXPECT_EQ(Two.GetPlane1UsedCompensationMethod(), CCompensationTableEntry::eScrews);
    EXPECT_EQ(Two.GetPlane2UsedCompensationMethod(), CCompensationTableEntry::eWeights);
    EXPECT_NE(Two.GetPlane1ScrewCompensationTableEntry(), nullptr);
    EXPECT_NE(Two.GetPlane2WeightCompensationTableEntry(), nullptr);
}

TEST(ScrewCompensationTableEntry, StartsWithTheDefaults) {
    CSinglePlaneBalancingTableEntry Single;
    const CScrewCompensationTableEntry& rScrew = Single.CreateScrewCompensationTableEntry();
    EXPECT_EQ(rScrew.GetScrewTableName(), "Default");
    EXPECT_EQ(rScrew.GetNumberOfHoles(), 12U);
    EXPECT_EQ(rScrew.GetNumberOfScrews(), 2);
    EXPECT_EQ(rScrew.GetReferenceWeight(), 1.0);
    EXPECT_EQ(rScrew.GetRadius(), 100.0);
    EXPECT_EQ(rScrew.GetScalingDirection(), CTypeBase::eClockwise);
}

TEST(ScrewCompensationTableEntry, OfNoDatabaseHasNoScrews) {
    CSinglePlaneBalancingTableEntry Single;
    EXPECT_TRUE(Single.CreateScrewCompensationTableEntry().GetScrewTable().IsEmpty());
}

TEST(TypeBase, DirectionAsTextForLogs) {
    EXPECT_STREQ(CTypeBase::DirectionToString(CTypeBase::eClockwise), "CW");
    EXPECT_STREQ(CTypeBase::DirectionToString(CTypeBase::eCounterClockwise), "CCW");
}

TEST(Screw, WeightAsTheShortestDecimalForm) {
    EXPECT_EQ(CScrew("", 2.0).GetWeightAsString(), "2");
    EXPECT_EQ(CScrew("", 0.1).GetWeightAsString(), "0.1");
    EXPECT_EQ(CScrew("", 0.1 + 0.2).GetWeightAsString(), "0.30000000000000004");
    EXPECT_EQ(CScrew("", 100000.0).GetWeightAsString(), "100000") << "no exponent";
    EXPECT_EQ(CScrew("", 0.00001).GetWeightAsString(), "0.00001");
    EXPECT_EQ(CScrew().GetWeightAsString(), "0");
}
