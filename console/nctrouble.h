#pragma once
#include <string>
#include <string_view>

/// Why there is no connection with the NC: by the kinds that the gateway tells, which never change their
/// names.
struct CNcTrouble {
    std::string_view m_Kind;
    const char* m_pFinding;  ///< of a check
    const char* m_pTextKey;  ///< a sentence without details

    /// Null for a kind that nothing particular is known of.
    static const CNcTrouble* Find(std::string_view Kind);
    /// The sentence in the language in use; empty if there is none.
    static std::string Describe(std::string_view Kind);
};
