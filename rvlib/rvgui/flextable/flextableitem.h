#pragma once
#include <string>
#include <string_view>
#include <utility>

#include "platform/window/dc.h"
#include "platform/window/edit.h"
#include "rvlib/rvgui/flextable/flextabletypes.h"

/// A cell of a flex table. While it is active the table's edit box lies over it and shows its value. What the
/// operator types becomes the value by a commit, never before.
class CFlexTableItem : public CFlexTableTypes {
public:
    /// What a commit means.
    enum Action {
        eFinished = 0,  ///< what was typed is the value now
        eAbandoned = 1  ///< the value is again what it was when the cell became active
    };

    virtual ~CFlexTableItem() = default;
    CFlexTableItem(const CFlexTableItem&) = delete;
    CFlexTableItem& operator=(const CFlexTableItem&) = delete;

    Type GetType() const { return m_Type; }
    /// Counts the table's cells from 0, row by row.
    unsigned GetIndex() const { return m_Index; }
    bool IsActive() const { return m_bActive; }
    /// The operator has typed something since the cell became active.
    bool IsEdited() const { return m_bEdited; }

    /// Draws the value into the cell's rectangle, with the window's font.
    virtual void Draw(CDC& rDC, const CRect& rRect) const;
    /// Begins to edit, or begins anew: the box gets the value's text, all of it selected. It stays the
    /// table's and must outlive the editing.
    virtual void Activate(CEdit& rEdit);
    /// Ends it without a commit.
    void Deactivate();
    /// Nothing happens to a cell that isn't active.
    virtual void Commit(Action How) = 0;
    /// The operator has changed the box's text.
    virtual void OnEditChange() = 0;

protected:
    CFlexTableItem(Type Kind, const CWnd& rWnd, unsigned Index)
        : m_Type(Kind), m_rWnd(rWnd), m_Index(Index) {}

    /// What an inactive cell shows.
    virtual std::string GetDrawnText() const = 0;
    /// What the box begins with.
    virtual std::string GetEditText() const = 0;
    void SetEdited() { m_bEdited = true; }
    /// Null unless active.
    CEdit* GetEdit() const { return m_pEdit; }

private:
    const Type m_Type;
    const CWnd& m_rWnd;
    const unsigned m_Index;
    bool m_bActive = false;
    bool m_bEdited = false;
    CEdit* m_pEdit = nullptr;
};

/// What cells have in common, whatever the type of their value.
template <typename Value>
class CFlexTableValueItem : public CFlexTableItem {
public:
    const Value& GetValue() const { return m_Value; }
    /// Also what an edit that is under way begins anew with.
    void SetValue(const Value& rValue) {
        m_Value = rValue;
        if (IsActive()) {
            Activate(*GetEdit());
        }
    }

    void Activate(CEdit& rEdit) override {
        m_Former = m_Value;
        m_Typed = m_Value;  // not what the box shows, which is rounded: a cell that is only passed keeps it
        CFlexTableItem::Activate(rEdit);
    }

    void Commit(Action How) override {
        if (!IsActive()) {
            return;
        }
        if (How == eAbandoned) {
            SetValue(m_Former);
        } else {
            m_Value = m_Typed;
        }
    }

protected:
    CFlexTableValueItem(Type Kind, const CWnd& rWnd, unsigned Index, Value Initial)
        : CFlexTableItem(Kind, rWnd, Index), m_Value(std::move(Initial)) {}

    void SetTyped(const Value& rTyped) {
        m_Typed = rTyped;
        SetEdited();
    }
    /// What the box's text says; its last good text if the present one says nothing.
    const Value& GetTyped() const { return m_Typed; }

private:
    Value m_Value;
    Value m_Former{};
    Value m_Typed{};
};

class CFlexTableItemString : public CFlexTableValueItem<std::string> {
public:
    CFlexTableItemString(const CWnd& rWnd, unsigned Index, const std::string& rText)
        : CFlexTableValueItem(eString, rWnd, Index, rText) {}

    void Activate(CEdit& rEdit) override;
    void OnEditChange() override;

protected:
    std::string GetDrawnText() const override { return GetValue(); }
    std::string GetEditText() const override { return GetValue(); }
};

/// A number with two decimals and a unit. Typed commas become points; the only other characters are digits,
/// one point, and a sign in the first place.
class CFlexTableItemDouble : public CFlexTableValueItem<double> {
public:
    CFlexTableItemDouble(const CWnd& rWnd, unsigned Index, double Number, std::string Unit)
        : CFlexTableValueItem(eDouble, rWnd, Index, Number), m_Unit(std::move(Unit)) {}

    void Activate(CEdit& rEdit) override;
    void OnEditChange() override;

    /// The number that a text begins with, whatever the machine's language; 0 without.
    static double Read(std::string_view Text);

protected:
    std::string GetDrawnText() const override;
    std::string GetEditText() const override;

private:
    const std::string m_Unit;
};
