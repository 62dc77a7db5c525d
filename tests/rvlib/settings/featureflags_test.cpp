#include "rvlib/settings/featureflags.h"

#include "platform/system/virtualeventloop.h"
#include "tests/rvlib/settings/installationfixture.h"

namespace {

constexpr const char* c_pFlag = "PreBalancingColorizeFinalUnbalance";

class FeatureFlagsTest : public CInstallationFixture {
protected:
    void SetInRegistry(const std::string& rValue) const {
        WriteRegistry("[HKEY_LOCAL_MACHINE\\Software\\Corvane Metrology\\FeatureFlags]\n" +
                      std::string(c_pFlag) + "=" + rValue + "\n");
    }
    void SetInDocument(const std::string& rValue) {
        InstallSettings("<?xml version=\"1.0\"?><Corvane><system_falconet " + std::string(c_pFlag) + "=\"" +
                        rValue + "\"></system_falconet></Corvane>");
    }

    CVirtualEventLoop m_Loop;
};

TEST_F(FeatureFlagsTest, AFlagAbsentEverywhereIsTheDefault) {
    EXPECT_FALSE(IsFeatureEnabled(c_pFlag, false));
    EXPECT_TRUE(IsFeatureEnabled(c_pFlag, true));
}

TEST_F(FeatureFlagsTest, TheRegistryOverridesTheDefault) {
    SetInRegistry("dword:00000001");
    EXPECT_TRUE(IsFeatureEnabled(c_pFlag, false));
    SetInRegistry("0");
    EXPECT_FALSE(IsFeatureEnabled(c_pFlag, true));
}

TEST_F(FeatureFlagsTest, AValueThatDoesNotFitLeavesTheDefault) {
    SetInRegistry("yes");
    EXPECT_TRUE(IsFeatureEnabled(c_pFlag, true));
    EXPECT_FALSE(IsFeatureEnabled(c_pFlag, false));
    SetInRegistry("4294967296");
    EXPECT_TRUE(IsFeatureEnabled(c_pFlag, true));
}

TEST_F(FeatureFlagsTest, TheDocumentOverridesTheRegistry) {
    SetInRegistry("dword:00000001");
    SetInDocument("0");
    EXPECT_FALSE(IsFeatureEnabled(c_pFlag, true));
    SetInRegistry("dword:00000000");
    SetInDocument("1");
    EXPECT_TRUE(IsFeatureEnabled(c_pFlag, false));
}

TEST_F(FeatureFlagsTest, ADocumentWithoutTheFlagLeavesTheRegistry) {
    SetInRegistry("1");
    InstallSettings("<?xml version=\"1.0\"?><Corvane><system_falconet></system_falconet></Corvane>");
    EXPECT_TRUE(IsFeatureEnabled(c_pFlag, false));
}

TEST_F(FeatureFlagsTest, ABrokenDocumentLeavesTheRegistry) {
    SetInRegistry("1");
    InstallSettings("<Corvane>");
    EXPECT_TRUE(IsFeatureEnabled(c_pFlag, false));
}

}  // namespace
