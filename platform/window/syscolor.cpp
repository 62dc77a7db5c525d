#include "platform/window/syscolor.h"

#include "platform/window/display.h"

COLORREF GetSysColor(SysColor Color) {
    switch (Color) {
        case SysColor::eFace:
            return GetDisplayBitsPerPixel() > 8 ? RGB(0xEC, 0xE9, 0xD8) : RGB(0xC0, 0xC0, 0xC0);
        case SysColor::eHighlight:
        case SysColor::eWindow:
        case SysColor::eSelectionText:
            return RGB(0xFF, 0xFF, 0xFF);
        case SysColor::eShadow:
            return RGB(0xAC, 0xA8, 0x99);
        case SysColor::eDarkShadow:
            return RGB(0x71, 0x6F, 0x64);
        case SysColor::eGrayText:
            return RGB(0x80, 0x80, 0x80);
        case SysColor::eSelection:
            return RGB(0x00, 0x38, 0x68);
        case SysColor::eWindowText:
            break;
    }
    return RGB(0x00, 0x00, 0x00);
}
