#pragma once
#include <string>
#include <vector>

#include "platform/window/bitmap.h"

/// A property tree as it is to be seen, in one of its states, chosen and not brought about by a run.
struct CTreeScene {
    std::string m_Name;     ///< of its file; lower case and hyphens
    std::string m_Caption;  ///< what it shows
    std::string m_Language = "en";
    int m_nBitsPerPixel = 24;
    int m_nWidth = 420;
    int m_nHeight = 360;
    bool m_bClosed = false;  ///< the lower group
    bool m_bEnabled = true;
    bool m_bKeyboardOnly = false;
    bool m_bLongTexts = false;
    bool m_bManyRows = false;  ///< more than fit
    int m_nFocus = -1;         ///< row that has the focus
    bool m_bEdited = false;    ///< and is being edited
    bool m_bWithWindowFocus = true;
};

const std::vector<CTreeScene>& GetTreeScenes();
/// With the pixels of the scale.
CBitmap RenderTreeScene(const CTreeScene& rScene, double Scale = 1.0);
