#pragma once
#include "platform/window/dc.h"

/// What the areas of the module's page look like; the one place for colours that several painters share.
namespace PageStyle {

constexpr COLORREF PANEL = RGB(0xEC, 0xE9, 0xD8);
constexpr COLORREF FRAME_LINE = RGB(0x71, 0x6F, 0x64);
constexpr COLORREF BODY = RGB(0xFF, 0xFF, 0xFF);
constexpr COLORREF TEXT = RGB(0x00, 0x00, 0x00);
constexpr COLORREF WARNING = RGB(0xCE, 0x00, 0x00);
/// The system's button face, for displays of few colours.
constexpr COLORREF BUTTON_FACE = RGB(0xC0, 0xC0, 0xC0);

/// Background of the page on this display: the button face with 8 bits a pixel or fewer.
COLORREF GetPanelColor(const CDC& rDC);

/// Fills rRect and draws the frame line inside it, along its bottom and its right.
void PaintArea(CDC& rDC, const CRect& rRect, COLORREF Color);

/// One line of text in Arial, placed in rRect by the DT_ flags of Format; at most as high as rRect.
void PaintLine(CDC& rDC, const CRect& rRect, const std::string& rText, int nFontHeight, unsigned Format,
               COLORREF Color = TEXT);

}  // namespace PageStyle
