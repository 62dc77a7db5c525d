#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/window/rect.h"
#include "rvdlm/m_rtr/rtr_trim/methods/planebalancingmethod.h"
#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"
#include "rvlib/math/matrix.h"
#include "rvlib/math/vector.h"

/// A method that moves nothing: notes its calls in the window's list and answers what a test sets. Every menu
/// has a number of its own; the menus that depend on the number of planes add it, and those of plane 2 lie
/// eMenusOfPlane2 higher. With two planes the calls say which plane they go to: "1:SetUA".
class CFakeMethod : public CPlaneBalancingMethod {
public:
    enum Menus : int {
        eNeutralMenu = 100,
        eTestMenu = 110,
        eTestChangeMenu = 120,
        eCommitMenu = 130,
        eCheckMenu = 140,
        eMenusOfPlane2 = 100
    };

    /// Plane: 0 the only one, else 1 or 2.
    CFakeMethod(std::uint32_t nSamples, std::vector<std::string>& rCalls, int Plane = 0)
        : CPlaneBalancingMethod(nSamples), m_rCalls(rCalls), m_Plane(Plane) {}

    void SetDisplayMode(DisplayMode Mode) override {
        CPlaneBalancingMethod::SetDisplayMode(Mode);
        Note(std::string("SetDisplayMode ") + DisplayModeToString(Mode));
    }
    void SetPlainDisplayMode(DisplayMode Mode) override {
        CPlaneBalancingMethod::SetDisplayMode(Mode);
        Note(std::string("SetPlainDisplayMode ") + DisplayModeToString(Mode));
    }
    int GetNeutralPositionMenu(std::uint8_t nPlanes) override { return Own(eNeutralMenu + nPlanes); }
    int GetTestUnbalanceMenu() override { return Own(eTestMenu); }
    int GetTestUnbalanceChangeMenu() override { return Own(eTestChangeMenu); }
    int GetCommitChangeMenu(std::uint8_t nPlanes) override { return Own(eCommitMenu + nPlanes); }
    int GetCheckWeightsMenu(std::uint8_t nPlanes) override { return Own(eCheckMenu + nPlanes); }
    const math::matrix<double>* GetTestUnbalanceVectorInDeg() override {
        return m_bHasPositions ? &m_Positions : nullptr;
    }
    void SetTestUnbalanceVectorInDeg(const math::matrix<double>& rPositions) override {
        m_Positions = rPositions;
    }
    bool SetUA(const math::matrix<double>& rUA, double* pPerCent, bool bAllowEqualAngles) override {
        m_SetUAs.push_back({rUA, pPerCent != nullptr, bAllowEqualAngles});
        if (pPerCent != nullptr) {
            *pPerCent = m_Percent;
        }
        Note("SetUA");
        return m_bReached;
    }
    math::matrix<double> GetUA() override { return m_UA; }
    void SetRotationDirection(PreBalDB::CTypeBase::Direction Value) override { m_Rotation = Value; }
    PreBalDB::CTypeBase::Direction GetScalingDirection() override { return m_Scaling; }
    bool KeyPressed(CKeyActions::KeyAction Action, int Step) override {
        m_Keys.emplace_back(Action, Step);
        Note("KeyPressed");
        return true;
    }
    void Paint(CDC* /*pDC*/, const CRect& rRect, bool bRedrawAll) override {
        m_Paints.emplace_back(rRect, bRedrawAll);
    }
    void FillNotification(CPreBalNotification& rNotification) override {
        (m_Plane == 2 ? rNotification.m_AnglesPlane2 : rNotification.m_AnglesPlane1) = {
            static_cast<int>(m_Positions(0, 0)), static_cast<int>(m_Positions(1, 0)), -1};
        (m_Plane == 2 ? rNotification.m_WeightsPlane2 : rNotification.m_WeightsPlane1) = {-1, -1, -1};
    }
    void GetWeightPositions(int& rAngleWeight1, int& rAngleWeight2) override {
        const math::matrix<double>& rPositions = m_FirstPositions.value_or(m_Positions);
        rAngleWeight1 = static_cast<int>(rPositions(0, 0));
        rAngleWeight2 = static_cast<int>(rPositions(1, 0));
    }

    struct CSetUA {
        math::matrix<double> m_UA;
        bool m_bPercent;
        bool m_bAllowEqualAngles;
    };
    std::vector<CSetUA> m_SetUAs;
    std::vector<std::pair<int, int>> m_Keys;
    std::vector<std::pair<CRect, bool>> m_Paints;
    bool m_bReached = true;
    double m_Percent = 0.0;
    bool m_bHasPositions = true;
    math::matrix<double> m_Positions = math::MakeVector(11, 22);
    /// In the first measurement, if they are others.
    std::optional<math::matrix<double>> m_FirstPositions;
    math::matrix<double> m_UA = math::MakeVector(0.25, -0.5);
    PreBalDB::CTypeBase::Direction m_Rotation = PreBalDB::CTypeBase::eClockwise;
    PreBalDB::CTypeBase::Direction m_Scaling = PreBalDB::CTypeBase::eCounterClockwise;

private:
    int Own(int Menu) const { return m_Plane == 2 ? Menu + eMenusOfPlane2 : Menu; }
    void Note(const std::string& rCall) {
        m_rCalls.push_back(m_Plane == 0 ? rCall : std::to_string(m_Plane) + ":" + rCall);
    }
    std::vector<std::string>& m_rCalls;
    int m_Plane;
};
