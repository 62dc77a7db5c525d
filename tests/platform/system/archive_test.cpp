#include "platform/system/archive.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Bytes = std::vector<std::uint8_t>;
using testing::ElementsAre;

Bytes StoredText(const std::string& rText) {
    CArchive Archive(CArchive::eStore);
    Archive << rText;
    return Archive.GetBytes();
}

/// The bytes of a text's length prefix.
Bytes PrefixOf(std::size_t nLength) {
    const Bytes Stored = StoredText(std::string(nLength, 'x'));
    return Bytes(Stored.begin(), Stored.end() - static_cast<std::ptrdiff_t>(nLength));
}

TEST(CArchiveTest, NumbersAreLittleEndianWithoutPadding) {
    CArchive Archive(CArchive::eStore);
    Archive << std::uint8_t{0x7F} << std::int32_t{-2} << std::uint32_t{0x12345678};
    EXPECT_THAT(Archive.GetBytes(), ElementsAre(0x7F, 0xFE, 0xFF, 0xFF, 0xFF, 0x78, 0x56, 0x34, 0x12));
}

TEST(CArchiveTest, ADoubleIsItsEightBytes) {
    CArchive Archive(CArchive::eStore);
    // 1.0 is 3FF0000000000000, -2.5 is C004000000000000.
    Archive << 1.0 << -2.5;
    EXPECT_THAT(Archive.GetBytes(), ElementsAre(0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 0, 0, 0, 0, 0, 0, 0x04, 0xC0));
}

TEST(CArchiveTest, ATextIsItsLengthAndItsBytesWithoutATerminator) {
    EXPECT_THAT(StoredText("3.1"), ElementsAre(3, '3', '.', '1'));
    EXPECT_THAT(StoredText(""), ElementsAre(0));
    EXPECT_THAT(StoredText(std::string("a\0b", 3)), ElementsAre(3, 'a', 0, 'b'));
}

TEST(CArchiveTest, ATextOf254BytesHasALengthOfOneByte) {
    EXPECT_THAT(PrefixOf(254), ElementsAre(0xFE));
}

TEST(CArchiveTest, ATextOf255BytesHasALengthOf16Bits) {
    EXPECT_THAT(PrefixOf(255), ElementsAre(0xFF, 0xFF, 0x00));
}

TEST(CArchiveTest, ATextOf65533BytesHasALengthOf16Bits) {
    EXPECT_THAT(PrefixOf(65533), ElementsAre(0xFF, 0xFD, 0xFF));
}

TEST(CArchiveTest, ATextOf65534BytesHasALengthOf32Bits) {
    EXPECT_THAT(PrefixOf(65534), ElementsAre(0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0x00));
}

TEST(CArchiveTest, WhatWasStoredIsLoaded) {
    CArchive Store(CArchive::eStore);
    EXPECT_TRUE(Store.IsStoring());
    EXPECT_FALSE(Store.IsLoading());
    std::vector<std::string> Texts;
    for (const std::size_t nLength : {0U, 1U, 254U, 255U, 65533U, 65534U, 100000U}) {
        Texts.emplace_back(nLength, 'y');
        Store << Texts.back();
    }
    Store << std::uint8_t{200} << std::numeric_limits<std::int32_t>::min() << 4000000000U << -0.0
          << std::numeric_limits<double>::denorm_min();

    CArchive Load(CArchive::eLoad, Store.GetBytes());
    EXPECT_TRUE(Load.IsLoading());
    for (const std::string& rText : Texts) {
        std::string Loaded;
        Load >> Loaded;
        EXPECT_EQ(Loaded, rText);
    }
    std::uint8_t Byte = 0;
    std::int32_t Signed = 0;
    std::uint32_t Unsigned = 0;
    double Zero = 1;
    double Tiny = 1;
    Load >> Byte >> Signed >> Unsigned >> Zero >> Tiny;
    EXPECT_EQ(Byte, 200);
    EXPECT_EQ(Signed, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(Unsigned, 4000000000U);
    EXPECT_EQ(Zero, 0.0);
    EXPECT_TRUE(std::signbit(Zero));
    EXPECT_EQ(Tiny, std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(Load.GetRemaining(), 0U);
}

/// Loads one of everything.
void LoadAll(CArchive& rArchive) {
    std::uint8_t Byte = 0;
    std::int32_t Signed = 0;
    std::uint32_t Unsigned = 0;
    double Number = 0;
    std::string Short;
    std::string Long;
    std::string VeryLong;
    rArchive >> Byte >> Short >> Signed >> Long >> Unsigned >> Number >> VeryLong;
}

TEST(CArchiveTest, AnArchiveCutAtAnyPositionThrows) {
    CArchive Store(CArchive::eStore);
    Store << std::uint8_t{1} << std::string("abc") << std::int32_t{2} << std::string(300, 'l')
          << std::uint32_t{3} << 4.0 << std::string(65534, 'v');
    const Bytes Whole = Store.GetBytes();
    CArchive Complete(CArchive::eLoad, Whole);
    EXPECT_NO_THROW(LoadAll(Complete));
    // Every position of the front with all prefixes in it, then coarser through the long text. The bytes are
    // in a block of exactly their size, so that the address sanitizer sees a read beyond.
    for (std::size_t nSize = 0; nSize < Whole.size(); nSize += (nSize < 400) ? 1 : 997) {
        CArchive Cut(CArchive::eLoad,
                     Bytes(Whole.begin(), Whole.begin() + static_cast<std::ptrdiff_t>(nSize)));
        EXPECT_THROW(LoadAll(Cut), CArchiveException) << nSize;
    }
    CArchive LastByteMissing(CArchive::eLoad, Bytes(Whole.begin(), Whole.end() - 1));
    EXPECT_THROW(LoadAll(LastByteMissing), CArchiveException);
}

TEST(CArchiveTest, TheTargetIsUnchangedWhenLoadingFails) {
    CArchive Number(CArchive::eLoad, {1, 2, 3});
    std::int32_t Signed = 77;
    EXPECT_THROW(Number >> Signed, CArchiveException);
    EXPECT_EQ(Signed, 77);
    CArchive Short(CArchive::eLoad, {3, 'a', 'b'});
    std::string Text = "before";
    EXPECT_THROW(Short >> Text, CArchiveException);
    EXPECT_EQ(Text, "before");
}

// Four gigabytes are announced and three bytes are there: the length must be checked before memory is asked
// for.
TEST(CArchiveTest, AHugeLengthIsRefusedWithoutAllocatingIt) {
    CArchive Archive(CArchive::eLoad, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 'a', 'b', 'c'});
    std::string Text;
    EXPECT_THROW(Archive >> Text, CArchiveException);
    EXPECT_LT(Text.capacity(), 100U);
}

TEST(CArchiveTest, ALengthOf65534In16BitsIsImpossible) {
    Bytes Stored(3 + 65534, 'x');
    Stored[0] = 0xFF;
    Stored[1] = 0xFE;
    Stored[2] = 0xFF;
    CArchive Archive(CArchive::eLoad, Stored);
    std::string Text;
    EXPECT_THROW(Archive >> Text, CArchiveException);
}

TEST(CArchiveTest, TheWrongDirectionThrows) {
    std::uint8_t Byte = 0;
    CArchive Store(CArchive::eStore);
    EXPECT_THROW(Store >> Byte, CArchiveException);
    CArchive Load(CArchive::eLoad, {1});
    EXPECT_THROW(Load << Byte, CArchiveException);
    EXPECT_EQ(Load.GetRemaining(), 1U);
}

}  // namespace
