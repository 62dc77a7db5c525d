#include "tests/pictures/treescenes.h"

#include <memory>

#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/display.h"
#include "rvlib/rvgui/proptree/proptree.h"
#include "rvlib/rvgui/proptree/proptreeitemcombo.h"
#include "rvlib/rvgui/proptree/proptreeitemspinedit.h"
#include "rvlib/rvgui/proptree/proptreeitemstatic.h"
#include "tests/pictures/activeview.h"

using namespace PropTree;

namespace {

void Fill(CPropTree& rTree, const CTreeScene& rScene) {
    const auto Label = [&rScene](const char* pKey) {
        return GetText(pKey) + (rScene.m_bLongTexts ? ", " + GetText("PREBALANCING_HEADER_2LEVEL") : "");
    };
    CPropTreeItem* const pHeading =
        rTree.Insert(std::make_unique<CPropTreeItemStatic>(Label("PREBALANCING_HEADER")));
    pHeading->Expand();
    rTree.Insert(std::make_unique<CPropTreeItemStatic>(Label("PB_SET_CALIB_DATE"), "31.01.2026"), pHeading);
    const std::string Unit = rScene.m_bLongTexts ? "revolutions in a minute, on average" : "rpm";
    auto* const pTolerance = rTree.Insert(std::make_unique<CPropTreeItemSpinEdit<unsigned long>>(
                                              1UL, 100UL, 10UL, 1UL, CSpinEditLook{.m_Unit = Unit}),
                                          pHeading);
    pTolerance->SetLabelText(Label("PB_RPM_TOLERANCE_TEXT"));
    pTolerance->SetInfoText(GetText("PB_RPM_TOLERANCE_TEXT") + ": " + GetText("PB_SET_CALIB_DATE") + ", " +
                            GetText("MEASUREMENT_TIME") + ", " + GetText("PB_UNBAL_TOLERANCE_TEXT") + ".");
    rTree
        .Insert(std::make_unique<CPropTreeItemSpinEdit<double>>(1.5, 15.0, 5.0, 0.1,
                                                                CSpinEditLook{.m_Unit = "s"}),
                pHeading)
        ->SetLabelText(Label("MEASUREMENT_TIME"));
    auto* const pRotation = rTree.Insert(std::make_unique<CPropTreeItemCombo>(0, 1), pHeading);
    pRotation->SetLabelText(Label("PB_ROTATION_DIRECTION_TEXT"));
    pRotation->AddString(GetText("CW_TEXT"));
    pRotation->AddString(GetText("CCW_TEXT"));
    pRotation->SetItemValue(1);
    CPropTreeItem* const pMethod =
        rTree.Insert(std::make_unique<CPropTreeItemStatic>(Label("BALANCING_METHOD")));
    pMethod->Expand(!rScene.m_bClosed);
    CPropTreeItem* const pChecked =
        rTree.Insert(std::make_unique<CPropTreeItemStatic>(Label("REFERENCE_WEIGHT"), "2.500000 g"), pMethod);
    pChecked->ShowCheckBox(true);
    pChecked->SetChecked(true);
    for (int i = 0; i < (rScene.m_bManyRows ? 12 : 1); ++i) {
        rTree
            .Insert(std::make_unique<CPropTreeItemSpinEdit<unsigned char>>(
                        0, 255, 10, 1, CSpinEditLook{.m_bHex = true, .m_ZeroText = "-"}),
                    pMethod)
            ->SetLabelText(Label("NUMBER_OF_FIXED_POSITIONS"));
    }
}

}  // namespace

const std::vector<CTreeScene>& GetTreeScenes() {
    static const std::vector<CTreeScene> s_Scenes{
        {.m_Name = "open", .m_Caption = "Groups open, nothing selected"},
        {.m_Name = "closed", .m_Caption = "The lower group closed", .m_bClosed = true},
        {.m_Name = "focus", .m_Caption = "A row with the focus, and the info pane about it", .m_nFocus = 2},
        {.m_Name = "heading", .m_Caption = "A heading with the focus", .m_nFocus = 0},
        {.m_Name = "selected",
         .m_Caption = "Selected, the window's focus elsewhere",
         .m_nFocus = 2,
         .m_bWithWindowFocus = false},
        {.m_Name = "number", .m_Caption = "A number edited in place", .m_nFocus = 2, .m_bEdited = true},
        {.m_Name = "choice", .m_Caption = "A choice edited in place", .m_nFocus = 4, .m_bEdited = true},
        {.m_Name = "disabled", .m_Caption = "The tree disabled", .m_bEnabled = false, .m_nFocus = 2},
        {.m_Name = "keyboard", .m_Caption = "Keyboard-only mode", .m_bKeyboardOnly = true, .m_nFocus = 3},
        {.m_Name = "keyboard-edited",
         .m_Caption = "Keyboard-only mode, a value being edited",
         .m_bKeyboardOnly = true,
         .m_nFocus = 3,
         .m_bEdited = true},
        {.m_Name = "few-colours",
         .m_Caption = "A display of 8 bits a pixel",
         .m_nBitsPerPixel = 8,
         .m_nFocus = 2},
        {.m_Name = "long",
         .m_Caption = "Labels and units that are too long",
         .m_nWidth = 300,
         .m_bLongTexts = true,
         .m_nFocus = 2},
        {.m_Name = "scrolled", .m_Caption = "More rows than fit", .m_bManyRows = true, .m_nFocus = 14},
        {.m_Name = "german", .m_Caption = "In German", .m_Language = "de", .m_nFocus = 4},
    };
    return s_Scenes;
}

CBitmap RenderTreeScene(const CTreeScene& rScene, double Scale) {
    const std::string FormerLanguage = GetLanguage();
    const int nFormerBits = GetDisplayBitsPerPixel();
    SetLanguage(rScene.m_Language);
    SetDisplayBitsPerPixel(rScene.m_nBitsPerPixel);
    CBitmap Picture;
    {
        CVirtualEventLoop Loop;
        CPropTree Tree;
        Tree.SetMode(rScene.m_bKeyboardOnly ? CPropTree::eKeyboardOnly : CPropTree::eNormalMode);
        Tree.Create(nullptr, CRect(0, 0, rScene.m_nWidth, rScene.m_nHeight), 0);
        Fill(Tree, rScene);
        const CActiveView View(Tree);
        Tree.SetScale(Scale);
        CPropTreeItem* pRow = rScene.m_nFocus < 0 ? nullptr : Tree.GetFirstVisible();
        for (int i = 0; i < rScene.m_nFocus; ++i) {
            pRow = pRow->GetNextVisible();
        }
        Tree.SetFocusedItem(pRow);
        if (!rScene.m_bWithWindowFocus) {
            Tree.GetInfo().SetFocus();  // elsewhere
        } else if (pRow != nullptr) {
            Tree.GetList().SetFocus();
        }
        if (pRow != nullptr && rScene.m_bEdited) {
            pRow->Activate();
        }
        Tree.EnableWindow(rScene.m_bEnabled);
        Loop.RunPosted();
        Picture = Tree.Compose();
    }
    SetDisplayBitsPerPixel(nFormerBits);
    SetLanguage(FormerLanguage);
    return Picture;
}
