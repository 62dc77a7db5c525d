#include "tests/pictures/screwpagescenes.h"

#include "platform/rvldb/gettext.h"
#include "platform/system/virtualeventloop.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"
#include "tests/pictures/activeview.h"
#include "tests/support/testinstallation.h"

namespace {

Base::CWDArray<PreBalDB::CScrew> MakeScrews(int nRows) {
    Base::CWDArray<PreBalDB::CScrew> Screws;
    for (int i = 0; i < nRows; ++i) {
        const std::string Name = i == 2 ? std::string() : "M6 x " + std::to_string(8 + 2 * i);
        Screws.Add(PreBalDB::CScrew(Name, 0.5 + 0.25 * i));
    }
    return Screws;
}

void Type(CEdit& rEdit, const std::string& rText) {
    const auto nLength = static_cast<int>(rText.size());
    rEdit.ChangeByOperator(rText, nLength, nLength);
}

}  // namespace

const std::vector<CScrewPageScene>& GetScrewPageScenes() {
    static const std::vector<CScrewPageScene> s_Scenes{
        {.m_Name = "list", .m_Caption = "A table is chosen by its name"},
        {.m_Name = "list-german", .m_Caption = "In German", .m_Language = "de"},
        {.m_Name = "list-wide",
         .m_Caption = "On a page of 1920 by 1080",
         .m_Language = "de",
         .m_Size = CSize(960, 1080)},
        {.m_Name = "name-typed", .m_Caption = "A new name is being typed", .m_Typed = "Wheel 400, brass"},
        {.m_Name = "edit", .m_Caption = "A weight is edited", .m_Row = 1, .m_Column = 1, .m_Typed = "12,5"},
        {.m_Name = "edit-german", .m_Caption = "A name is edited, in German", .m_Language = "de", .m_Row = 2},
        {.m_Name = "edit-wide",
         .m_Caption = "A weight is edited on a page of 1920 by 1080",
         .m_Size = CSize(960, 1080),
         .m_nRows = 60,
         .m_Row = 60,
         .m_Column = 1},
        {.m_Name = "new",
         .m_Caption = "A new table",
         .m_TableName = "Rad 400, Messing, lange Schrauben mit Senkkopf",
         .m_nRows = 0,
         .m_Row = 0},
    };
    return s_Scenes;
}

CBitmap RenderScrewPageScene(const CScrewPageScene& rScene, double Scale) {
    const std::string FormerLanguage = GetLanguage();
    SetLanguage(rScene.m_Language);
    CBitmap Picture;
    {
        const CTestInstallation Installation;
        CVirtualEventLoop Loop;
        CPreBalancingMainWnd Wnd;
        Wnd.Create(nullptr, CRect(CPoint(), CSize(2 * rScene.m_Size.cx, rScene.m_Size.cy)), 1);
        auto& rTabs = dynamic_cast<CPreBalConfigTabs&>(*Wnd.GetDlgItem(CPreBalancingMainWnd::TAB_CTRL_ID));
        CScrewTableDlg& rPage = rTabs.GetScrewTableDlg();
        const CActiveView View(Wnd);
        Wnd.SetScale(Scale);
        rTabs.SetCurSel(CPreBalConfigTabs::SCREW_TAB);
        rTabs.UpdateTabSelection();
        rPage.SetScrewTables({rScene.m_TableName, "Brass"}, true);
        rPage.ShowScrewTableName(rScene.m_TableName);
        rPage.SetScrewTable(MakeScrews(rScene.m_nRows));
        rPage.GetPageName().FocusField();
        if (rScene.m_Row != CScrewPageScene::LIST_MODE) {
            rPage.GetTable().MoveTo(rScene.m_Row, rScene.m_Column);
        }
        if (!rScene.m_Typed.empty()) {
            CWnd* const pBox = rPage.GetTable().GetDlgItem(CFlexTable::BOX_ID);
            Type(rPage.IsListMode() ? rPage.GetPageName().GetField() : dynamic_cast<CEdit&>(*pBox),
                 rScene.m_Typed);
        }
        Loop.RunPosted();
        Picture = rTabs.Compose();
    }
    SetLanguage(FormerLanguage);
    return Picture;
}
