#pragma once
#include <cstdint>
#include <string>
#include <vector>

/// One thing that a check has found: what it is, how bad, and what to do.
struct CFinding {
    enum class Severity : std::uint8_t {
        eOk,      ///< as it should be
        eNote,    ///< a run can begin all the same
        eProblem  ///< a run can't begin, or couldn't be trusted
    };
    /// Never changes, so that scripts may look for it: "link-no-bytes".
    std::string m_Name;
    Severity m_Severity = Severity::eOk;
    std::string m_Text;    ///< a sentence
    std::string m_Advice;  ///< what to do, a sentence or more; empty if nothing is to be done
};
