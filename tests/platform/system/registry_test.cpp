#include "platform/system/registry.h"

#include <gtest/gtest.h>

#include "tests/support/scopedenvironment.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/textfiles.h"

namespace {

using Registry::Access;
using Registry::Root;

class RegistryTest : public testing::Test {
protected:
    void Write(const std::string& rText) const { WriteTestFile(m_Directory.At("registry.ini"), rText); }
    std::string Read() const { return ReadTestFile(m_Directory.At("registry.ini")); }
    static Registry::Key Open(const std::string& rName, Access Wanted = Access::eQuery) {
        return Registry::OpenKey(Root::eLocalMachine, 0, rName, Wanted);
    }

    CTempDirectory m_Directory;
    CScopedEnvironment m_Path{"CORVANE_REGISTRY", m_Directory.At("registry.ini")};
};

TEST_F(RegistryTest, ReadsTextsByNameAndTheDefaultValueByNone) {
    Write(
        "[HKEY_LOCAL_MACHINE\\Software\\Corvane Metrology]\n@=C:\\bin\\Kestrel.ocx\nName=bare\n"
        "\"Other Name\"=\"quoted\"\n");
    const Registry::Key Key = Open("Software\\Corvane Metrology");
    ASSERT_NE(Key, 0U);
    EXPECT_EQ(Registry::GetText(Key, ""), "C:\\bin\\Kestrel.ocx");
    EXPECT_EQ(Registry::GetText(Key, "NAME"), "bare");
    EXPECT_EQ(Registry::GetText(Key, "Other Name"), "quoted");
    EXPECT_EQ(Registry::GetText(Key, "Missing"), std::nullopt);
    Registry::CloseKey(Key);
}

TEST_F(RegistryTest, ReadsNumbersThatFitFourBytes) {
    Write(
        "[HKEY_LOCAL_MACHINE\\K]\na=dword:0000001a\nb=26\nc=DWORD:ffffffff\nd=4294967296\ne=dword:100000000\n"
        "f=text\ng=\nh=12x\ni=-1\nj=dword:\n");
    const Registry::Key Key = Open("K");
    EXPECT_EQ(Registry::GetNumber(Key, "a"), 26U);
    EXPECT_EQ(Registry::GetNumber(Key, "b"), 26U);
    EXPECT_EQ(Registry::GetNumber(Key, "c"), 0xFFFFFFFFU);
    for (const char* const pName : {"d", "e", "f", "g", "h", "i", "j", "missing"}) {
        EXPECT_EQ(Registry::GetNumber(Key, pName), std::nullopt) << pName;
    }
    Registry::CloseKey(Key);
}

TEST_F(RegistryTest, OpensLevelByLevelUnderAParent) {
    Write("[HKEY_CLASSES_ROOT\\CLSID\\{1}\\InprocServer32]\n@=server\n");
    const Registry::Key Class = Registry::OpenKey(Root::eClassesRoot, 0, "clsid", Access::eQuery);
    ASSERT_NE(Class, 0U);
    const Registry::Key Id = Registry::OpenKey(Root::eClassesRoot, Class, "{1}", Access::eQuery);
    ASSERT_NE(Id, 0U);
    const Registry::Key Server = Registry::OpenKey(Root::eClassesRoot, Id, "InprocServer32", Access::eQuery);
    EXPECT_EQ(Registry::GetText(Server, ""), "server");
    EXPECT_EQ(Registry::GetText(Id, ""), std::nullopt);
}

TEST_F(RegistryTest, AMissingKeyIsNotOpenedForReading) {
    EXPECT_EQ(Open("Software"), 0U);
    Write("[HKEY_LOCAL_MACHINE\\Software2]\n[HKEY_CLASSES_ROOT\\Software]\n");
    EXPECT_EQ(Open("Software"), 0U);
    EXPECT_EQ(Read(), "[HKEY_LOCAL_MACHINE\\Software2]\n[HKEY_CLASSES_ROOT\\Software]\n");
}

TEST_F(RegistryTest, AMissingKeyIsMadeWithAllAccess) {
    Write("[HKEY_LOCAL_MACHINE\\A]\nx=1");
    EXPECT_NE(Open("A\\B", Access::eAll), 0U);
    EXPECT_NE(Open("a\\b", Access::eAll), 0U);
    EXPECT_EQ(Read(), "[HKEY_LOCAL_MACHINE\\A]\nx=1\n[HKEY_LOCAL_MACHINE\\A\\B]\n");
    EXPECT_NE(Open("A\\B"), 0U);
}

TEST_F(RegistryTest, AKeyThatCannotBeWrittenIsNotMade) {
    m_Path.Set(m_Directory.At("missing/registry.ini"));
    EXPECT_EQ(Open("A", Access::eAll), 0U);
    m_Path.Set(m_Directory.At("registry.ini"));
    EXPECT_EQ(Open("A]\n[B", Access::eAll), 0U);
}

TEST_F(RegistryTest, AClosedKeyGivesNothing) {
    Write("[HKEY_LOCAL_MACHINE\\K]\na=1\n");
    const Registry::Key Key = Open("K");
    ASSERT_EQ(Registry::GetText(Key, "a"), "1");
    Registry::CloseKey(Key);
    EXPECT_EQ(Registry::GetText(Key, "a"), std::nullopt);
    EXPECT_EQ(Registry::GetNumber(Key, "a"), std::nullopt);
    EXPECT_EQ(Registry::OpenKey(Root::eLocalMachine, Key, "B", Access::eAll), 0U);
    EXPECT_EQ(Registry::GetText(0, "a"), std::nullopt);
    Registry::CloseKey(Key);
}

}  // namespace
