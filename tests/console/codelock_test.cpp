#include "console/codelock.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <fstream>
#include <iterator>

#include "platform/system/virtualeventloop.h"
#include "tests/support/tempdirectory.h"

using Outcome = CCodeLock::Outcome;

namespace {

class CodeLockTest : public testing::Test {
protected:
    CodeLockTest() { EXPECT_TRUE(CCodeLock(GetFile()).SetCode("4711")); }

    std::string GetFile() const { return m_Directory.At("code.json"); }
    std::string ReadFile() const {
        std::ifstream In(GetFile());
        return {std::istreambuf_iterator<char>(In), {}};
    }

    CVirtualEventLoop m_Loop;
    CTempDirectory m_Directory;
};

}  // namespace

TEST_F(CodeLockTest, WithoutACodeEverythingIsOpen) {
    const CCodeLock Lock(m_Directory.At("none.json"));
    EXPECT_FALSE(Lock.HasCode());
    EXPECT_FALSE(Lock.IsLocked());
}

TEST_F(CodeLockTest, ACodeLocksFromTheNextStartAndOpens) {
    CCodeLock Lock(GetFile());
    EXPECT_TRUE(Lock.IsLocked());
    EXPECT_EQ(Lock.Open("4712"), Outcome::eWrong);
    EXPECT_TRUE(Lock.IsLocked());
    m_Loop.Advance(1000);
    EXPECT_EQ(Lock.Open("4711"), Outcome::eOpen);
    EXPECT_FALSE(Lock.IsLocked());
    Lock.Lock();
    EXPECT_TRUE(Lock.IsLocked());
}

TEST_F(CodeLockTest, TheFileHasNeitherTheCodeNorTwiceTheSameHashAndIsForTheOwnerAlone) {
    const std::string First = ReadFile();
    EXPECT_EQ(First.find("4711"), std::string::npos);
    CCodeLock Lock(GetFile());
    Lock.Open("4711");
    ASSERT_TRUE(Lock.SetCode("4711"));
    EXPECT_NE(ReadFile(), First) << "another salt";
    struct stat Status {};
    ASSERT_EQ(stat(GetFile().c_str(), &Status), 0);
    EXPECT_EQ(Status.st_mode & 0777U, 0600U);
}

TEST_F(CodeLockTest, ThePauseAfterAWrongTryDoublesToTheMillisecond) {
    CCodeLock Lock(GetFile());
    for (const std::uint32_t Pause : {1000U, 2000U, 4000U, 8000U}) {
        EXPECT_EQ(Lock.Open("0000"), Outcome::eWrong);
        EXPECT_EQ(Lock.GetPause(), Pause);
        m_Loop.Advance(Pause - 1);
        EXPECT_EQ(Lock.Open("4711"), Outcome::eTooSoon) << "not even the right one";
        m_Loop.Advance(1);
    }
    EXPECT_EQ(Lock.Open("4711"), Outcome::eOpen);
    Lock.Lock();
    EXPECT_EQ(Lock.Open("0000"), Outcome::eWrong);
    EXPECT_EQ(Lock.GetPause(), 1000U) << "the right one ends the doubling";
}

TEST_F(CodeLockTest, ThePauseIsNeverLongerThanAQuarterOfAnHour) {
    CCodeLock Lock(GetFile());
    for (int nTry = 0; nTry < 40; ++nTry) {
        EXPECT_EQ(Lock.Open("0000"), Outcome::eWrong);
        EXPECT_LE(Lock.GetPause(), 900000U);
        m_Loop.Advance(static_cast<std::uint32_t>(Lock.GetPause()));
    }
}

TEST_F(CodeLockTest, ARestartDoesNotShortenThePause) {
    {
        CCodeLock Lock(GetFile());
        for (int nTry = 0; nTry < 3; ++nTry) {
            Lock.Open("0000");
            m_Loop.Advance(static_cast<std::uint32_t>(Lock.GetPause()));
        }
    }
    CCodeLock Lock(GetFile());
    EXPECT_EQ(Lock.GetPause(), 4000U);
    EXPECT_EQ(Lock.Open("4711"), Outcome::eTooSoon);
}

TEST_F(CodeLockTest, WhileLockedTheCodeCanNeitherBeChangedNorRemoved) {
    CCodeLock Lock(GetFile());
    EXPECT_FALSE(Lock.SetCode("9999"));
    EXPECT_FALSE(Lock.RemoveCode());
    EXPECT_EQ(CCodeLock(GetFile()).Open("4711"), Outcome::eOpen);
}

TEST_F(CodeLockTest, OnceRemovedEverythingIsOpen) {
    CCodeLock Lock(GetFile());
    Lock.Open("4711");
    EXPECT_TRUE(Lock.RemoveCode());
    EXPECT_FALSE(Lock.HasCode());
    EXPECT_FALSE(CCodeLock(GetFile()).IsLocked());
}

TEST_F(CodeLockTest, ACodeHasFourCharactersAtLeast) {
    CCodeLock Lock(m_Directory.At("other.json"));
    EXPECT_FALSE(Lock.SetCode("123"));
    EXPECT_FALSE(Lock.SetCode("äöü")) << "characters, not bytes";
    EXPECT_TRUE(Lock.SetCode("äöüß"));
}

TEST_F(CodeLockTest, ADamagedFileLocksAndSaysSo) {
    for (const char* const pText : {"", "{", "{\"salt\":\"00\"}", "[1,2]",
                                    "{\"salt\":\"00\",\"hash\":\"00\",\"iterations\":1,\"failures\":0}"}) {
        std::ofstream(GetFile()) << pText;
        CCodeLock Lock(GetFile());
        EXPECT_TRUE(Lock.IsLocked()) << pText;
        EXPECT_TRUE(Lock.IsDamaged()) << pText;
        EXPECT_EQ(Lock.Open(""), Outcome::eWrong) << pText;
    }
}

TEST_F(CodeLockTest, AFileThatCannotBeWrittenLeavesAllAsItWas) {
    CCodeLock Lock("/nowhere/at/all/code.json");
    EXPECT_FALSE(Lock.SetCode("4711"));
    EXPECT_FALSE(Lock.HasCode());
}
