// Start of a pre-balancing, and what it makes of stored positions.
#include <fstream>
#include <limits>

#include "rvlib/math/vector.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/sequencefixture.h"
#include "tests/support/textfiles.h"

namespace {

using math::MakeVector;
using K = CKeyActions;
using S = CSinglePlaneBalancing;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

using Pair2 = std::pair<int, int>;

class PreBalanceStartTest : public SequenceTest {};

// --- start ---

TEST_F(PreBalanceStartTest, StandingSpindleGoesStraightToTheWeightsWith11Steps) {
    EXPECT_EQ(m_pSequence->StartPreBalancing(0, 1, 1), 1);
    EXPECT_EQ(GetState(), S::eNeutralPosRemoveWeights);
    EXPECT_EQ(GetSteps(), std::make_pair(1U, 11U));
}

TEST_F(PreBalanceStartTest, TurningSpindleIsToBeStoppedFirstWith12Steps) {
    EXPECT_EQ(m_pSequence->StartPreBalancing(1, 0, 0), 1);
    EXPECT_EQ(GetState(), S::eNeutralPosSpindleStop);
    EXPECT_EQ(GetSteps(), std::make_pair(1U, 12U));
}

TEST_F(PreBalanceStartTest, StartMakesTheConfigurationUncalibrated) {
    m_Entry.SetIsCalibrated(1);
    m_pSequence->StartPreBalancing(0, 1, 1);
    EXPECT_EQ(m_Entry.IsCalibrated(), 0);
}

TEST_F(PreBalanceStartTest, StartShowsTheSpeed) {
    m_pSequence->StartPreBalancing(1234, 0, 0);
    EXPECT_THAT(m_pSequence->GetCurrentText(), HasSubstr("1234"));
}

TEST_F(PreBalanceStartTest, IdleIgnoresAllElse) {
    m_pSequence->CurrentRPM(100);
    m_pSequence->InvalidRPM(0);
    m_pSequence->OutOfLock(0);
    m_pSequence->CurrentXYValuePlane1(1, 2);
    EXPECT_EQ(Next(), 1);
    EXPECT_EQ(GetState(), S::eIdle);
    EXPECT_THAT(TakeCalls(), IsEmpty());
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

TEST_F(PreBalanceStartTest, StartWhileRunningIsIgnored) {
    Reach(S::eTestUnbalanceSetWeights);
    EXPECT_EQ(m_pSequence->StartPreBalancing(0, 1, 1), 1);
    EXPECT_EQ(GetState(), S::eTestUnbalanceSetWeights);
}

TEST_F(PreBalanceStartTest, StartReloadsTheStoredPositionsWithWeightsOnly) {
    StorePositions(true, true);
    m_Wnd.m_Store = CWeightPositionStore();
    Make(true);
    m_pSequence->StartPreBalancing(0, 1, 1);
    EXPECT_FALSE(m_Wnd.m_Store.Contains("000005_WHEEL1"));
    Make();
    m_pSequence->StartPreBalancing(0, 1, 1);
    EXPECT_TRUE(m_Wnd.m_Store.Contains("000005_WHEEL1"));
    EXPECT_EQ(m_Wnd.GetMenu(), 19);
}

TEST_F(PreBalanceStartTest, DamagedPositionFileIsSetAsideAndTheRunGoesOn) {
    StorePositions(true, true);
    m_Wnd.m_Store.Load();
    m_Wnd.m_Store.m_IncrementRPM = 1500;
    const std::string Damaged =
        "\x03"
        "3.1cut";
    std::ofstream(m_Installation.GetWeightPositions(), std::ios::binary) << Damaged;
    EXPECT_EQ(m_pSequence->StartPreBalancing(0, 1, 1), 1);
    EXPECT_EQ(GetState(), S::eNeutralPosRemoveWeights);
    EXPECT_THAT(m_Log.GetTexts("Error"), Contains(HasSubstr("vorwuchttemp.txt is damaged")));
    EXPECT_EQ(ReadTestFile(m_Installation.GetWeightPositions().string() + ".damaged"), Damaged);
    EXPECT_EQ(m_Wnd.GetMenu(), 30) << "nothing to adopt";
    EXPECT_FALSE(m_Wnd.m_Store.Contains("000005_WHEEL1"));
    EXPECT_EQ(m_Wnd.m_Store.m_IncrementRPM, 1500) << "begun anew with the settings in force";
}

// --- menus by the stored positions ---

TEST_F(PreBalanceStartTest, StoredPositionsOfASinglePlaneRunAreOffered) {
    StorePositions(true, true);
    m_pSequence->StartPreBalancing(0, 1, 1);
    EXPECT_EQ(m_Wnd.GetMenu(), 19);
    Make();
    m_pSequence->StartPreBalancing(SPEED, 0, 0);
    EXPECT_EQ(m_Wnd.GetMenu(), 29);
}

TEST_F(PreBalanceStartTest, InvalidPositionsAndThoseOfATwoPlaneRunAreNotOffered) {
    for (const auto& [bValid, bSinglePlane] : {Pair2{0, 1}, Pair2{1, 0}, Pair2{0, 0}}) {
        StorePositions(bValid != 0, bSinglePlane != 0);
        Make();
        m_pSequence->StartPreBalancing(0, 1, 1);
        EXPECT_EQ(m_Wnd.GetMenu(), 30);
        Make();
        m_pSequence->StartPreBalancing(SPEED, 0, 0);
        EXPECT_EQ(m_Wnd.GetMenu(), 28);
    }
}

// An NC would send the weights there.
TEST_F(PreBalanceStartTest, AnglesThatAreNoneOfAScaleAreNotOffered) {
    constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    for (const double Angle : {NOT_A_NUMBER, INFINITE, -INFINITE, -1.0, 360.0, -2147483258.0, 359.5}) {
        for (const std::uint32_t Weight : {0U, 1U}) {
            WeightPos2Plane Record;
            Record.m_PositionsValid = true;
            Record.m_PositionsPlane1 = MakeVector(77, 266);
            Record.m_PositionsPlane1(Weight, 0) = Angle;
            CWeightPositionStore::Set("000005_WHEEL1", Record);
            Make();
            m_pSequence->StartPreBalancing(0, 1, 1);
            EXPECT_EQ(m_Wnd.GetMenu(), 30) << Angle;
            TakeCalls();
            Key(K::ePositionAdoption);
            EXPECT_THAT(TakeCalls(), IsEmpty()) << "nor taken";
        }
    }
    WeightPos2Plane Record;
    Record.m_PositionsValid = true;
    Record.m_PositionsPlane1 = MakeVector(0, 359);
    Record.m_PositionsPlane2 = MakeVector(NOT_A_NUMBER, NOT_A_NUMBER);
    CWeightPositionStore::Set("000005_WHEEL1", Record);
    Make();
    m_pSequence->StartPreBalancing(0, 1, 1);
    EXPECT_EQ(m_Wnd.GetMenu(), 19) << "plane 2 is not in use";
}

TEST_F(PreBalanceStartTest, ScrewsDontLookAtStoredPositions) {
    StorePositions(true, true);
    Make(true);
    m_pSequence->StartPreBalancing(0, 1, 1);
    EXPECT_EQ(m_Wnd.GetMenu(), 0);
}

}  // namespace
