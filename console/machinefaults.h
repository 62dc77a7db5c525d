#pragma once
#include <nlohmann/json.hpp>
#include <span>

/// A fault that somebody can give the machine at its drawing.
struct CMachineFault {
    const char* m_pTextKey;
    const char* m_pKind;   ///< of the control link
    const char* m_pField;  ///< that says how much: "next" frames, or "value"
    int m_Amount;
    bool m_bLasts;  ///< until it is switched off

    /// As the control link takes it.
    nlohmann::json MakeRequest(bool bOn) const;
};

std::span<const CMachineFault> GetMachineFaults();
