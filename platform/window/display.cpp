#include "platform/window/display.h"

namespace {

int g_nBitsPerPixel = 24;

}  // namespace

int GetDisplayBitsPerPixel() {
    return g_nBitsPerPixel;
}

void SetDisplayBitsPerPixel(int nBits) {
    g_nBitsPerPixel = nBits;
}
