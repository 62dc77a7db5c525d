// A property tree of 60 items at 600 by 440: all of its picture, which shall take 2 ms at most, and the time
// from a key to the repainted value, which shall take 16 ms at most. Beside them what the same number of
// texts alone takes.
#include <array>
#include <memory>

#include "bench/qtmain.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/dc.h"
#include "platform/window/keys.h"
#include "platform/window/syscolor.h"
#include "rvlib/rvgui/proptree/proptree.h"
#include "rvlib/rvgui/proptree/proptreeitemcombo.h"
#include "rvlib/rvgui/proptree/proptreeitemspinedit.h"
#include "rvlib/rvgui/proptree/proptreeitemstatic.h"
#include "tests/support/lookingpeer.h"

namespace {

using namespace PropTree;

constexpr CRect PAGE(0, 0, 600, 440);

/// Six groups of nine values each, all open.
class CLargeTree {
public:
    explicit CLargeTree(CPropTree::Mode Mode = CPropTree::eNormalMode) {
        m_Page.Create(nullptr, PAGE, 0);
        m_Tree.SetMode(Mode);
        m_Tree.Create(&m_Page, PAGE, 1);
        for (int iGroup = 0; iGroup < 6; ++iGroup) {
            CPropTreeItem* const pGroup =
                m_Tree.Insert(std::make_unique<CPropTreeItemStatic>("Group of values"));
            pGroup->Expand();
            for (int i = 0; i < 3; ++i) {
                m_pValue = m_Tree.Insert(std::make_unique<CPropTreeItemSpinEdit<double>>(
                                             0.0, 1e6, 5.0, 0.1, CSpinEditLook{.m_Unit = "mm"}),
                                         pGroup);
                m_pValue->SetLabelText("A length in millimetres");
                auto* const pCombo = m_Tree.Insert(std::make_unique<CPropTreeItemCombo>(0, 1), pGroup);
                pCombo->SetLabelText("A direction");
                pCombo->AddString("Clockwise");
                pCombo->AddString("Counter-clockwise");
                pCombo->SetItemValue(i % 2);
                m_Tree.Insert(std::make_unique<CPropTreeItemStatic>("A text", "of two words"), pGroup);
            }
        }
        m_Tree.SetFocusedItem(m_pValue);
        m_Loop.RunPosted();
    }

    CVirtualEventLoop m_Loop;
    CWnd m_Page;
    CLookingPeer m_Screen{m_Page};
    CPropTree m_Tree;
    CPropTreeItemSpinEdit<double>* m_pValue = nullptr;
};

void BM_Paint(benchmark::State& rState) {
    CLargeTree Large;
    for (auto _ : rState) {
        Large.m_Tree.GetList().Redraw();
        Large.m_Tree.GetInfo().Invalidate();
        Large.m_Loop.RunPosted();
    }
}
BENCHMARK(BM_Paint)->Unit(benchmark::kMillisecond);

/// What can't be done without: the ground, and a text for each cell in sight.
void BM_TextsAlone(benchmark::State& rState) {
    CBitmap Picture(PAGE.Size());
    const CFont Font("Arial", 15);
    for (auto _ : rState) {
        CDC DC(Picture);
        DC.FillSolidRect(PAGE, GetSysColor(SysColor::eFace));
        DC.SelectFont(Font);
        for (int y = 0; y < PAGE.bottom; y += CPropTree::ROW_HEIGHT) {
            for (const int x : {20, 300}) {
                CRect Cell(x, y, x + 250, y + CPropTree::ROW_HEIGHT);
                DC.DrawText("A length in millimetres", Cell, DT_SINGLELINE | DT_VCENTER | DT_LEFT);
            }
        }
    }
}
BENCHMARK(BM_TextsAlone)->Unit(benchmark::kMillisecond);

/// In keyboard-only mode, where the list paints the value: key down, step, told, painted.
void BM_KeyToRepaintedValue(benchmark::State& rState) {
    CLargeTree Large(CPropTree::eKeyboardOnly);
    CPropTreeList& rList = Large.m_Tree.GetList();
    rList.SetFocus();
    Large.m_pValue->Activate();
    for (auto _ : rState) {
        const double Former = Large.m_pValue->GetItemValue();
        rList.SendMessage(WM_KEYDOWN, VK_RIGHT, 1);
        Large.m_Loop.RunPosted();
        if (Large.m_pValue->GetItemValue() == Former) {
            rState.SkipWithError("the key changed nothing");
            break;
        }
    }
}
BENCHMARK(BM_KeyToRepaintedValue)->Unit(benchmark::kMillisecond);

/// A digit typed into the box over the value.
void BM_DigitToRepaintedValue(benchmark::State& rState) {
    CLargeTree Large;
    Large.m_pValue->Activate();
    CEdit& rEdit = Large.m_pValue->GetEdit();
    constexpr std::array TEXTS{"7", "71"};
    std::size_t i = 0;
    for (auto _ : rState) {
        rEdit.ChangeByOperator(TEXTS[i % TEXTS.size()], 1, 1);
        Large.m_Tree.GetList().Redraw();
        Large.m_Loop.RunPosted();
        benchmark::DoNotOptimize(Large.m_Page.Compose());
        ++i;
    }
}
BENCHMARK(BM_DigitToRepaintedValue)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_QT_MAIN()
