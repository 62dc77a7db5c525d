// The entry points of the window module. A host finds them by their names and uses nothing else of the
// library but window messages.
#include "platform/window/bitmap.h"
#include "platform/window/moduleframework.h"
#include "platform/window/rect.h"
#include "platform/window/wnd.h"
#include "rvdlm/m_rtr/rtr_trim/moduleinstance.h"

#define RTR_TRIM_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

/// Made when the library is loaded, destroyed when it is unloaded.
CModuleInstance g_Instance(GetModuleFramework());

/// Made with the first window, and so gone before everything that was made while the library was loaded:
/// windows that are left need that to their end.
struct CUnload {
    CUnload() = default;
    ~CUnload() { g_Instance.Unload(); }
    CUnload(const CUnload&) = delete;
    CUnload& operator=(const CUnload&) = delete;
};

}  // namespace

/// A new window, which stays the library's.
RTR_TRIM_EXPORT CWnd* GetWindow() {
    static const CUnload s_Unload;
    return g_Instance.GetWindow();
}

/// Deletes a window of GetWindow. A pointer that isn't one is ignored.
RTR_TRIM_EXPORT void DeleteDllWindow(CWnd* pWindow) {
    g_Instance.DeleteDllWindow(pWindow);
}

/// The size that the pages are laid out for, in pixels.
RTR_TRIM_EXPORT CRect* GetPreferredSize() {
    static CRect s_Size(0, 0, 600, 440);
    return &s_Size;
}

/// A preview for the host's page selection; this module has none, the bitmap stays empty.
RTR_TRIM_EXPORT CBitmap* GetPreviewBitmap() {
    static CBitmap s_Bitmap;
    return &s_Bitmap;
}

/// The host may give the window any size.
RTR_TRIM_EXPORT int ScalingAllowed() {
    return 1;
}
