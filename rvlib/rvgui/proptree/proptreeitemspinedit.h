#pragma once
#include <string>
#include <string_view>

#include "platform/window/spinbuttonctrl.h"
#include "rvlib/rvgui/proptree/edithelper.h"
#include "rvlib/rvgui/proptree/numberformat.h"
#include "rvlib/rvgui/proptree/proptreeitem.h"

namespace PropTree {

/// How the value of a CPropTreeItemSpinEdit is shown.
struct CSpinEditLook {
    std::string m_Unit{};  ///< behind the value
    bool m_bHex = false;   ///< an integer in hexadecimal; for limits of 0 and above
    bool m_bEditable = true;
    std::string m_ZeroText{};  ///< in place of the value 0, if not empty
};

/// A number with its unit, which the operator types or steps, and which ends up within its limits: while it
/// is typed it may be anything. T is double, unsigned long or unsigned char; only a double can have a
/// fractional step. While the item is being edited an edit box and a spin button lie over the value.
///
/// Each step sends -1105. The end of editing sends it twice, once when the value is settled (OnCommit) and
/// once as any item does (CommitChanges); that is deliberate, receivers compare.
template <typename T>
class CPropTreeItemSpinEdit : public CWnd, public CPropTreeItem, public CEditHelperEvents {
public:
    static constexpr UINT BUTTON_ID = 0x1531;
    static constexpr UINT EDIT_ID = 0x1532;

    /// Limits that are the wrong way round are swapped, and a value beyond them goes to the nearest; the
    /// number of digits behind the point follows from the step.
    CPropTreeItemSpinEdit(T Min, T Max, T Value, T Step, const CSpinEditLook& rLook = CSpinEditLook());

    T GetItemValue() const { return m_Value; }
    /// By the program: brought into the limits, and told to nobody.
    void SetItemValue(T Value);
    T GetMin() const { return m_Min; }
    T GetMax() const { return m_Max; }
    void SetRange(T Min, T Max);
    T GetStep() const { return m_Step; }
    const std::string& GetUnit() const { return m_Unit; }
    void SetUnit(const std::string& rUnit);
    const std::string& GetZeroText() const { return m_ZeroText; }
    void SetZeroText(const std::string& rText);
    bool IsEditable() const { return m_Editable; }
    bool IsHex() const { return m_Hex; }
    bool IsFractional() const { return m_Fractional; }

    /// The number in a text, without a unit. A fractional one is brought to the grid of the step, downwards:
    /// 1.27 with a step of 0.1 is 1.2. False, and rValue unchanged, if the text is none.
    bool Parse(std::string_view Text, T& rValue) const;
    /// As in the list.
    std::string GetValueText() const override { return FormatText(m_Value, false); }
    /// As in the edit box.
    std::string GetEditText() const { return FormatText(m_Value, true); }

    /// A character begins editing, in place of the former value.
    bool OnCharacter(char32_t Character) override;

    // Of the edit box.
    void OnEditKillFocus() override;
    bool OnEditChange() override;
    bool OnEditKeyDown(UINT Key) override;
    bool OnEditKeyUp(UINT Key) override;

    /// The edit box and the button, for who lays out or tests; they stand from the first editing on.
    CEditHelper& GetEdit() { return m_Edit; }
    CSpinButtonCtrl& GetButton() { return m_Button; }

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;
    void OnActivate() override;
    void OnCommit() override;
    void OnCancel() override;
    CWnd* GetValueWindow() override { return this; }
    void OnLeaveTree() override;
    /// A click on the button, at its top or bottom.
    void OnStep(bool bUp) override;

private:
    void ChooseFormat();
    void ClampValue();
    void UpdateRangeText();
    std::string FormatText(T Value, bool bEditBox) const;
    int ToSteps(T Value) const;

    LRESULT OnCreate();
    void OnSize();
    void OnDeltaposSpinButton(const CDeltaPosNotification& rNotification);
    /// Writes the box; selection and caret go to its beginning, or stay.
    void WriteText(const std::string& rText, bool bKeepCaret = false);
    /// The value goes to the box and the button.
    void ShowValue();
    /// The value's text in place of one that can't stand.
    void Refuse();
    bool TakeText(const std::string& rNumber);

    T m_Min;
    T m_Max;
    T m_Value;
    T m_Step;
    std::string m_Unit;
    bool m_Editable;
    bool m_Hex;
    std::string m_ZeroText;
    std::string m_EditText;
    CNumberFormat m_ValueFormat;
    bool m_Updating = false;  ///< the item itself writes the box
    bool m_Fractional = false;

    T m_FormerValue;  ///< when editing began
    CSpinButtonCtrl m_Button;
    CEditHelper m_Edit{*this};
};

extern template class CPropTreeItemSpinEdit<double>;
extern template class CPropTreeItemSpinEdit<unsigned long>;
extern template class CPropTreeItemSpinEdit<unsigned char>;

}  // namespace PropTree
