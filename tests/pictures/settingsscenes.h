#pragma once
#include <string>
#include <vector>

#include "platform/window/bitmap.h"
#include "platform/window/size.h"

/// The settings page in its tabs, the left half of the module's window, in one of its states.
struct CSettingsScene {
    std::string m_Name;     ///< of its file; lower case and hyphens
    std::string m_Caption;  ///< what it shows
    std::string m_Language = "en";
    CSize m_Size{300, 440};
    bool m_bTwoPlanes = false;
    bool m_bScrews = false;  ///< the last plane
    bool m_bCalibrated = true;
    bool m_bReset = false;         ///< the rotation was changed
    bool m_bKeyboardOnly = false;  ///< the mode of the tree
    bool m_bTableGone = false;     ///< and a save was refused
    int m_nTolerance = 50;
    int m_nFocus = -1;       ///< row that is selected
    bool m_bEdited = false;  ///< and edited
    bool m_bAtEnd = false;   ///< scrolled to the last row
};

const std::vector<CSettingsScene>& GetSettingsScenes();
/// With the pixels of the scale.
CBitmap RenderSettingsScene(const CSettingsScene& rScene, double Scale = 1.0);
