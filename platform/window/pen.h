#pragma once
#include "platform/window/types.h"

/// How lines and outlines are drawn.
class CPen {
public:
    enum Style { eSolid, eDot, eNull };

    CPen() = default;
    CPen(Style PenStyle, int Width, COLORREF Color) : m_Style(PenStyle), m_Width(Width), m_Color(Color) {}

    Style m_Style = eSolid;
    int m_Width = 1;
    COLORREF m_Color = RGB(0, 0, 0);
};
