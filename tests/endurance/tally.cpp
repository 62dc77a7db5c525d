#include "tests/endurance/tally.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

/// Assertions that a trouble from outside explains: whoever listens is told that way.
struct CExplanation {
    std::string_view m_Text;
    std::vector<CTroubles::Kind> m_By;  ///< none: raised on purpose, and without any
};

const std::vector<CExplanation>& GetExplanations() {
    static const std::vector<CExplanation> EXPLANATIONS = {
        // The balancing of two planes takes a way that it knows from one.
        {"this path is new", {}},
        {"SaveDatabase failed!", {CTroubles::eSaveFails, CTroubles::eStoreLocked}},
        {"SaveDatabase() failed", {CTroubles::eSaveFails, CTroubles::eStoreLocked}},
        {"SetNCData failed!", {CTroubles::eNcLost}},
        {"SetWarningMode failed!", {CTroubles::eNcLost}},
        {"SetValueFromNC failed!", {CTroubles::eNcLost}},
    };
    return EXPLANATIONS;
}

}  // namespace

void CTally::TakeAssertion(const std::string& rText, const std::set<CTroubles::Kind>& rHappened,
                           const std::string& rWhere) {
    CAssertion& rAssertion = m_Assertions[rText];
    ++rAssertion.m_nTimes;
    for (const CExplanation& rExplanation : GetExplanations()) {
        if (rText.find(rExplanation.m_Text) == std::string::npos) {
            continue;
        }
        const auto By = std::ranges::find_if(rExplanation.m_By,
                                             [&](CTroubles::Kind What) { return rHappened.contains(What); });
        if (By != rExplanation.m_By.end()) {
            rAssertion.m_Explained.insert(*By);
            return;
        }
        if (rExplanation.m_By.empty()) {
            return;
        }
    }
    Break("asserts without a fault that explains it: " + rText, rWhere);
}
