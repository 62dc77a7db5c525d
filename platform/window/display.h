#pragma once

/// Bits a pixel of the display, 24 unless set otherwise.
int GetDisplayBitsPerPixel();
/// For tests of pages that look different on a display of few colours.
void SetDisplayBitsPerPixel(int nBits);
