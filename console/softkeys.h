#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "contract/menukeys.h"

/// A softkey of the panel.
struct CSoftkey {
    enum Kind {
        eNone,    ///< an empty place
        eModule,  ///< sends its action to the module
        eMore,    ///< shows the other keys
        eHelp,
        eDelete  ///< the configuration or the screw table on the page
    };
    Kind m_Kind = eNone;
    const char* m_pTextKey = "";
    bool m_bEnabled = false;
    MenuKeys::CKey m_Key{};  ///< of eModule

    friend bool operator==(const CSoftkey& rA, const CSoftkey& rB) {
        return rA.m_Kind == rB.m_Kind && rA.m_pTextKey == rB.m_pTextKey && rA.m_bEnabled == rB.m_bEnabled;
    }
};

/// The softkeys as they follow from what the module says, row by row: which there are, which can be pressed.
class CSoftkeys {
public:
    static constexpr std::size_t PLACES = 8;

    /// What they follow from.
    struct CState {
        bool m_bReady = false;      ///< the module has a configuration
        std::int32_t m_Menu = -1;   ///< of message 1075
        std::uint32_t m_Page = 0;   ///< of message 1065; counts between runs
        std::int32_t m_Bits = 0;    ///< of message 1122 (softkeymask.h)
        bool m_bDeletable = false;  ///< what the page shows by its name
    };

    /// Another menu or page begins with its first row.
    void SetState(const CState& rState);
    /// Shows the next row, behind the last one the first.
    void More();
    /// All PLACES, once there is a state; the last one is More where there are more keys, else Help.
    const std::vector<CSoftkey>& GetShown() const { return m_Rows[m_nRow]; }

private:
    CState m_State;
    std::vector<std::vector<CSoftkey>> m_Rows{1};
    std::size_t m_nRow = 0;
};
