#include "platform/rvcom/linediscipline.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

using LineDiscipline::CDecoder;
using LineDiscipline::Crc16;
using LineDiscipline::Encode;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Bytes = std::vector<std::uint8_t>;

/// The CRC bit by bit, as its definition reads.
std::uint16_t PlainCrc(const Bytes& rBytes) {
    std::uint32_t Register = 0xFFFF;
    for (const std::uint8_t Byte : rBytes) {
        for (int nBit = 7; nBit >= 0; --nBit) {
            const bool bIn = ((Byte >> nBit) & 1) != 0;
            const bool bOut = (Register & 0x8000) != 0;
            Register = (Register << 1) & 0xFFFF;
            if (bIn != bOut) {
                Register ^= 0x1021;
            }
        }
    }
    return static_cast<std::uint16_t>(Register);
}

/// Decoder and what came out of it.
struct CReceived {
    CReceived()
        : m_Decoder([this](std::span<const std::uint8_t> Frame) {
              m_Frames.emplace_back(Frame.begin(), Frame.end());
          }) {}
    std::vector<Bytes> m_Frames;
    CDecoder m_Decoder;
};

Bytes Concatenate(std::initializer_list<Bytes> Parts) {
    Bytes All;
    for (const Bytes& rPart : Parts) {
        All.insert(All.end(), rPart.begin(), rPart.end());
    }
    return All;
}

}  // namespace

TEST(Crc16, CheckValueOfTheCatalogue) {
    const std::string Text = "123456789";
    EXPECT_EQ(Crc16(Bytes(Text.begin(), Text.end())), 0x29B1);
}

TEST(Crc16, OfNothingIsTheInitialValue) {
    EXPECT_EQ(Crc16({}), 0xFFFF);
}

TEST(Crc16, AgreesWithTheDefinitionBitByBit) {
    std::mt19937 Random(1);
    for (std::size_t nSize = 0; nSize < 300; ++nSize) {
        Bytes Frame(nSize);
        for (std::uint8_t& rByte : Frame) {
            rByte = static_cast<std::uint8_t>(Random());
        }
        ASSERT_EQ(Crc16(Frame), PlainCrc(Frame)) << nSize;
    }
}

TEST(LineDisciplineEncode, PutsEndsAroundFrameAndCrcLowByteFirst) {
    // CRC of 01 02 03 is AD AD, of 10 05 01 it is 602B.
    EXPECT_THAT(Encode(Bytes{0x01, 0x02, 0x03}), ElementsAre(0xC0, 0x01, 0x02, 0x03, 0xAD, 0xAD, 0xC0));
    EXPECT_THAT(Encode(Bytes{0x10, 0x05, 0x01}), ElementsAre(0xC0, 0x10, 0x05, 0x01, 0x2B, 0x60, 0xC0));
}

TEST(LineDisciplineEncode, EscapesEndAndEsc) {
    EXPECT_THAT(Encode(Bytes{0xC0, 0xDB, 0x00}),
                ElementsAre(0xC0, 0xDB, 0xDC, 0xDB, 0xDD, 0x00, 0xB6, 0x23, 0xC0));
}

TEST(LineDisciplineEncode, LeavesTheBytesOfEscapesAlone) {
    const Bytes Line = Encode(Bytes{0xDC, 0xDD, 0x01});
    EXPECT_EQ(Bytes(Line.begin(), Line.begin() + 4), (Bytes{0xC0, 0xDC, 0xDD, 0x01}));
}

TEST(LineDisciplineEncode, EscapesTheCrcToo) {
    // Frames chosen so that their CRC is C0DB and DBC0.
    EXPECT_THAT(Encode(Bytes{0x20, 0x4A, 0x42}),
                ElementsAre(0xC0, 0x20, 0x4A, 0x42, 0xDB, 0xDD, 0xDB, 0xDC, 0xC0));
    EXPECT_THAT(Encode(Bytes{0x20, 0x6C, 0x7A}),
                ElementsAre(0xC0, 0x20, 0x6C, 0x7A, 0xDB, 0xDC, 0xDB, 0xDD, 0xC0));
}

TEST(LineDisciplineDecoder, TakesAFrameApart) {
    CReceived Received;
    Received.m_Decoder.Put(Bytes{0xC0, 0xDB, 0xDC, 0xDB, 0xDD, 0x00, 0xB6, 0x23, 0xC0});
    EXPECT_THAT(Received.m_Frames, ElementsAre(Bytes{0xC0, 0xDB, 0x00}));
}

TEST(LineDisciplineDecoder, DoesNotCareWhereThePortionsAreCut) {
    const Bytes Frame = {0xC0, 0x01, 0xDB, 0xDB, 0xC0, 0x42};
    const Bytes Line = Encode(Frame);
    for (std::size_t nCut = 0; nCut <= Line.size(); ++nCut) {
        CReceived Received;
        Received.m_Decoder.Put(std::span(Line).first(nCut));
        Received.m_Decoder.Put(std::span(Line).subspan(nCut));
        EXPECT_THAT(Received.m_Frames, ElementsAre(Frame)) << "cut at " << nCut;
    }
    CReceived Received;
    for (const std::uint8_t Byte : Line) {
        Received.m_Decoder.Put(std::span(&Byte, 1));
    }
    EXPECT_THAT(Received.m_Frames, ElementsAre(Frame));
}

TEST(LineDisciplineDecoder, FramesMayShareAnEnd) {
    CReceived Received;
    Received.m_Decoder.Put(
        Bytes{0xC0, 0x01, 0x02, 0x03, 0xAD, 0xAD, 0xC0, 0x10, 0x05, 0x01, 0x2B, 0x60, 0xC0});
    EXPECT_THAT(Received.m_Frames, ElementsAre(Bytes{1, 2, 3}, Bytes{0x10, 5, 1}));
    EXPECT_EQ(Received.m_Decoder.GetTooShort(), 0U);
}

TEST(LineDisciplineDecoder, EndsInARowAreNoFrames) {
    CReceived Received;
    Received.m_Decoder.Put(Bytes(100, 0xC0));
    EXPECT_THAT(Received.m_Frames, IsEmpty());
    EXPECT_EQ(Received.m_Decoder.GetTooShort(), 0U);
    EXPECT_EQ(Received.m_Decoder.GetBadCrc(), 0U);
}

TEST(LineDisciplineDecoder, DropsAndCountsABadCrc) {
    CReceived Received;
    Received.m_Decoder.Put(Bytes{0xC0, 0x01, 0x02, 0x03, 0xAD, 0xAC, 0xC0});
    EXPECT_THAT(Received.m_Frames, IsEmpty());
    EXPECT_EQ(Received.m_Decoder.GetBadCrc(), 1U);
}

TEST(LineDisciplineDecoder, EverySingleBitErrorInAFrameIsNoticed) {
    const Bytes Frame = {0x10, 0x05, 0x01, 0x00, 0x7F};
    const Bytes Line = Encode(Frame);
    for (std::size_t nBit = 8; nBit < (Line.size() - 1) * 8; ++nBit) {
        Bytes Damaged = Line;
        Damaged[nBit / 8] = static_cast<std::uint8_t>(Damaged[nBit / 8] ^ (1U << (nBit % 8)));
        CReceived Received;
        Received.m_Decoder.Put(Damaged);
        EXPECT_THAT(Received.m_Frames, IsEmpty()) << "bit " << nBit;
    }
}

TEST(LineDisciplineDecoder, DropsAndCountsFramesBelowThreeBytes) {
    CReceived Received;
    for (const Bytes& rFrame : {Bytes{}, Bytes{1}, Bytes{1, 2}}) {
        Received.m_Decoder.Put(Encode(rFrame));
    }
    Received.m_Decoder.Put(Bytes{0xC0, 0x55, 0xC0});
    EXPECT_THAT(Received.m_Frames, IsEmpty());
    EXPECT_EQ(Received.m_Decoder.GetTooShort(), 4U);
    EXPECT_EQ(Received.m_Decoder.GetBadCrc(), 0U);
}

TEST(LineDisciplineDecoder, TakesThreeTo2048Bytes) {
    CReceived Received;
    Received.m_Decoder.Put(Encode(Bytes(3, 0xC0)));
    Received.m_Decoder.Put(Encode(Bytes(2048, 0xDB)));
    EXPECT_THAT(Received.m_Frames, ElementsAre(Bytes(3, 0xC0), Bytes(2048, 0xDB)));
}

TEST(LineDisciplineDecoder, DropsAndCountsFramesAbove2048Bytes) {
    CReceived Received;
    Received.m_Decoder.Put(Encode(Bytes(2049, 0x55)));
    EXPECT_THAT(Received.m_Frames, IsEmpty());
    EXPECT_EQ(Received.m_Decoder.GetTooLong(), 1U);
    EXPECT_EQ(Received.m_Decoder.GetBadCrc(), 0U);
}

// A line that never sends an END: one frame too long, and the next one is taken again.
TEST(LineDisciplineDecoder, ALongStreamWithoutEndIsOneFrameTooLong) {
    CReceived Received;
    for (int i = 0; i < 1000; ++i) {
        Received.m_Decoder.Put(Bytes(1000, 0x55));
    }
    Received.m_Decoder.Put(Encode(Bytes{1, 2, 3}));
    EXPECT_EQ(Received.m_Decoder.GetTooLong(), 1U);
    EXPECT_THAT(Received.m_Frames, ElementsAre(Bytes{1, 2, 3}));
}

TEST(LineDisciplineDecoder, AnEscapeCutByTheEndSpoilsItsFrameOnly) {
    CReceived Received;
    Received.m_Decoder.Put(Bytes{0xC0, 0x01, 0x02, 0x03, 0xAD, 0xAD, 0xDB, 0xC0});
    EXPECT_THAT(Received.m_Frames, IsEmpty());
    EXPECT_EQ(Received.m_Decoder.GetBadCrc(), 1U);
    // Would the escape last, the first byte of this one would be taken for its second half.
    Received.m_Decoder.Put(Bytes{0xDC, 0x02, 0x03});
    Received.m_Decoder.Put(Bytes{0xC0});
    Received.m_Decoder.Put(Encode(Bytes{1, 2, 3}));
    EXPECT_THAT(Received.m_Frames, ElementsAre(Bytes{1, 2, 3}));
}

TEST(LineDisciplineDecoder, AnEscapeOfNoMeaningSpoilsTheFrame) {
    // A lenient decoder would drop the ESC and find the CRC of 01 02 03 right.
    CReceived Received;
    Received.m_Decoder.Put(Bytes{0xC0, 0x01, 0xDB, 0x02, 0x03, 0xAD, 0xAD, 0xC0});
    EXPECT_THAT(Received.m_Frames, IsEmpty());
    EXPECT_EQ(Received.m_Decoder.GetBadCrc(), 1U);
}

TEST(LineDisciplineDecoder, GarbageBeforeAFrameDoesNotReachIt) {
    CReceived Received;
    Received.m_Decoder.Put(Bytes{0x13, 0x37, 0xDB, 0xFF, 0x00, 0x42});
    Received.m_Decoder.Put(Encode(Bytes{1, 2, 3}));
    EXPECT_THAT(Received.m_Frames, ElementsAre(Bytes{1, 2, 3}));
    EXPECT_EQ(Received.m_Decoder.GetBadCrc(), 1U);
}

TEST(LineDisciplineDecoder, FindsItsWayBackAfterALostEnd) {
    // The END between two frames is lost: they merge to one of bad CRC; the third is whole again.
    Bytes First = Encode(Bytes{1, 2, 3});
    Bytes Second = Encode(Bytes{4, 5, 6});
    First.pop_back();
    Second.erase(Second.begin());
    CReceived Received;
    Received.m_Decoder.Put(Concatenate({First, Second, Encode(Bytes{7, 8, 9})}));
    EXPECT_THAT(Received.m_Frames, ElementsAre(Bytes{7, 8, 9}));
    EXPECT_EQ(Received.m_Decoder.GetBadCrc(), 1U);
}

TEST(LineDisciplineDecoder, ResetForgetsAFrameThatHasBegun) {
    CReceived Received;
    Received.m_Decoder.Put(Bytes{0xC0, 0x01, 0x02, 0xDB});
    Received.m_Decoder.Reset();
    Received.m_Decoder.Put(Bytes{0x01, 0x02, 0x03, 0xAD, 0xAD, 0xC0});
    EXPECT_THAT(Received.m_Frames, ElementsAre(Bytes{1, 2, 3}));
    EXPECT_EQ(Received.m_Decoder.GetBadCrc(), 0U);
}

TEST(LineDisciplineDecoder, BytesPutFromWithinTheHandlerDoNotTouchTheFrameInHand) {
    std::vector<Bytes> Frames;
    CDecoder* pDecoder = nullptr;
    CDecoder Decoder([&](std::span<const std::uint8_t> Frame) {
        if (Frames.empty()) {
            Frames.emplace_back();
            pDecoder->Put(Encode(Bytes{9, 9, 9, 9, 9, 9, 9, 9}));
            Frames.front().assign(Frame.begin(), Frame.end());
        } else {
            Frames.emplace_back(Frame.begin(), Frame.end());
        }
    });
    pDecoder = &Decoder;
    Decoder.Put(Encode(Bytes{1, 2, 3}));
    EXPECT_THAT(Frames, ElementsAre(Bytes{1, 2, 3}, Bytes(8, 9)));
}
