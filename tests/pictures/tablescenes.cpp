#include "tests/pictures/tablescenes.h"

#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/dialog.h"
#include "platform/window/edit.h"
#include "platform/window/messageparams.h"
#include "rvlib/rvgui/flextable/flextableheader.h"
#include "tests/pictures/activeview.h"

namespace {

void Fill(CFlexTable& rTable, const CTableScene& rScene) {
    for (int i = 1; i <= rScene.m_nRows; ++i) {
        const unsigned Row = rTable.AddRow();
        rTable.SetItemData(Row, 0, "M" + std::to_string(i));
        rTable.SetItemData(Row, 1, 0.35 * i);
    }
    if (rScene.m_bLongTexts) {
        rTable.SetItemData(1, 0, std::string("Cylinder head screw, turned down"));
        rTable.SetItemData(2, 1, 1234567.891);
        rTable.SetItemData(3, 1, -0.5);
    }
}

}  // namespace

const std::vector<CTableScene>& GetTableScenes() {
    static const std::vector<CTableScene> s_Scenes{
        {.m_Name = "empty", .m_Caption = "A table without rows", .m_nRows = 0, .m_bFocus = false},
        {.m_Name = "empty-focus", .m_Caption = "A table without rows that has the focus", .m_nRows = 0},
        {.m_Name = "few", .m_Caption = "Three screws, the cursor off", .m_nRows = 3, .m_bFocus = false},
        {.m_Name = "full",
         .m_Caption = "More rows than there is room for, texts too long for their cells",
         .m_bLongTexts = true,
         .m_bFocus = false},
        {.m_Name = "scrolled",
         .m_Caption = "Scrolled by a row and a half, the cursor partly out of sight",
         .m_Row = 1,
         .m_bFocus = false,
         .m_nScrolled = 29},
        {.m_Name = "end", .m_Caption = "Scrolled to the end", .m_bFocus = false, .m_nScrolled = 1000},
        {.m_Name = "selected",
         .m_Caption = "The cursor has just come to a weight",
         .m_Row = 2,
         .m_Column = 1},
        {.m_Name = "edited",
         .m_Caption = "A weight is being typed",
         .m_Row = 2,
         .m_Column = 1,
         .m_Typed = "12,5"},
        {.m_Name = "left", .m_Caption = "The focus is elsewhere", .m_Row = 2, .m_bFocus = false},
        {.m_Name = "disabled",
         .m_Caption = "A table that can't be used now",
         .m_Row = 1,
         .m_Column = 1,
         .m_bFocus = false,
         .m_bEnabled = false},
        {.m_Name = "german", .m_Caption = "In German", .m_Language = "de", .m_nRows = 4, .m_Row = 3},
    };
    return s_Scenes;
}

CBitmap RenderTableScene(const CTableScene& rScene, double Scale) {
    const std::string FormerLanguage = GetLanguage();
    SetLanguage(rScene.m_Language);
    CBitmap Picture;
    {
        CVirtualEventLoop Loop;
        CDialog Page;
        CFlexTable Table;
        CFlexTableHeader Header(Table);
        Page.Create(nullptr, CRect(0, 0, 340, 190), 0);
        Header.Create(&Page, CRect(10, 10, 330, 30), 100);
        Table.SetColumns({{CFlexTable::eString, GetText("NAME"), ""},
                          {CFlexTable::eDouble, GetText("REFERENCE_WEIGHT"), "g"}});
        Table.SetDefaultValues({GetText("NAME"), "0.000000"});
        Table.Create(&Page, CRect(10, 30, 330, 180), 101);
        const CActiveView View(Page);
        Page.SetScale(Scale);
        Fill(Table, rScene);
        if (rScene.m_bFocus) {
            Table.SetFocus();
        }
        if (rScene.m_Row != CTableScene::NONE) {
            Table.MoveTo(rScene.m_Row, rScene.m_Column);
        }
        if (!rScene.m_Typed.empty()) {
            const auto nLength = static_cast<int>(rScene.m_Typed.size());
            dynamic_cast<CEdit&>(*Table.GetDlgItem(CFlexTable::BOX_ID))
                .ChangeByOperator(rScene.m_Typed, nLength, nLength);
        }
        if (rScene.m_nScrolled != 0) {
            Table.SendMessage(WM_VSCROLL, MakeScrollParam(SB_THUMBPOSITION, rScene.m_nScrolled));
        }
        Table.EnableWindow(rScene.m_bEnabled);
        Header.Invalidate();
        Loop.RunPosted();
        Picture = Page.Compose();
    }
    SetLanguage(FormerLanguage);
    return Picture;
}
