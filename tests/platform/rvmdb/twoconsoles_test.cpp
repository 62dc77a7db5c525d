// Two consoles on one store: what each has changed is kept, and nothing else is written.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/rvmdb/calibrated.h"
#include "tests/platform/rvmdb/databasefixture.h"
#include "tests/support/logcapture.h"

using namespace PreBalDB;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// A calibrated configuration "Wheel", and two consoles that have both read it.
class CTwoConsolesTest : public CStoreTest {
protected:
    void SetUp() override {
        const auto pMaker = Open();
        MakeCalibrated(*pMaker, "Wheel")
            .SetCalibrationDateTime(std::chrono::sys_seconds(std::chrono::seconds(1)));
        ASSERT_NE(pMaker->WriteConfiguration(), 0);
        m_pFirst = Open();
        m_pSecond = Open();
        m_pA = &m_pFirst->ReadConfiguration("Wheel");
        m_pB = &m_pSecond->ReadConfiguration("Wheel");
    }
    static void Save(CPreBalDatabase& rDatabase) { ASSERT_NE(rDatabase.WriteConfiguration(), 0); }
    /// As a third console sees it.
    const CPreBalBaseTableEntry& GetStored() {
        m_pReader = Open();
        return m_pReader->ReadConfiguration("Wheel");
    }
    std::int64_t GetRevision() {
        CDirectSQL Sql(m_Connection);
        return Sql.Query("SELECT revision FROM configuration WHERE name = 'Wheel'")[0].GetInteger(0);
    }
    static void Calibrate(CPreBalBaseTableEntry& rEntry, double InvA) {
        rEntry.SetIsCalibrated(1);
        rEntry.GetSinglePlane()->SetInvA(MakeMatrix(2, 2, {InvA, 0, 0, InvA}));
    }
    static double GetInvA(const CPreBalBaseTableEntry& rEntry) {
        return rEntry.GetSinglePlane()->GetInvA()(0, 0);
    }

    std::unique_ptr<CPreBalDatabase> m_pFirst;
    std::unique_ptr<CPreBalDatabase> m_pSecond;
    std::unique_ptr<CPreBalDatabase> m_pReader;
    CPreBalBaseTableEntry* m_pA = nullptr;
    CPreBalBaseTableEntry* m_pB = nullptr;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Stores, CTwoConsolesTest, testing::ValuesIn(GetStoresForTests()), GetStoreName);

TEST_P(CTwoConsolesTest, AnEntryThatWasOnlyReadIsNotWritten) {
    Calibrate(*m_pA, 0.75);
    Save(*m_pFirst);
    const std::int64_t Revision = GetRevision();
    Save(*m_pSecond);
    EXPECT_EQ(GetInvA(GetStored()), 0.75);
    EXPECT_EQ(GetRevision(), Revision);
    EXPECT_FALSE(m_pSecond->GetOutcome().m_bOthersWrote);
}

TEST_P(CTwoConsolesTest, EachWriteThatChangesSomethingIsARevision) {
    const std::int64_t Revision = GetRevision();
    m_pA->SetTargetUnbalance(9);
    Save(*m_pFirst);
    EXPECT_EQ(GetRevision(), Revision + 1);
    Save(*m_pFirst);
    EXPECT_EQ(GetRevision(), Revision + 1);
}

// The revision is taken in the transaction of the write: where nothing is written none is used up.
TEST_P(CTwoConsolesTest, AWriteThatIsRefusedOrLosesIsNoRevision) {
    const std::int64_t Revision = GetRevision();
    m_pSecond->ReadConfiguration("Other").SetProcessName("Wheel");
    EXPECT_EQ(m_pSecond->WriteConfiguration(), 0);
    EXPECT_EQ(GetRevision(), Revision);
    m_pB = &m_pSecond->ReadConfiguration("Wheel");
    m_pA->SetTargetUnbalance(9);
    m_pB->SetTargetUnbalance(11);
    Save(*m_pFirst);
    Save(*m_pSecond);
    EXPECT_THAT(m_pSecond->GetOutcome().m_Conflicts, ElementsAre("configuration.target_unbalance"));
    EXPECT_EQ(GetRevision(), Revision + 1);
}

TEST_P(CTwoConsolesTest, DifferentFieldsChangedOnBothSidesAreBothKept) {
    CLogCapture Log;
    m_pA->SetTargetUnbalance(9);
    m_pB->SetRPMTolerance(70);
    Save(*m_pFirst);
    Save(*m_pSecond);
    EXPECT_TRUE(m_pSecond->GetOutcome().m_bOthersWrote);
    EXPECT_THAT(m_pSecond->GetOutcome().m_Conflicts, IsEmpty());
    EXPECT_EQ(GetStored().GetTargetUnbalance(), 9U);
    EXPECT_EQ(GetStored().GetRPMTolerance(), 70U);
    EXPECT_THAT(Log.GetTexts("Warning"), IsEmpty());
    // What the other one wrote isn't in memory here, and must not be written over by the next save either.
    m_pB->SetNumberOfSamples(60);
    Save(*m_pSecond);
    EXPECT_EQ(GetStored().GetTargetUnbalance(), 9U);
    EXPECT_EQ(GetStored().GetNumberOfSamples(), 60U);
}

TEST_P(CTwoConsolesTest, ACalibrationSurvivesASettingOfAnotherConsole) {
    Calibrate(*m_pA, 0.75);
    Save(*m_pFirst);
    m_pB->SetTargetUnbalance(9);
    Save(*m_pSecond);
    EXPECT_EQ(GetInvA(GetStored()), 0.75);
    EXPECT_EQ(GetStored().IsCalibrated(), 1);
    EXPECT_EQ(GetStored().GetTargetUnbalance(), 9U);
}

TEST_P(CTwoConsolesTest, OfTheSameFieldTheStoredValueStaysAndTheOtherIsTold) {
    CLogCapture Log;
    m_pA->SetTargetUnbalance(9);
    m_pB->SetTargetUnbalance(11);
    m_pB->SetRPMTolerance(70);
    Save(*m_pFirst);
    Save(*m_pSecond);
    EXPECT_EQ(GetStored().GetTargetUnbalance(), 9U);
    EXPECT_EQ(GetStored().GetRPMTolerance(), 70U);
    EXPECT_THAT(m_pSecond->GetOutcome().m_Conflicts, ElementsAre("configuration.target_unbalance"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre(HasSubstr("configuration.target_unbalance")));
    // Told once; the value that lost isn't tried again.
    Save(*m_pSecond);
    EXPECT_THAT(m_pSecond->GetOutcome().m_Conflicts, IsEmpty());
    EXPECT_EQ(GetStored().GetTargetUnbalance(), 9U);
}

TEST_P(CTwoConsolesTest, TheSameChangeOnBothSidesIsNoConflict) {
    m_pA->SetTargetUnbalance(9);
    m_pB->SetTargetUnbalance(9);
    Save(*m_pFirst);
    Save(*m_pSecond);
    EXPECT_THAT(m_pSecond->GetOutcome().m_Conflicts, IsEmpty());
    EXPECT_EQ(GetStored().GetTargetUnbalance(), 9U);
}

// Half of one calibration and half of another would be none.
TEST_P(CTwoConsolesTest, ACalibrationIsKeptOrLostAsAWhole) {
    Calibrate(*m_pA, 0.75);
    m_pB->SetIsCalibrated(1);
    m_pB->SetCalibratedRPM(1500);
    m_pB->GetSinglePlane()->SetUA(MakeMatrix(2, 1, {7, 8}));
    Save(*m_pFirst);
    Save(*m_pSecond);
    EXPECT_THAT(m_pSecond->GetOutcome().m_Conflicts, ElementsAre("calibration"));
    EXPECT_TRUE(m_pSecond->GetOutcome().m_bCalibrationLost);
    EXPECT_EQ(GetInvA(GetStored()), 0.75);
    EXPECT_EQ(GetStored().GetCalibratedRPM(), 3000U);
    EXPECT_EQ(GetStored().GetSinglePlane()->GetUA()(0, 0), 1.5);
}

TEST_P(CTwoConsolesTest, ACalibrationMadeForAnotherRotationDoesNotCount) {
    m_pA->GetSinglePlane()->SetRotationDirection(CTypeBase::eCounterClockwise);
    Calibrate(*m_pB, 0.75);
    Save(*m_pFirst);
    Save(*m_pSecond);
    EXPECT_TRUE(m_pSecond->GetOutcome().m_bCalibrationLost);
    EXPECT_EQ(GetStored().IsCalibrated(), 0);
    EXPECT_EQ(GetStored().GetSinglePlane()->GetRotationDirection(), CTypeBase::eCounterClockwise);
}

TEST_P(CTwoConsolesTest, AStoredCalibrationDoesNotCountForARotationThatIsChangedHere) {
    Calibrate(*m_pA, 0.75);
    m_pB->GetSinglePlane()->SetRotationDirection(CTypeBase::eCounterClockwise);
    Save(*m_pFirst);
    Save(*m_pSecond);
    EXPECT_EQ(GetStored().IsCalibrated(), 0);
    EXPECT_FALSE(m_pSecond->GetOutcome().m_bCalibrationLost) << "none was made here";
}

TEST_P(CTwoConsolesTest, AChangeOfMethodAndAnotherSettingAreBothKept) {
    CScrewCompensationTableEntry& rScrew = m_pA->GetSinglePlane()->CreateScrewCompensationTableEntry();
    rScrew.SetPlane(CTypeBase::ePlane1);
    rScrew.SetNumberOfHoles(18);
    m_pB->SetTargetUnbalance(9);
    Save(*m_pFirst);
    Save(*m_pSecond);
    ASSERT_NE(GetStored().GetSinglePlane()->GetScrewCompensationTableEntry(), nullptr);
    EXPECT_EQ(GetStored().GetSinglePlane()->GetScrewCompensationTableEntry()->GetNumberOfHoles(), 18U);
    EXPECT_EQ(GetStored().GetTargetUnbalance(), 9U);
    CDirectSQL Sql(m_Connection);
    EXPECT_EQ(Sql.Query("SELECT count(*) FROM weight_compensation")[0].GetInteger(0), 0);
}

TEST_P(CTwoConsolesTest, AMethodChangedHereWinsOverNothingOnTheOtherSide) {
    m_pB->GetSinglePlane()->CreateScrewCompensationTableEntry().SetNumberOfHoles(18);
    m_pA->SetTargetUnbalance(9);
    Save(*m_pFirst);
    Save(*m_pSecond);
    ASSERT_NE(GetStored().GetSinglePlane()->GetScrewCompensationTableEntry(), nullptr);
    EXPECT_EQ(GetStored().GetTargetUnbalance(), 9U);
    CDirectSQL Sql(m_Connection);
    EXPECT_EQ(Sql.Query("SELECT count(*) FROM weight_compensation")[0].GetInteger(0), 0);
}

// The method of a part is one choice, like a field: the stored one stays, and nothing of the other is kept.
TEST_P(CTwoConsolesTest, OfTwoMethodsChosenOnBothSidesTheStoredOneStaysAndTheOtherIsTold) {
    m_pA->CreateTwoPlane().CreatePlane2ScrewCompensationTableEntry().SetNumberOfHoles(18);
    m_pB->CreateTwoPlane().CreatePlane2WeightCompensationTableEntry();
    m_pB->SetTargetUnbalance(9);
    Save(*m_pFirst);
    Save(*m_pSecond);
    EXPECT_THAT(m_pSecond->GetOutcome().m_Conflicts, ElementsAre("weight_compensation.plane2.method"));
    EXPECT_EQ(GetStored().GetTargetUnbalance(), 9U);
    ASSERT_NE(GetStored().GetTwoPlane(), nullptr);
    const CScrewCompensationTableEntry* const pScrews =
        GetStored().GetTwoPlane()->GetPlane2ScrewCompensationTableEntry();
    ASSERT_NE(pScrews, nullptr);
    EXPECT_EQ(pScrews->GetNumberOfHoles(), 18U);
    CDirectSQL Sql(m_Connection);
    EXPECT_EQ(Sql.Query("SELECT count(*) FROM weight_compensation WHERE part = 'plane2'")[0].GetInteger(0),
              0);
}

TEST_P(CTwoConsolesTest, TwoNewConfigurationsOfOneNameBecomeOne) {
    m_pFirst->ReadConfiguration("New").SetTargetUnbalance(9);
    m_pSecond->ReadConfiguration("New").SetRPMTolerance(70);
    Save(*m_pFirst);
    Save(*m_pSecond);
    const auto pReader = Open();
    const CPreBalBaseTableEntry& rEntry = pReader->ReadConfiguration("New");
    EXPECT_EQ(rEntry.GetTargetUnbalance(), 9U);
    EXPECT_EQ(rEntry.GetRPMTolerance(), 70U);
}

TEST_P(CTwoConsolesTest, AConfigurationThatWasRemovedMeanwhileComesBackWithAChange) {
    CDirectSQL Sql(m_Connection);
    Sql.Execute("DELETE FROM configuration WHERE name = 'Wheel'");
    Save(*m_pFirst);
    EXPECT_TRUE(Sql.Query("SELECT 1 FROM configuration").empty()) << "nothing was changed";
    m_pA->SetTargetUnbalance(9);
    Save(*m_pFirst);
    EXPECT_EQ(GetStored().GetTargetUnbalance(), 9U);
    EXPECT_EQ(GetInvA(GetStored()), 0.5);
}

TEST_P(CTwoConsolesTest, AScrewTableThatLosesIsNoRevision) {
    using Screws = Base::CWDArray<CScrew>;
    const auto GetTableRevision = [this] {
        CDirectSQL Sql(m_Connection);
        return Sql.Query("SELECT revision FROM screw_table WHERE name = 'M6'")[0].GetInteger(0);
    };
    m_pFirst->ReadScrewTable("M6").SetScrewArray(Screws{CScrew("a", 1)});
    m_pSecond->ReadScrewTable("M6").SetScrewArray(Screws{CScrew("b", 2)});
    EXPECT_NE(m_pFirst->WriteScrewTable(), 0);
    const std::int64_t Revision = GetTableRevision();
    EXPECT_NE(m_pSecond->WriteScrewTable(), 0);
    EXPECT_THAT(m_pSecond->GetOutcome().m_Conflicts, ElementsAre("screw_table.M6"));
    EXPECT_EQ(GetTableRevision(), Revision);
}

TEST_P(CTwoConsolesTest, AScrewTableOfAnotherConsoleIsNotWrittenOver) {
    CLogCapture Log;
    using Screws = Base::CWDArray<CScrew>;
    const auto Write = [](CPreBalDatabase& rDatabase, CScrewTableEntry& rTable, const Screws& rScrews) {
        rTable.SetScrewArray(rScrews);
        EXPECT_NE(rDatabase.WriteScrewTable(), 0);
    };
    CScrewTableEntry& rA = m_pFirst->ReadScrewTable("M6");
    Write(*m_pFirst, rA, {CScrew("a", 1)});
    CScrewTableEntry& rB = m_pSecond->ReadScrewTable("M6");
    Write(*m_pFirst, rA, {CScrew("a", 2)});
    // Only read here.
    EXPECT_NE(m_pSecond->WriteScrewTable(), 0);
    EXPECT_THAT(m_pSecond->GetOutcome().m_Conflicts, IsEmpty());
    EXPECT_EQ(Open()->ReadScrewTable("M6").GetScrewArray(), (Screws{CScrew("a", 2)}));
    // Changed here too.
    Write(*m_pSecond, rB, {CScrew("b", 3)});
    EXPECT_THAT(m_pSecond->GetOutcome().m_Conflicts, ElementsAre("screw_table.M6"));
    EXPECT_EQ(Open()->ReadScrewTable("M6").GetScrewArray(), (Screws{CScrew("a", 2)}));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre(HasSubstr("\"M6\"")));
    // Read anew it can be changed.
    Write(*m_pSecond, m_pSecond->ReadScrewTable("M6"), {CScrew("b", 3)});
    EXPECT_EQ(Open()->ReadScrewTable("M6").GetScrewArray(), (Screws{CScrew("b", 3)}));
}
