#pragma once
#include <string>
#include <vector>

#include "platform/window/bitmap.h"
#include "platform/window/rect.h"

/// A table of screws below its header as it is to be seen, in one of its states, chosen and not brought about
/// by a run.
struct CTableScene {
    static constexpr unsigned NONE = 0xFFFFFFFF;

    std::string m_Name;     ///< of its file; lower case and hyphens
    std::string m_Caption;  ///< what it shows
    std::string m_Language = "en";
    int m_nRows = 20;
    bool m_bLongTexts = false;
    unsigned m_Row = NONE;  ///< of the cursor
    unsigned m_Column = 0;
    bool m_bFocus = true;  ///< the table has the window's focus, if it is enabled
    std::string m_Typed{};
    int m_nScrolled = 0;  ///< pixels, as far as it goes
    bool m_bEnabled = true;
};

const std::vector<CTableScene>& GetTableScenes();
/// With the pixels of the scale.
CBitmap RenderTableScene(const CTableScene& rScene, double Scale = 1.0);
