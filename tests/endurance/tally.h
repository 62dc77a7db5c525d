#pragma once
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/endurance/troubles.h"

/// What many runs have come to.
struct CTally {
    struct CAssertion {
        int m_nTimes = 0;
        std::set<CTroubles::Kind> m_Explained;  ///< by these troubles
    };
    struct CRuns {
        int m_nBegun = 0;
        int m_nSaved = 0;
        int m_nTold = 0;  ///< ended without a result, and said why
    };

    /// Takes an assertion of a run in which these troubles happened.
    void TakeAssertion(const std::string& rText, const std::set<CTroubles::Kind>& rHappened,
                       const std::string& rWhere);
    void Break(const std::string& rPromise, const std::string& rWhere) {
        m_Broken.push_back(rWhere + ": " + rPromise);
    }

    std::map<std::string, CRuns> m_Runs;  ///< by kind
    std::map<std::string, int> m_Results;
    std::map<CTroubles::Kind, int> m_Troubles;
    std::map<std::string, CAssertion> m_Assertions;
    std::vector<std::string> m_Broken;
    std::uint64_t m_VirtualMs = 0;
    std::uint64_t m_nLogged = 0;  ///< records
    int m_nKept = 0;  ///< of those that were told: a right calibration is in the store all the same
    int m_nWindowRuns = 0;
    int m_nWindowActions = 0;
};
