#include "console/helpfiles.h"

#include <gtest/gtest.h>

#include "tests/support/scopedenvironment.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/textfiles.h"

namespace fs = std::filesystem;

namespace {

class HelpFilesTest : public testing::Test {
protected:
    void Write(const std::string& rName, const std::string& rContents) const {
        WriteTestFile(m_Place.GetPath() / "program" / rName, rContents);
    }
    fs::path At(const std::string& rName) const { return m_Installation.GetHelpDirectory() / rName; }
    void Provide() const { ProvideHelp(m_Installation, m_Place.GetPath() / "program"); }

    CScopedEnvironment m_Root{"CORVANE_ROOT_DIR", std::nullopt};
    CScopedEnvironment m_AutoDetect{"CORVANE_ROOT_DIR_AUTO_DETECT", std::nullopt};
    CTempDirectory m_Place;
    CConsoleInstallation m_Installation{m_Place.At("root"), false};
};

TEST_F(HelpFilesTest, TheProgramsHelpComesIntoTheInstallation) {
    Write("en_Falconet.chm", "english");
    Write("de_Falconet.chm", "deutsch");
    Write("readme.txt", "no help");
    Provide();
    EXPECT_EQ(ReadTestFile(At("en_Falconet.chm")), "english");
    EXPECT_EQ(ReadTestFile(At("de_Falconet.chm")), "deutsch");
    EXPECT_FALSE(fs::exists(At("readme.txt")));
}

TEST_F(HelpFilesTest, ThatOfANewProgramTakesThePlaceOfTheOldAndOthersStay) {
    Write("en_Falconet.chm", "old");
    Provide();
    WriteTestFile(At("fr_Falconet.chm"), "made by somebody");
    const auto Unchanged = fs::last_write_time(At("en_Falconet.chm"));
    Provide();
    EXPECT_EQ(fs::last_write_time(At("en_Falconet.chm")), Unchanged) << "nothing was to be done";
    Write("en_Falconet.chm", "new");
    Provide();
    EXPECT_EQ(ReadTestFile(At("en_Falconet.chm")), "new");
    EXPECT_EQ(ReadTestFile(At("fr_Falconet.chm")), "made by somebody");
}

TEST_F(HelpFilesTest, AProgramWithoutHelpAndAPlaceThatCannotBeWrittenHoldNothingUp) {
    Provide();
    Write("en_Falconet.chm", "english");
    fs::remove_all(m_Installation.GetHelpDirectory());
    WriteTestFile(m_Installation.GetHelpDirectory(), "a file in its place");
    EXPECT_NO_THROW(Provide());
}

}  // namespace
