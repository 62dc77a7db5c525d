#include "rvlib/settings/featureflags.h"

#include "platform/system/virtualeventloop.h"
#include "tests/rvlib/settings/installationfixture.h"

namespace {

constexpr const char* FLAG = "PreBalancingColorizeFinalUnbalance";

class FeatureFlagsTest : public CInstallationFixture {
protected:
    void SetInRegistry(const std::string& rValue) const {
        WriteRegistry("[HKEY_LOCAL_MACHINE\\Software\\Corvane Metrology\\FeatureFlags]\n" +
                      std::string(FLAG) + "=" + rValue + "\n");
    }
    void SetInDocument(const std::string& rValue) {
        InstallSettings("<?xml version=\"1.0\"?><Corvane><system_falconet " + std::string(FLAG) + "=\"" +
                        rValue + "\"></system_falconet></Corvane>");
    }

    CVirtualEventLoop m_Loop;
};

TEST_F(FeatureFlagsTest, AFlagAbsentEverywhereIsTheDefault) {
    EXPECT_FALSE(IsFeatureEnabled(FLAG, false));
    EXPECT_TRUE(IsFeatureEnabled(FLAG, true));
}

TEST_F(FeatureFlagsTest, TheRegistryOverridesTheDefault) {
    SetInRegistry("dword:00000001");
    EXPECT_TRUE(IsFeatureEnabled(FLAG, false));
    SetInRegistry("0");
    EXPECT_FALSE(IsFeatureEnabled(FLAG, true));
}

TEST_F(FeatureFlagsTest, AValueThatDoesNotFitLeavesTheDefault) {
    SetInRegistry("yes");
    EXPECT_TRUE(IsFeatureEnabled(FLAG, true));
    EXPECT_FALSE(IsFeatureEnabled(FLAG, false));
    SetInRegistry("4294967296");
    EXPECT_TRUE(IsFeatureEnabled(FLAG, true));
}

TEST_F(FeatureFlagsTest, TheDocumentOverridesTheRegistry) {
    SetInRegistry("dword:00000001");
    SetInDocument("0");
    EXPECT_FALSE(IsFeatureEnabled(FLAG, true));
    SetInRegistry("dword:00000000");
    SetInDocument("1");
    EXPECT_TRUE(IsFeatureEnabled(FLAG, false));
}

TEST_F(FeatureFlagsTest, ADocumentWithoutTheFlagLeavesTheRegistry) {
    SetInRegistry("1");
    InstallSettings("<?xml version=\"1.0\"?><Corvane><system_falconet></system_falconet></Corvane>");
    EXPECT_TRUE(IsFeatureEnabled(FLAG, false));
}

TEST_F(FeatureFlagsTest, ABrokenDocumentLeavesTheRegistry) {
    SetInRegistry("1");
    InstallSettings("<Corvane>");
    EXPECT_TRUE(IsFeatureEnabled(FLAG, false));
}

}  // namespace
