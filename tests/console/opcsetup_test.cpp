// The file that names the NC: what is taken, and what is refused with which words.
#include "console/opcsetup.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "tests/support/tempdirectory.h"

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

namespace {

class COpcSetupTest : public testing::Test {
protected:
    std::optional<COpcConfiguration> Read(const std::string& rText) {
        std::ofstream(m_File) << rText;
        fs::permissions(m_File, m_Permissions);
        return COpcSetup::Read(m_File.string(), m_Error);
    }
    /// Why a file with these fields besides the server is refused.
    std::string Refusal(const std::string& rFields) {
        EXPECT_FALSE(Read(R"({"server": "opc.tcp://nc:4840", )" + rFields + "}")) << rFields;
        EXPECT_THAT(m_Error, HasSubstr(m_File.string()));
        EXPECT_THAT(m_Error, Not(HasSubstr("\n")));
        return m_Error;
    }

    const CTempDirectory m_Directory;
    const fs::path m_File = fs::path(m_Directory.GetPath()) / "opc.json";
    fs::perms m_Permissions = fs::perms::owner_read | fs::perms::owner_write;
    std::string m_Error;
};

TEST_F(COpcSetupTest, NoFileIsNoNcAndNoError) {
    EXPECT_FALSE(COpcSetup::Read(m_File.string(), m_Error));
    EXPECT_THAT(m_Error, IsEmpty());
}

TEST_F(COpcSetupTest, AServerAloneGetsTheDefaults) {
    const auto Configuration = Read(R"({"server": "opc.tcp://192.168.214.1:4840"})");
    ASSERT_TRUE(Configuration) << m_Error;
    EXPECT_EQ(Configuration->m_Server, "opc.tcp://192.168.214.1:4840");
    EXPECT_EQ(Configuration->m_Security, "Basic256Sha256");
    EXPECT_EQ(Configuration->m_Fingerprint, "");
    EXPECT_EQ(Configuration->m_User, "");
    EXPECT_THAT(Configuration->m_LinkItems, IsEmpty());
}

/// An unsigned node can't, and would fail in the run only.
TEST_F(COpcSetupTest, NodesOfRequestAndNotificationMustHoldMinusOne) {
    const auto Configuration = Read(R"({"server": "opc.tcp://nc"})");
    ASSERT_TRUE(Configuration) << m_Error;
    const auto Expected =
        ElementsAre(Pair("PreBalInterfaceFromNC", COpcValue(-1)),
                    Pair("PreBalInterfaceToNC", COpcValue(std::vector<std::int32_t>(14, -1))));
    EXPECT_THAT(Configuration->m_Exacting, Expected);
    EXPECT_THAT(COpcSetup().m_Configuration.m_Exacting, Expected);
}

TEST_F(COpcSetupTest, EachFieldIsTaken) {
    const std::string Fingerprint(64, 'a');
    const auto Configuration =
        Read(R"({"server": "opc.tcp://nc", "security": "Aes256_Sha256_RsaPss", "fingerprint": ")" +
             Fingerprint + R"(", "user": "u", "password": "p",
                 "items": {"PreBalInterfaceFromNC": "ns=2;s=R", "PreBalInterfaceToNC": ""}})");
    ASSERT_TRUE(Configuration) << m_Error;
    EXPECT_EQ(Configuration->m_Security, "Aes256_Sha256_RsaPss");
    EXPECT_EQ(Configuration->m_Fingerprint, Fingerprint);
    EXPECT_EQ(Configuration->m_User, "u");
    EXPECT_EQ(Configuration->m_Password, "p");
    EXPECT_THAT(Configuration->m_LinkItems, ElementsAre(Pair("PreBalInterfaceFromNC", "ns=2;s=R")));
}

/// The two keys of the rotation direction are deliberately different ones.
TEST_F(COpcSetupTest, BothKeysOfTheRotationDirectionAreKnown) {
    const auto Configuration =
        Read(R"({"server": "opc.tcp://nc", "items": {"PreBalInterfaceFromNCRotationDirection": "s=a",
                 "PreBalInterfaceFromNcRotationDirection": "s=b"}})");
    ASSERT_TRUE(Configuration) << m_Error;
    EXPECT_EQ(Configuration->m_LinkItems.size(), 2U);
}

TEST_F(COpcSetupTest, AFingerprintMayBeWrittenWithColons) {
    std::string Colons = "AB";
    for (int i = 1; i < 32; ++i) {
        Colons += ":AB";
    }
    const auto Configuration = Read(R"({"server": "opc.tcp://nc", "fingerprint": ")" + Colons + "\"}");
    ASSERT_TRUE(Configuration) << m_Error;
    EXPECT_EQ(Configuration->m_Fingerprint.size(), 64U);
}

TEST_F(COpcSetupTest, CertificateFilesAreFoundBesideTheFile) {
    std::ofstream(fs::path(m_Directory.GetPath()) / "user.pem") << "x";
    std::ofstream(fs::path(m_Directory.GetPath()) / "user-key.pem") << "x";
    const auto Configuration =
        Read(R"({"server": "opc.tcp://nc", "user_certificate": "user.pem", "user_key": "user-key.pem"})");
    ASSERT_TRUE(Configuration) << m_Error;
    EXPECT_TRUE(fs::is_regular_file(Configuration->m_UserCertificate));
    EXPECT_THAT(Configuration->m_UserKey, EndsWith("/user-key.pem"));
}

TEST_F(COpcSetupTest, WhatIsWrongIsNamed) {
    EXPECT_FALSE(Read("{}"));
    EXPECT_THAT(m_Error, HasSubstr("server is missing"));
    EXPECT_FALSE(Read(R"({"server": "192.168.214.1"})"));
    EXPECT_THAT(m_Error, HasSubstr("server must be an endpoint, for example opc.tcp://"));
    EXPECT_FALSE(Read("[1]"));
    EXPECT_THAT(m_Error, HasSubstr("must be an object with the fields server"));
    EXPECT_THAT(Refusal(R"("colour": 1)"), HasSubstr("unknown field \"colour\""));
    EXPECT_THAT(Refusal(R"("security": "Basic128")"), HasSubstr("security must be one of Basic256Sha256"));
    EXPECT_THAT(Refusal(R"("security": 5)"), HasSubstr("security must be one of"));
    EXPECT_THAT(Refusal(R"("fingerprint": "abc")"), HasSubstr("64 hexadecimal digits"));
    EXPECT_THAT(Refusal(R"("user": 5)"), HasSubstr("user must be a text"));
    EXPECT_THAT(Refusal(R"("items": {"Request": "a"})"), HasSubstr("unknown field \"items.Request\""));
    EXPECT_THAT(Refusal(R"("items": {"PreBalInterfaceToNC": 7})"),
                HasSubstr("items.PreBalInterfaceToNC must be a text"));
    EXPECT_THAT(Refusal(R"("items": {"PreBalInterfaceToNC": "Request"})"),
                AllOf(HasSubstr("items.PreBalInterfaceToNC must be a node id"), HasSubstr("Request")));
}

TEST_F(COpcSetupTest, HalfALoginIsRefused) {
    EXPECT_THAT(Refusal(R"("user": "u")"), HasSubstr("user and password go together"));
    EXPECT_THAT(Refusal(R"("password": "p")"), HasSubstr("user and password go together"));
    EXPECT_THAT(Refusal(R"("user_certificate": "nobody.pem")"), HasSubstr("a file that exists"));
    EXPECT_THAT(Refusal(R"("user_certificate": "opc.json")"), HasSubstr("user_key go together"));
    EXPECT_THAT(Refusal(R"("user": "u", "password": "p", "user_certificate": "opc.json",
                           "user_key": "opc.json")"),
                HasSubstr("give one of them"));
}

TEST_F(COpcSetupTest, APasswordIsNotSentInTheClear) {
    EXPECT_THAT(Refusal(R"("security": "None", "user": "u", "password": "p")"), HasSubstr("in the clear"));
    EXPECT_TRUE(Read(R"({"server": "opc.tcp://nc", "security": "None"})")) << m_Error;
}

TEST_F(COpcSetupTest, APasswordThatOthersCanReadIsRefused) {
    m_Permissions |= fs::perms::group_read;
    EXPECT_THAT(Refusal(R"("user": "u", "password": "p")"), HasSubstr("chmod 600"));
    EXPECT_TRUE(Read(R"({"server": "opc.tcp://nc"})")) << m_Error;  // nothing to hide
}

/// What can't be parsed may be a password, so it isn't quoted.
TEST_F(COpcSetupTest, BrokenJsonIsNotQuoted) {
    EXPECT_FALSE(Read(R"({"server": "opc.tcp://nc", "password": "secret)"));
    EXPECT_THAT(m_Error, HasSubstr("no valid JSON"));
    EXPECT_THAT(m_Error, Not(HasSubstr("secret")));
}

}  // namespace
