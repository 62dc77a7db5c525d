#include "rvlib/settings/path.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/tempdirectory.h"
#include "tests/support/textfiles.h"

namespace {

namespace fs = std::filesystem;

TEST(CPathTest, NormalisesItself) {
    EXPECT_EQ(CPath("C:/bin\\ctrl//").GetText(), "C:\\bin\\ctrl");
    EXPECT_EQ(CPath("a").GetText(), "a");
    EXPECT_EQ(CPath("\\\\").GetText(), "");
    EXPECT_EQ(CPath("").GetText(), "");
    EXPECT_EQ(CPath("/srv/"), CPath("\\srv"));
}

TEST(CPathTest, AppendPutsOneSeparatorBetween) {
    EXPECT_EQ(CPath("C:\\bin").Append("cnf").GetText(), "C:\\bin\\cnf");
    EXPECT_EQ(CPath("C:\\bin\\").Append("\\\\cnf/").Append("/mcon.xdb").GetText(), "C:\\bin\\cnf\\mcon.xdb");
}

TEST(CPathTest, AppendReturnsThePathItself) {
    CPath Path("a");
    EXPECT_EQ(&Path.Append("b"), &Path);
}

TEST(CPathTest, AppendOfAnEmptyPartChangesNothing) {
    EXPECT_EQ(CPath("a").Append("").GetText(), "a");
    EXPECT_EQ(CPath("a").Append("\\").GetText(), "a");
    EXPECT_EQ(CPath("").Append("").GetText(), "");
}

TEST(CPathTest, AppendToAnEmptyPathTakesThePart) {
    EXPECT_EQ(CPath("").Append("b\\c").GetText(), "b\\c");
}

TEST(CPathTest, SplitsIntoDirectoryAndFileName) {
    const CPath Path("C:\\bin\\ctrl\\mcon.exe");
    EXPECT_EQ(Path.GetDirectory().GetText(), "C:\\bin\\ctrl");
    EXPECT_EQ(Path.GetFileName(), "mcon.exe");
    EXPECT_EQ(CPath("a\\\\b").GetDirectory().GetText(), "a");
    EXPECT_EQ(CPath("mcon.exe").GetDirectory().GetText(), "");
    EXPECT_EQ(CPath("mcon.exe").GetFileName(), "mcon.exe");
    EXPECT_EQ(CPath("").GetFileName(), "");
}

TEST(CPathTest, TheFullPathIsAbsoluteAndResolved) {
    EXPECT_EQ(CPath("/srv/ctrl").Append("..").GetFullPath().GetText(), "\\srv");
    EXPECT_EQ(CPath("/" + std::string(259, 'x')).GetFullPath().GetText().size(), 260U);
    EXPECT_TRUE(CPath("/" + std::string(260, 'x')).GetFullPath().IsEmpty());
}

TEST(CPathTest, TellsDirectoriesFromFilesAndDevices) {
    const CTempDirectory Directory;
    WriteTestFile(Directory.At("file"), "");
    EXPECT_TRUE(CPath(Directory.At("")).IsDirectory());
    EXPECT_FALSE(CPath(Directory.At("")).IsFile());
    EXPECT_TRUE(CPath(Directory.At("file")).IsFile());
    EXPECT_FALSE(CPath(Directory.At("file")).IsDirectory());
    EXPECT_FALSE(CPath("/dev/null").IsFile());
    EXPECT_FALSE(CPath(Directory.At("missing")).IsFile());
    EXPECT_FALSE(CPath("").IsDirectory());
}

TEST(CPathTest, CreateDirectoriesMakesAllThatIsMissing) {
    const CTempDirectory Directory;
    const CPath Path(Directory.At("a/b/c"));
    EXPECT_TRUE(Path.CreateDirectories());
    EXPECT_TRUE(Path.IsDirectory());
    EXPECT_EQ(fs::status(Directory.At("a")).permissions(), fs::perms::owner_all | fs::perms::group_all);
}

TEST(CPathTest, CreateDirectoriesSucceedsWhereThereIsOne) {
    const CTempDirectory Directory;
    EXPECT_TRUE(CPath(Directory.At("")).CreateDirectories());
}

TEST(CPathTest, CreateDirectoriesFailsWhereAFileIsInTheWay) {
    const CTempDirectory Directory;
    WriteTestFile(Directory.At("file"), "");
    EXPECT_FALSE(CPath(Directory.At("file/a/b")).CreateDirectories());
    EXPECT_FALSE(CPath("").CreateDirectories());
}

}  // namespace
