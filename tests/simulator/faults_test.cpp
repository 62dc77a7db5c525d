#include "simulator/faults.h"

#include <cmath>

#include "simulator/jsonfields.h"
#include "simulator/transmitter.h"
#include "tests/simulator/simulatorfixture.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// The line of a standing spindle is quiet but for a speed every second, so what comes is what was asked for.
class FaultsTest : public CSimulatorFixture {
protected:
    const Bytes m_Query{0x1C, 0x01, 0x05};

    void SetUp() override { Start(MakePlainRotor()); }
    void SetFault(const json& rFault) { ASSERT_EQ(Carry({{"fault", rFault}}), json({{"ok", true}})); }
    std::string SetBadFault(const json& rFault) { return Carry({{"fault", rFault}}).value("error", ""); }
};

TEST_F(FaultsTest, DropTakesTheNextFramesOnly) {
    SetFault({{"kind", "drop"}, {"next", 3}});
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
}

TEST_F(FaultsTest, DropWithoutANumberTakesOne) {
    SetFault({{"kind", "drop"}});
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
}

TEST_F(FaultsTest, CorruptIsFoundByTheCrc) {
    SetFault({{"kind", "corrupt"}, {"next", 2}});
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    EXPECT_THAT(Ask({0x11, 0x01, 0x05, 0x08}), IsEmpty());
    EXPECT_EQ(m_Decoder.GetBadCrc(), 2U);
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
    EXPECT_EQ(m_Decoder.GetBadCrc(), 2U);
}

TEST_F(FaultsTest, DelayHoldsUntilItIsTakenBack) {
    SetFault({{"kind", "delay_ms"}, {"value", 600}});
    Send(m_Query);
    m_Loop.Advance(602);
    EXPECT_THAT(GetFramesOf(0x1C), IsEmpty());
    m_Loop.Advance(1);
    EXPECT_THAT(GetInstants(0x1C), ElementsAre(603));
    SetFault({{"kind", "delay_ms"}, {"value", 0}});
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
}

TEST_F(FaultsTest, DelayMayBeLimitedToAFewFrames) {
    SetFault({{"kind", "delay_ms"}, {"value", 100}, {"next", 1}});
    Send(m_Query);
    m_Loop.Advance(200);
    Send(m_Query);
    m_Loop.Advance(200);
    EXPECT_THAT(GetInstants(0x1C), ElementsAre(103, 203));
}

// A serial line can't overtake itself.
TEST_F(FaultsTest, FramesBehindALateOneAreLateToo) {
    SetFault({{"kind", "delay_ms"}, {"value", 300}, {"next", 1}});
    Send({0x10, 0x01, 0x05, 0x00});
    m_Loop.Advance(50);
    Send(m_Query);
    m_Loop.Advance(500);
    ASSERT_THAT(m_Arrivals, SizeIs(2));
    EXPECT_EQ(m_Arrivals[0].m_Frame[0], 0x10);
    EXPECT_EQ(m_Arrivals[0].m_At, 303U);
    EXPECT_EQ(m_Arrivals[1].m_Frame[0], 0x1C);
    EXPECT_EQ(m_Arrivals[1].m_At, 303U);
}

TEST_F(FaultsTest, SilenceEndsByItself) {
    SetFault({{"kind", "silence_ms"}, {"value", 2500}});
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    m_Loop.Advance(2479);
    m_Arrivals.clear();
    Send(m_Query);
    m_Loop.RunPosted();  // asked in the last millisecond of the silence
    m_Loop.Advance(10);
    EXPECT_THAT(m_Arrivals, IsEmpty());
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
}

TEST_F(FaultsTest, SilenceTakesIndicationsToo) {
    SetFault({{"kind", "silence_ms"}, {"value", 1500}});
    m_Loop.Advance(3500);
    EXPECT_THAT(GetInstants(0x1C), ElementsAre(2000, 3000));
}

TEST_F(FaultsTest, ALostLockIsReportedAtOnceAndWhenItIsBack) {
    RunUp(3000);
    m_Arrivals.clear();
    SetFault({{"kind", "unlock_ms"}, {"value", 300}});
    EXPECT_EQ(Carry({{"state", json::object()}})["lock"], false);
    m_Loop.Advance(1000);
    EXPECT_EQ(Carry({{"state", json::object()}})["lock"], true);
    EXPECT_THAT(GetFramesOf(0x08), SizeIs(2));
}

TEST_F(FaultsTest, OnlyAnswersLeavesIndicationsAlone) {
    RunUp(3000);
    SetFault({{"kind", "drop"}, {"next", 2}, {"only", "answers"}});
    m_Loop.Advance(1000);
    EXPECT_EQ(GetFramesOf(0x1E).size(), 20U);
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
}

TEST_F(FaultsTest, OnlyIndicationsLeavesAnswersAlone) {
    SetFault({{"kind", "drop"}, {"next", 1}, {"only", "indications"}});
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
    m_Arrivals.clear();
    m_Loop.Advance(2100);
    EXPECT_THAT(GetInstants(0x1C), ElementsAre(2000));
}

TEST_F(FaultsTest, KindsWorkSideBySide) {
    SetFault({{"kind", "drop"}, {"next", 1}});
    SetFault({{"kind", "corrupt"}, {"next", 1}});
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    EXPECT_EQ(m_Decoder.GetBadCrc(), 0U);  // the dropped one doesn't use up the other's count
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    EXPECT_EQ(m_Decoder.GetBadCrc(), 1U);
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
}

TEST_F(FaultsTest, AFaultAgainReplacesTheFormer) {
    SetFault({{"kind", "drop"}, {"next", 100}});
    SetFault({{"kind", "drop"}, {"next", 0}});
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
}

TEST_F(FaultsTest, DoubleSendsAFrameTwice) {
    SetFault({{"kind", "double"}});
    EXPECT_THAT(Ask(m_Query),
                ElementsAre(Bytes{0x1C, 0x05, 0x01, 0x00, 0x00}, Bytes{0x1C, 0x05, 0x01, 0x00, 0x00}));
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
}

// The line bytes of a cut frame run into the next frame's: its leading end mark is what saves that one.
TEST_F(FaultsTest, CutLosesTheFrameAndNotTheNextOne) {
    SetFault({{"kind", "cut"}});
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
}

// Frames count from the first that the modules sent, whatever happened to it.
TEST_F(FaultsTest, AtStrikesTheFrameOfThatNumberAlone) {
    SetFault({{"kind", "drop"}, {"at", 3}});
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
    EXPECT_EQ(Carry({{"state", json::object()}})["sent"], 4);
}

TEST_F(FaultsTest, ADelayAtAFrameStrikesThatOneOnly) {
    SetFault({{"kind", "delay_ms"}, {"value", 100}, {"at", 2}});
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    m_Loop.Advance(100);
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
}

// A lost request gets no answer, a doubled one gets two, and a late one gets it late. Requests have a count
// of their own, and frames to nobody aren't counted.
TEST_F(FaultsTest, RequestsMayBeStruckInPlaceOfFramesSent) {
    SetFault({{"kind", "drop"}, {"only", "requests"}, {"at", 2}});
    SetFault({{"kind", "double"}, {"only", "requests"}, {"at", 3}});
    SetFault({{"kind", "delay_ms"}, {"value", 15}, {"only", "requests"}, {"at", 4}});
    EXPECT_THAT(Ask({0x1C, 0x01, 0x17}), IsEmpty());
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
    EXPECT_THAT(Ask(m_Query), IsEmpty());
    EXPECT_THAT(Ask(m_Query), SizeIs(2));
    const std::uint64_t AskedAt = m_Loop.Now();
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
    EXPECT_THAT(GetInstants(0x1C), ElementsAre(AskedAt + 18));
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
    EXPECT_EQ(Carry({{"state", json::object()}})["received"], 5);
}

TEST_F(FaultsTest, ALateRequestToAVanishedSimulatorIsForgotten) {
    SetFault({{"kind", "delay_ms"}, {"value", 15}, {"only", "requests"}});
    Send(m_Query);
    m_Loop.Advance(5);
    m_pSimulator.reset();
    m_Loop.Advance(50);
    EXPECT_THAT(m_Arrivals, IsEmpty());
}

TEST_F(FaultsTest, UnknownOnesAreRefusedWithWhatWouldBeRight) {
    EXPECT_EQ(
        SetBadFault({{"kind", "explode"}}),
        "fault.kind must be one of drop, corrupt, delay_ms, silence_ms, cut, double, unlock_ms, cut_ms, "
        "noise_counts, not \"explode\"");
    EXPECT_EQ(SetBadFault({{"next", 3}}), "fault.kind is missing");
    EXPECT_EQ(SetBadFault({{"kind", "drop"}, {"next", -1}}),
              "fault.next must be a whole number from 0 to 1000000, not -1");
    EXPECT_EQ(
        SetBadFault({{"kind", "drop"}, {"value", 5}}),
        "fault.value belongs to delay_ms, silence_ms, cut_ms, unlock_ms and noise_counts; the other kinds "
        "take next");
    EXPECT_EQ(SetBadFault({{"kind", "delay_ms"}}), "fault.value is missing");
    EXPECT_EQ(SetBadFault({{"kind", "silence_ms"}, {"value", 1}, {"next", 1}}),
              "fault.next and fault.at don't belong to silence_ms, which takes value");
    EXPECT_EQ(SetBadFault({{"kind", "unlock_ms"}, {"value", 1}, {"at", 1}}),
              "fault.next and fault.at don't belong to unlock_ms, which takes value");
    EXPECT_EQ(SetBadFault({{"kind", "unlock_ms"}}), "fault.value is missing");
    EXPECT_EQ(SetBadFault({{"kind", "unlock_ms"}, {"value", 1}, {"module", 1}}),
              "fault.only and fault.module don't belong to unlock_ms: the lock is that of all modules");
    EXPECT_EQ(SetBadFault({{"kind", "delay_ms"}, {"value", 1.5}}),
              "fault.value must be a whole number from 0 to 3600000, not 1.5");
    EXPECT_EQ(SetBadFault({{"kind", "drop"}, {"only", "some"}}),
              "fault.only must be one of answers, indications, requests, not \"some\"");
    EXPECT_EQ(SetBadFault({{"kind", "drop"}, {"at", 0}}),
              "fault.at must be a whole number from 1 to 1000000, not 0");
    EXPECT_EQ(SetBadFault({{"kind", "drop"}, {"module", 2}}),
              "fault.module must be a whole number from 1 to 1, not 2");
    EXPECT_EQ(SetBadFault({{"kind", "drop"}, {"count", 3}}),
              "unknown field \"fault.count\", known here: kind, next, value, at, only, module");
    EXPECT_THAT(Ask(m_Query), SizeIs(1));  // and nothing has come of them
}

// Whatever the frame holds, framing bytes included, one bit is enough and the frame keeps its length.
TEST(TransmitterTest, CorruptingSparesTheFramingAndIsFoundByTheCrc) {
    for (int nValue = 0; nValue < 256; ++nValue) {
        const auto Value = static_cast<std::uint8_t>(nValue);
        const std::vector<std::uint8_t> Frame{0x1E, 0x05, 0x00, Value, Value, Value, Value};
        const std::vector<std::uint8_t> Good = LineDiscipline::Encode(Frame);
        std::vector<std::uint8_t> Bad = Good;
        CTransmitter::Corrupt(Bad);
        int nDifferent = 0;
        for (std::size_t nIndex = 0; nIndex < Good.size(); ++nIndex) {
            nDifferent += Good[nIndex] != Bad[nIndex];
        }
        EXPECT_EQ(nDifferent, 1);
        int nFrames = 0;
        LineDiscipline::CDecoder Decoder([&nFrames](std::span<const std::uint8_t>) { ++nFrames; });
        Decoder.Put(Bad);
        Decoder.Put(Good);
        EXPECT_EQ(nFrames, 1) << nValue;
        EXPECT_EQ(Decoder.GetBadCrc(), 1U) << nValue;
    }
}

// The other end of the line notices, and comes back only when the line is whole.
TEST_F(FaultsTest, ACutLineClosesTheOtherEndAndRefusesItUntilItIsMended) {
    std::vector<std::string> Told;
    m_pLink->OnClosed = [&Told](const std::string& rWhy) { Told.push_back(rWhy); };
    SetFault({{"kind", "cut_ms"}, {"value", 5000}});
    m_Loop.Advance(1);
    EXPECT_FALSE(m_pLink->IsOpen());
    EXPECT_THAT(Told, ElementsAre("the line is cut"));
    m_Loop.Advance(4000);
    m_pLink->Open();
    m_Loop.Advance(1);
    EXPECT_FALSE(m_pLink->IsOpen());
    EXPECT_THAT(Told, SizeIs(2));
    m_Loop.Advance(1000);
    m_pLink->Open();
    m_Loop.Advance(1);
    EXPECT_TRUE(m_pLink->IsOpen());
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
    EXPECT_THAT(Told, SizeIs(2));
}

TEST_F(FaultsTest, ACutOfNoTimeMendsTheLine) {
    SetFault({{"kind", "cut_ms"}, {"value", 5000}});
    SetFault({{"kind", "cut_ms"}, {"value", 0}});
    m_pLink->Open();
    m_Loop.Advance(1);
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
}

TEST_F(FaultsTest, ASecondCutCountsFromItself) {
    SetFault({{"kind", "cut_ms"}, {"value", 1000}});
    m_Loop.Advance(900);
    SetFault({{"kind", "cut_ms"}, {"value", 1000}});
    m_Loop.Advance(500);
    m_pLink->Open();
    m_Loop.Advance(1);
    EXPECT_FALSE(m_pLink->IsOpen());
}

/// Half of a frame from before the cut must not spoil the first one behind it.
TEST_F(FaultsTest, WhatWasCutInTheMiddleOfAFrameIsForgotten) {
    const Bytes Line = LineDiscipline::Encode(m_Query);
    m_pLink->Write({Line.data(), Line.size() / 2});
    m_Loop.Advance(1);
    SetFault({{"kind", "cut_ms"}, {"value", 100}});
    m_Loop.Advance(200);
    m_pLink->Open();
    m_Loop.Advance(1);
    EXPECT_THAT(Ask(m_Query), SizeIs(1));
}

/// Standard deviation of n readings about the known value; each part of 1000 estimates it to some 2 %.
TEST_F(FaultsTest, NoiseHasTheDeviationAskedForAndEndsWithZero) {
    RunUp(3000);
    SetFault({{"kind", "noise_counts"}, {"value", 20}});
    m_Arrivals.clear();
    m_Loop.Advance(50000);
    const std::vector<Bytes> Noisy = GetFramesOf(0x1E);
    ASSERT_EQ(Noisy.size(), 1000U);
    const auto Deviation = [&Noisy](std::size_t nAt, double Mean) {
        double Sum = 0.0;
        for (const Bytes& rFrame : Noisy) {
            const auto Value = static_cast<std::int16_t>(rFrame[nAt + 1] << 8 | rFrame[nAt]);
            Sum += (Value - Mean) * (Value - Mean);
        }
        return std::sqrt(Sum / static_cast<double>(Noisy.size()));
    };
    EXPECT_NEAR(Deviation(3, 288.0), 20.0, 1.5);
    EXPECT_NEAR(Deviation(5, -128.0), 20.0, 1.5);
    SetFault({{"kind", "noise_counts"}, {"value", 0}});
    m_Arrivals.clear();
    m_Loop.Advance(1000);
    const std::vector<Bytes> Quiet = GetFramesOf(0x1E);
    ASSERT_EQ(Quiet.size(), 20U);
    EXPECT_THAT(Quiet, testing::Each(Quiet.front())) << "this rotor has no noise of its own";
}

TEST_F(FaultsTest, TheSameNoiseComesAgain) {
    const auto Listen = [this] {
        Start(MakePlainRotor());
        RunUp(3000);
        SetFault({{"kind", "noise_counts"}, {"value", 5}});
        m_Arrivals.clear();
        m_Loop.Advance(500);
        return GetFramesOf(0x1E);
    };
    const std::vector<Bytes> First = Listen();
    EXPECT_EQ(First, Listen());
    EXPECT_THAT(First, testing::Not(testing::Each(First.front())));
}

TEST_F(FaultsTest, CutAndNoiseRefuseWhatIsNotTheirs) {
    EXPECT_EQ(SetBadFault({{"kind", "cut_ms"}}), "fault.value is missing");
    EXPECT_THAT(SetBadFault({{"kind", "cut_ms"}, {"value", 10}, {"next", 2}}), HasSubstr("cut_ms"));
    EXPECT_THAT(SetBadFault({{"kind", "cut_ms"}, {"value", 10}, {"module", 1}}), HasSubstr("cut_ms"));
    EXPECT_THAT(SetBadFault({{"kind", "noise_counts"}, {"value", -1}}), HasSubstr("fault.value"));
    EXPECT_THAT(SetBadFault({{"kind", "noise_counts"}, {"value", 5}, {"only", "answers"}}),
                HasSubstr("noise_counts"));
    EXPECT_THAT(SetBadFault({{"kind", "noise_counts"}, {"value", 5}, {"module", 2}}),
                HasSubstr("fault.module"));
}

}  // namespace
