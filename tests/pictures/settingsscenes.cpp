#include "tests/pictures/settingsscenes.h"

#include <QTemporaryDir>

#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"
#include "rvdlm/m_rtr/rtr_trim/prebalconfigtabs.h"
#include "rvlib/rvgui/proptree/proptreeitemcombo.h"
#include "tests/pictures/activeview.h"
#include "tests/support/scopedenvironment.h"

using namespace PreBalDB;
using PropTree::CPropTreeItem;

namespace {

template <typename Weights, typename Screws>
void FillPlane(bool bScrews, const std::string& rTable, Weights MakeWeights, Screws MakeScrews) {
    if (bScrews) {
        CScrewCompensationTableEntry& rScrews = MakeScrews();
        rScrews.SetScrewTableName(rTable);
        rScrews.SetNumberOfHoles(18);
        rScrews.SetReferenceWeight(2.5);
    } else {
        MakeWeights();
    }
}

void Fill(CPreBalBaseTableEntry& rEntry, const CSettingsScene& rScene, const std::string& rTable) {
    rEntry.SetRPMTolerance(static_cast<std::uint32_t>(rScene.m_nTolerance));
    rEntry.SetNumberOfSamples(100);
    rEntry.SetIsCalibrated(rScene.m_bCalibrated ? 1 : 0);
    rEntry.SetCalibrationDateTime(std::chrono::sys_seconds(std::chrono::seconds(1769862896)));
    rEntry.SetCalibratedRPM(3000);
    if (rScene.m_bTwoPlanes) {
        CTwoPlaneBalancingTableEntry& rPlanes = rEntry.CreateTwoPlane();
        rPlanes.CreatePlane1WeightCompensationTableEntry();
        FillPlane(
            rScene.m_bScrews, rTable, [&] { rPlanes.CreatePlane2WeightCompensationTableEntry(); },
            [&]() -> auto& { return rPlanes.CreatePlane2ScrewCompensationTableEntry(); });
    } else {
        CSinglePlaneBalancingTableEntry& rPlane = rEntry.CreateSinglePlane();
        FillPlane(
            rScene.m_bScrews, rTable, [&] { rPlane.CreateWeightCompensationTableEntry(); },
            [&]() -> auto& { return rPlane.CreateScrewCompensationTableEntry(); });
    }
}

CPropTreeItem* GetRow(PropTree::CPropTree& rTree, int nRow) {
    CPropTreeItem* pRow = rTree.GetFirstVisible();
    for (int i = 0; i < nRow && pRow != nullptr; ++i) {
        pRow = pRow->GetNextVisible();
    }
    return pRow;
}

void ChangeRotation(PropTree::CPropTree& rTree) {
    for (CPropTreeItem* pRow = rTree.GetFirstVisible(); pRow != nullptr; pRow = pRow->GetNextVisible()) {
        auto* const pRotation = dynamic_cast<PropTree::CPropTreeItemCombo*>(pRow);
        if (pRotation != nullptr) {
            pRotation->Activate();
            pRotation->SelectByOperator(1);
            rTree.EndEditing();
            return;
        }
    }
}

void SetState(CPreBalConfigDlg& rPage, CPreBalBaseTableEntry& rEntry, const CSettingsScene& rScene) {
    PropTree::CPropTree& rTree = rPage.GetTree();
    if (rScene.m_bReset) {
        ChangeRotation(rTree);
    }
    if (rScene.m_bTableGone) {
        rPage.ShowInvalidItem(rPage.GetConfig(rEntry));
    } else if (rScene.m_nFocus < 0 && !rScene.m_bAtEnd) {
        rPage.GetPageName().FocusField();
    } else {
        CPropTreeItem* const pRow = rScene.m_bAtEnd ? rTree.GetLastVisible() : GetRow(rTree, rScene.m_nFocus);
        rTree.SetFocusedItem(pRow);
        rTree.SetFocus();
        if (rScene.m_bEdited) {
            pRow->Activate();
        }
    }
}

}  // namespace

const std::vector<CSettingsScene>& GetSettingsScenes() {
    static const std::vector<CSettingsScene> s_Scenes{
        {.m_Name = "new", .m_Caption = "A new configuration, not calibrated", .m_bCalibrated = false},
        {.m_Name = "calibrated", .m_Caption = "Calibrated, one plane, weights", .m_nFocus = 4},
        {.m_Name = "reset", .m_Caption = "A change that clears the calibration", .m_bReset = true},
        {.m_Name = "screws",
         .m_Caption = "One plane, screws: the method's own items",
         .m_bScrews = true,
         .m_bAtEnd = true},
        {.m_Name = "two-planes",
         .m_Caption = "Two planes, weights and screws",
         .m_Size = {960, 1080},
         .m_bTwoPlanes = true,
         .m_bScrews = true,
         .m_nFocus = 7},
        {.m_Name = "two-planes-small",
         .m_Caption = "Two planes in the smallest window",
         .m_bTwoPlanes = true,
         .m_bScrews = true,
         .m_bAtEnd = true},
        {.m_Name = "refused",
         .m_Caption = "The screw table is gone: the save was refused",
         .m_bScrews = true,
         .m_bTableGone = true},
        {.m_Name = "corrected",
         .m_Caption = "A stored value beyond the limits",
         .m_nTolerance = 200,
         .m_nFocus = 4},
        {.m_Name = "edited",
         .m_Caption = "A number edited in place",
         .m_Size = {960, 1080},
         .m_nFocus = 5,
         .m_bEdited = true},
        {.m_Name = "keyboard",
         .m_Caption = "Keyboard-only mode",
         .m_bKeyboardOnly = true,
         .m_nFocus = 5,
         .m_bEdited = true},
        {.m_Name = "german", .m_Caption = "In German", .m_Language = "de", .m_nFocus = 7},
        {.m_Name = "german-reset",
         .m_Caption = "In German, a change that clears the calibration",
         .m_Language = "de",
         .m_bScrews = true,
         .m_bReset = true,
         .m_bAtEnd = true},
        {.m_Name = "german-two-planes",
         .m_Caption = "In German, two planes",
         .m_Language = "de",
         .m_Size = {960, 1080},
         .m_bTwoPlanes = true,
         .m_bScrews = true,
         .m_bCalibrated = false,
         .m_nFocus = 4},
    };
    return s_Scenes;
}

CBitmap RenderSettingsScene(const CSettingsScene& rScene, double Scale) {
    const std::string FormerLanguage = GetLanguage();
    const CScopedEnvironment Zone("TZ", "CET-1");
    const QTemporaryDir Directory;
    SetLanguage(rScene.m_Language);
    SetDatabaseConnection("sqlite:" + Directory.filePath("prebal.db").toStdString());
    CBitmap Picture;
    {
        CVirtualEventLoop Loop;
        CPreBalancingMainWnd MainWnd;
        CPreBalConfigTabs Tabs(MainWnd);
        const auto Mode = rScene.m_bTwoPlanes ? CPreBalDatabase::eModeTwoPlane : CPreBalDatabase::eModePlane1;
        Tabs.SetBalancingMode(Mode);
        Tabs.Create(nullptr, CRect(CPoint(), rScene.m_Size), 0);
        Tabs.SetTitle(GetText("PREBAL_CONFIG") + " (" + GetText("SET") + " 2)");
        Tabs.InitDatabase("0#3#4-0-123456-4711-2", 3, 4, CTypeBase::ePlane1);
        Loop.RunPosted();
        CPreBalConfigDlg& rPage = Tabs.GetConfigDlg();
        CPreBalBaseTableEntry& rEntry = *Tabs.GetCurrentBaseEntry();
        const std::string Table = Tabs.GetScrewTableDlg().GetScrewTableName();
        Fill(rEntry, rScene, rScene.m_bTableGone ? "Brass M6" : Table);
        rPage.GetTree().SetMode(rScene.m_bKeyboardOnly ? PropTree::CPropTree::eKeyboardOnly
                                                       : PropTree::CPropTree::eNormalMode);
        rPage.SetConfiguration(rEntry, Mode, {Table});
        Tabs.SendMessage(1227, rScene.m_bScrews ? 1 : 0);
        const CActiveView View(Tabs);
        Tabs.SetScale(Scale);
        SetState(rPage, rEntry, rScene);
        Loop.RunPosted();
        Picture = Tabs.Compose();
    }
    SetDatabaseConnection("");
    SetLanguage(FormerLanguage);
    return Picture;
}
