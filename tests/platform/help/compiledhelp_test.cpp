#include "platform/help/compiledhelp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <random>
#include <span>

#include "platform/help/helpshelf.h"
#include "platform/system/files.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/testpaths.h"

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<std::uint8_t>;

class CompiledHelpTest : public testing::Test {
protected:
    std::string Write(const std::string& rName, const Bytes& rBytes) const {
        const std::string Path = m_Place.At(rName);
        std::ofstream(Path, std::ios::binary)
            .write(reinterpret_cast<const char*>(rBytes.data()), static_cast<std::streamsize>(rBytes.size()));
        return Path;
    }
    /// Where a text stands in the file.
    static std::size_t Find(const Bytes& rBytes, std::string_view Text) {
        const auto Found = std::search(rBytes.begin(), rBytes.end(), Text.begin(), Text.end());
        EXPECT_NE(Found, rBytes.end()) << Text;
        return static_cast<std::size_t>(Found - rBytes.begin());
    }
    static void Put32(Bytes& rBytes, std::size_t nPlace, std::uint32_t Value) {
        for (std::size_t i = 0; i < 4; ++i) {
            rBytes[nPlace + i] = static_cast<std::uint8_t>(Value >> (8 * i));
        }
    }

    CTempDirectory m_Place;
    const std::string m_English = TestProgram("help/en_Falconet.chm");
    const Bytes m_Bytes = Files::ReadAll(m_English).value_or(Bytes());
};

/// The pages as they stand in the tree, byte for byte.
TEST_F(CompiledHelpTest, HoldsThePagesPicturesAndListsThatItWasMadeOf) {
    const CCompiledHelp Help(m_English);
    ASSERT_EQ(Help.GetState(), CCompiledHelp::State::eRead);
    std::size_t nPages = 0;
    for (const char* pFolder : {"en", "images"}) {
        for (const auto& rEntry : fs::directory_iterator(TestData("../help") / pFolder)) {
            const Bytes Expected = Files::ReadAll(rEntry.path().string()).value();
            const std::string* const pFound = Help.Find(rEntry.path().filename().string());
            ASSERT_NE(pFound, nullptr) << rEntry.path();
            EXPECT_TRUE(std::ranges::equal(Expected, *pFound, {}, {}, [](char c) {
                return static_cast<std::uint8_t>(c);
            })) << rEntry.path();
            nPages += rEntry.path().extension() == ".htm" ? 1 : 0;
        }
    }
    EXPECT_EQ(Help.GetPages().size(), nPages);
    EXPECT_NE(Help.FindByEnding(".HHC"), nullptr);
    EXPECT_NE(Help.FindByEnding(".hhk"), nullptr);
}

TEST_F(CompiledHelpTest, FindsAPageWithAndWithoutASlashAndInAnyCase) {
    const CCompiledHelp Help(m_English);
    const std::string* const pPage = Help.Find("PB_004.htm");
    ASSERT_NE(pPage, nullptr);
    EXPECT_EQ(Help.Find("/PB_004.htm"), pPage);
    EXPECT_EQ(Help.Find("pb_004.HTM"), pPage);
    EXPECT_EQ(Help.Find("PB_999.htm"), nullptr);
    EXPECT_EQ(Help.Find(""), nullptr);
    EXPECT_EQ(Help.Find("../../etc/passwd"), nullptr);
}

TEST_F(CompiledHelpTest, TellsAMissingFileFromADamagedOne) {
    EXPECT_EQ(CCompiledHelp(m_Place.At("none.chm")).GetState(), CCompiledHelp::State::eMissing);
    EXPECT_EQ(CCompiledHelp(m_Place.GetPath().string()).GetState(), CCompiledHelp::State::eMissing)
        << "a directory";
    EXPECT_EQ(CCompiledHelp(Write("empty.chm", {})).GetState(), CCompiledHelp::State::eDamaged);
    EXPECT_EQ(CCompiledHelp(Write("text.chm", Bytes(5000, 'x'))).GetState(), CCompiledHelp::State::eDamaged);
    EXPECT_EQ(CCompiledHelp().GetState(), CCompiledHelp::State::eMissing);
}

TEST_F(CompiledHelpTest, AFileThatIsCutOffIsDamaged) {
    for (const std::size_t nSize : {std::size_t{50}, std::size_t{96}, std::size_t{200}, m_Bytes.size() / 2}) {
        const CCompiledHelp Help(
            Write("cut.chm", Bytes(m_Bytes.begin(), m_Bytes.begin() + static_cast<std::ptrdiff_t>(nSize))));
        EXPECT_EQ(Help.GetState(), CCompiledHelp::State::eDamaged) << nSize;
        EXPECT_TRUE(Help.GetPages().empty()) << "nothing of it counts";
    }
}

/// Sizes that lead the library out of its memory: of the directory's blocks, of the free space in one, of the
/// names. What matters is that this program goes on.
TEST_F(CompiledHelpTest, WrongSizesEndNothingButTheirOwnProcess) {
    const std::size_t nDirectory = Find(m_Bytes, "ITSP");
    const std::size_t nBlock = Find(m_Bytes, "PMGL");
    for (const std::uint32_t Value : {0U, 1U, 19U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        Bytes Blocks = m_Bytes;
        Put32(Blocks, nDirectory + 0x10, Value);
        EXPECT_EQ(CCompiledHelp(Write("blocks.chm", Blocks)).GetState(), CCompiledHelp::State::eDamaged)
            << Value;
        Bytes Free = m_Bytes;
        Put32(Free, nBlock + 4, Value);
        EXPECT_NE(CCompiledHelp(Write("free.chm", Free)).GetState(), CCompiledHelp::State::eMissing) << Value;
    }
    Bytes Names = m_Bytes;
    std::fill_n(Names.begin() + static_cast<std::ptrdiff_t>(nBlock) + 20, 200, std::uint8_t{0xFF});
    EXPECT_EQ(CCompiledHelp(Write("names.chm", Names)).GetState(), CCompiledHelp::State::eDamaged);
}

/// The directory's blocks are a list: here it leads back to its beginning.
TEST_F(CompiledHelpTest, ADirectoryWithoutEndIsGivenUp) {
    Bytes Endless = m_Bytes;
    const std::size_t nBlock = Find(m_Bytes, "PMGL");
    Put32(Endless, nBlock + 0x10, 0);
    const auto Begin = std::chrono::steady_clock::now();
    EXPECT_EQ(CCompiledHelp(Write("endless.chm", Endless), 100).GetState(), CCompiledHelp::State::eDamaged);
    EXPECT_LT(std::chrono::steady_clock::now() - Begin, std::chrono::seconds(20));
}

/// Each of these has another byte or four turned over, anywhere; half of them in directory and tables.
TEST_F(CompiledHelpTest, AThousandDamagesNeverEndTheProgram) {
    std::mt19937 Random(20);
    int nRead = 0;
    for (int i = 0; i < 1000; ++i) {
        Bytes Damaged = m_Bytes;
        const std::size_t nLast = i % 2 == 0 ? Damaged.size() - 4 : std::size_t{0x3000};
        std::size_t nPlace = std::uniform_int_distribution<std::size_t>(0, nLast)(Random);
        if (i % 3 == 0) {
            Put32(Damaged, nPlace, static_cast<std::uint32_t>(Random()));
        } else {
            Damaged[nPlace] = static_cast<std::uint8_t>(Random());
        }
        const CCompiledHelp Help(Write("damaged.chm", Damaged), 500);
        nRead += Help.GetState() == CCompiledHelp::State::eRead ? 1 : 0;
        for (const std::string& rPage : Help.GetPages()) {
            ASSERT_NE(Help.Find(rPage), nullptr);
        }
    }
    EXPECT_GT(nRead, 0) << "a byte in a text harms nobody";
    EXPECT_LT(nRead, 1000);
}

/// The names that a file gives its pages are names in it, and nowhere else.
TEST_F(CompiledHelpTest, NamesThatLeadOutOfTheFileAreNamesLikeOthers) {
    Bytes Hostile = m_Bytes;
    const std::size_t nName = Find(m_Bytes, "/PB_004.htm");
    const std::string_view Name = "/../../a.ht";
    std::ranges::copy(Name, Hostile.begin() + static_cast<std::ptrdiff_t>(nName));
    const CCompiledHelp Help(Write("hostile.chm", Hostile));
    ASSERT_EQ(Help.GetState(), CCompiledHelp::State::eRead);
    EXPECT_EQ(Help.Find("PB_004.htm"), nullptr);
    EXPECT_NE(Help.Find("/../../a.ht"), nullptr);
    EXPECT_FALSE(fs::exists(m_Place.GetPath().parent_path().parent_path() / "a.ht"));
}

TEST_F(CompiledHelpTest, TheShelfReadsAFileOnceAndAnewWhenItIsAnotherOne) {
    const std::string File = m_Place.At("a.chm");
    EXPECT_EQ(HelpShelf::Take(File)->GetState(), CCompiledHelp::State::eMissing);
    Write("a.chm", m_Bytes);
    const auto pFirst = HelpShelf::Take(File);
    EXPECT_EQ(pFirst->GetState(), CCompiledHelp::State::eRead) << "there meanwhile";
    EXPECT_EQ(HelpShelf::Take(File), pFirst);
    Write("a.chm", Bytes(10, 'x'));
    EXPECT_EQ(HelpShelf::Take(File)->GetState(), CCompiledHelp::State::eDamaged);
    fs::remove(File);
    EXPECT_EQ(HelpShelf::Take(File)->GetState(), CCompiledHelp::State::eMissing);
    EXPECT_EQ(pFirst->GetState(), CCompiledHelp::State::eRead) << "whoever has it keeps it";
}

}  // namespace
