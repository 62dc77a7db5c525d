// What is found of an NC, with the NC simulator in each of its manners: over a real connection.
#include "console/nccheck.h"

#include <gmock/gmock.h>

#include <QTcpServer>
#include <filesystem>
#include <fstream>

#include "platform/qt/qteventloop.h"
#include "tests/opcua/ncserver.h"
#include "tests/support/testpaths.h"

namespace fs = std::filesystem;
using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr const char* SPACE = "nsu=urn:corvane:pre-balancing;s=PreBalancing.";

class CNcCheckTest : public testing::Test {
protected:
    /// opc.json with a server, the nodes of a run, and what else the test wants of it.
    void Write(const std::string& rServer, const json& rMore = json::object()) {
        json File = {{"server", rServer},
                     {"items",
                      {{NcItems::REQUEST, SPACE + std::string("Request")},
                       {NcItems::NOTIFICATION, SPACE + std::string("Notification")},
                       {NcItems::WARNING, SPACE + std::string("Warning")},
                       {NcItems::TEST_WEIGHT, SPACE + std::string("TestWeight")},
                       {NcItems::ROTOR_NAME, SPACE + std::string("RotorName")}}}};
        File.merge_patch(rMore);
        std::ofstream(m_File) << File;
        fs::permissions(m_File, fs::perms::owner_read | fs::perms::owner_write);
    }
    const CCheckReport& Check(const json& rMore = json::object()) {
        Write(m_Nc.GetUrl(), rMore);
        return Look();
    }
    const CCheckReport& Look() {
        m_Report = CheckNc(m_Directory.path().toStdString(), TestProgram("opc-gateway"));
        for (const CFinding& rFinding : m_Report->GetFindings()) {
            const std::string All = rFinding.m_Text + rFinding.m_Advice;
            EXPECT_THAT(All, AllOf(Not(HasSubstr("CHECK_NC")), Not(HasSubstr("%s")))) << rFinding.m_Name;
        }
        return *m_Report;
    }
    /// Names of the findings of that severity, in their order.
    std::vector<std::string> Names(CFinding::Severity Severity) const {
        std::vector<std::string> Result;
        for (const CFinding& rFinding : m_Report->GetFindings()) {
            if (rFinding.m_Severity == Severity) {
                Result.push_back(rFinding.m_Name);
            }
        }
        return Result;
    }
    std::vector<std::string> Problems() const { return Names(CFinding::Severity::eProblem); }
    std::vector<std::string> Notes() const { return Names(CFinding::Severity::eNote); }
    std::string Text(const char* pName) const {
        const CFinding* const pFinding = m_Report->Find(pName);
        return pFinding == nullptr ? "not found" : pFinding->m_Text + " " + pFinding->m_Advice;
    }

    CQtEventLoop m_Loop;
    QTemporaryDir m_Directory;
    const std::string m_File = m_Directory.filePath("opc.json").toStdString();
    CNcServer m_Nc;
    std::optional<CCheckReport> m_Report;
};

TEST_F(CNcCheckTest, AnNcThatCouldDriveARunIsReadyAndIsLeftAsItWas) {
    m_Nc.Start();
    EXPECT_TRUE(Check().IsReady());
    EXPECT_THAT(Problems(), IsEmpty());
    EXPECT_THAT(Notes(), ElementsAre("nc-certificate-new"));
    EXPECT_THAT(Names(CFinding::Severity::eOk),
                ElementsAre("nc-file", "nc-reached", "nc-clock", "nc-secured", "nc-login", "nc-node",
                            "nc-node", "nc-node", "nc-node", "nc-node", "nc-times"));
    for (const char* pItem : {"Request", "Notification", "Warning", "TestWeight", "RotorName"}) {
        EXPECT_FALSE(m_Nc.HasNews(pItem)) << pItem;
    }
    EXPECT_FALSE(fs::exists(m_Directory.filePath("opcua/server.pem").toStdString())) << "trusted by a look";
    EXPECT_EQ(m_Report->ToJson().dump().find("password"), std::string::npos);
}

/// All within the rules: a run works.
TEST_F(CNcCheckTest, MannersOfOtherMakesAreTold) {
    m_Nc.Start({"--advertise", "name-of-the-nc.invalid", "--namespace-index", "5", "--certificate", "no-host",
                "--publishing", "500", "--sampling", "700", "--session", "5000", "--one-operation",
                "--clock=-86400"});
    EXPECT_TRUE(Check().IsReady());
    EXPECT_THAT(Notes(), ElementsAre("nc-other-address", "nc-certificate-new", "nc-certificate-host",
                                     "nc-clock-slow", "nc-publishing", "nc-sampling"));
    EXPECT_THAT(Text("nc-other-address"), HasSubstr("opc.tcp://name-of-the-nc.invalid:"));
    EXPECT_THAT(Text("nc-certificate-host"), HasSubstr("panel-of-another-machine.invalid"));
    EXPECT_THAT(Text("nc-clock-slow"), HasSubstr("86400 s"));
    EXPECT_THAT(Text("nc-publishing"), HasSubstr("every 500 ms"));
    EXPECT_THAT(Text("nc-sampling"), HasSubstr("every 700 ms"));
    EXPECT_THAT(Text("nc-session"), HasSubstr("5000 ms"));
    EXPECT_THAT(Names(CFinding::Severity::eOk), Contains("nc-one-operation"));
}

TEST_F(CNcCheckTest, CertificatesOutOfTheirTimeAreTold) {
    m_Nc.Start({"--certificate", "expired"});
    EXPECT_TRUE(Check().IsReady());
    EXPECT_THAT(Text("nc-certificate-old"), HasSubstr("since 2021-01-01"));
    m_Nc.Kill();
    m_Nc.Start({"--certificate", "future", "--clock=86400"});
    EXPECT_TRUE(Check().IsReady());
    EXPECT_THAT(Notes(), Contains("nc-certificate-early"));
    EXPECT_THAT(Notes(), Contains("nc-clock-fast"));
}

TEST_F(CNcCheckTest, NodesThatARunCantUseAreTold) {
    m_Nc.Start();
    m_Nc.Send({{"restrict", {{"item", "Request"}, {"rights", "read"}}}});
    m_Nc.Send({{"retype", {{"item", "Notification"}, {"type", "String"}}}});
    m_Nc.Send({{"remove", {{"item", "Warning"}}}});
    m_Nc.Send({{"restrict", {{"item", "TestWeight"}, {"rights", "none"}}}});
    EXPECT_FALSE(Check().IsReady());
    EXPECT_THAT(Problems(),
                ElementsAre("nc-node-unwritable", "nc-node-type", "nc-node-missing", "nc-node-unreadable"));
    EXPECT_THAT(Text("nc-node-unwritable"), HasSubstr("PreBalancing.Request"));
    EXPECT_THAT(Text("nc-node-type"), HasSubstr("String"));
}

TEST_F(CNcCheckTest, TypesThatCantHoldWhatARunWritesAreTold) {
    m_Nc.Start({"--integers", "UInt16"});
    EXPECT_FALSE(Check().IsReady());
    EXPECT_THAT(Problems(), ElementsAre("nc-node-range", "nc-node-range"));
    EXPECT_THAT(Text("nc-node-range"), HasSubstr("UInt16"));
    m_Nc.Kill();
    m_Nc.Start({"--integers", "Double"});
    EXPECT_TRUE(Check().IsReady());
}

TEST_F(CNcCheckTest, NamespacesAreToldThatAreMissingOrNamedByANumber) {
    m_Nc.Start();
    Check({{"items",
            {{NcItems::REQUEST, "nsu=urn:nobody;s=Request"},
             {NcItems::NOTIFICATION, "nsu=urn:nobody;s=Notification"},
             {NcItems::WARNING, "ns=2;s=PreBalancing.Warning"}}}});
    EXPECT_THAT(Problems(), ElementsAre("nc-namespace-missing"));
    EXPECT_THAT(Text("nc-namespace-missing"), HasSubstr("urn:nobody"));
    EXPECT_THAT(Text("nc-namespace-missing"), HasSubstr("urn:corvane:pre-balancing"));
    EXPECT_THAT(Text("nc-namespace-number"), HasSubstr("nsu=urn:corvane:pre-balancing"));
}

TEST_F(CNcCheckTest, ItemsWithoutWhichNoNcDrivesARunAreTold) {
    m_Nc.Start();
    Check({{"items", {{NcItems::REQUEST, nullptr}, {NcItems::WARNING, nullptr}}}});
    EXPECT_THAT(Problems(), ElementsAre("nc-unlinked"));
    EXPECT_THAT(Text("nc-unlinked"), HasSubstr(NcItems::REQUEST));
    EXPECT_THAT(Notes(), Contains("nc-no-warning"));
}

TEST_F(CNcCheckTest, ACertificateThatTheNcDoesntTrustIsToldWithWhereItLies) {
    m_Nc.Start({"--trust", "by-hand"});
    Check();
    EXPECT_THAT(Problems(), ElementsAre("nc-own-untrusted"));
    EXPECT_THAT(Text("nc-own-untrusted"), HasSubstr(m_Directory.filePath("opcua/own.pem").toStdString()));
    m_Nc.Kill();
    m_Nc.Start({"--clock=-378432000"});
    Check();
    EXPECT_THAT(Problems(), ElementsAre("nc-own-out-of-time"));
}

TEST_F(CNcCheckTest, ALoginThatTheNcRefusesIsTold) {
    const std::string Password = m_Directory.filePath("password").toStdString();
    std::ofstream(Password) << "open sesame";
    fs::permissions(Password, fs::perms::owner_read | fs::perms::owner_write);
    m_Nc.Start({"--user", "balancing", "--password-file", QString::fromStdString(Password)});
    Check({{"user", "balancing"}, {"password", "open barley"}});
    EXPECT_THAT(Problems(), ElementsAre("nc-login-refused"));
    EXPECT_THAT(Text("nc-login-refused"), HasSubstr(": balancing."));
    EXPECT_EQ(m_Report->ToJson().dump().find("open barley"), std::string::npos);
    Check();
    EXPECT_THAT(Problems(), ElementsAre("nc-login-not-offered"));
    EXPECT_THAT(Text("nc-login-not-offered"), HasSubstr(": without a user."));
    EXPECT_TRUE(Check({{"user", "balancing"}, {"password", "open sesame"}}).IsReady());
}

TEST_F(CNcCheckTest, SecurityAndCertificateThatArentTheOnesOfTheFileAreTold) {
    m_Nc.Start();
    Check({{"security", "None"}});
    EXPECT_THAT(Problems(), ElementsAre("nc-security-not-offered"));
    EXPECT_THAT(Text("nc-security-not-offered"), HasSubstr("Aes128_Sha256_RsaOaep"));
    Check({{"fingerprint", std::string(64, 'a')}});
    EXPECT_THAT(Problems(), ElementsAre("nc-certificate-other"));
    // Our own certificate in the place of the one that the server is known by.
    fs::copy_file(m_Directory.filePath("opcua/own.pem").toStdString(),
                  m_Directory.filePath("opcua/server.pem").toStdString());
    Check();
    EXPECT_THAT(Problems(), ElementsAre("nc-certificate-changed"));
    EXPECT_THAT(Text("nc-certificate-changed"),
                HasSubstr(m_Directory.filePath("opcua/server.pem").toStdString()));
}

TEST_F(CNcCheckTest, ConnectionsWithoutSecurityAreToldToBeSo) {
    m_Nc.Start({"--security", "none"});
    EXPECT_TRUE(Check({{"security", "None"}}).IsReady());
    EXPECT_THAT(Notes(), ElementsAre("nc-unsecured"));
}

TEST_F(CNcCheckTest, AServerThatIsntThereIsTold) {
    QTcpServer Mute;  // takes connections and says nothing
    ASSERT_TRUE(Mute.listen(QHostAddress::LocalHost));
    const std::string Port = std::to_string(Mute.serverPort());
    Mute.close();
    Write("opc.tcp://127.0.0.1:" + Port);
    Look();
    EXPECT_THAT(Problems(), ElementsAre("nc-refused"));
    Write("opc.tcp://name-of-the-nc.invalid:4840");
    Look();
    EXPECT_THAT(Problems(), ElementsAre("nc-unknown-name"));
}

TEST_F(CNcCheckTest, SomethingElseThanAnOpcUaServerIsTold) {
    QTcpServer Mute;  // takes connections and says nothing
    ASSERT_TRUE(Mute.listen(QHostAddress::LocalHost));
    Write("opc.tcp://127.0.0.1:" + std::to_string(Mute.serverPort()));
    Look();
    EXPECT_THAT(Problems(), ElementsAre("nc-unreachable"));
}

TEST_F(CNcCheckTest, AFileThatIsMissingOrWrongIsTold) {
    Look();
    EXPECT_THAT(Problems(), ElementsAre("nc-file-missing"));
    EXPECT_THAT(Text("nc-file-missing"), HasSubstr(m_File));
    Write("opc.tcp://nc", {{"items", {{"PreBalInterfaceToNcc", "ns=2;s=N"}}}});
    Look();
    EXPECT_THAT(Problems(), ElementsAre("nc-file-wrong"));
    EXPECT_THAT(Text("nc-file-wrong"), HasSubstr("PreBalInterfaceToNcc"));
}

TEST_F(CNcCheckTest, AGatewayThatCantLookIsTold) {
    Write("opc.tcp://nc");
    m_Report = CheckNc(m_Directory.path().toStdString(), "/nowhere/opc-gateway");
    EXPECT_THAT(Problems(), ElementsAre("nc-no-gateway"));
    EXPECT_THAT(Text("nc-no-gateway"), HasSubstr("/nowhere/opc-gateway"));
    m_Report = CheckNc(m_Directory.path().toStdString(), "/bin/false");
    EXPECT_THAT(Problems(), ElementsAre("nc-no-gateway"));
}

}  // namespace
