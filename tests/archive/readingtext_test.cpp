#include "archive/readingtext.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

using Readings = std::vector<CArchivedReading>;

}  // namespace

TEST(ReadingText, ComesBackAsItWas) {
    const Readings Extremes = {{0, 0, 0},
                               {std::numeric_limits<std::uint32_t>::max(), -32768, 32767},
                               {0, 32767, -32768},
                               {7, -1, 1}};
    EXPECT_EQ(ReadingsFromText(ReadingsToText(Extremes)), Extremes);
    EXPECT_EQ(ReadingsFromText(ReadingsToText({})), Readings());
    std::mt19937 Generator(1);
    Readings Random;
    for (int i = 0; i < 1000; ++i) {
        Random.push_back({static_cast<std::uint32_t>(Generator()), static_cast<std::int16_t>(Generator()),
                          static_cast<std::int16_t>(Generator())});
    }
    EXPECT_EQ(ReadingsFromText(ReadingsToText(Random)), Random);
}

TEST(ReadingText, AReadingAmongOthersTakesFourCharacters) {
    Readings Usual;
    for (std::uint32_t i = 0; i < 300; ++i) {
        Usual.push_back(
            {i * 50, static_cast<std::int16_t>(150 + i % 7), static_cast<std::int16_t>(-80 + i % 5)});
    }
    EXPECT_LE(ReadingsToText(Usual).size(), 300U * 4U + 8U);
}

TEST(ReadingText, WhatIsNoneOfItIsRefused) {
    const std::string Good = ReadingsToText(Readings{{100, 5, 6}});
    EXPECT_FALSE(ReadingsFromText(Good + "!").has_value());
    EXPECT_FALSE(ReadingsFromText("A").has_value()) << "half a byte";
    EXPECT_FALSE(ReadingsFromText("AAA").has_value()) << "two numbers of three";
    EXPECT_FALSE(ReadingsFromText("////////////").has_value()) << "a number without an end";
    EXPECT_FALSE(
        ReadingsFromText(BytesToText(std::vector<unsigned char>{0, 0xFE, 0xFF, 0x07, 0})).has_value())
        << "beyond 16 bits";
}

TEST(ReadingText, BytesAreThoseOfTheStandard) {
    // RFC 4648, section 10.
    const std::string Words = "foobar";
    const std::vector<unsigned char> Bytes(Words.begin(), Words.end());
    EXPECT_EQ(BytesToText(Bytes), "Zm9vYmFy");
    EXPECT_EQ(BytesToText(std::span(Bytes).first(5)), "Zm9vYmE");
    EXPECT_EQ(BytesToText(std::span(Bytes).first(4)), "Zm9vYg");
    EXPECT_EQ(BytesFromText("Zm9vYg"), std::vector<unsigned char>(Bytes.begin(), Bytes.begin() + 4));
}
