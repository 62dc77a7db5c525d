#pragma once
#include "platform/window/combobox.h"
#include "rvlib/rvgui/proptree/proptreeitem.h"

namespace PropTree {

/// A choice of strings, each with a number: the item data. A choice counts at once (-1105), the end of
/// editing tells it once more. While the item is being edited the box lies over its value.
class CPropTreeItemCombo : public CComboBox, public CPropTreeItem {
public:
    /// Item data from Min to Max are accepted.
    CPropTreeItemCombo(int Min, int Max);

    /// Appends a string with the next data value, which starts at the minimum and rises also when this one is
    /// beyond the maximum and isn't appended. The string's index, or -1.
    int AddString(const std::string& rText);
    /// Takes all strings away; the next one has the minimum again.
    void ResetContent();
    /// Selects the string with that data value. For a value behind them all, strings like "<7>" are added
    /// until it can be shown, beyond the maximum, too: so a stored value that no text exists for isn't lost.
    void SetItemValue(int Value);
    /// Data of the selected string; the value that was set if none could be selected.
    int GetItemValue() const;
    /// Value of the next string.
    int GetNextData() const { return m_NextData; }

    std::string GetValueText() const override;
    /// Type-ahead: chooses the next string that begins with the character.
    bool OnCharacter(char32_t Character) override;
    LRESULT OnControlNotification(const CWndNotification& rNotification) override;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;
    void OnActivate() override;
    void OnCommit() override;
    void OnCancel() override;
    CWnd* GetValueWindow() override { return this; }
    /// The next string, behind the last one the first.
    void OnStep(bool bUp) override;

private:
    int Append(const std::string& rText);
    /// By the operator, with or without the box.
    void Choose(int Index);
    void OnChosen();

    int m_Min;
    int m_Max;
    int m_NextData;
    int m_Value;           ///< last one set or chosen
    int m_FormerSel = -1;  ///< when editing began
};

}  // namespace PropTree
