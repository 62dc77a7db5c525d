#include "rvlib/settings/registry.h"

#include "tests/rvlib/settings/installationfixture.h"

namespace {

using Registry::Access;
using Registry::Root;

class CWKRegistryTest : public CInstallationFixture {
protected:
    std::string ReadRegistry() const { return ReadTestFile(m_Directory.At("registry.ini")); }

    CWKRegistry m_Key;
};

TEST_F(CWKRegistryTest, OpensAPathLevelByLevelAndReads) {
    WriteRegistry(
        "[HKEY_LOCAL_MACHINE\\Software\\Corvane]\n@=default text\nName=text\nNumber=dword:00000010\n");
    ASSERT_TRUE(m_Key.Open(Root::eLocalMachine, "Software\\Corvane", Access::eQuery));
    EXPECT_TRUE(m_Key.IsOpen());
    std::string Text;
    EXPECT_TRUE(m_Key.GetString("Name", Text));
    EXPECT_EQ(Text, "text");
    EXPECT_TRUE(m_Key.GetString(nullptr, Text));
    EXPECT_EQ(Text, "default text");
    std::uint32_t Number = 0;
    EXPECT_TRUE(m_Key.GetNumber("Number", Number));
    EXPECT_EQ(Number, 16U);
}

TEST_F(CWKRegistryTest, AnAbsentValueLeavesTheTargetAlone) {
    WriteRegistry("[HKEY_LOCAL_MACHINE\\K]\nName=text\n");
    ASSERT_TRUE(m_Key.Open(Root::eLocalMachine, "K", Access::eQuery));
    std::string Text = "before";
    std::uint32_t Number = 7;
    EXPECT_FALSE(m_Key.GetString("Missing", Text));
    EXPECT_FALSE(m_Key.GetString(nullptr, Text));
    EXPECT_FALSE(m_Key.GetNumber("Name", Number));
    EXPECT_EQ(Text, "before");
    EXPECT_EQ(Number, 7U);
}

TEST_F(CWKRegistryTest, AMissingLevelFailsAndLeavesNothingOpen) {
    WriteRegistry("[HKEY_LOCAL_MACHINE\\A\\B]\n");
    EXPECT_FALSE(m_Key.Open(Root::eLocalMachine, "A\\C\\D", Access::eQuery));
    EXPECT_FALSE(m_Key.IsOpen());
    std::string Text;
    EXPECT_FALSE(m_Key.GetString(nullptr, Text));
    EXPECT_TRUE(m_Key.Open(Root::eLocalMachine, "A\\B", Access::eQuery));
}

TEST_F(CWKRegistryTest, AMissingLevelIsMadeWithAllAccess) {
    ASSERT_TRUE(m_Key.Open(Root::eLocalMachine, "A/B", Access::eAll, "/"));
    EXPECT_EQ(ReadRegistry(), "[HKEY_LOCAL_MACHINE\\A]\n[HKEY_LOCAL_MACHINE\\A\\B]\n");
}

TEST_F(CWKRegistryTest, OpensOnlyOnceUntilClosed) {
    WriteRegistry("[HKEY_LOCAL_MACHINE\\A]\nx=1\n[HKEY_LOCAL_MACHINE\\B]\nx=2\n");
    ASSERT_TRUE(m_Key.Open(Root::eLocalMachine, "A", Access::eQuery));
    EXPECT_FALSE(m_Key.Open(Root::eLocalMachine, "B", Access::eQuery));
    std::string Text;
    ASSERT_TRUE(m_Key.GetString("x", Text));
    EXPECT_EQ(Text, "1");
    m_Key.Close();
    EXPECT_FALSE(m_Key.IsOpen());
    EXPECT_FALSE(m_Key.GetString("x", Text));
    ASSERT_TRUE(m_Key.Open(Root::eLocalMachine, "B", Access::eQuery));
    ASSERT_TRUE(m_Key.GetString("x", Text));
    EXPECT_EQ(Text, "2");
}

TEST_F(CWKRegistryTest, APathWithoutLevelsOpensNothing) {
    EXPECT_FALSE(m_Key.Open(Root::eLocalMachine, "", Access::eAll));
    EXPECT_FALSE(m_Key.Open(Root::eLocalMachine, "\\ \\", Access::eAll));
}

}  // namespace
