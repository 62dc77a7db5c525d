#include "console/checkreport.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/storetexts.h"

using PreBalDB::StoreTexts::Fill;

namespace {

/// As CFinding::Severity: for programs, and the key for people.
struct CSeverityName {
    const char* m_pName;
    const char* m_pTextKey;
};
constexpr std::array SEVERITIES = {CSeverityName{"ok", "CHECK_OK"}, CSeverityName{"note", "CHECK_NOTE"},
                                   CSeverityName{"problem", "CHECK_PROBLEM"}};

const CSeverityName& GetName(CFinding::Severity Severity) {
    return SEVERITIES.at(static_cast<std::size_t>(Severity));
}

std::string ToTextKey(const std::string& rName) {
    std::string Key = "CHECK_" + rName;
    std::ranges::transform(Key, Key.begin(), [](unsigned char Character) {
        return Character == '-' ? '_' : static_cast<char>(std::toupper(Character));
    });
    return Key;
}

}  // namespace

void CCheckReport::Add(CFinding::Severity Severity, const std::string& rName, const Texts& rTexts,
                       const Texts* pAdvice) {
    const std::string Key = ToTextKey(rName);
    m_Findings.push_back({rName, Severity, Fill(Key.c_str(), rTexts),
                          pAdvice != nullptr ? Fill((Key + "_DO").c_str(), *pAdvice) : std::string()});
}

void CCheckReport::AddOk(const std::string& rName, const Texts& rTexts) {
    Add(CFinding::Severity::eOk, rName, rTexts, nullptr);
}

void CCheckReport::AddNote(const std::string& rName, const Texts& rTexts, const Texts& rAdvice) {
    Add(CFinding::Severity::eNote, rName, rTexts, &rAdvice);
}

void CCheckReport::AddProblem(const std::string& rName, const Texts& rTexts, const Texts& rAdvice) {
    Add(CFinding::Severity::eProblem, rName, rTexts, &rAdvice);
}

const CFinding* CCheckReport::Find(const std::string& rName) const {
    const auto Found = std::ranges::find(m_Findings, rName, &CFinding::m_Name);
    return Found == m_Findings.end() ? nullptr : &*Found;
}

bool CCheckReport::IsReady() const {
    return std::ranges::none_of(m_Findings, [](const CFinding& rFinding) {
        return rFinding.m_Severity == CFinding::Severity::eProblem;
    });
}

std::vector<std::string> CCheckReport::ToLines() const {
    std::vector<std::string> Lines = {m_Target};
    for (const CFinding& rFinding : m_Findings) {
        Lines.push_back("  " + GetText(GetName(rFinding.m_Severity).m_pTextKey) + ": " + rFinding.m_Text +
                        (rFinding.m_Advice.empty() ? "" : " " + rFinding.m_Advice));
    }
    return Lines;
}

nlohmann::ordered_json CCheckReport::ToJson() const {
    nlohmann::ordered_json Findings = nlohmann::ordered_json::array();
    for (const CFinding& rFinding : m_Findings) {
        Findings.push_back({{"name", rFinding.m_Name},
                            {"severity", GetName(rFinding.m_Severity).m_pName},
                            {"text", rFinding.m_Text},
                            {"do", rFinding.m_Advice}});
    }
    return {{"subject", m_Subject},
            {"target", m_Target},
            {"ready", IsReady()},
            {"facts", m_Facts},
            {"findings", std::move(Findings)}};
}
