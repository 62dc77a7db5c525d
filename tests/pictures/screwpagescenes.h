#pragma once
#include <string>
#include <vector>

#include "platform/window/bitmap.h"
#include "platform/window/size.h"

/// The page of the screw tables below its tabs, in one of its states.
struct CScrewPageScene {
    static constexpr unsigned LIST_MODE = 0xFFFFFFFF;

    std::string m_Name;     ///< of its file; lower case and hyphens
    std::string m_Caption;  ///< what it shows
    std::string m_Language = "en";
    CSize m_Size{300, 440};  ///< of the configuration pane
    std::string m_TableName = "Default";
    int m_nRows = 6;
    unsigned m_Row = LIST_MODE;  ///< of the cursor
    unsigned m_Column = 0;
    std::string m_Typed{};  ///< into the name, or into the cell that has the cursor
};

const std::vector<CScrewPageScene>& GetScrewPageScenes();
/// With the pixels of the scale.
CBitmap RenderScrewPageScene(const CScrewPageScene& rScene, double Scale = 1.0);
