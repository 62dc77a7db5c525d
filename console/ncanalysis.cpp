#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "console/ncfacts.h"
#include "console/ncnodeanalysis.h"
#include "console/nctrouble.h"
#include "platform/rvldb/gettext.h"

using nlohmann::json;
using Texts = CCheckReport::Texts;

namespace {

constexpr const char* UNSECURED = "None";
/// Stamps in logs of machine and console can't be held against each other beyond this, s.
constexpr std::int64_t CLOCK_TOLERANCE = 60;
/// Of an ISO date.
constexpr std::size_t DAY_LENGTH = 10;

std::string JoinTexts(const json& rTexts) {
    std::string All;
    for (const json& rText : rTexts) {
        All += (All.empty() ? "" : ", ") + rText.get<std::string>();
    }
    return All;
}

std::string GetHost(const std::string& rUrl) {
    constexpr std::string_view SCHEME = "opc.tcp://";
    const std::string Rest = rUrl.substr(std::min(rUrl.size(), SCHEME.size()));
    const std::size_t End = Rest.starts_with('[') ? Rest.find(']') : Rest.find_first_of(":/");
    return Rest.substr(0, End);
}

/// The server's side of a connection, in the order in which it is made.
class CAnalysis {
public:
    CAnalysis(const CNcFacts& rFacts, CCheckReport& rReport) : m_rFacts(rFacts), m_rReport(rReport) {}

    void Run() {
        LookAtOffers();
        LookAtClock();
        if (const json* pFailed = Get("failed")) {
            LookAtFailure(*pFailed);
            return;
        }
        LookAtSession();
    }

private:
    const json* Get(const char* pName) const {
        const auto Found = m_rFacts.m_Told.find(pName);
        return Found == m_rFacts.m_Told.end() ? nullptr : &*Found;
    }
    const COpcConfiguration& GetConfiguration() const { return m_rFacts.m_Configuration; }

    void LookAtOffers() {
        const json* const pOffers = Get("offers");
        if (pOffers == nullptr) {
            return;
        }
        const std::string& rServer = GetConfiguration().m_Server;
        m_rReport.AddOk("nc-reached", {rServer, pOffers->at("application").get<std::string>()});
        const json& rUrls = pOffers->at("urls");
        const bool bNamed = std::ranges::any_of(
            rUrls, [&](const json& rUrl) { return GetHost(rUrl.get<std::string>()) == GetHost(rServer); });
        if (!bNamed && !rUrls.empty()) {
            m_rReport.AddNote("nc-other-address", {JoinTexts(rUrls)}, {rServer});
        }
        if (const json& rCertificate = pOffers->at("certificate"); rCertificate.is_object()) {
            LookAtCertificate(rCertificate);
        }
    }

    void LookAtCertificate(const json& rCertificate) {
        const std::string Fingerprint = rCertificate.at("sha256").get<std::string>();
        const bool bPinned = rCertificate.at("is_pinned").get<bool>();
        if (IsFailedBy("ServerCertificateChanged") || IsFailedBy("FingerprintDiffers")) {
            return;  // told as what prevents the connection
        }
        if (bPinned || !GetConfiguration().m_Fingerprint.empty()) {
            m_rReport.AddOk("nc-certificate-known", {Fingerprint});
        } else {
            m_rReport.AddNote("nc-certificate-new", {Fingerprint}, {Fingerprint});
        }
        const std::string From = rCertificate.at("not_before").get<std::string>();
        const std::string Until = rCertificate.at("not_after").get<std::string>();
        const std::string Now = Get("own")->at("now").get<std::string>();
        if (Now > Until) {
            m_rReport.AddNote("nc-certificate-old", {Until.substr(0, DAY_LENGTH)},
                              {m_rFacts.m_PkiDirectory + "/server.pem"});
        } else if (Now < From) {
            m_rReport.AddNote("nc-certificate-early", {From.substr(0, DAY_LENGTH)});
        }
        if (!rCertificate.at("is_named").get<bool>()) {
            const std::string Hosts = JoinTexts(rCertificate.at("hosts"));
            m_rReport.AddNote("nc-certificate-host",
                              {Hosts.empty() ? "–" : Hosts, GetHost(GetConfiguration().m_Server)});
        }
    }

    void LookAtClock() {
        const json* const pClock = Get("clock");
        if (pClock == nullptr) {
            return;
        }
        const auto Fast = pClock->at("fast_s").get<std::int64_t>();
        const std::string Seconds = std::to_string(std::abs(Fast));
        if (std::abs(Fast) <= CLOCK_TOLERANCE) {
            m_rReport.AddOk("nc-clock");
        } else {
            m_rReport.AddNote(Fast > 0 ? "nc-clock-fast" : "nc-clock-slow", {Seconds});
        }
    }

    bool IsFailedBy(std::string_view Kind) const {
        const json* const pFailed = Get("failed");
        return pFailed != nullptr && pFailed->at("kind").get<std::string>() == Kind;
    }

    std::string DescribeLogin() const {
        const COpcConfiguration& rConfiguration = GetConfiguration();
        return !rConfiguration.m_UserCertificate.empty() ? rConfiguration.m_UserCertificate
               : !rConfiguration.m_User.empty()          ? rConfiguration.m_User
                                                         : GetText("CHECK_NC_NOBODY");
    }

    /// Texts of the findings that fill in some; each takes the first ones that it needs.
    std::pair<Texts, Texts> GetTexts(std::string_view Finding, const json& rFailed) const {
        const std::string& rServer = GetConfiguration().m_Server;
        const std::string Reason = rFailed.at("reason").get<std::string>();
        const json* const pOwn = Get("own");
        const json* const pOffers = Get("offers");
        if (Finding == "nc-security-not-offered") {
            return {{GetConfiguration().m_Security, pOffers ? JoinTexts(pOffers->at("securities")) : ""}, {}};
        }
        if (Finding == "nc-certificate-changed" || Finding == "nc-certificate-other") {
            const std::string Shown = pOffers ? pOffers->at("certificate").value("sha256", "") : "";
            return {{Shown}, {m_rFacts.m_PkiDirectory + "/server.pem"}};
        }
        if (Finding == "nc-own-untrusted" && pOwn != nullptr) {
            return {{}, {pOwn->value("file", ""), pOwn->value("sha1", ""), pOwn->value("sha256", "")}};
        }
        if (Finding == "nc-own-out-of-time" && pOwn != nullptr) {
            return {{pOwn->value("file", "")}, {}};
        }
        if (Finding == "nc-login-refused" || Finding == "nc-login-not-offered") {
            return {{DescribeLogin()}, {}};
        }
        if (Finding == "nc-login-files") {
            return {{Reason}, {}};
        }
        if (Finding == "nc-unreachable" || Finding == "nc-failed") {
            return {{rServer, Reason}, {}};
        }
        return {{rServer}, {}};
    }

    void LookAtFailure(const json& rFailed) {
        const std::string Kind = rFailed.at("kind").get<std::string>();
        const CNcTrouble* const pTrouble = CNcTrouble::Find(Kind);
        const char* const pFinding = pTrouble != nullptr        ? pTrouble->m_pFinding
                                     : Get("offers") == nullptr ? "nc-unreachable"
                                                                : "nc-failed";
        const auto [First, Advice] = GetTexts(pFinding, rFailed);
        m_rReport.AddProblem(pFinding, First, Advice);
    }

    void LookAtSession() {
        if (GetConfiguration().m_Security == UNSECURED) {
            m_rReport.AddNote("nc-unsecured");
        } else {
            m_rReport.AddOk("nc-secured", {GetConfiguration().m_Security});
        }
        m_rReport.AddOk("nc-login", {DescribeLogin()});
        if (const json* pSession = Get("session");
            pSession && pSession->at("timeout") < pSession->at("asked")) {
            m_rReport.AddOk("nc-session", {std::to_string(pSession->at("timeout").get<std::int64_t>())});
        }
        if (const json* pServer = Get("server"); pServer && pServer->at("nodes_per_read") == 1) {
            m_rReport.AddOk("nc-one-operation");
        }
    }

    const CNcFacts& m_rFacts;
    CCheckReport& m_rReport;
};

}  // namespace

void AnalyseNc(const CNcFacts& rFacts, CCheckReport& rReport) {
    if (!rFacts.m_Told.contains("own") && !rFacts.m_Told.contains("failed")) {
        return;  // the gateway couldn't be asked
    }
    CAnalysis(rFacts, rReport).Run();
    if (rFacts.m_Told.contains("session")) {
        AnalyseNcNodes(rFacts, rReport);
    }
}
