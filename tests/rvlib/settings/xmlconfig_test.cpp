#include "rvlib/settings/xmlconfig.h"

#include <gmock/gmock.h>

#include "platform/system/virtualeventloop.h"
#include "tests/rvlib/settings/installationfixture.h"

namespace {

class CRVXMLConfigTest : public CInstallationFixture {
protected:
    CVirtualEventLoop m_Loop;
    CRVXMLConfig m_Config;
};

constexpr const char* DOCUMENT =
    "<?xml version=\"1.0\"?><Corvane><system_falconet On=\"1\" Off=\"0\" Minus=\"-1\" Text=\"abc\" "
    "Many=\"42\">"
    "<inner Depth=\"2\"></inner></system_falconet></Corvane>";

TEST_F(CRVXMLConfigTest, ReadsNumbersByPath) {
    InstallSettings(DOCUMENT);
    ASSERT_TRUE(m_Config.Open());
    EXPECT_FALSE(m_Config.IsNew());
    EXPECT_TRUE(m_Config.GetFileName().IsEmpty());
    EXPECT_EQ(m_Config.GetInt("system_falconet", "Many", 7), 42);
    EXPECT_EQ(m_Config.GetInt("Corvane\\SYSTEM_FALCONET\\inner", "depth", 7), 2);
    EXPECT_EQ(m_Config.GetInt("system_falconet", "Text", 7), 0);
    EXPECT_EQ(m_Config.GetInt("system_falconet", "Missing", 7), 7);
}

TEST_F(CRVXMLConfigTest, ASectionThatNamesNoNodeGivesTheDefault) {
    InstallSettings(DOCUMENT);
    ASSERT_TRUE(m_Config.Open());
    EXPECT_EQ(m_Config.GetInt("system_falconet\\outer", "Many", 7), 7);
    EXPECT_EQ(m_Config.GetInt("", "Many", 7), 7);
    bool bValue = true;
    EXPECT_FALSE(m_Config.GetBool("system_falconet\\outer", "Off", &bValue));
    EXPECT_TRUE(bValue);
}

TEST_F(CRVXMLConfigTest, ReadsTruthValues) {
    InstallSettings(DOCUMENT);
    ASSERT_TRUE(m_Config.Open());
    bool bValue = false;
    EXPECT_TRUE(m_Config.GetBool("system_falconet", "On", &bValue));
    EXPECT_TRUE(bValue);
    EXPECT_TRUE(m_Config.GetBool("system_falconet", "Off", &bValue));
    EXPECT_FALSE(bValue);
    EXPECT_TRUE(m_Config.GetBool("system_falconet", "Many", &bValue));
    EXPECT_TRUE(bValue);
}

TEST_F(CRVXMLConfigTest, ATruthValueOfMinusOneCountsAsAbsent) {
    InstallSettings(DOCUMENT);
    ASSERT_TRUE(m_Config.Open());
    for (const char* const pName : {"Minus", "Missing"}) {
        bool bValue = false;
        EXPECT_FALSE(m_Config.GetBool("system_falconet", pName, &bValue));
        EXPECT_FALSE(bValue);
        bValue = true;
        EXPECT_FALSE(m_Config.GetBool("system_falconet", pName, &bValue));
        EXPECT_TRUE(bValue);
    }
}

TEST_F(CRVXMLConfigTest, WithoutADocumentEverythingIsTheDefault) {
    bool bValue = true;
    EXPECT_EQ(m_Config.GetInt("system_falconet", "Many", 7), 7);
    EXPECT_FALSE(m_Config.GetBool("system_falconet", "Off", &bValue));
    EXPECT_TRUE(bValue);
}

TEST_F(CRVXMLConfigTest, AMissingFileGivesANewEmptyDocument) {
    Install("installed");
    UseRoot("installed");
    ASSERT_TRUE(m_Config.Open());
    EXPECT_TRUE(m_Config.IsNew());
    EXPECT_EQ(m_Config.GetFileName(), At("installed/cnf/mcon.xdb"));
    EXPECT_EQ(m_Config.GetInt("Corvane", "Many", 7), 7);
    // Reading makes no file.
    EXPECT_FALSE(std::filesystem::exists(m_Directory.At("installed/cnf")));
}

TEST_F(CRVXMLConfigTest, ASecondOpenIsRefused) {
    InstallSettings(DOCUMENT);
    ASSERT_TRUE(m_Config.Open());
    EXPECT_FALSE(m_Config.Open());
    EXPECT_EQ(m_Config.GetInt("system_falconet", "Many", 7), 42);
}

TEST_F(CRVXMLConfigTest, ADocumentThatCannotBeParsedFailsAtOnce) {
    InstallSettings("<Corvane><system_falconet></Corvane>");
    EXPECT_FALSE(m_Config.Open());
    EXPECT_EQ(m_Config.GetInt("system_falconet", "Many", 7), 7);
    EXPECT_EQ(m_Loop.Now(), 0U);
}

// A regular file by its kind, whose first byte the system refuses to read.
TEST_F(CRVXMLConfigTest, AFileThatCannotBeReadIsTriedFiveTimes) {
    InstallSettings("");
    std::filesystem::remove(m_Directory.At("installed/cnf/mcon.xdb"));
    std::filesystem::create_symlink("/proc/self/mem", m_Directory.At("installed/cnf/mcon.xdb"));
    EXPECT_FALSE(m_Config.Open());
    EXPECT_FALSE(m_Config.IsNew());
    EXPECT_EQ(m_Loop.Now(), 500U);
}

TEST_F(CRVXMLConfigTest, ReadsAWideDocument) {
    const std::string Narrow = DOCUMENT;
    std::string Wide = "\xFF\xFE";
    for (const char Character : Narrow) {
        Wide += Character;
        Wide += '\0';
    }
    InstallSettings(Wide);
    ASSERT_TRUE(m_Config.Open());
    EXPECT_EQ(m_Config.GetInt("system_falconet", "Many", 7), 42);
}

TEST_F(CRVXMLConfigTest, UserLevelsHaveTheirCodes) {
    EXPECT_EQ(CRVXMLConfig::GetUserLevel("observer"), 0U);
    EXPECT_EQ(CRVXMLConfig::GetUserLevel("operator"), 0x1000000U);
    EXPECT_EQ(CRVXMLConfig::GetUserLevel("expert"), 0x2000000U);
    EXPECT_EQ(CRVXMLConfig::GetUserLevel("administrator"), 0x3000000U);
    EXPECT_EQ(CRVXMLConfig::GetUserLevel("guest"), std::nullopt);
}

}  // namespace
