#include "tests/pictures/scenepage.h"

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/prebalbasetableentry.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screwbalancingview.h"
#include "rvdlm/m_rtr/rtr_trim/methods/weightbalancingview.h"
#include "rvdlm/m_rtr/rtr_trim/pagestyle.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"
#include "tests/support/fakemainwnd.h"
#include "tests/support/testinstallation.h"

namespace {

class CShownPlane {
public:
    virtual ~CShownPlane() = default;
    virtual void Paint(CDC& rDC, const CRect& rRect, bool bRedrawAll, const CPlaneScene& rScene) = 0;
};

/// A view whose contents come from the scene: what the methods do with their positions.
template <typename View>
class CShownView : public CShownPlane, private View {
public:
    void Paint(CDC& rDC, const CRect& rRect, bool bRedrawAll, const CPlaneScene& rScene) override {
        View::m_RotationDirection = rScene.m_Rotation;
        View::m_ScalingDirection = rScene.m_Scaling;
        Take(rScene);
        switch (rScene.m_Mode) {
            case CPlaneBalancingMethod::eEmpty:
                return;
            case CPlaneBalancingMethod::eMeasurementValues:
                View::Paint(&rDC, rRect, &rScene.m_Magnitude, &rScene.m_Angle, &rScene.m_LastMagnitude,
                            bRedrawAll, rScene.m_State);
                return;
            default:
                View::Paint(&rDC, rRect, nullptr, nullptr, nullptr, true, rScene.m_State);
                if (rScene.m_Mode == CPlaneBalancingMethod::eInactive) {
                    View::DrawInactive(&rDC, rRect);
                }
        }
    }

private:
    void Take(const CPlaneScene& rScene);
};

template <>
void CShownView<CWeightBalancingView>::Take(const CPlaneScene& rScene) {
    m_Angle1 = rScene.m_Angle1;
    m_Angle2 = rScene.m_Angle2;
}

template <>
void CShownView<CScrewBalancingView>::Take(const CPlaneScene& rScene) {
    m_NumberOfHoles = rScene.m_NumberOfHoles;
    m_ShownScrews.RemoveAll();
    for (const CScrew& rScrew : rScene.m_Screws) {
        m_ShownScrews.Add(rScrew);
    }
}

std::unique_ptr<CShownPlane> MakePlane(CPlaneScene::Means Means) {
    if (Means == CPlaneScene::eScrews) {
        return std::make_unique<CShownView<CScrewBalancingView>>();
    }
    return std::make_unique<CShownView<CWeightBalancingView>>();
}

/// What the page needs around it. A base, so that it is there before the views read their feature flag.
class CSurroundings {
protected:
    explicit CSurroundings(const CScene& rScene) {
        if (rScene.m_bColorize) {
            m_Installation.EnableFeature("PreBalancingColorizeFinalUnbalance");
        }
        SetLanguage(rScene.m_Language);
    }
    ~CSurroundings() { SetLanguage("en"); }

    CTestInstallation m_Installation;
    CFakeMainWnd m_Window;
    PreBalDB::CPreBalBaseTableEntry m_Entry{"0#1#255-0-ABCDEF-1-2", "Wheel 400"};
};

}  // namespace

class CScenePage::CPage : private CSurroundings, public CPreBalancing {
public:
    explicit CPage(const CScene& rScene)
        : CSurroundings(rScene), CPreBalancing(&m_Window, m_Entry, ""), m_Scene(rScene) {
        for (const CPlaneScene& rPlane : m_Scene.m_Planes) {
            m_Planes.push_back(MakePlane(rPlane.m_Means));
        }
        SetSetText("2");
        SetSetName("External grinding");
        SetProcessName("Wheel 400");
        SetNumberOfSteps(m_Scene.m_NumberOfSteps);
        SetCurrentStep(m_Scene.m_Step);
        SetMode(m_Scene.m_Instruction);
        SetWarningMode(m_Scene.m_Warning, &m_Scene.m_Percent);
        SetCalibratedRPM(m_Scene.m_CalibratedRPM);
        CPreBalancing::CurrentRPM(m_Scene.m_CurrentRPM);
    }

    void Paint(CDC* pDC, const CRect& rRect, unsigned Mask) override {
        const CPaneLayout Layout = CutPane(rRect);
        if ((Mask & (ePaintMethod | ePaintMeasurement)) != 0) {
            for (std::size_t i = 0; i < m_Planes.size(); ++i) {
                const CRect Part = GetPlaneRect(i);
                m_Planes[i]->Paint(*pDC, Part, Mask != ePaintMeasurement, m_Scene.m_Planes[i]);
                if (m_Planes.size() > 1 && m_Scene.m_Planes[i].m_Mode != CPlaneBalancingMethod::eEmpty) {
                    PaintPlaneTitleText(*pDC, Part, static_cast<int>(i) + 1);
                }
            }
        }
        PaintViews(pDC, Layout, Mask);
    }

    /// Two planes stand side by side, plane 1 to the left.
    CRect GetPlaneRect(std::size_t Plane) const {
        CRect Part = CutPane(CRect(CPoint(), m_Scene.m_Size)).m_Method;
        if (m_Planes.size() > 1) {
            const int nMiddle = Part.left + Part.Width() / 2;
            (Plane == 0 ? Part.right : Part.left) = nMiddle;
        }
        return Part;
    }

    // A page without a procedure behind it.
    void RestartMeasurement() override {}
    void OnMeasurementTick() override {}
    int StartPreBalancing(std::uint16_t, int, int) override { return 0; }
    int StartReBalancing(std::uint16_t, int, int) override { return 0; }
    void AbortBalancing(std::uint32_t) override {}
    int KeyPressed(KeyAction) override { return 0; }
    bool CommitChanges() override { return false; }
    bool IsFailureWithNoReturn() const override { return false; }

    CScene m_Scene;

private:
    std::vector<std::unique_ptr<CShownPlane>> m_Planes;
};

CScenePage::CScenePage(const CScene& rScene) : m_pPage(std::make_unique<CPage>(rScene)) {}

CScenePage::~CScenePage() = default;

void CScenePage::Paint(CDC& rDC, unsigned Mask) {
    const CRect Pane(CPoint(), m_pPage->m_Scene.m_Size);
    if (Mask == CPreBalancing::ePaintAll) {
        rDC.FillSolidRect(Pane, PageStyle::GetPanelColor(rDC));
    }
    m_pPage->Paint(&rDC, Pane, Mask);
}

CRect CScenePage::GetPlaneRect(std::size_t Plane) const {
    return m_pPage->GetPlaneRect(Plane);
}

void CScenePage::SetMeasurement(std::size_t Plane, double Magnitude, double Angle, double LastMagnitude) {
    CPlaneScene& rPlane = m_pPage->m_Scene.m_Planes.at(Plane);
    rPlane.m_Magnitude = Magnitude;
    rPlane.m_Angle = Angle;
    rPlane.m_LastMagnitude = LastMagnitude;
}

CBitmap RenderScene(const CScene& rScene) {
    CScenePage Page(rScene);
    CBitmap Picture(rScene.m_Size);
    CDC DC(Picture);
    Page.Paint(DC, CPreBalancing::ePaintAll);
    return Picture;
}
