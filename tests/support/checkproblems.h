#pragma once
#include <string>
#include <vector>

#include "console/checkreport.h"

/// Names of what a check says, in its order.
inline std::vector<std::string> GetNames(const CCheckReport& rReport, CFinding::Severity Severity) {
    std::vector<std::string> Found;
    for (const CFinding& rFinding : rReport.GetFindings()) {
        if (rFinding.m_Severity == Severity) {
            Found.push_back(rFinding.m_Name);
        }
    }
    return Found;
}

inline std::vector<std::string> GetProblems(const CCheckReport& rReport) {
    return GetNames(rReport, CFinding::Severity::eProblem);
}
