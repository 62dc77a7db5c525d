// The bytes of every frame, counted by hand.
#include "simulator/lannerframes.h"

#include <gmock/gmock.h>

namespace {

using namespace LannerFrames;
using testing::ElementsAre;

constexpr CRoute ANSWER{0x09, 0x01};
constexpr CRoute INDICATION{0x09, 0x00};

}  // namespace

TEST(LannerFrames, Speed) {
    EXPECT_THAT(MakeRpm(ANSWER, 0, 3000), ElementsAre(0x1C, 0x09, 0x01, 0x00, 0xB8, 0x0B));
}

TEST(LannerFrames, Coordinates) {
    EXPECT_THAT(MakeXY(ANSWER, 1, 0x0120, -128), ElementsAre(0x1E, 0x09, 0x01, 0x01, 0x20, 0x01, 0x80, 0xFF));
}

TEST(LannerFrames, SetOfParamsAndOnePlane) {
    CActiveSet Set;
    Set.m_Number = 3;
    Set.m_Params.emplace();
    Set.m_Params->m_Mode = CSetParams::eTwoPlaneSwapped;
    Set.m_Params->m_AnalogScaling = 1;
    Set.m_Params->m_Name = "A";
    Set.m_Planes.emplace_back();
    EXPECT_THAT(MakeActiveSet(ANSWER, Set),
                ElementsAre(0x10, 0x09, 0x01, 0x02, 0x03, 0x01, 0x08, 0x00, 0x00, 0x06, 0x01, 0x01, 0x41,
                            0x02, 0x0C, 0x00, 0x00, 0x01, 0x90, 0x01, 0x20, 0x03, 0x10, 0x27, 0x05));
}

TEST(LannerFrames, SetOfItsNumberAlone) {
    CActiveSet Set;
    Set.m_Number = 7;
    EXPECT_THAT(MakeActiveSet(INDICATION, Set), ElementsAre(0x10, 0x09, 0x00, 0x02, 0x07));
}

// The block's length is one byte and counts seven others besides the name.
TEST(LannerFrames, SetNameIsCutToWhatABlockCanHold) {
    CActiveSet Set;
    Set.m_Params.emplace();
    Set.m_Params->m_Name.assign(300, 'n');
    const Bytes Frame = MakeActiveSet(ANSWER, Set);
    ASSERT_EQ(Frame.size(), 5U + 255U);
    EXPECT_EQ(Frame[6], 255);
    EXPECT_EQ(Frame[11], 248);
}

TEST(LannerFrames, StateWithTheFirstInputOutOfLock) {
    CState State;
    State.m_Failures = {CState::eOutOfLock, 0};
    EXPECT_THAT(MakeState(INDICATION, State),
                ElementsAre(0x08, 0x09, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x08, 0x00));
}

TEST(LannerFrames, StateWithEveryFieldAnother) {
    CState State;
    State.m_State = 2;
    State.m_Parameter = 3;
    State.m_bUILocked = true;
    State.m_Flags = {CState::eRotationLimit1Exceeded | CState::eUnbalanceLimit2Exceeded,
                     CState::eUnbalanceLimit1Exceeded | CState::eDSGNocke};
    State.m_Failures = {CState::eSensorFailure | CState::eOveramplify, CState::eRotationTooSlow};
    EXPECT_THAT(MakeState(ANSWER, State),
                ElementsAre(0x08, 0x09, 0x01, 0x02, 0x03, 0x80, 0x05, 0x0A, 0x05, 0x02));
}

TEST(LannerFrames, Amplitude) {
    EXPECT_THAT(MakeAmplitude(INDICATION, 1, 0x1234), ElementsAre(0x1D, 0x09, 0x00, 0x01, 0x34, 0x12));
}

TEST(LannerFrames, Diagnosis) {
    EXPECT_THAT(MakeDiagnosis(INDICATION, {0xDE, 0xAD}), ElementsAre(0x1F, 0x09, 0x00, 0xDE, 0xAD));
}

TEST(LannerFrames, BalConfiguration) {
    CBalConfiguration Configuration;
    Configuration.m_Flags = 0x05;
    Configuration.m_RpmLimit = 0x4E20;
    Configuration.m_Rates = {{{1, 2, 3, 4}, {5, 6, 7, 8}}};
    Configuration.m_MaxDiagnosisRate = 0x0A;
    Configuration.m_ConfigurationDiagnosis = 0x0B;
    EXPECT_THAT(
        MakeBalConfiguration(INDICATION, Configuration),
        ElementsAre(0x11, 0x09, 0x00, 0x00, 0x05, 0x00, 0x20, 0x4E, 1, 2, 3, 4, 5, 6, 7, 8, 0xA0, 0x0B));
}

TEST(LannerFrames, ModuleConfiguration) {
    CModuleConfiguration Configuration;
    Configuration.m_Baudrate = 23;
    Configuration.m_bTwoStopBits = true;
    Configuration.m_FanPowerOnTemperature = 45;
    Configuration.m_TestFlags = 0x21;
    Configuration.m_AttachedSlave = 6;
    EXPECT_THAT(MakeModuleConfiguration(INDICATION, Configuration),
                ElementsAre(0x11, 0x09, 0x00, 0x04, 0x97, 45, 0x21, 6, 0x00, 0x00));
}

TEST(LannerFrames, DiagnosisData) {
    CDiagnosisData Data;
    Data.m_CurrentTemperature = 38;
    Data.m_MaxTemperature = 51;
    Data.m_ReservedFlags = 0x71;
    Data.m_DiagByte4 = 4;
    Data.m_PicVersion = 0x0102;
    Data.m_SignalCount = 0x0304;
    Data.m_ProfibusClock = 0x0506;
    Data.m_DiagWords = {0x0708, 0x090A, 0x0B0C};
    Data.m_Text = "OK";
    EXPECT_THAT(MakeDiagnosisData(INDICATION, Data),
                ElementsAre(0x11, 0x09, 0x00, 0x09, 38, 51, 0x71, 4, 0x02, 0x01, 0x04, 0x03, 0x06, 0x05, 0x08,
                            0x07, 0x0A, 0x09, 0x0C, 0x0B, 'O', 'K', 0));
}
