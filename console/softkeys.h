#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "contract/menukeys.h"

/// A softkey of the panel.
struct CSoftkey {
    enum Kind {
        eNone,    ///< an empty place
        eModule,  ///< sends its action to the module
        eMore,    ///< shows the other keys
        eHelp,
        eDelete,  ///< the configuration or the screw table on the page
        eCode,    ///< sets, opens or locks with the code
        eService,
        eAnswer  ///< to the question that lies over the page
    };
    Kind m_Kind = eNone;
    const char* m_pTextKey = "";
    bool m_bEnabled = false;
    MenuKeys::CKey m_Key{};     ///< of eModule
    std::size_t m_Answer = 0;   ///< of eAnswer
    std::string m_Value1 = {};  ///< what %1 of the text stands for
    std::string m_Value2 = {};  ///< and %2

    bool IsAction(Actions::Action Wanted) const { return m_Kind == eModule && m_Key.m_Action == Wanted; }
    /// Whether a press does the same, now that the menu has changed.
    bool MeansTheSame(const CSoftkey& rOther) const;
    /// What is written on it, in the language in use.
    std::string GetLabel() const;
    /// Name of its symbol; empty for an empty place.
    const char* GetSymbolName() const;

    friend bool operator==(const CSoftkey& rA, const CSoftkey& rB) {
        return rA.MeansTheSame(rB) && rA.m_bEnabled == rB.m_bEnabled;
    }
};

/// The softkeys as they follow from what the module says, row by row: which there are, which can be pressed.
///
/// Their places are the same in all menus: the first one confirms a step, the last but one is Help, and the
/// last one ends the run, which no other key of a run ever does there. Between runs the last one shows the
/// other keys: who has pressed End once too often has lost nothing.
class CSoftkeys {
public:
    static constexpr std::size_t PLACES = 8;
    static constexpr std::size_t CONFIRM_PLACE = 0;
    static constexpr std::size_t HELP_PLACE = PLACES - 2;
    static constexpr std::size_t END_PLACE = PLACES - 1;

    /// What they follow from.
    struct CState {
        bool m_bReady = false;      ///< the module has a configuration
        std::int32_t m_Menu = -1;   ///< of message 1075
        std::uint32_t m_Page = 0;   ///< of message 1065; counts between runs
        std::int32_t m_Bits = 0;    ///< of message 1122 (softkeymask.h)
        bool m_bDeletable = false;  ///< what the page shows by its name
        /// Text keys of the answers to the question that lies over the page, the harmless one first; they
        /// stand in place of the keys while it does.
        std::vector<const char*> m_Answers = {};
        bool m_bLocked = false;  ///< only what changes nothing can be pressed between runs
    };

    /// Another menu or page begins with its first row.
    void SetState(const CState& rState);
    /// Shows the next row, behind the last one the first.
    void More();
    /// All PLACES, once there is a state.
    const std::vector<CSoftkey>& GetShown() const { return m_Rows[m_nRow]; }

private:
    CState m_State;
    std::vector<std::vector<CSoftkey>> m_Rows{1};
    std::size_t m_nRow = 0;
};
