#pragma once
#include "platform/window/types.h"

/// How areas are filled.
class CBrush {
public:
    enum Style { eSolid, eNull };

    CBrush() = default;
    explicit CBrush(COLORREF Color) : m_Style(eSolid), m_Color(Color) {}

    Style m_Style = eNull;
    COLORREF m_Color = RGB(255, 255, 255);
};
