#include "rvlib/settings/installation.h"

#include "platform/system/files.h"
#include "tests/rvlib/settings/installationfixture.h"

namespace {

class InstallationTest : public CInstallationFixture {
protected:
    /// The control as its installation registers it.
    void RegisterControl(const CPath& rFile) const {
        WriteRegistry(
            "[HKEY_CLASSES_ROOT\\CLSID\\{6E2B7C54-93D1-4A0F-8B6E-1F5D0C27A9E3}\\InprocServer32]\n@=" +
            rFile.GetText() + "\n");
    }
};

// --- validation of one candidate

TEST_F(InstallationTest, AProgramInCtrlStandsForTheRootAboveIt) {
    Install("root");
    EXPECT_EQ(ValidateRootDirectory(m_Directory.At("root/ctrl")), At("root"));
}

TEST_F(InstallationTest, AProgramInTheRootStandsForIt) {
    Install("root");
    EXPECT_EQ(ValidateRootDirectory(m_Directory.At("root")), At("root"));
}

TEST_F(InstallationTest, ACandidateIsTrimmedAndMadeAbsolute) {
    Install("root");
    EXPECT_EQ(ValidateRootDirectory("  " + m_Directory.At("root/ctrl/../") + " \t"), At("root"));
}

TEST_F(InstallationTest, AFolderWithoutTheProgramFileIsNoRoot) {
    std::filesystem::create_directories(m_Directory.At("root/ctrl/mcon.exe"));
    std::filesystem::create_directories(m_Directory.At("empty/ctrl"));
    EXPECT_TRUE(ValidateRootDirectory(m_Directory.At("root")).IsEmpty());
    EXPECT_TRUE(ValidateRootDirectory(m_Directory.At("empty/ctrl")).IsEmpty());
    EXPECT_TRUE(ValidateRootDirectory(m_Directory.At("missing")).IsEmpty());
    EXPECT_TRUE(ValidateRootDirectory("").IsEmpty());
    EXPECT_TRUE(ValidateRootDirectory(" \t ").IsEmpty());
}

TEST_F(InstallationTest, TheProgramFileOutsideCtrlCountsForNothing) {
    WriteTestFile(m_Directory.At("root/bin/mcon.exe"), "");
    EXPECT_TRUE(ValidateRootDirectory(m_Directory.At("root/bin")).IsEmpty());
}

// --- choice

TEST(ChooseRootDirectoryTest, PrefersProgramThenControlThenTheDefault) {
    EXPECT_EQ(ChooseRootDirectory({"all", "program", "control", "", ""}), CPath("program"));
    EXPECT_EQ(ChooseRootDirectory({"all", "", "control", "", ""}), CPath("control"));
    EXPECT_EQ(ChooseRootDirectory({"all", "", "", "", ""}), CPath("all"));
}

TEST(ChooseRootDirectoryTest, TheEnvironmentGoesBeforeAllUnlessTheSearchIsToBeAutomatic) {
    for (const char* const pOff : {"", "0", "false", "FALSE"}) {
        EXPECT_EQ(ChooseRootDirectory({"all", "program", "control", "set", pOff}), CPath("set")) << pOff;
    }
    for (const char* const pOn : {"1", "true", "False", "no", " ", "00"}) {
        EXPECT_EQ(ChooseRootDirectory({"all", "program", "control", "set", pOn}), CPath("program")) << pOn;
    }
}

TEST(ChooseRootDirectoryTest, AnEnvironmentThatIsNoRootLeavesTheSearch) {
    EXPECT_EQ(ChooseRootDirectory({"all", "program", "", "", "0"}), CPath("program"));
}

// --- the whole search

TEST_F(InstallationTest, WithoutAValidCandidateTheRootLiesInTheDataOfAllUsers) {
    EXPECT_EQ(GetRootDirectory(), At("all/corvane"));
}

TEST_F(InstallationTest, TheDefaultRootIsNormalisedAndNeedsNoProgramFile) {
    m_AllUsers.Set(m_Directory.At("all") + "///");
    EXPECT_EQ(GetRootDirectory(), At("all/corvane"));
    EXPECT_FALSE(GetRootDirectory().IsDirectory());
}

TEST_F(InstallationTest, TheEnvironmentNamesTheRoot) {
    Install("set");
    UseRoot("set");
    EXPECT_EQ(GetRootDirectory(), At("set"));
    UseRoot("set/ctrl");
    EXPECT_EQ(GetRootDirectory(), At("set"));
}

TEST_F(InstallationTest, AnEnvironmentThatPointsToNoInstallationIsIgnored) {
    std::filesystem::create_directory(m_Directory.At("set"));
    UseRoot("set");
    EXPECT_EQ(GetRootDirectory(), At("all/corvane"));
}

TEST_F(InstallationTest, AutomaticDetectionTurnsTheEnvironmentOff) {
    Install("set");
    m_AutoDetect.Set("1");
    UseRoot("set");
    EXPECT_EQ(GetRootDirectory(), At("all/corvane"));
    m_AutoDetect.Set("false");
    UseRoot("set");
    EXPECT_EQ(GetRootDirectory(), At("set"));
}

TEST_F(InstallationTest, AnEnvironmentTooLongForItsBufferIsIgnored) {
    Install("set");
    UseRoot(std::string(4096, '/') + "set");
    EXPECT_EQ(GetRootDirectory(), At("all/corvane"));
}

TEST_F(InstallationTest, TheInstalledControlTellsTheRoot) {
    Install("control");
    RegisterControl(At("control/ctrl/KESTREL.OCX"));
    EXPECT_EQ(GetRootDirectory(), At("control"));
}

TEST_F(InstallationTest, AControlOfAnotherNameTellsNothing) {
    Install("control");
    RegisterControl(At("control/ctrl/Other.ocx"));
    EXPECT_EQ(GetRootDirectory(), At("all/corvane"));
}

TEST_F(InstallationTest, AControlWithoutAnInstallationTellsNothing) {
    RegisterControl(At("control/ctrl/Kestrel.ocx"));
    EXPECT_EQ(GetRootDirectory(), At("all/corvane"));
}

TEST_F(InstallationTest, TheRootIsFoundOnceForTheLifeOfTheProcess) {
    EXPECT_EQ(GetRootDirectory(), At("all/corvane"));
    m_AllUsers.Set(m_Directory.At("other"));
    EXPECT_EQ(GetRootDirectory(), At("all/corvane"));
    ResetInstallationRootForTest();
    EXPECT_EQ(GetRootDirectory(), At("other/corvane"));
}

TEST_F(InstallationTest, ThePlacesLieUnderTheRoot) {
    EXPECT_EQ(GetConfigDirectory(), At("all/corvane/cnf"));
    EXPECT_EQ(GetConfigFile(), At("all/corvane/cnf/mcon.xdb"));
    EXPECT_EQ(GetControlDirectory(), At("all/corvane/ctrl"));
    EXPECT_EQ(GetHelpDirectory(), At("all/corvane/ctrl/help"));
    EXPECT_EQ(GetWeightPositionFile(), At("all/corvane/cnf/vorwuchttemp.txt"));
    // Asking for one doesn't lengthen the root.
    EXPECT_EQ(GetRootDirectory(), At("all/corvane"));
}

}  // namespace
