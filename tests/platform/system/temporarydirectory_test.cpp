#include "platform/system/temporarydirectory.h"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <stdexcept>

#include "tests/support/tempdirectory.h"

namespace fs = std::filesystem;

namespace {

class TemporaryDirectoryTest : public testing::Test {
protected:
    CTempDirectory m_Place;
};

}  // namespace

TEST_F(TemporaryDirectoryTest, IsForThisUserOnlyAndGoesWithAllInIt) {
    fs::path Path;
    {
        const CTemporaryDirectory Directory(m_Place.GetPath());
        Path = Directory.GetPath();
        EXPECT_EQ(Path.parent_path(), m_Place.GetPath());
        EXPECT_EQ(fs::status(Path).permissions(), fs::perms::owner_all);
        fs::create_directories(Path / "a" / "b");
        std::ofstream(Path / "a" / "file") << "contents";
    }
    EXPECT_FALSE(fs::exists(Path));
}

TEST_F(TemporaryDirectoryTest, OneInUseIsNoLeftover) {
    const CTemporaryDirectory Directory(m_Place.GetPath());
    CTemporaryDirectory::RemoveLeftovers(m_Place.GetPath());
    EXPECT_TRUE(fs::exists(Directory.GetPath()));
}

/// What a killed process leaves is a directory that nobody holds.
TEST_F(TemporaryDirectoryTest, WhatNobodyHoldsIsRemovedWithAllInIt) {
    fs::path Left;
    {
        const CTemporaryDirectory Directory(m_Place.GetPath());
        Left = Directory.GetPath();
    }
    fs::create_directories(Left / "cnf");
    std::ofstream(Left / "cnf" / "prebal.db") << "contents";
    CTemporaryDirectory::RemoveLeftovers(m_Place.GetPath());
    EXPECT_FALSE(fs::exists(Left));
}

TEST_F(TemporaryDirectoryTest, OtherNamesFilesAndLinksAreLeftAlone) {
    fs::create_directory(m_Place.At("rotor-trim-test-abcdef"));
    fs::create_directory(m_Place.At("rotor-trim-abcde!"));
    fs::create_directory(m_Place.At("something"));
    std::ofstream(m_Place.At("rotor-trim-abcdef")) << "a file";
    fs::create_directory_symlink(m_Place.At("something"), m_Place.At("rotor-trim-ABCDEF"));
    CTemporaryDirectory::RemoveLeftovers(m_Place.GetPath());
    EXPECT_TRUE(fs::exists(m_Place.At("rotor-trim-test-abcdef")));
    EXPECT_TRUE(fs::exists(m_Place.At("rotor-trim-abcde!")));
    EXPECT_TRUE(fs::exists(m_Place.At("something")));
    EXPECT_TRUE(fs::exists(m_Place.At("rotor-trim-abcdef")));
    EXPECT_TRUE(fs::is_symlink(m_Place.At("rotor-trim-ABCDEF")));
}

TEST_F(TemporaryDirectoryTest, APlaceThatIsNotThereIsNamed) {
    try {
        const CTemporaryDirectory Directory(m_Place.At("nowhere"));
        FAIL() << "was made";
    } catch (const std::runtime_error& rError) {
        EXPECT_NE(std::string(rError.what()).find(m_Place.At("nowhere")), std::string::npos);
        EXPECT_NE(std::string(rError.what()).find("TMPDIR"), std::string::npos);
    }
    CTemporaryDirectory::RemoveLeftovers(m_Place.At("nowhere"));  // harmless
}
