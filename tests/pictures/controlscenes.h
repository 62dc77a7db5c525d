#pragma once
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/window/bitmap.h"

/// One of the controls that configurations are edited with, in one of its states.
struct CControlScene {
    std::string m_Control;  ///< "tree", "table", "settings" or "screwpage"
    std::string m_Name;     ///< of its file; lower case and hyphens
    std::string m_Caption;  ///< what it shows
    /// Draws it with the pixels of a scale.
    std::function<CBitmap(double)> m_Render;
};

inline void PrintTo(const CControlScene& rScene, std::ostream* pStream) {
    *pStream << rScene.m_Control << " " << rScene.m_Name;
}

/// All of them, control by control.
const std::vector<CControlScene>& GetControlScenes();
