#pragma once
#include <filesystem>
#include <string>

#include "platform/window/bitmap.h"
#include "platform/window/rect.h"

/// Writes a PNG file of 256 colours, a quarter of the size of one with all: the colours used most stay as
/// they are, the others (shades at the edges of curves and letters) become the nearest of those. False if
/// that fails.
bool SavePicture(const CBitmap& rPicture, const std::filesystem::path& rFile);

/// How far two pictures are apart. Edges may be smoothed a bit differently elsewhere, so a pixel counts only
/// when a colour component is far off, and a few of them are nothing; but a number that is missing or a line
/// that has moved concentrates them, which the worst block tells.
struct CPictureDifference {
    static constexpr int BLOCK = 16;  ///< side of a block, pixels

    CPictureDifference(const CBitmap& rActual, const CBitmap& rExpected);

    bool IsAlike() const;
    /// For the message of a failed test.
    std::string ToText() const;

    CSize m_Actual;
    CSize m_Expected;
    int m_nPixels = 0;      ///< that are far off
    int m_nWorstBlock = 0;  ///< of them, in the worst block
    CRect m_Where;          ///< around them
    CBitmap m_Picture;      ///< the expected picture with those pixels in red; empty if the sizes differ
};
