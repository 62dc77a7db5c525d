#include "rvlib/rvgui/proptree/proptreeitem.h"

#include <algorithm>

#include "platform/system/eventloop.h"
#include "platform/window/keys.h"
#include "platform/window/syscolor.h"
#include "rvlib/rvgui/gradient.h"
#include "rvlib/rvgui/proptree/proptree.h"

namespace PropTree {

namespace {

constexpr int BOX_WIDTH = 22;  // of the places where expand box and check box answer
constexpr int BOX_SIZE = 13;   // of the boxes as drawn
constexpr int TEXT_INSET = 4;  // of label and value
constexpr COLORREF HEADING = RGB(0xDE, 0xD9, 0xC4);

}  // namespace

void CPropTreeItem::SetLabelText(const std::string& rText) {
    m_Label = rText;
    Redraw();
}

void CPropTreeItem::SetInfoText(const std::string& rText) {
    m_Info = rText;
    Redraw();
}

void CPropTreeItem::SetRangeText(const std::string& rText) {
    m_Range = rText;
    Redraw();
}

bool CPropTreeItem::IsTopLevel() const {
    return m_pParentItem != nullptr && m_pParentItem->m_pParentItem == nullptr;
}

bool CPropTreeItem::Holds(const CPropTreeItem& rItem) const {
    const CPropTreeItem* pItem = &rItem;
    while (pItem != nullptr && pItem != this) {
        pItem = pItem->m_pParentItem;
    }
    return pItem != nullptr;
}

void CPropTreeItem::Expand(bool bExpand) {
    if (m_pTree != nullptr) {
        m_pTree->ExpandItem(*this, bExpand);
    } else {
        SetState(eExpanded, bExpand);
    }
}

void CPropTreeItem::ShowCheckBox(bool bShow) {
    SetState(eWithCheckBox, bShow);
    if (m_pTree != nullptr) {
        m_pTree->UpdateLayout();
    }
}

void CPropTreeItem::SetChecked(bool bChecked) {
    SetState(eChecked, bChecked);
    Redraw();
}

void CPropTreeItem::Activate() {
    if (m_bActive || m_pTree == nullptr || !m_pTree->IsWindowEnabled() || !m_pTree->SetFocusedItem(this)) {
        return;
    }
    m_bChangeSent = false;
    OnActivate();
}

void CPropTreeItem::CommitChanges() {
    const std::weak_ptr<const bool> pLife = m_pLife;
    m_bActive = false;
    OnCommit();
    if (!pLife.expired() && m_pTree != nullptr) {
        m_pTree->SendNotify(CPropTree::eItemChanged, this);
    }
    if (!pLife.expired() && m_pTree != nullptr) {
        m_pTree->TakeFocusBack();
        Redraw();
    }
}

void CPropTreeItem::CancelChanges() {
    if (!m_bActive) {
        return;
    }
    const std::weak_ptr<const bool> pLife = m_pLife;
    m_bActive = false;
    StopRepeat();
    OnCancel();
    if (!pLife.expired() && m_pTree != nullptr && m_bChangeSent) {
        m_pTree->SendNotify(CPropTree::eItemChanged, this);
    }
    if (!pLife.expired() && m_pTree != nullptr) {
        m_pTree->TakeFocusBack();
        Redraw();
    }
}

void CPropTreeItem::StartRepeat(bool bUp, std::uint32_t msInitial) {
    StopRepeat();  // the other key may still be held
    ++m_nSeries;
    if (bUp) {
        StartAutoIncrement(msInitial);
    } else {
        StartAutoDecrement(msInitial);
    }
}

void CPropTreeItem::StopRepeat() {
    StopAutoIncrement();
    StopAutoDecrement();
    if (!m_bStepping) {
        return;
    }
    // Out of a step of the series itself that has no effect, as the timer is between two shots. Once more,
    // then, when the step is over.
    IFEventLoop::Current().Post([this, pLife = GetLife(), nSeries = m_nSeries] {
        if (!pLife.expired() && m_nSeries == nSeries) {
            StopAutoIncrement();
            StopAutoDecrement();
        }
    });
}

void CPropTreeItem::MakeStep(bool bUp) {
    const std::weak_ptr<const bool> pLife = m_pLife;
    m_bStepping = true;
    OnStep(bUp);
    if (!pLife.expired()) {
        m_bStepping = false;
    }
}

bool CPropTreeItem::OnCharacter(char32_t /*Character*/) {
    return false;
}

LRESULT CPropTreeItem::OnControlNotification(const CWndNotification& /*rNotification*/) {
    return 0;
}

void CPropTreeItem::OnActivate() {
    PassHelp();
}

bool CPropTreeItem::OpenValueWindow(CWnd& rFocus) {
    const std::weak_ptr<const bool> pLife = m_pLife;
    CPropTree& rTree = *m_pTree;
    m_bActive = true;
    ProvideValueWindow();
    GetValueWindow()->ShowWindow(!IsKeyboardOnly());
    rFocus.SetFocus();
    if (pLife.expired() || !m_bActive) {
        return false;  // whoever lost the focus had other plans
    }
    PassHelp();
    Redraw();
    if (!IsKeyboardOnly()) {
        return true;
    }
    rTree.TakeFocusBack();
    rTree.SendNotify(CPropTree::eItemChanged, this);
    return false;
}

void CPropTreeItem::ProvideValueWindow() {
    CWnd& rWnd = *GetValueWindow();
    if (!rWnd.IsWindow()) {
        rWnd.Create(&m_pTree->GetList(), m_ValuePlace, 0, false);
    }
}

void CPropTreeItem::CloseValueWindow() {
    m_bActive = false;
    if (CWnd* const pWnd = GetValueWindow()) {
        pWnd->ShowWindow(false);
    }
    StopRepeat();
}

void CPropTreeItem::OnLeaveTree() {
    CloseValueWindow();
    if (CWnd* const pWnd = GetValueWindow()) {
        pWnd->DestroyWindow();
    }
}

void CPropTreeItem::PlaceValue(const CRect& rValue) {
    m_ValuePlace = rValue;
    if (CWnd* const pWnd = GetValueWindow()) {
        pWnd->MoveWindow(rValue);
    }
}

bool CPropTreeItem::OnEndingKey(UINT Message, UINT Key) {
    if (!m_bActive || (Key != VK_RETURN && Key != VK_ESCAPE)) {
        return false;
    }
    if (Key == VK_RETURN && Message == WM_KEYUP) {
        CommitChanges();
    } else if (Key == VK_ESCAPE && Message == WM_KEYDOWN) {
        CancelChanges();
    }
    return true;
}

void CPropTreeItem::SendChanged() {
    m_bChangeSent = true;
    if (m_pTree != nullptr) {
        m_pTree->SendNotify(CPropTree::eItemChanged, this);
    }
}

void CPropTreeItem::PassHelp() const {
    if (m_pTree != nullptr) {
        m_pTree->PassHelp(*this);
    }
}

void CPropTreeItem::Redraw() const {
    if (m_pTree != nullptr) {
        m_pTree->Redraw();
    }
}

bool CPropTreeItem::IsKeyboardOnly() const {
    return m_pTree != nullptr && m_pTree->IsKeyboardOnly();
}

COLORREF CPropTreeItem::GetTextColor() const {
    return GetSysColor(m_pTree->IsWindowEnabled() ? SysColor::eWindowText : SysColor::eGrayText);
}

int CPropTreeItem::Place(int x, int y) {
    m_Y = y;
    m_Height = CPropTree::ROW_HEIGHT;
    // As high as the row and wider than drawn: a finger has to find them.
    m_ExpandRect = HasChildren() ? CRect(x, y, x + BOX_WIDTH, y + m_Height) : CRect();
    m_LabelX = x + BOX_WIDTH;
    m_CheckRect = HasCheckBox() ? CRect(m_LabelX, y, m_LabelX + BOX_WIDTH, y + m_Height) : CRect();
    m_LabelX += m_CheckRect.Width();
    return m_Height;
}

int CPropTreeItem::Draw(CDC& rDC, const CRect& rClient, int y) const {
    const CRect Row(rClient.left, y, rClient.right, y + m_Height);
    DrawGround(rDC, Row);
    const auto DrawBox = [&](const CRect& rBox, CDC::Part Kind, bool bOn) {
        if (!rBox.IsRectEmpty()) {
            const CPoint TopLeft(rBox.left + (rBox.Width() - BOX_SIZE) / 2,
                                 Row.top + (Row.Height() - BOX_SIZE) / 2);
            rDC.DrawPart(CRect(TopLeft, CSize(BOX_SIZE, BOX_SIZE)), Kind,
                         {m_pTree->IsWindowEnabled(), false, bOn});
        }
    };
    DrawBox(m_ExpandRect, CDC::eExpandBox, IsExpanded());
    DrawBox(m_CheckRect, CDC::eCheckBox, IsChecked());
    DrawLabel(rDC, Row);
    DrawAttribute(rDC, m_pTree->GetValueRect(*this));
    // The frame of the focus around the whole row, so that it is seen on headings and beside a value, too.
    if (IsSelected() && m_pTree->HasListFocus()) {
        rDC.DrawFocusRect(CRect(Row.left, Row.top, Row.right, Row.bottom - 1));
    }
    return m_Height;
}

void CPropTreeItem::DrawGround(CDC& rDC, const CRect& rRow) const {
    const COLORREF Line = GetSysColor(SysColor::eShadow);
    if (IsTopLevel()) {
        Gui::FillGradient(rDC, rRow, HEADING);
        return;
    }
    rDC.FillSolidRect(CRect(rRow.left, rRow.bottom - 1, rRow.right, rRow.bottom), Line);
    const int nOrigin = m_pTree->GetOrigin();
    rDC.FillSolidRect(CRect(nOrigin, rRow.top, nOrigin + 1, rRow.bottom), Line);
}

void CPropTreeItem::DrawLabel(CDC& rDC, const CRect& rRow) const {
    const bool bWholeRow = IsTopLevel() && GetValueText().empty();
    const int nRight = bWholeRow ? rRow.right : std::min(m_pTree->GetOrigin(), rRow.right);
    CRect Text(m_LabelX, rRow.top, nRight - 2, rRow.bottom - 1);
    rDC.SelectFont(IsTopLevel() ? CPropTree::GetBoldFont() : CPropTree::GetNormalFont());
    COLORREF Color = GetTextColor();
    if (IsSelected()) {
        CRect Bar = Text;
        if (IsTopLevel()) {
            Bar.DeflateRect(0, 3);  // the gradient stays to be seen
            Bar.right = std::min(Bar.right, Bar.left + rDC.GetTextExtent(m_Label).cx + 2 * TEXT_INSET);
        }
        const bool bHere = m_bActive || m_pTree->HasListFocus();
        if (m_pTree->IsWindowEnabled()) {
            rDC.FillSolidRect(Bar, GetSysColor(bHere ? SysColor::eSelection : SysColor::eShadow));
        } else {
            rDC.FrameRect(Bar, GetSysColor(SysColor::eShadow));  // grey on it couldn't be read
        }
        Color = bHere ? GetSysColor(SysColor::eSelectionText) : Color;
    }
    Text.DeflateRect(TEXT_INSET, 0);
    if (!Text.IsRectEmpty()) {
        rDC.SetTextColor(Color);
        rDC.DrawText(m_Label, Text, DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_END_ELLIPSIS);
    }
}

void CPropTreeItem::DrawAttribute(CDC& rDC, const CRect& rRect) const {
    if (m_bActive && !IsKeyboardOnly()) {
        return;  // a window lies over it
    }
    const std::string Text = GetValueText();
    CRect Rect = rRect;
    // Without a window over it, as in keyboard-only mode, a value that is being edited has to look so itself.
    if (m_bActive && IsKeyboardOnly()) {
        rDC.FillSolidRect(Rect, GetSysColor(SysColor::eWindow));
        rDC.FrameRect(Rect, GetSysColor(SysColor::eSelection));
    }
    Rect.DeflateRect(TEXT_INSET, 0);
    if (Text.empty() || Rect.IsRectEmpty()) {
        return;
    }
    rDC.SelectFont(CPropTree::GetNormalFont());
    rDC.SetTextColor(GetTextColor());
    rDC.DrawText(Text, Rect, DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_END_ELLIPSIS);
}

}  // namespace PropTree
