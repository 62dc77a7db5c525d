// Scenes are put together by hand; here they are held against pages of the real procedures.
#include <gtest/gtest.h>

#include "platform/rvmdb/prebalbasetableentry.h"
#include "platform/system/virtualeventloop.h"
#include "rvdlm/m_rtr/rtr_trim/pagestyle.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancing.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanebalancing.h"
#include "tests/pictures/picturefile.h"
#include "tests/pictures/scenepage.h"
#include "tests/support/fakemainwnd.h"
#include "tests/support/testinstallation.h"

namespace {

class ProcedurePageTest : public testing::Test {
protected:
    /// The page of a procedure that has just been started, with the spindle at rest.
    CBitmap StartAndRender(CPreBalancing& rProcedure, CSize Size) {
        rProcedure.SetSetText("2");
        rProcedure.SetSetName("External grinding");
        EXPECT_EQ(rProcedure.StartPreBalancing(0, 1, 1), 1);
        return Render(rProcedure, Size);
    }
    static CBitmap Render(CPreBalancing& rProcedure, CSize Size) {
        CBitmap Picture(Size);
        CDC DC(Picture);
        DC.FillSolidRect(CRect(CPoint(), Size), PageStyle::PANEL);
        rProcedure.Paint(&DC, CRect(CPoint(), Size), CPreBalancing::ePaintAll);
        return Picture;
    }
    /// A scene that stands where the procedure does.
    static CScene MakeScene(const CPreBalancing& rProcedure, std::vector<CPlaneScene> Planes) {
        CScene Scene;
        Scene.m_Planes = std::move(Planes);
        Scene.m_Step = rProcedure.GetCurrentStep();
        Scene.m_NumberOfSteps = rProcedure.GetNumberOfSteps();
        Scene.m_Instruction = rProcedure.GetMode();
        Scene.m_Warning = rProcedure.GetWarningMode();
        Scene.m_CalibratedRPM = 0;
        return Scene;
    }
    static CPlaneScene OpposedWeights(CPlaneBalancingMethod::DisplayMode Mode) {
        CPlaneScene Plane;
        Plane.m_Mode = Mode;
        Plane.m_Angle1 = 0;
        Plane.m_Angle2 = 180;
        return Plane;
    }
    static void ExpectAlike(const CBitmap& rActual, const CScene& rScene) {
        const CPictureDifference Difference(rActual, RenderScene(rScene));
        EXPECT_TRUE(Difference.IsAlike()) << Difference.ToText();
    }

    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CFakeMainWnd m_Window;
    PreBalDB::CPreBalBaseTableEntry m_Entry{"0#1#255-0-ABCDEF-1-2", "Wheel 400"};
};

TEST_F(ProcedurePageTest, OnePlanesPageIsLikeItsScene) {
    m_Entry.CreateSinglePlane().CreateWeightCompensationTableEntry();
    CSinglePlaneBalancing Procedure(&m_Window, 0, m_Entry, "");
    const CBitmap Page = StartAndRender(Procedure, {600, 440});
    ExpectAlike(Page, MakeScene(Procedure, {OpposedWeights(CPlaneBalancingMethod::eNeutralPosition)}));

    Procedure.KeyPressed(CKeyActions::eNext);
    ExpectAlike(Render(Procedure, {600, 440}),
                MakeScene(Procedure, {OpposedWeights(CPlaneBalancingMethod::eInactive)}));
}

TEST_F(ProcedurePageTest, TwoPlanesPageIsLikeItsScene) {
    PreBalDB::CTwoPlaneBalancingTableEntry& rPlanes = m_Entry.CreateTwoPlane();
    rPlanes.CreatePlane1WeightCompensationTableEntry();
    rPlanes.CreatePlane2WeightCompensationTableEntry();
    CTwoPlaneBalancing Procedure(&m_Window, m_Entry, "");
    const CPlaneScene Shown = OpposedWeights(CPlaneBalancingMethod::eNeutralPosition);
    // The second plane is seen from its own end, where the rotor turns the other way.
    CPlaneScene ShownFromBehind = Shown;
    ShownFromBehind.m_Rotation = PreBalDB::CTypeBase::eCounterClockwise;
    const CBitmap Page = StartAndRender(Procedure, {600, 440});
    ExpectAlike(Page, MakeScene(Procedure, {Shown, ShownFromBehind}));

    Procedure.KeyPressed(CKeyActions::eNext);
    const CPlaneScene Inactive = OpposedWeights(CPlaneBalancingMethod::eInactive);
    CPlaneScene InactiveFromBehind = ShownFromBehind;
    InactiveFromBehind.m_Mode = CPlaneBalancingMethod::eInactive;
    ExpectAlike(Render(Procedure, {600, 440}), MakeScene(Procedure, {Inactive, InactiveFromBehind}));
}

// Live values come every 250 ms onto the same page: it mustn't change while the values don't.
TEST_F(ProcedurePageTest, RepaintsOfTheSameValuesChangeNothing) {
    PreBalDB::CTwoPlaneBalancingTableEntry& rPlanes = m_Entry.CreateTwoPlane();
    rPlanes.CreatePlane1WeightCompensationTableEntry();
    rPlanes.CreatePlane2WeightCompensationTableEntry();
    CTwoPlaneBalancing Procedure(&m_Window, m_Entry, "");
    Procedure.StartPreBalancing(0, 1, 1);
    Procedure.KeyPressed(CPreBalancing::eNext);
    Procedure.CurrentRPM(3000);
    Procedure.OutOfLock(0);
    Procedure.InvalidRPM(0);
    Procedure.KeyPressed(CPreBalancing::eNext);
    ASSERT_EQ(Procedure.GetMode(), 6u) << "measuring";
    Procedure.CurrentXYValuePlane1(120, -35);
    Procedure.CurrentXYValuePlane2(-5, 350);
    CBitmap Picture = Render(Procedure, {600, 440});
    const CBitmap Before = Picture;
    CDC DC(Picture);
    for (int i = 0; i < 20; ++i) {
        Procedure.Paint(&DC, CRect(0, 0, 600, 440), CPreBalancing::ePaintMeasurement);
    }
    EXPECT_EQ(CPictureDifference(Picture, Before).m_nPixels, 0);
    EXPECT_TRUE(Picture == Before);
}

}  // namespace
