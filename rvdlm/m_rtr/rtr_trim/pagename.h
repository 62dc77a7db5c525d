#pragma once
#include <functional>
#include <string>

#include "platform/window/edit.h"
#include "platform/window/rect.h"
#include "platform/window/spinbuttonctrl.h"
#include "rvlib/rvbas/array.h"
#include "rvlib/rvgui/staticlabel/staticlabel.h"

/// The head of a page that shows one of several things by its name: a title, and as its children a field with
/// the name and an up-down control that steps through the names.
///
/// A name that is typed is taken when its editing ends: by Enter, when the focus goes, or by EndEditing,
/// which whoever changes the page or starts a run calls first. Never with a single letter, and only if it is
/// another name. Escape gives the former one back. The field checks nothing: who stores the name refuses it,
/// and then SetName shows the one that holds.
class CPageName : public CStaticLabel {
public:
    // Ids: this window's, and those of its children.
    static constexpr UINT LABEL_ID = 8001;
    static constexpr UINT FIELD_ID = 8002;
    static constexpr UINT SPIN_ID = 8003;

    /// In what the pages differ.
    struct CStyle {
        COLORREF m_Color;       ///< of the title's ground, which is a gradient
        COLORREF m_PlainColor;  ///< on a display of few colours, without gradient
        bool m_bWrap;           ///< a step over one end of the names goes to the other, else it stays
    };
    /// The two colours differ a little, as they always have.
    static constexpr CStyle SETTINGS_STYLE{RGB(255, 204, 133), RGB(255, 128, 0), false};
    static constexpr CStyle SCREW_TABLE_STYLE{RGB(0xFF, 0xCD, 0x85), RGB(0xFF, 0x80, 0x00), true};

    /// What the page is told of.
    struct CHandlers {
        std::function<void()> m_OnNameTaken;       ///< GetName is the new one
        std::function<void(int nDelta)> m_OnStep;  ///< a press of the up-down control
        std::function<void()> m_OnFocus;           ///< the field has got the focus; all of it is selected
    };

    CPageName(const CStyle& rStyle, CHandlers Handlers);

    /// Makes the windows; on message 1 of the page.
    void CreateOn(CWnd& rPage, const std::string& rTitle);
    /// On message 5 of the page: places the windows in its client area.
    void Place();
    /// Height that the head takes at the top of the page.
    static constexpr int GetHeight() { return 40; }

    /// The text of the title.
    void SetTitle(const std::string& rTitle);
    /// Whether the title has its colour, or that of the page. It has it from the start.
    void SetHighlighted(bool bHighlighted);

    /// The name that holds: shown last by the program, or taken. What is being typed isn't yet the name.
    const std::string& GetName() const { return m_Name; }
    /// Shows a name; nobody is told. Ends an edit, and what was typed is gone.
    void SetName(const std::string& rName);
    /// Something is typed that isn't taken yet.
    bool IsEdited() const { return m_Field.GetWindowText() != m_Name; }
    /// Takes the name that is typed, if it is another one.
    void EndEditing();
    /// The focus into the field, all of it selected. False if the page isn't shown.
    bool FocusField();
    bool HasFocus() const { return CWnd::GetFocus() == &m_Field; }

    /// The position of a name in the list; -1 if it isn't there.
    static int Find(const Base::CStringArray& rNames, const std::string& rName);
    /// Where a step leads from the present position, by the style.
    int GetStepTarget(int nDelta) const;

    CEdit& GetField() { return m_Field; }
    CSpinButtonCtrl& GetSpin() { return m_Spin; }
    const CSpinButtonCtrl& GetSpin() const { return m_Spin; }

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    /// The name's field: Enter and Escape end its editing.
    class CField : public CEdit {
    public:
        explicit CField(CPageName& rOwner) : m_rOwner(rOwner) {}

    protected:
        LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

    private:
        CPageName& m_rOwner;
    };

    /// True if the key ended an edit.
    bool OnKeyDown(UINT Key);
    void OnFieldFocus();
    void OnFieldLeft();

    const CStyle m_Style;
    const CHandlers m_Handlers;
    std::string m_Name;
    CField m_Field{*this};
    CSpinButtonCtrl m_Spin;
};
