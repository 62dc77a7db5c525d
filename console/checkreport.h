#pragma once
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "console/finding.h"

/// What a check has found: facts for programs, and findings for people in the language in use.
///
/// A finding is added by its name. Its text is that of the key CHECK_ and the name in capitals,
/// "link-no-bytes" has CHECK_LINK_NO_BYTES, and what to do that of the same key with _DO behind it; each with
/// its "%s" filled in.
class CCheckReport {
public:
    using Texts = std::vector<std::string>;

    /// rSubject: "link", "nc", "database"; rTarget: what was looked at, without secrets.
    CCheckReport(std::string Subject, std::string Target)
        : m_Subject(std::move(Subject)), m_Target(std::move(Target)) {}

    /// Of the JSON, by its subject's own names.
    nlohmann::ordered_json& GetFacts() { return m_Facts; }

    void AddOk(const std::string& rName, const Texts& rTexts = {});
    void AddNote(const std::string& rName, const Texts& rTexts = {}, const Texts& rAdvice = {});
    void AddProblem(const std::string& rName, const Texts& rTexts = {}, const Texts& rAdvice = {});

    const std::vector<CFinding>& GetFindings() const { return m_Findings; }
    /// Null if it isn't there.
    const CFinding* Find(const std::string& rName) const;
    /// Nothing stands in the way of a run.
    bool IsReady() const;

    /// One a finding, and a headline before them.
    std::vector<std::string> ToLines() const;
    nlohmann::ordered_json ToJson() const;

private:
    void Add(CFinding::Severity Severity, const std::string& rName, const Texts& rTexts,
             const Texts* pAdvice);

    std::string m_Subject;
    std::string m_Target;
    nlohmann::ordered_json m_Facts = nlohmann::ordered_json::object();
    std::vector<CFinding> m_Findings;
};
