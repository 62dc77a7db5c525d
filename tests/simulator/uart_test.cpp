// What receivers make of a line, by hand: bits drawn on paper.
#include "simulator/uart.h"

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Receive(const Bytes& rSent, std::uint32_t SenderBaud, std::uint32_t ReceiverBaud,
              bool bInverted = false) {
    return Uart::Receive(rSent, SenderBaud, ReceiverBaud, bInverted);
}

}  // namespace

TEST(Uart, AtTheSameRateBytesStayAsTheyAre) {
    const Bytes Sent = {0xC0, 0x00, 0x55, 0xFF, 0x81};
    EXPECT_EQ(Receive(Sent, 9600, 9600), Sent);
}

TEST(Uart, AReceiverTwiceAsFastSeesEachBitTwice) {
    // 55 on the wire: 0 10101010 1. In half bits, from the start bit: 00 11 00 11 00 11 00 11 00 11; the
    // first byte takes ten of them, the next begins at the next falling edge.
    EXPECT_EQ(Receive({0x55}, 9600, 19200), (Bytes{0x66, 0xE6}));
    // All low for longer than a byte: one, whose missing stop bit doesn't matter, and no further edge.
    EXPECT_EQ(Receive({0x00}, 9600, 19200), Bytes{0x00});
}

TEST(Uart, AStartBitOfFourBitsIsThreeZerosMore) {
    EXPECT_EQ(Receive({0xFF}, 9600, 38400), Bytes{0xF8});
}

TEST(Uart, AReceiverMuchSlowerTakesAShortStartBitForNoise) {
    EXPECT_EQ(Receive({0xFF}, 115200, 9600), Bytes{});
}

TEST(Uart, InvertedLevelsBeginAByteWhereASentBitRises) {
    // The wire rests low; the first falling edge is the one behind the start bit, and the stop bit is
    // missing.
    EXPECT_EQ(Receive({0x55}, 9600, 9600, true), Bytes{0x55});
    EXPECT_EQ(Receive({0x00}, 9600, 9600, true), Bytes{0x00});
    // 81 on the wire: 0 10000001 1, inverted 1 01111110 0: an edge behind the start bit, where seven ones and
    // the line's rest follow; then none.
    EXPECT_EQ(Receive({0x81}, 9600, 9600, true), Bytes{0x3F});
}

TEST(Uart, ThreePercentAreToleratedAndTenAreNot) {
    EXPECT_EQ(Receive({0x5A}, 9600, 9900), Bytes{0x5A});
    EXPECT_NE(Receive({0x5A}, 9600, 10600), Bytes{0x5A});
}
