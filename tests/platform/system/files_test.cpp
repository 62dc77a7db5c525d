#include "platform/system/files.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

#include "tests/support/tempdirectory.h"
#include "tests/support/textfiles.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
namespace fs = std::filesystem;

/// The path in the module's own form.
std::string WithBackslashes(std::string Path) {
    std::replace(Path.begin(), Path.end(), '/', '\\');
    return Path;
}

fs::perms PermissionsOf(const fs::path& rPath) {
    return fs::status(rPath).permissions();
}

TEST(FilesTest, BothSeparatorsMeanThePlatformsOwn) {
    EXPECT_EQ(Files::ToNative("\\srv\\cnf/mcon.xdb"), "/srv/cnf/mcon.xdb");
}

TEST(FilesTest, TheFullPathIsAbsoluteAndResolved) {
    EXPECT_EQ(Files::GetFullPath("/srv/./ctrl/../cnf"), "\\srv\\cnf");
    EXPECT_EQ(Files::GetFullPath("\\srv\\ctrl\\.."), "\\srv\\");
    EXPECT_EQ(Files::GetFullPath("cnf"), WithBackslashes((fs::current_path() / "cnf").string()));
    EXPECT_EQ(Files::GetFullPath(""), "");
}

TEST(FilesTest, AFullPathOfMoreThan260CharactersIsEmpty) {
    EXPECT_EQ(Files::GetFullPath("/" + std::string(259, 'x')).size(), 260U);
    EXPECT_EQ(Files::GetFullPath("/" + std::string(260, 'x')), "");
}

TEST(FilesTest, TellsFilesFromDirectoriesAndDevices) {
    const CTempDirectory Directory;
    WriteTestFile(Directory.At("file"), "x");
    ASSERT_EQ(::mkfifo(Directory.At("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(Files::IsFile(WithBackslashes(Directory.At("file"))));
    EXPECT_FALSE(Files::IsDirectory(Directory.At("file")));
    EXPECT_TRUE(Files::IsDirectory(WithBackslashes(Directory.At(""))));
    EXPECT_FALSE(Files::IsFile(Directory.At("")));
    EXPECT_FALSE(Files::IsFile("/dev/null"));
    EXPECT_FALSE(Files::IsDirectory("/dev/null"));
    EXPECT_FALSE(Files::IsFile(Directory.At("pipe")));
    EXPECT_FALSE(Files::IsFile(Directory.At("nothing")));
    EXPECT_FALSE(Files::IsDirectory(Directory.At("nothing")));
    EXPECT_FALSE(Files::IsFile(""));
}

TEST(FilesTest, ADirectoryWithAccessIsOpenToOwnerAndGroup) {
    const CTempDirectory Directory;
    EXPECT_TRUE(Files::CreateDirectory(WithBackslashes(Directory.At("cnf")), "D:(A;OICI;GA;;;SY)"));
    EXPECT_EQ(PermissionsOf(Directory.At("cnf")), fs::perms::owner_all | fs::perms::group_all);
}

TEST(FilesTest, ADirectoryIsMadeAloneAndOnce) {
    const CTempDirectory Directory;
    EXPECT_FALSE(Files::CreateDirectory(Directory.At("a/b"), nullptr));
    EXPECT_TRUE(Files::CreateDirectory(Directory.At("a"), nullptr));
    EXPECT_FALSE(Files::CreateDirectory(Directory.At("a"), nullptr));
    EXPECT_TRUE(Files::CreateDirectory(Directory.At("a/b"), nullptr));
}

TEST(FilesTest, WhatWasWrittenIsRead) {
    const CTempDirectory Directory;
    Bytes Written(100000);
    for (std::size_t i = 0; i < Written.size(); ++i) {
        Written[i] = static_cast<std::uint8_t>(i * 7);
    }
    const std::string Path = WithBackslashes(Directory.At("data"));
    EXPECT_TRUE(Files::WriteAll(Path, Written));
    EXPECT_EQ(Files::ReadAll(Path), Written);
    EXPECT_EQ(ReadTestFile(Directory.At("data")), std::string(Written.begin(), Written.end()));
    EXPECT_TRUE(Files::WriteAll(Path, {}));
    EXPECT_EQ(Files::ReadAll(Path), Bytes());
}

TEST(FilesTest, ReadsNothingFromWhatIsNoFile) {
    const CTempDirectory Directory;
    ASSERT_EQ(::mkfifo(Directory.At("pipe").c_str(), 0600), 0);
    EXPECT_EQ(Files::ReadAll(Directory.At("nothing")), std::nullopt);
    EXPECT_EQ(Files::ReadAll(Directory.At("")), std::nullopt);
    // Would wait for a writer, or never end.
    EXPECT_EQ(Files::ReadAll(Directory.At("pipe")), std::nullopt);
    EXPECT_EQ(Files::ReadAll("/dev/zero"), std::nullopt);
}

TEST(FilesTest, ReadsNothingWhenTheSystemRefuses) {
    // A regular file by its kind, whose first byte can't be read.
    EXPECT_EQ(Files::ReadAll("/proc/self/mem"), std::nullopt);
}

TEST(FilesTest, WritingLeavesNothingElseBehind) {
    const CTempDirectory Directory;
    ASSERT_TRUE(Files::WriteAll(Directory.At("data"), {1}));
    ASSERT_TRUE(Files::WriteAll(Directory.At("data"), {2}));
    EXPECT_EQ(std::distance(fs::directory_iterator(Directory.GetPath()), fs::directory_iterator()), 1);
}

// No sync, and no other file in its place.
TEST(FilesTest, WhatIsThereAlreadyIsNotWrittenAgain) {
    const CTempDirectory Directory;
    ASSERT_TRUE(Files::WriteAll(Directory.At("data"), {1, 2}));
    struct stat Before;
    ASSERT_EQ(::stat(Directory.At("data").c_str(), &Before), 0);
    EXPECT_TRUE(Files::WriteAll(Directory.At("data"), {1, 2}));
    struct stat After;
    ASSERT_EQ(::stat(Directory.At("data").c_str(), &After), 0);
    EXPECT_EQ(After.st_ino, Before.st_ino);
    EXPECT_TRUE(Files::WriteAll(Directory.At("data"), {1, 3}));
    EXPECT_EQ(Files::ReadAll(Directory.At("data")), (Bytes{1, 3}));
}

TEST(FilesTest, AWriteProtectedFileIsLeftAlone) {
    const CTempDirectory Directory;
    WriteTestFile(Directory.At("data"), "old");
    fs::permissions(Directory.At("data"), fs::perms::owner_read | fs::perms::group_read);
    EXPECT_FALSE(Files::WriteAll(Directory.At("data"), {1})) << "whoever the user is";
    EXPECT_EQ(ReadTestFile(Directory.At("data")), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(Directory.GetPath()), fs::directory_iterator()), 1);
}

// The disk is full in the middle of the new file.
TEST(FilesTest, AWriteThatFailsLeavesTheOldFileAndNothingElse) {
    const CTempDirectory Directory;
    WriteTestFile(Directory.At("data"), "old");
    const pid_t Writer = fork();
    ASSERT_NE(Writer, -1);
    if (Writer == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit Limit{3, 3};
        setrlimit(RLIMIT_FSIZE, &Limit);
        _exit(Files::WriteAll(Directory.At("data"), {1, 2, 3, 4, 5, 6}) ? 1 : 0);
    }
    int Status = 0;
    ASSERT_EQ(waitpid(Writer, &Status, 0), Writer);
    ASSERT_TRUE(WIFEXITED(Status));
    EXPECT_EQ(WEXITSTATUS(Status), 0) << "it is told";
    EXPECT_EQ(ReadTestFile(Directory.At("data")), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(Directory.GetPath()), fs::directory_iterator()), 1);
}

// A writer dies between the making of the new file and its taking the old one's place.
TEST(FilesTest, WhatAKilledWriterLeftIsRemovedByTheNextOne) {
    const CTempDirectory Directory;
    WriteTestFile(Directory.At("data"), "old");
    const pid_t Writer = fork();
    ASSERT_NE(Writer, -1);
    if (Writer == 0) {
        // The limit strikes in the middle of the file, by a signal that kills.
        const rlimit Limit{3, 3};
        setrlimit(RLIMIT_FSIZE, &Limit);
        const rlimit NoCore{0, 0};
        setrlimit(RLIMIT_CORE, &NoCore);
        Files::WriteAll(Directory.At("data"), {1, 2, 3, 4, 5, 6});
        _exit(0);
    }
    int Status = 0;
    ASSERT_EQ(waitpid(Writer, &Status, 0), Writer);
    ASSERT_TRUE(WIFSIGNALED(Status));
    ASSERT_EQ(std::distance(fs::directory_iterator(Directory.GetPath()), fs::directory_iterator()), 2);
    WriteTestFile(Directory.At("data.backup"), "somebody's own");
    EXPECT_TRUE(Files::WriteAll(Directory.At("data"), {1}));
    EXPECT_EQ(std::distance(fs::directory_iterator(Directory.GetPath()), fs::directory_iterator()), 2);
    EXPECT_EQ(ReadTestFile(Directory.At("data.backup")), "somebody's own");
}

TEST(FilesTest, WhatAnotherWriterIsAtIsLeft) {
    const CTempDirectory Directory;
    const std::string Successor = Directory.At("data.writing-abcdef");
    WriteTestFile(Successor, "half");
    const int Handle = ::open(Successor.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(Handle, LOCK_EX), 0);
    EXPECT_TRUE(Files::WriteAll(Directory.At("data"), {1}));
    EXPECT_TRUE(fs::exists(Successor));
    ::close(Handle);
    EXPECT_TRUE(Files::WriteAll(Directory.At("data"), {1}));
    EXPECT_FALSE(fs::exists(Successor));
}

// The old contents live until the new ones are complete: they are a file of their own that takes the old
// one's place.
TEST(FilesTest, WritingReplacesTheFileInOneStep) {
    const CTempDirectory Directory;
    ASSERT_TRUE(Files::WriteAll(Directory.At("data"), {1, 2, 3}));
    fs::create_hard_link(Directory.At("data"), Directory.At("old"));
    ASSERT_TRUE(Files::WriteAll(Directory.At("data"), {4}));
    EXPECT_EQ(Files::ReadAll(Directory.At("old")), (Bytes{1, 2, 3}));
    EXPECT_EQ(Files::ReadAll(Directory.At("data")), (Bytes{4}));
}

TEST(FilesTest, WritingKeepsTheAccessOfAnOldFileAndALinkToIt) {
    const CTempDirectory Directory;
    WriteTestFile(Directory.At("real"), "old");
    fs::permissions(Directory.At("real"), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("real", Directory.At("link"));
    ASSERT_TRUE(Files::WriteAll(Directory.At("link"), {'n', 'e', 'w'}));
    EXPECT_TRUE(fs::is_symlink(Directory.At("link")));
    EXPECT_EQ(ReadTestFile(Directory.At("real")), "new");
    EXPECT_EQ(PermissionsOf(Directory.At("real")), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(FilesTest, ANewFileIsSharedWithTheGroup) {
    const CTempDirectory Directory;
    ASSERT_TRUE(Files::WriteAll(Directory.At("data"), {}));
    EXPECT_EQ(static_cast<unsigned>(PermissionsOf(Directory.At("data"))), 0660U);
}

TEST(FilesTest, WritingFailsWithoutADirectoryOrOverOne) {
    const CTempDirectory Directory;
    EXPECT_FALSE(Files::WriteAll(Directory.At("missing/data"), {1}));
    EXPECT_FALSE(Files::WriteAll(Directory.At(""), {1}));
    fs::create_directory(Directory.At("taken"));
    EXPECT_FALSE(Files::WriteAll(Directory.At("taken"), {1}));
    EXPECT_TRUE(fs::is_empty(Directory.At("taken")));
    EXPECT_FALSE(Files::WriteAll("", {1}));
}

TEST(FilesTest, TheProgramsDirectoryHoldsThisProgram) {
    const std::string Directory = Files::GetProgramDirectory();
    EXPECT_THAT(Directory, testing::StartsWith("\\"));
    EXPECT_TRUE(Files::IsFile(Directory + "\\" + fs::read_symlink("/proc/self/exe").filename().string()));
}

TEST(FilesTest, WhatLiesBesideTheProgramIsFoundInThePlatformsForm) {
    const fs::path Program = fs::read_symlink("/proc/self/exe");
    EXPECT_EQ(Files::GetBesideProgram(Program.filename().string()), Program.string());
}

}  // namespace
