#pragma once
#include <ostream>
#include <string>
#include <vector>

#include "platform/window/bitmap.h"
#include "platform/window/size.h"
#include "rvdlm/m_rtr/rtr_trim/methods/planebalancingmethod.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screw.h"

/// One plane as it is to be seen on the page.
struct CPlaneScene {
    using Direction = PreBalDB::CTypeBase::Direction;
    enum Means { eWeights, eScrews };

    Means m_Means = eWeights;
    CPlaneBalancingMethod::DisplayMode m_Mode = CPlaneBalancingMethod::eUACompensation;
    Direction m_Rotation = PreBalDB::CTypeBase::eClockwise;
    Direction m_Scaling = PreBalDB::CTypeBase::eClockwise;
    int m_Angle1 = 40;
    int m_Angle2 = 155;
    int m_NumberOfHoles = 12;
    std::vector<CScrew> m_Screws;
    double m_Magnitude = 0.0;
    double m_LastMagnitude = 0.0;
    double m_Angle = 0.0;
    int m_State = CPlaneBalancingMethod::eNormal;
};

/// A whole page by its contents: what stands on it is chosen, and not brought about by a run, so that rare
/// pages can be looked at, too.
struct CScene {
    std::string m_Name;     ///< of its files; lower case and hyphens
    std::string m_Caption;  ///< what it shows
    std::vector<CPlaneScene> m_Planes;
    CSize m_Size{600, 440};
    std::string m_Language = "en";
    unsigned m_Step = 9;
    unsigned m_NumberOfSteps = 11;
    unsigned m_Instruction = 7;
    unsigned m_Warning = 0;
    double m_Percent = 0.0;
    unsigned m_CalibratedRPM = 3000;
    std::uint16_t m_CurrentRPM = 0;
    bool m_bColorize = false;  ///< the feature flag PreBalancingColorizeFinalUnbalance
    bool m_bGallery = false;   ///< also shown in the gallery
};

/// What a failed test calls it.
inline void PrintTo(const CScene& rScene, std::ostream* pStream) {
    *pStream << rScene.m_Name;
}

/// All scenes, each with a name of its own.
const std::vector<CScene>& GetScenes();
/// The scene of that name; it must exist.
const CScene& GetScene(const std::string& rName);
