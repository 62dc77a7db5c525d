#include "console/ncnodeanalysis.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "contract/ncitems.h"
#include "contract/ncnotification.h"
#include "contract/ncrequests.h"

using nlohmann::json;

namespace {

/// The items' own, ms.
constexpr int RATE = 100;
/// Largest angle of a notification: a type that can't hold it is too narrow.
constexpr int LARGEST_ANGLE = 359;

enum class Wants : std::uint8_t { eNumber, eNumbers, eText };

/// What a run needs of a node.
struct CNeed {
    const char* m_pKey;
    Wants m_Wants;
    bool m_bRead;
    bool m_bWrite;
    bool m_bMust;  ///< without it no NC drives a run
};
constexpr std::array NEEDS = {
    CNeed{NcItems::REQUEST, Wants::eNumber, true, true, true},
    CNeed{NcItems::NOTIFICATION, Wants::eNumbers, false, true, true},
    CNeed{NcItems::WARNING, Wants::eNumber, false, true, false},
    CNeed{NcItems::TEST_WEIGHT, Wants::eNumber, true, false, false},
    CNeed{NcItems::TARGET_UNBALANCE, Wants::eNumber, true, false, false},
    CNeed{NcItems::ROTATION_DIRECTION, Wants::eNumber, true, false, false},
    CNeed{NcItems::ROTOR_NAME, Wants::eText, true, false, false},
};

json MakeNumber(int Value) {
    return {{"int32", Value}};
}

json MakeNumbers(int Value) {
    return {{"int32s", std::vector<int>(CNcNotification::SIZE, Value)}};
}

json ListValues(const CNeed& rNeed) {
    if (!rNeed.m_bWrite) {
        return json::array();
    }
    if (rNeed.m_Wants == Wants::eNumbers) {
        return json::array({MakeNumbers(NcRequests::eRefused), MakeNumbers(LARGEST_ANGLE)});
    }
    if (std::string_view(rNeed.m_pKey) == NcItems::REQUEST) {
        return json::array({MakeNumber(NcRequests::eDone), MakeNumber(NcRequests::eRefused)});
    }
    return json::array({MakeNumber(0)});
}

constexpr std::array<std::string_view, 11> NUMBER_TYPES = {
    "Boolean", "SByte", "Byte", "Int16", "UInt16", "Int32", "UInt32", "Int64", "UInt64", "Float", "Double"};

class CNodeAnalysis {
public:
    CNodeAnalysis(const CNcFacts& rFacts, const CNeed& rNeed, const json& rNode, CCheckReport& rReport)
        : m_rFacts(rFacts), m_rNeed(rNeed), m_rNode(rNode), m_rReport(rReport) {}

    void Run() {
        if (const auto pError = m_rNode.find("error"); pError != m_rNode.end()) {
            LookAtError(*pError);
            return;
        }
        m_bGood = true;
        LookAtType();
        LookAtRights();
        LookAtSubscription();
        if (m_bGood) {
            m_rReport.AddOk("nc-node", {GetNode(), m_rNeed.m_pKey, GetType()});
        }
    }

private:
    std::string GetNode() const { return m_rNode.at("node").get<std::string>(); }
    std::string GetType() const {
        const json& rType = m_rNode.at("type");
        return (rType.is_string() ? rType.get<std::string>() : "?") + (IsArray() ? "[]" : "");
    }
    /// Above 0 are arrays of so many dimensions, below 0 what may be a scalar.
    bool IsArray() const {
        const json& rRank = m_rNode.at("rank");
        return rRank.is_number_integer() && rRank.get<int>() >= 0;
    }
    void AddProblem(const char* pName, const std::string& rMore = {}) {
        m_bGood = false;
        m_rReport.AddProblem(pName, {GetNode(), m_rNeed.m_pKey, rMore});
    }

    void LookAtError(const json& rError) {
        const std::string Kind = rError.at("kind").get<std::string>();
        if (Kind == "NoNamespace") {
            return;  // told once for all nodes of it
        }
        if (Kind == "BadNodeIdUnknown" || Kind == "BadNodeIdInvalid" || Kind == "NoNodeId") {
            AddProblem("nc-node-missing");
        } else {
            AddProblem("nc-node-failed", rError.at("reason").get<std::string>());
        }
    }

    void LookAtType() {
        const json& rType = m_rNode.at("type");
        const std::string Type = rType.is_string() ? rType.get<std::string>() : "";
        const bool bNumber = std::ranges::find(NUMBER_TYPES, Type) != NUMBER_TYPES.end();
        const bool bText = Type == "String";
        // Numbers are understood as texts, too, but a text can't be written for a number.
        const bool bFits = Type.empty() || bNumber || (bText && !m_rNeed.m_bWrite);
        const bool bArrayFits = m_rNode.at("rank").is_null() ||
                                (m_rNeed.m_Wants == Wants::eNumbers) == IsArray() ||
                                m_rNode.at("rank").get<int>() < -1;
        const json& rSize = m_rNode.at("size");
        const bool bTooShort = m_rNeed.m_Wants == Wants::eNumbers && rSize.is_number_unsigned() &&
                               rSize.get<std::size_t>() != 0 &&
                               rSize.get<std::size_t>() != CNcNotification::SIZE;
        if (!bFits || !bArrayFits) {
            AddProblem("nc-node-type", GetType());
        } else if (bTooShort) {
            AddProblem("nc-node-size", std::to_string(rSize.get<std::size_t>()));
        } else if (const json& rMisfits = m_rNode.at("misfits"); !rMisfits.empty()) {
            AddProblem("nc-node-range", GetType());
        }
    }

    void LookAtRights() {
        const auto Refuses = [this](const char* pRight) {
            const json& rRight = m_rNode.at(pRight);
            return rRight.is_boolean() && !rRight.get<bool>();
        };
        if (m_rNeed.m_bRead && Refuses("can_read")) {
            AddProblem("nc-node-unreadable");
        }
        if (m_rNeed.m_bWrite && Refuses("can_write")) {
            AddProblem("nc-node-unwritable");
        }
    }

    void LookAtSubscription() {
        const json& rSubscribed = m_rNode.at("subscribed");
        const auto pError = rSubscribed.is_object() ? rSubscribed.find("error") : rSubscribed.end();
        // What nobody has written yet is as good as an empty one.
        const bool bEmpty = m_rNode.at("present").contains("error");
        if (m_bGood && rSubscribed.is_object() && pError != rSubscribed.end() && !bEmpty) {
            AddProblem("nc-node-unwatched", pError->at("reason").get<std::string>());
        } else if (m_bGood && bEmpty && m_rNeed.m_bMust && m_rNeed.m_bRead) {
            AddProblem("nc-node-failed", m_rNode.at("present").at("error").at("reason").get<std::string>());
        }
    }

    const CNcFacts& m_rFacts;
    const CNeed& m_rNeed;
    const json& m_rNode;
    CCheckReport& m_rReport;
    bool m_bGood = false;
};

void LookAtLinks(const COpcConfiguration& rConfiguration, CCheckReport& rReport) {
    for (const CNeed& rNeed : NEEDS) {
        if (rConfiguration.m_LinkItems.contains(rNeed.m_pKey)) {
            continue;
        }
        if (rNeed.m_bMust) {
            rReport.AddProblem("nc-unlinked", {rNeed.m_pKey}, {rNeed.m_pKey});
        } else if (std::string_view(rNeed.m_pKey) == NcItems::WARNING) {
            rReport.AddNote("nc-no-warning", {rNeed.m_pKey});
        }
    }
}

/// A namespace by its URI that the server doesn't have, and those by their numbers.
void LookAtNamespaces(const CNcFacts& rFacts, CCheckReport& rReport) {
    const json Namespaces = rFacts.m_Told.value("server", json::object()).value("namespaces", json::array());
    std::string Known;
    for (const json& rUri : Namespaces) {
        Known += (Known.empty() ? "" : ", ") + rUri.get<std::string>();
    }
    std::set<std::string> Told;
    for (const json& rNode : rFacts.m_Told.at("node")) {
        const std::string Id = rNode.at("node").get<std::string>();
        const std::string Namespace = Id.substr(0, Id.find(';'));
        if (rNode.value("error", json::object()).value("kind", "") == "NoNamespace") {
            if (Told.insert(Namespace).second) {
                rReport.AddProblem("nc-namespace-missing",
                                   {Namespace.substr(Namespace.find('=') + 1), Known});
            }
        } else if (Namespace.starts_with("ns=") && Told.insert(Namespace).second) {
            const std::size_t Index = std::stoul(Namespace.substr(Namespace.find('=') + 1));
            const std::string Uri = Index < Namespaces.size() ? Namespaces[Index].get<std::string>() : "?";
            rReport.AddNote("nc-namespace-number", {Namespace}, {"nsu=" + Uri});
        }
    }
}

void LookAtTimes(const CNcFacts& rFacts, CCheckReport& rReport) {
    double Publishing = 0.0;
    double Sampling = 0.0;
    for (const json& rGranted : rFacts.m_Told.at("granted")) {
        Publishing = std::max(Publishing, rGranted.value("publishing", 0.0));
        Sampling = std::max(Sampling, rGranted.value("sampling", 0.0));
    }
    const auto ToText = [](double Milliseconds) {
        return std::to_string(static_cast<long long>(Milliseconds));
    };
    if (Publishing > RATE) {
        rReport.AddNote("nc-publishing", {ToText(Publishing)}, {ToText(Publishing)});
    }
    if (Sampling > RATE) {
        rReport.AddNote("nc-sampling", {ToText(Sampling)}, {ToText(Sampling)});
    }
    if (Publishing > 0.0 && Publishing <= RATE && Sampling <= RATE) {
        rReport.AddOk("nc-times");
    }
}

}  // namespace

json ListNcNodes(const COpcConfiguration& rConfiguration) {
    json Nodes = json::array();
    for (const CNeed& rNeed : NEEDS) {
        if (const auto Item = rConfiguration.m_LinkItems.find(rNeed.m_pKey);
            Item != rConfiguration.m_LinkItems.end()) {
            Nodes.push_back({{"key", rNeed.m_pKey},
                             {"node", Item->second},
                             {"rate", rNeed.m_bRead ? RATE : 0},
                             {"values", ListValues(rNeed)}});
        }
    }
    return Nodes;
}

void AnalyseNcNodes(const CNcFacts& rFacts, CCheckReport& rReport) {
    LookAtLinks(rFacts.m_Configuration, rReport);
    LookAtNamespaces(rFacts, rReport);
    for (const json& rNode : rFacts.m_Told.at("node")) {
        const auto Need = std::ranges::find_if(
            NEEDS, [&](const CNeed& rNeed) { return rNode.at("key").get<std::string>() == rNeed.m_pKey; });
        if (Need != NEEDS.end()) {
            CNodeAnalysis(rFacts, *Need, rNode, rReport).Run();
        }
    }
    LookAtTimes(rFacts, rReport);
}
