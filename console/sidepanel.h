#pragma once
#include <QWidget>
#include <functional>
#include <vector>

class QToolButton;

/// What stands beside the page, one view at a time: a strip of keys with symbol and word at the right edge,
/// the view of the key that is down beside it. Pressing that key again folds the view away, so that the page
/// has all the room.
class CSidePanel : public QWidget {
public:
    explicit CSidePanel(QWidget* pParent = nullptr);

    /// Adds a view, which the panel owns, behind the others. Its key has the text of that key and the symbol
    /// of that name.
    void AddView(QWidget* pView, const char* pTextKey, const char* pSymbol);
    /// Adds a key at the foot of the strip, with a text that may change with the language.
    void AddKey(std::function<QString()> GetText, const char* pSymbol, std::function<void()> OnPressed);
    /// Unfolds a view; null folds what is unfolded.
    void Unfold(QWidget* pView);
    /// The view that is unfolded; null if none.
    QWidget* GetUnfolded() const;
    /// Letters, keys and views for the window's present size.
    void FitWindow();
    /// Not that of the present window: it may get narrower, at once.
    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    struct CEntry {
        QWidget* m_pView;  ///< null for a key without one
        QToolButton* m_pKey;
        std::function<QString()> m_GetText;
        const char* m_pSymbol;
    };
    QToolButton* MakeKey() const;
    /// As high as there is room for: in a low window with the word beside the symbol.
    void FitKeys();
    void ShowTexts();

    QWidget* m_pStrip;
    QWidget* m_pViews;
    std::vector<CEntry> m_Entries;
};
