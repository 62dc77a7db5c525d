#include "rvlib/settings/textfile.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "tests/support/tempdirectory.h"
#include "tests/support/textfiles.h"

namespace {

using namespace std::string_view_literals;

std::vector<std::uint8_t> BytesOf(std::string_view Text) {
    return {Text.begin(), Text.end()};
}

std::u16string Utf8(std::string_view Text) {
    return DecodeUtf8(BytesOf(Text));
}

class ReadTextFileTest : public testing::Test {
protected:
    /// Reads a file of these bytes; the text goes to m_Text.
    TextEncoding Read(std::string_view Contents) {
        WriteTestFile(m_Directory.At("file"), Contents);
        return ReadTextFile(m_Directory.At("file"), m_Text);
    }

    CTempDirectory m_Directory;
    std::string m_Text = "before";
};

TEST_F(ReadTextFileTest, AMissingFileGivesNoText) {
    EXPECT_EQ(ReadTextFile(m_Directory.At("missing"), m_Text), eNoText);
    EXPECT_EQ(ReadTextFile(m_Directory.At(""), m_Text), eNoText);
    EXPECT_EQ(m_Text, "before");
}

TEST_F(ReadTextFileTest, TextWithoutAMarkIsSingleByte) {
    EXPECT_EQ(Read("<a>\xC3\xA4</a>"), eSingleByteText);
    EXPECT_EQ(m_Text, "<a>\xC3\xA4</a>");
}

TEST_F(ReadTextFileTest, ReadsUtf16LowByteFirst) {
    EXPECT_EQ(Read("\xFF\xFE\x41\x00\xE4\x00\xAC\x20"sv), eUtf16LittleEndian);
    EXPECT_EQ(m_Text, "A\xC3\xA4\xE2\x82\xAC");
}

TEST_F(ReadTextFileTest, ReadsUtf16HighByteFirst) {
    EXPECT_EQ(Read("\xFE\xFF\x00\x41\x00\xE4\x20\xAC"sv), eUtf16BigEndian);
    EXPECT_EQ(m_Text, "A\xC3\xA4\xE2\x82\xAC");
}

TEST_F(ReadTextFileTest, ReadsUtf8BehindItsMark) {
    EXPECT_EQ(Read("\xEF\xBB\xBF<a>\xC3\xA4</a>"), eUtf8);
    EXPECT_EQ(m_Text, "<a>\xC3\xA4</a>");
}

TEST_F(ReadTextFileTest, AZeroAmongTheFirstTwoBytesMeansUtf16LowByteFirst) {
    EXPECT_EQ(Read("A\0B\0"sv), eUtf16LittleEndian);
    EXPECT_EQ(m_Text, "AB");
    // The high byte first, read as if it came last.
    EXPECT_EQ(Read("\0A\0B"sv), eUtf16LittleEndian);
    EXPECT_EQ(m_Text, "\xE4\x84\x80\xE4\x88\x80");
    EXPECT_EQ(Read("AB\0\0"sv), eSingleByteText);
    EXPECT_EQ(m_Text, "AB\0\0"sv);
}

TEST_F(ReadTextFileTest, BelowThreeBytesAZeroMeansNothing) {
    EXPECT_EQ(Read("A\0"sv), eSingleByteText);
    EXPECT_EQ(m_Text, "A\0"sv);
    EXPECT_EQ(Read("A\0B"sv), eUtf16LittleEndian);
    EXPECT_EQ(m_Text, "A");
}

TEST_F(ReadTextFileTest, AnEmptyFileIsEmptySingleByteText) {
    EXPECT_EQ(Read(""), eSingleByteText);
    EXPECT_EQ(m_Text, "");
}

TEST_F(ReadTextFileTest, AMarkAloneIsEmptyText) {
    EXPECT_EQ(Read("\xFF\xFE"sv), eUtf16LittleEndian);
    EXPECT_EQ(m_Text, "");
    EXPECT_EQ(Read("\xFE\xFF"sv), eUtf16BigEndian);
    EXPECT_EQ(m_Text, "");
    EXPECT_EQ(Read("\xEF\xBB\xBF"sv), eUtf8);
    EXPECT_EQ(m_Text, "");
    EXPECT_EQ(Read("\xEF\xBB"sv), eSingleByteText);
}

TEST_F(ReadTextFileTest, AnOddByteAtTheEndOfUtf16IsDropped) {
    EXPECT_EQ(Read("\xFF\xFE\x41\x00\x42"sv), eUtf16LittleEndian);
    EXPECT_EQ(m_Text, "A");
}

TEST_F(ReadTextFileTest, SurrogatePairsBecomeOneCharacter) {
    // U+1F600 is D83D DE00.
    EXPECT_EQ(Read("\xFF\xFE\x3D\xD8\x00\xDE"sv), eUtf16LittleEndian);
    EXPECT_EQ(m_Text, "\xF0\x9F\x98\x80");
}

TEST_F(ReadTextFileTest, ALoneSurrogateIsReplaced) {
    EXPECT_EQ(Read("\xFF\xFE\x3D\xD8\x41\x00\x00\xDE\x3D\xD8"sv), eUtf16LittleEndian);
    EXPECT_EQ(m_Text,
              "\xEF\xBF\xBD"
              "A"
              "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(DecodeUtf8Test, DecodesOneTwoAndThreeBytes) {
    EXPECT_EQ(Utf8("A\xC3\xA4\xE2\x82\xAC."), u"A\u00E4\u20AC.");
}

TEST(DecodeUtf8Test, LongerFormsAreReplacedAsAWhole) {
    EXPECT_EQ(Utf8("\xF0\x9F\x98\x80."), u"\uFFFD.");
    EXPECT_EQ(Utf8("\xF8\x88\x80\x80\x80."), u"\uFFFD.");
    EXPECT_EQ(Utf8("\xFC\x84\x80\x80\x80\x80."), u"\uFFFD.");
}

TEST(DecodeUtf8Test, TheLastSequenceOfTheInputPassesByteByByte) {
    EXPECT_EQ(Utf8("\xC3\xA4"), u"\u00C3\u00A4");
    EXPECT_EQ(Utf8("\xE2\x82\xAC"), u"\u00E2\u0082\u00AC");
    EXPECT_EQ(Utf8("\xF0\x9F\x98\x80"), u"\u00F0\u009F\u0098\u0080");
}

TEST(DecodeUtf8Test, BytesThatBeginNoCompleteFormPassAsTheyAre) {
    EXPECT_EQ(Utf8("\x80.\xFE\xFF."), u"\u0080.\u00FE\u00FF.");
    EXPECT_EQ(Utf8("\xE4ndern"), u"\u00E4ndern");
    EXPECT_EQ(Utf8("\xE2\x82."), u"\u00E2\u0082.");
    EXPECT_EQ(Utf8("\xE2"), u"\u00E2");
    EXPECT_EQ(Utf8(""), u"");
}

}  // namespace
