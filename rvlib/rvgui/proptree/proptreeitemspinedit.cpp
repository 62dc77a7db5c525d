#include "rvlib/rvgui/proptree/proptreeitemspinedit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include "platform/system/text.h"
#include "platform/window/keys.h"
#include "rvlib/rvgui/log.h"
#include "rvlib/rvgui/numbertext.h"
#include "rvlib/rvgui/proptree/proptree.h"

namespace PropTree {

namespace {

constexpr int BUTTON_WIDTH = 26;

/// Digits behind the point that a fraction has: 2 for 0.01, 1 for 0.25.
int CountDigits(double Fraction) {
    constexpr double ROUNDING = 1e-9;  // 0.01 of 2.01 isn't quite that
    constexpr int MOST = 15;
    int nDigits = 0;
    while (Fraction < 1.0 - ROUNDING && nDigits < MOST) {
        Fraction *= 10.0;
        ++nDigits;
    }
    return nDigits;
}

}  // namespace

template <typename T>
CPropTreeItemSpinEdit<T>::CPropTreeItemSpinEdit(T Min, T Max, T Value, T Step, const CSpinEditLook& rLook)
    : m_Min(Min),
      m_Max(Max),
      m_Value(Value),
      m_Step(Step),
      m_Unit(rLook.m_Unit),
      m_Editable(rLook.m_bEditable),
      m_Hex(rLook.m_bHex),
      m_ZeroText(rLook.m_ZeroText),
      m_FormerValue(Value) {
    RV_ASSERT(Gui::g_pLog, Min <= Max, "invalid min/max values");
    if (m_Min > m_Max) {
        std::swap(m_Min, m_Max);
    }
    ClampValue();
    ChooseFormat();
    UpdateRangeText();
}

template <typename T>
void CPropTreeItemSpinEdit<T>::ClampValue() {
    if (m_Value < m_Min) {
        m_Value = m_Min;
        RV_WARNING(Gui::g_pLog, "value not in range");
    }
    if (m_Value > m_Max) {
        m_Value = m_Max;
        RV_WARNING(Gui::g_pLog, "value not in range");
    }
}

template <typename T>
void CPropTreeItemSpinEdit<T>::ChooseFormat() {
    if (m_Hex && m_Min < T{}) {
        RV_ASSERT_AS(Gui::g_pLog, false, "m_Min >= 0", "integer not allowed in Hex format", false);
        m_Hex = false;
    }
    const double Fraction = CNumberTraits<T>::GetFraction(m_Step);
    m_Fractional = Fraction > 0.0 && Fraction < 1.0;
    if (m_Fractional) {
        RV_ASSERT(Gui::g_pLog, !m_Hex, "invalid usage");
        m_Hex = false;
        m_ValueFormat = {CNumberFormat::eFraction, CountDigits(Fraction)};
    }
    if (!m_Hex) {
        return;
    }
    constexpr std::array<std::pair<std::int64_t, int>, 3> WIDTHS{{{0xFF, 2}, {0xFFFF, 4}, {0xFFFFFFFF, 8}}};
    for (const auto& [Most, nDigits] : WIDTHS) {
        if (CNumberTraits<T>::ToInteger(m_Max) <= Most) {
            m_ValueFormat = {CNumberFormat::eHex, nDigits};
            return;
        }
    }
    // Beyond, the list stays decimal; only the edit box is hexadecimal.
}

template <typename T>
void CPropTreeItemSpinEdit<T>::UpdateRangeText() {
    SetRangeText("[" + m_ValueFormat.Write(m_Min) + ".." + m_ValueFormat.Write(m_Max) + "]");
}

template <typename T>
std::string CPropTreeItemSpinEdit<T>::FormatText(T Value, bool bEditBox) const {
    if (Value == T{} && !m_ZeroText.empty()) {
        return m_ZeroText;
    }
    const CNumberFormat Format = bEditBox && m_Hex ? CNumberFormat{CNumberFormat::eHex, 0} : m_ValueFormat;
    std::string Text = Format.Write(Value) + " " + m_Unit;
    if (bEditBox) {
        Text.erase(Text.find_last_not_of(' ') + 1);
    }
    return Text;
}

template <typename T>
int CPropTreeItemSpinEdit<T>::ToSteps(T Value) const {
    const double Steps = m_Fractional ? std::round(static_cast<double>(Value) / static_cast<double>(m_Step))
                                      : static_cast<double>(CNumberTraits<T>::ToInteger(Value));
    return static_cast<int>(
        std::clamp<double>(Steps, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

template <typename T>
bool CPropTreeItemSpinEdit<T>::Parse(std::string_view Text, T& rValue) const {
    if (!m_ZeroText.empty() && Text::EqualNoCase(Text, m_ZeroText)) {  // the box has made capitals of it
        rValue = T{};
        return true;
    }
    if (m_Hex) {
        const std::optional<std::int64_t> Read = Gui::ReadHex(Text);
        return Read && CNumberTraits<T>::FromInteger(*Read, rValue);
    }
    if constexpr (std::is_floating_point_v<T>) {
        if (m_Fractional) {
            const bool bSignOnly = Text == "+" || Text == "-";  // a step on the way to a number
            const std::optional<double> Read = bSignOnly ? 0.0 : Gui::ReadFraction(Text);
            if (Read) {
                // The whole step that is added, and not half of one, is deliberate: it takes up what a
                // division such as 0.3 / 0.1 lacks, and otherwise goes down to the grid.
                rValue = std::floor(*Read / m_Step + m_Step) * m_Step;
            }
            return Read.has_value();
        }
    }
    if (m_Min >= T{} && Text.starts_with('-')) {
        return false;
    }
    const std::optional<std::int64_t> Read = Gui::ReadInteger(Text);
    return Read && CNumberTraits<T>::FromInteger(*Read, rValue);
}

template <typename T>
void CPropTreeItemSpinEdit<T>::SetItemValue(T Value) {
    m_Value = Value;
    ClampValue();
    m_FormerValue = m_Value;
    ShowValue();
}

template <typename T>
void CPropTreeItemSpinEdit<T>::SetRange(T Min, T Max) {
    RV_ASSERT(Gui::g_pLog, Min <= Max, "invalid min/max values");
    m_Min = std::min(Min, Max);
    m_Max = std::max(Min, Max);
    ClampValue();
    ChooseFormat();
    UpdateRangeText();
    m_Button.SetRange(ToSteps(m_Min), ToSteps(m_Max));
    ShowValue();
}

template <typename T>
void CPropTreeItemSpinEdit<T>::SetUnit(const std::string& rUnit) {
    m_Unit = rUnit;
    ShowValue();
}

template <typename T>
void CPropTreeItemSpinEdit<T>::SetZeroText(const std::string& rText) {
    m_ZeroText = rText;
    ShowValue();
}

template <typename T>
void CPropTreeItemSpinEdit<T>::WriteText(const std::string& rText, bool bKeepCaret) {
    m_EditText = rText;
    m_Updating = true;
    if (bKeepCaret) {
        m_Edit.CorrectText(rText);
    } else {
        m_Edit.SetWindowText(rText);
    }
    m_Updating = false;
}

template <typename T>
void CPropTreeItemSpinEdit<T>::ShowValue() {
    m_Button.SetPos(ToSteps(m_Value));
    WriteText(GetEditText());
    m_Edit.SelectAll();
    Redraw();
}

template <typename T>
LRESULT CPropTreeItemSpinEdit<T>::OnCreate() {
    const bool bShow = !IsKeyboardOnly();
    m_Edit.SetUpperCase(true);
    m_Edit.SetReadOnly(!m_Editable);
    m_Edit.SetFont(CPropTree::GetNormalFont());
    m_Edit.SetAccessibleName(GetLabelText());
    const std::array Accel{CSpinButtonCtrl::CAccel{0, m_Fractional ? 1 : std::max(ToSteps(m_Step), 1)}};
    m_Button.SetAccel(Accel);
    m_Button.SetWrap(true);
    m_Button.SetRange(ToSteps(m_Min), ToSteps(m_Max));
    if (!m_Button.Create(this, CRect(), BUTTON_ID, bShow) || !m_Edit.Create(this, CRect(), EDIT_ID, bShow)) {
        return -1;
    }
    ShowValue();
    return 0;
}

template <typename T>
void CPropTreeItemSpinEdit<T>::OnSize() {
    const CRect Client = GetClientRect();
    const int nMiddle = std::max(Client.right - BUTTON_WIDTH, 0);
    m_Edit.MoveWindow(CRect(0, 0, nMiddle, Client.bottom));
    m_Button.MoveWindow(CRect(nMiddle, 0, Client.right, Client.bottom));
}

template <typename T>
LRESULT CPropTreeItemSpinEdit<T>::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    switch (Message) {
        case WM_CREATE:
            return OnCreate();
        case WM_SIZE:
            OnSize();
            return 0;
        case WM_NOTIFY: {
            const CWndNotification& rNotification = GetNotification(lParam);
            if (rNotification.m_pFrom == &m_Edit) {
                return m_Edit.OnParentNotified(rNotification);
            }
            if (rNotification.m_Code == UDN_DELTAPOS) {
                OnDeltaposSpinButton(static_cast<const CDeltaPosNotification&>(rNotification));
                return 1;  // the position is set already
            }
            return 0;
        }
        default:
            return CWnd::WindowProc(Message, wParam, lParam);
    }
}

template <typename T>
void CPropTreeItemSpinEdit<T>::OnDeltaposSpinButton(const CDeltaPosNotification& rNotification) {
    if (!m_Editable) {
        return;
    }
    const std::int64_t Wanted = std::int64_t{rNotification.m_Pos} + rNotification.m_Delta;
    const int nPos = Wanted < m_Button.GetLower()   ? m_Button.GetUpper()
                     : Wanted > m_Button.GetUpper() ? m_Button.GetLower()
                                                    : static_cast<int>(Wanted);
    if constexpr (std::is_floating_point_v<T>) {
        m_Value = m_Fractional ? nPos * m_Step : nPos;
    } else {
        m_Value = static_cast<T>(nPos);
    }
    ShowValue();
    SendChanged();
}

template <typename T>
void CPropTreeItemSpinEdit<T>::OnActivate() {
    m_FormerValue = m_Value;
    ShowValue();
    if (!OpenValueWindow(m_Edit) || !IsWindowVisible()) {
        return;
    }
    m_Button.EnableWindow(m_Editable);
    m_Edit.SetReadOnly(!m_Editable);
    if (m_Editable) {
        m_Edit.SelectAll();
    } else {
        m_Edit.SetSel(-1, 0);
    }
}

template <typename T>
void CPropTreeItemSpinEdit<T>::OnCommit() {
    const std::weak_ptr<const bool> pLife = GetLife();
    m_Value = std::clamp(m_Value, m_Min, m_Max);
    CloseValueWindow();
    ShowValue();
    if (GetTree() == nullptr) {
        return;
    }
    GetTree()->TakeFocusBack();
    if (!pLife.expired() && GetTree() != nullptr && GetTree()->IsWindow()) {
        GetTree()->SendNotify(CPropTree::eItemChanged, this);
    }
}

template <typename T>
void CPropTreeItemSpinEdit<T>::OnCancel() {
    m_Value = m_FormerValue;
    CloseValueWindow();
    ShowValue();
}

template <typename T>
void CPropTreeItemSpinEdit<T>::OnLeaveTree() {
    if (IsActive()) {
        m_Value = std::clamp(m_Value, m_Min, m_Max);
    }
    CPropTreeItem::OnLeaveTree();
}

template <typename T>
void CPropTreeItemSpinEdit<T>::OnStep(bool bUp) {
    if (GetTree() == nullptr) {
        return;
    }
    const std::weak_ptr<const bool> pLife = GetLife();
    if (!m_Button.IsShown() && !IsKeyboardOnly()) {
        Activate();
    }
    if (!pLife.expired() && GetTree() != nullptr && GetTree()->IsWindowEnabled()) {
        ProvideValueWindow();
        m_Button.Click(bUp ? CSpinButtonCtrl::eUp : CSpinButtonCtrl::eDown);
    }
}

template <typename T>
bool CPropTreeItemSpinEdit<T>::OnCharacter(char32_t Character) {
    constexpr std::u32string_view STARTS = U"+-.,0123456789abcdefABCDEF";
    if (IsKeyboardOnly() || !m_Editable || STARTS.find(Character) == std::u32string_view::npos) {
        return false;
    }
    const std::weak_ptr<const bool> pLife = GetLife();
    Activate();
    if (!pLife.expired() && IsActive()) {
        // As if it were typed over the text, which is selected as a whole.
        m_Edit.ChangeByOperator(Gui::MakeUpper(std::string(1, static_cast<char>(Character))), 1, 1);
    }
    return true;
}

template <typename T>
void CPropTreeItemSpinEdit<T>::OnEditKillFocus() {
    if (IsActive()) {
        RV_DEBUG(Gui::g_pLog, "committing changes");
        CommitChanges();
    }
}

template <typename T>
bool CPropTreeItemSpinEdit<T>::OnEditKeyDown(UINT Key) {
    if (OnEndingKey(WM_KEYDOWN, Key)) {
        return true;
    }
    if (!IsActive()) {
        return false;
    }
    switch (Key) {
        case VK_UP:
        case VK_DOWN:
        case VK_PRIOR:
        case VK_NEXT:
            // The list moves on by it, once the editing is over.
            GetTree()->GetList().PostMessage(WM_KEYDOWN, Key);
            CommitChanges();
            return true;
        default:
            return false;
    }
}

template <typename T>
bool CPropTreeItemSpinEdit<T>::OnEditKeyUp(UINT Key) {
    return OnEndingKey(WM_KEYUP, Key);
}

template <typename T>
bool CPropTreeItemSpinEdit<T>::OnEditChange() {
    if (m_Updating) {
        return false;
    }
    const std::string Typed = Gui::MakeUpper(Gui::MakePoint(m_Edit.GetWindowText()));
    // The unit stands in the box behind the number, and may be left standing there.
    const std::string Unit = " " + Gui::MakeUpper(m_Unit);
    const bool bWithUnit = !m_Unit.empty() && Typed.ends_with(Unit);
    std::string Number = bWithUnit ? Typed.substr(0, Typed.size() - Unit.size()) : Typed;
    Number.erase(Number.find_last_not_of(' ') + 1);
    if (!TakeText(Number)) {
        Refuse();
        return false;
    }
    m_Button.SetPos(ToSteps(m_Value));
    WriteText(bWithUnit ? Number + " " + m_Unit : Number, true);
    return false;
}

template <typename T>
bool CPropTreeItemSpinEdit<T>::TakeText(const std::string& rNumber) {
    // The zero text comes letter by letter.
    const bool bOnTheWay = !rNumber.empty() && rNumber.size() < m_ZeroText.size() &&
                           Text::EqualNoCase(rNumber, std::string_view(m_ZeroText).substr(0, rNumber.size()));
    T Value = m_Value;
    if (m_Fractional) {
        const bool bZeroText = !m_ZeroText.empty() && Text::EqualNoCase(rNumber, m_ZeroText);
        if (!bOnTheWay && !bZeroText && !Gui::IsFractionText(rNumber)) {
            return false;
        }
        // A text on the way to a number, as a point alone, leaves the value.
        if (Parse(rNumber, Value)) {
            m_Value = Value;
        }
        return true;
    }
    if (Parse(rNumber, Value)) {
        const CNumberFormat Format = m_Hex ? CNumberFormat{CNumberFormat::eHex, 0} : CNumberFormat{};
        const bool bZeroText = Value == T{} && !m_ZeroText.empty();
        if (Text::EqualNoCase(rNumber, bZeroText ? m_ZeroText : Format.Write(Value))) {
            m_Value = Value;
            return true;
        }
    }
    return bOnTheWay;
}

template <typename T>
void CPropTreeItemSpinEdit<T>::Refuse() {
    WriteText(GetEditText());
    m_Edit.SelectAll();
}

template class CPropTreeItemSpinEdit<double>;
template class CPropTreeItemSpinEdit<unsigned long>;
template class CPropTreeItemSpinEdit<unsigned char>;

}  // namespace PropTree
