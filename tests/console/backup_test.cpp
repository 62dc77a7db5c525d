#include "console/backup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "console/installation.h"
#include "console/tarfile.h"
#include "platform/rvmdb/directsql.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/virtualeventloop.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/textfiles.h"

namespace {

namespace fs = std::filesystem;
using PreBalDB::CDirectSQL;
using testing::HasSubstr;
using testing::Not;

constexpr const char* MACHINE = "A-1";

class BackupTest : public testing::Test {
protected:
    BackupTest() {
        PreBalDB::SetDatabaseConnection(m_Installation.GetDatabaseConnection());
        SetTarget(7);
    }
    ~BackupTest() override { PreBalDB::SetDatabaseConnection({}); }

    static void SetTarget(std::uint32_t Target) {
        PreBalDB::CPreBalDatabase Database(MACHINE);
        Database.ReadConfiguration("Default").SetTargetUnbalance(Target);
        ASSERT_NE(Database.WriteConfiguration(), 0);
    }
    static std::uint32_t GetTarget() {
        PreBalDB::CPreBalDatabase Database(MACHINE);
        return Database.ReadConfiguration("Default").GetTargetUnbalance();
    }
    void WriteSetting(const char* pName, const std::string& rText) const {
        WriteTestFile(m_Installation.GetConfigDirectory() / pName, rText);
    }
    std::string ReadSetting(const char* pName) const {
        return ReadTestFile(m_Installation.GetConfigDirectory() / pName);
    }
    CBackup MakeBackup() const { return {m_Installation.GetRoot(), m_Installation.GetDatabaseConnection()}; }
    CBackup::CContents Unpack() const {
        const fs::path Place = m_Directory.GetPath() / ("unpacked" + std::to_string(m_nUnpacked++));
        fs::create_directories(Place);
        return CBackup::Unpack(m_File, Place);
    }
    /// Packs the unpacked contents anew after something was done to them.
    void Tamper(const std::function<void(const fs::path&)>& rDeed) const {
        const fs::path Directory = Unpack().m_Directory;
        rDeed(Directory);
        ASSERT_EQ(TarFile::Pack(Directory, m_File), "");
    }
    std::string GetRefusal() const {
        try {
            Unpack();
        } catch (const std::runtime_error& rError) {
            return rError.what();
        }
        return {};
    }

    CVirtualEventLoop m_Loop;
    CTempDirectory m_Directory;
    CConsoleInstallation m_Installation{m_Directory.At("root"), false};
    fs::path m_File = m_Directory.At("backup.tar.gz");
    mutable int m_nUnpacked = 0;
};

}  // namespace

TEST_F(BackupTest, BringsBackStorePositionsAndSettings) {
    WriteSetting("vorwuchttemp.txt", "positions");
    WriteSetting("mcon.xdb", "settings");
    MakeBackup().Write(m_File);
    SetTarget(9);
    WriteSetting("vorwuchttemp.txt", "others");
    fs::remove(m_Installation.GetConfigDirectory() / "mcon.xdb");
    WriteSetting("speedctrl.ini", "new");
    const fs::path Kept = MakeBackup().Restore(Unpack());
    EXPECT_EQ(GetTarget(), 7U);
    EXPECT_EQ(ReadSetting("vorwuchttemp.txt"), "positions");
    EXPECT_EQ(ReadSetting("mcon.xdb"), "settings");
    EXPECT_FALSE(fs::exists(m_Installation.GetConfigDirectory() / "speedctrl.ini")) << "wasn't there then";
    EXPECT_EQ(ReadTestFile(Kept / "vorwuchttemp.txt"), "others") << "what was replaced is kept";
    EXPECT_EQ(ReadTestFile(Kept / "speedctrl.ini"), "new");
    PreBalDB::SetDatabaseConnection("sqlite:" + (Kept / "prebal.db").string());
    EXPECT_EQ(GetTarget(), 9U);
}

/// A file as it stands holds half of what was under way when its console was killed.
TEST_F(BackupTest, HoldsNothingThatWasNotCommitted) {
    const CConsoleInstallation Killed(m_Directory.At("killed"), false);
    {
        CDirectSQL Console(m_Installation.GetDatabaseConnection());
        Console.Execute("PRAGMA cache_size = 1");  // so that it has to write before it commits
        const PreBalDB::CTransaction Writing(Console, PreBalDB::CTransaction::eWriting);
        Console.Execute("UPDATE configuration SET target_unbalance = 99");
        for (int i = 0; i < 200; ++i) {
            Console.Execute("INSERT INTO machine (name) VALUES (?)",
                            {std::to_string(i) + std::string(1000, 'x')});
        }
        for (const char* const pEnd : {"", "-wal"}) {
            fs::copy_file(m_Installation.GetDatabaseFile().string() + pEnd,
                          Killed.GetDatabaseFile().string() + pEnd);
        }
    }
    CBackup(Killed.GetRoot(), Killed.GetDatabaseConnection()).Write(m_File);
    PreBalDB::SetDatabaseConnection("sqlite:" + (Unpack().m_Directory / "cnf/prebal.db").string());
    EXPECT_EQ(GetTarget(), 7U);
}

TEST_F(BackupTest, HoldsNoSecretsAndTakesNoneAway) {
    const std::string Configuration =
        R"({"server": "opc.tcp://nc:4840", "user": "me", "password": "hunter2", "user_key": "k.pem"})";
    WriteSetting("opc.json", Configuration);
    WriteSetting("code.json", "hashed");
    fs::create_directories(m_Installation.GetConfigDirectory() / "opcua");
    WriteSetting("opcua/private.pem", "key");
    MakeBackup().Write(m_File);
    const fs::path Contents = Unpack().m_Directory;
    std::set<std::string> Names;
    for (const auto& rEntry : fs::recursive_directory_iterator(Contents)) {
        if (rEntry.is_regular_file()) {
            Names.insert(rEntry.path().lexically_relative(Contents).string());
            EXPECT_THAT(ReadTestFile(rEntry.path()), Not(HasSubstr("hunter2"))) << rEntry.path();
        }
    }
    EXPECT_EQ(Names, (std::set<std::string>{"cnf/opc.json", "cnf/prebal.db", "contents.json"}));
    MakeBackup().Restore(Unpack());
    EXPECT_THAT(ReadSetting("opc.json"), HasSubstr("hunter2"));
    EXPECT_EQ(ReadSetting("code.json"), "hashed");
    EXPECT_EQ(ReadSetting("opcua/private.pem"), "key");
}

TEST_F(BackupTest, SecretsForAnotherServerDoNotGoThere) {
    WriteSetting("opc.json", R"({"server": "opc.tcp://old:4840"})");
    MakeBackup().Write(m_File);
    WriteSetting("opc.json", R"({"server": "opc.tcp://new:4840", "password": "hunter2"})");
    MakeBackup().Restore(Unpack());
    EXPECT_THAT(ReadSetting("opc.json"), HasSubstr("old"));
    EXPECT_THAT(ReadSetting("opc.json"), Not(HasSubstr("hunter2")));
}

TEST_F(BackupTest, ADamagedOneIsRefusedAndChangesNothing) {
    WriteSetting("vorwuchttemp.txt", "positions");
    MakeBackup().Write(m_File);
    Tamper([](const fs::path& rAt) { WriteTestFile(rAt / "cnf/vorwuchttemp.txt", "positionz"); });
    EXPECT_THAT(GetRefusal(), HasSubstr("cnf/vorwuchttemp.txt isn't what was kept"));
    const std::string Whole = ReadTestFile(m_File);
    WriteTestFile(m_File, Whole.substr(0, Whole.size() / 2));
    EXPECT_THAT(GetRefusal(), HasSubstr("is no backup, or a damaged one"));
    EXPECT_EQ(GetTarget(), 7U);
}

TEST_F(BackupTest, WhatIsNoBackupIsRefused) {
    EXPECT_THAT(GetRefusal(), HasSubstr("There is no file"));
    WriteTestFile(m_File, "something else");
    EXPECT_THAT(GetRefusal(), HasSubstr("is no backup"));
    fs::create_directories(m_Directory.GetPath() / "backup");
    ASSERT_EQ(TarFile::Pack(m_Directory.GetPath() / "backup", m_File), "");
    EXPECT_THAT(GetRefusal(), HasSubstr("is no backup"));
}

TEST_F(BackupTest, NothingButItsOwnFilesIsTakenFromIt) {
    MakeBackup().Write(m_File);
    Tamper([](const fs::path& rAt) {
        fs::remove(rAt / "cnf/prebal.db");
        fs::create_symlink("/etc/passwd", rAt / "cnf/prebal.db");
    });
    EXPECT_THAT(GetRefusal(), HasSubstr("cnf/prebal.db isn't what was kept"));
    MakeBackup().Write(m_File);
    Tamper([](const fs::path& rAt) {
        std::string Manifest = ReadTestFile(rAt / "contents.json");
        Manifest.replace(Manifest.find("cnf/prebal.db"), 13, "../prebal.db\",\"cnf/prebal.db");
        WriteTestFile(rAt / "contents.json", Manifest);
    });
    EXPECT_NE(GetRefusal(), "");
}

TEST_F(BackupTest, ANewerOneIsRefused) {
    {
        CDirectSQL Store(m_Installation.GetDatabaseConnection());
        Store.Execute("UPDATE schema_version SET version = 999");
    }
    // It is read again when it is written, so that nobody finds out later.
    EXPECT_THAT([this] { MakeBackup().Write(m_File); },
                testing::ThrowsMessage<std::runtime_error>(HasSubstr("update the program")));
    EXPECT_FALSE(fs::exists(m_File));
}

TEST_F(BackupTest, AnOldOneIsReplacedOnlyByOneThatHolds) {
    MakeBackup().Write(m_File);
    const std::string Good = ReadTestFile(m_File);
    {
        CDirectSQL Store(m_Installation.GetDatabaseConnection());
        Store.Execute("UPDATE schema_version SET version = 999");
    }
    EXPECT_ANY_THROW(MakeBackup().Write(m_File));
    EXPECT_EQ(ReadTestFile(m_File), Good);
}

TEST_F(BackupTest, WithoutAStoreThereIsNothingToKeep) {
    fs::remove(m_Installation.GetDatabaseFile());
    EXPECT_THAT([this] { MakeBackup().Write(m_File); },
                testing::ThrowsMessage<std::runtime_error>(HasSubstr("nothing to keep")));
    EXPECT_FALSE(fs::exists(m_Installation.GetDatabaseFile())) << "and none is made";
}

TEST_F(BackupTest, TheLockThatIsHeldIsTheOneAfterwards) {
    MakeBackup().Write(m_File);
    const CInstallationLock Lock(m_Installation);
    MakeBackup().Restore(Unpack());
    EXPECT_ANY_THROW(CInstallationLock{m_Installation}) << "by this very process";
}
