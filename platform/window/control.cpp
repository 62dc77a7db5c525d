#include "platform/window/control.h"

#include "platform/window/dc.h"
#include "platform/window/syscolor.h"

CBitmap CControl::GetPicture() const {
    CBitmap Picture;
    Picture.Create(GetRect().Size(), GetScale());
    CDC(Picture).FillSolidRect(GetClientRect(), GetSysColor(SysColor::eFace));
    IFWindowPeer* const pPeer = GetPeer();
    if (pPeer == nullptr || !pPeer->DrawControl(*this, Picture)) {
        DrawUnshownControl(*this, Picture);
    }
    return Picture;
}
