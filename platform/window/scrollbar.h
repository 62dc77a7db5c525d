#pragma once
#include "platform/window/control.h"

/// A scroll bar, as a child that its parent lays at its edge. Tells it by message 277 (276 if it lies) what
/// the operator did; the parent decides on the position and sets it, and until it does the thumb stays where
/// it was. No tab stop: keys scroll what is scrolled. GetPreferredWidth is made for a finger.
class CScrollBar : public CControl {
public:
    enum Direction { eVertical, eHorizontal };

    explicit CScrollBar(Direction Way = eVertical) : m_Direction(Way) {}

    static constexpr int GetPreferredWidth() { return 20; }

    Direction GetDirection() const { return m_Direction; }
    /// The contents reach from nMin to nMax, of which nPage are in sight: the thumb is as large in
    /// proportion. The position is from nMin to nMax - nPage, and is brought into that. With nothing to
    /// scroll the bar is grey.
    void SetScrollRange(int nMin, int nMax, int nPage);
    int GetMin() const { return m_nMin; }
    int GetMax() const { return m_nMax; }
    int GetPage() const { return m_nPage; }
    /// The largest position.
    int GetLimit() const;
    int GetScrollPos() const { return m_nPos; }
    void SetScrollPos(int nPos);
    /// Where a parent that scrolls by lines of nLine goes when it is told of an SB_ code with the thumb's
    /// place; may lie outside the range.
    int GetTarget(int Code, int nThumb, int nLine) const;

    /// The operator did something: an SB_ code and, for the thumb, its place. The bar may be gone then.
    void ScrollByOperator(int Code, int Position);

private:
    Direction m_Direction;
    int m_nMin = 0;
    int m_nMax = 0;
    int m_nPage = 0;
    int m_nPos = 0;
};
