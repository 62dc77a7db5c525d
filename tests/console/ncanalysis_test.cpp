// What facts on an NC mean, where no simulator shows them; the others are found over a real connection.
#include <gmock/gmock.h>

#include "console/ncfacts.h"
#include "contract/ncitems.h"

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class CNcAnalysisTest : public testing::Test {
protected:
    CNcAnalysisTest() {
        m_Facts.m_Configuration.m_Server = "opc.tcp://192.168.214.1:4840";
        m_Facts.m_Configuration.m_LinkItems = {{NcItems::REQUEST, "nsu=urn:nc;s=R"},
                                               {NcItems::NOTIFICATION, "nsu=urn:nc;s=N"},
                                               {NcItems::WARNING, "nsu=urn:nc;s=W"}};
        m_Facts.m_PkiDirectory = "/pki";
        m_Facts.m_Told = {
            {"own",
             {{"file", "/pki/own.pem"}, {"sha256", "aa"}, {"sha1", "bb"}, {"now", "2026-06-01T00:00:00Z"}}},
            {"clock", {{"fast_s", 60}}},
            {"offers",
             {{"urls", {"opc.tcp://192.168.214.1:4840/path"}},
              {"securities", {"Basic256Sha256 with SignAndEncrypt"}},
              {"application", "NC"},
              {"certificate",
               {{"sha256", "cc"},
                {"not_before", "2026-01-01T00:00:00Z"},
                {"not_after", "2027-01-01T00:00:00Z"},
                {"hosts", {"192.168.214.1"}},
                {"is_named", true},
                {"is_pinned", true}}}}},
            {"session", {{"timeout", 20000}, {"asked", 20000}}},
            {"server", {{"namespaces", {"urn:nc"}}, {"product", ""}, {"nodes_per_read", 0}}},
            {"granted", {{{"publishing", 100}, {"asked", 100}}, {{"node", "ns=1;s=R"}, {"sampling", 100}}}},
            {"node",
             {MakeNode(NcItems::REQUEST, "nsu=urn:nc;s=R", -1),
              MakeNode(NcItems::NOTIFICATION, "nsu=urn:nc;s=N", 1),
              MakeNode(NcItems::WARNING, "nsu=urn:nc;s=W", -1)}},
            {"done", json::object()}};
    }
    static json MakeNode(const char* pKey, const char* pNode, int Rank) {
        return {{"key", pKey},
                {"node", pNode},
                {"type", "Int32"},
                {"rank", Rank},
                {"size", nullptr},
                {"can_read", true},
                {"can_write", true},
                {"misfits", json::array()},
                {"present", {{"value", {{"int32", 0}}}}},
                {"subscribed", nullptr}};
    }
    json& Node(std::size_t Place) { return m_Facts.m_Told["node"][Place]; }
    void Fail(const char* pKind) {
        m_Facts.m_Told["failed"] = {{"kind", pKind}, {"reason", "the reason"}};
        m_Facts.m_Told.erase("session");
    }
    /// Names of what stands in the way.
    std::vector<std::string> Problems() { return Names(CFinding::Severity::eProblem); }
    std::vector<std::string> Notes() { return Names(CFinding::Severity::eNote); }
    std::vector<std::string> Names(CFinding::Severity Severity) {
        m_Report = CCheckReport("nc", "");
        AnalyseNc(m_Facts, m_Report);
        std::vector<std::string> Result;
        for (const CFinding& rFinding : m_Report.GetFindings()) {
            if (rFinding.m_Severity == Severity) {
                Result.push_back(rFinding.m_Name);
            }
        }
        return Result;
    }

    CNcFacts m_Facts;
    CCheckReport m_Report{"nc", ""};
};

TEST_F(CNcAnalysisTest, WhatIsAsItShouldBeIsNoReasonToDoAnything) {
    EXPECT_THAT(Problems(), IsEmpty());
    EXPECT_THAT(Notes(), IsEmpty());
}

TEST_F(CNcAnalysisTest, AMinuteBetweenTheClocksIsTheMost) {
    m_Facts.m_Told["clock"]["fast_s"] = 61;
    EXPECT_THAT(Notes(), ElementsAre("nc-clock-fast"));
    m_Facts.m_Told["clock"]["fast_s"] = -61;
    EXPECT_THAT(Notes(), ElementsAre("nc-clock-slow"));
    m_Facts.m_Told["clock"]["fast_s"] = -60;
    EXPECT_THAT(Notes(), IsEmpty());
}

TEST_F(CNcAnalysisTest, EachReasonForNoConnectionHasItsFinding) {
    for (const auto& [pKind, pFinding] : {std::pair{"BadTooManySessions", "nc-sessions"},
                                          {"BadInvalidTimestamp", "nc-clock-refused"},
                                          {"NoServerCertificate", "nc-certificate-none"},
                                          {"UserKeyUnusable", "nc-login-files"},
                                          {"BadUserSignatureInvalid", "nc-login-refused"},
                                          {"BadWhatever", "nc-failed"},
                                          {"TimeUp", "nc-failed"}}) {
        Fail(pKind);
        EXPECT_THAT(Problems(), ElementsAre(pFinding)) << pKind;
    }
    m_Facts.m_Told.erase("offers");
    m_Facts.m_Told.erase("clock");
    EXPECT_THAT(Problems(), ElementsAre("nc-unreachable")) << "nothing has answered at all";
    Fail("EAI_AGAIN");
    EXPECT_THAT(Problems(), ElementsAre("nc-unknown-name"));
}

TEST_F(CNcAnalysisTest, AConnectionThatIsLostWhileNodesAreLookedAtIsAProblemToo) {
    m_Facts.m_Told["failed"] = {{"kind", "TimeUp"}, {"reason", "the server doesn't answer in time"}};
    EXPECT_THAT(Problems(), Contains("nc-failed"));
}

TEST_F(CNcAnalysisTest, ANotificationIsAnArrayOfFourteen) {
    Node(1)["size"] = 14U;
    EXPECT_THAT(Problems(), IsEmpty());
    Node(1)["size"] = 0U;
    EXPECT_THAT(Problems(), IsEmpty()) << "any size";
    Node(1)["size"] = 10U;
    EXPECT_THAT(Problems(), ElementsAre("nc-node-size"));
    Node(1)["size"] = nullptr;
    Node(1)["rank"] = -1;
    EXPECT_THAT(Problems(), ElementsAre("nc-node-type"));
    Node(1)["rank"] = -2;
    EXPECT_THAT(Problems(), IsEmpty()) << "any rank";
    Node(0)["rank"] = 1;
    EXPECT_THAT(Problems(), ElementsAre("nc-node-type")) << "a request is none";
}

TEST_F(CNcAnalysisTest, TypesThatTheServerDoesntTellAreTakenAsTheyCome) {
    for (const char* pField : {"type", "rank", "can_read", "can_write"}) {
        Node(0)[pField] = nullptr;
    }
    EXPECT_THAT(Problems(), IsEmpty());
    Node(0)["type"] = "DateTime";
    EXPECT_THAT(Problems(), ElementsAre("nc-node-type"));
}

TEST_F(CNcAnalysisTest, RightsCountThatARunNeeds) {
    Node(1)["can_read"] = false;
    Node(2)["can_read"] = false;
    EXPECT_THAT(Problems(), IsEmpty()) << "these are only written";
    Node(0)["can_read"] = false;
    Node(2)["can_write"] = false;
    EXPECT_THAT(Problems(), ElementsAre("nc-node-unreadable", "nc-node-unwritable"));
}

TEST_F(CNcAnalysisTest, ARequestWhoseChangesArentToldIsAProblem) {
    Node(0)["subscribed"] = {{"error", {{"kind", "BadTooManyMonitoredItems"}, {"reason", "full"}}}};
    EXPECT_THAT(Problems(), ElementsAre("nc-node-unwatched"));
    EXPECT_THAT(m_Report.Find("nc-node-unwatched")->m_Text,
                AllOf(HasSubstr("nsu=urn:nc;s=R"), HasSubstr("full")));
}

TEST_F(CNcAnalysisTest, ANamespaceOfManyNodesIsToldOnce) {
    for (std::size_t i = 0; i < 2; ++i) {
        Node(i) = {{"key", Node(i)["key"]},
                   {"node", Node(i)["node"]},
                   {"error", {{"kind", "NoNamespace"}, {"reason", ""}}}};
    }
    EXPECT_THAT(Problems(), ElementsAre("nc-namespace-missing"));
}

TEST_F(CNcAnalysisTest, ANumberBeyondTheNamespacesIsNoEnd) {
    m_Facts.m_Told["node"] = {MakeNode(NcItems::WARNING, "ns=4294967295;s=W", -1)};
    EXPECT_THAT(Notes(), ElementsAre("nc-namespace-number"));
    m_Facts.m_Told["node"] = {MakeNode(NcItems::WARNING, "i=85", -1)};
    EXPECT_THAT(Notes(), IsEmpty());
}

/// What a run writes goes into the order, and nothing for a node that it reads only.
TEST_F(CNcAnalysisTest, NodesAreLookedAtWithWhatARunDoes) {
    m_Facts.m_Configuration.m_LinkItems[NcItems::TEST_WEIGHT] = "i=1";
    const json Nodes = ListNcNodes(m_Facts.m_Configuration);
    ASSERT_EQ(Nodes.size(), 4U);
    EXPECT_EQ(Nodes[0], json({{"key", NcItems::REQUEST},
                              {"node", "nsu=urn:nc;s=R"},
                              {"rate", 100},
                              {"values", {{{"int32", 0}}, {{"int32", -1}}}}}));
    EXPECT_EQ(Nodes[1]["values"][0]["int32s"].size(), 14U);
    EXPECT_EQ(Nodes[1]["rate"], 0);
    EXPECT_EQ(
        Nodes[3],
        json({{"key", NcItems::TEST_WEIGHT}, {"node", "i=1"}, {"rate", 100}, {"values", json::array()}}));
}

}  // namespace
