#include "rvdlm/m_rtr/rtr_trim/tabimages.h"

#include <array>
#include <string_view>

#include "platform/window/dc.h"

namespace {

constexpr int eHeight = 16;
constexpr COLORREF eMask = RGB(255, 0, 255);

using CPicture = std::array<std::string_view, eHeight>;

/// Three sliders, each at another value.
constexpr CPicture Settings = {
    "................", "................", "....oo..........", "kkkkookkkkkkkkkk",
    "kkkkookkkkkkkkkk", "....oo..........", "................", "..........oo....",
    "kkkkkkkkkkookkkk", "kkkkkkkkkkookkkk", "..........oo....", "......oo........",
    "kkkkkkookkkkkkkk", "kkkkkkookkkkkkkk", "......oo........", "................"};
/// A screw with a hexagonal head.
constexpr CPicture ScrewTable = {
    "................", "...kkkkkkkkkk...", "...kooookoook...", "...kooookoook...",
    "...kooookoook...", "...kkkkkkkkkk...", ".....kggggk.....", ".....kkkkkk.....",
    ".....kggggk.....", ".....kkkkkk.....", ".....kggggk.....", ".....kkkkkk.....",
    ".....kggggk.....", ".....kkkkkk.....", "......kkkk......", "................"};
/// A question mark.
constexpr CPicture Help = {"................", ".....kkkkkk.....", "....kkkkkkkk....", "...kkk....kkk...",
                           "...kk......kk...", "...........kk...", "..........kkk...", "........kkkk....",
                           ".......kkk......", ".......kk.......", ".......kk.......", "................",
                           ".......oo.......", ".......oo.......", "................", "................"};

COLORREF GetColor(char Pixel) {
    switch (Pixel) {
        case 'k':
            return RGB(64, 64, 64);
        case 'o':
            return RGB(255, 128, 0);
        case 'g':
            return RGB(200, 200, 200);
        default:
            return eMask;
    }
}

}  // namespace

CImageList TabImages::Make() {
    constexpr std::array Pictures = {&Settings, &ScrewTable, &Help};
    CBitmap Strip(CSize(eWidth * static_cast<int>(Pictures.size()), eHeight));
    {
        CDC DC(Strip);
        int nLeft = 0;
        for (const CPicture* const pPicture : Pictures) {
            for (int Y = 0; Y < eHeight; ++Y) {
                for (int X = 0; X < eWidth; ++X) {
                    const char Pixel = (*pPicture)[static_cast<std::size_t>(Y)][static_cast<std::size_t>(X)];
                    DC.FillSolidRect(CRect(CPoint(nLeft + X, Y), CSize(1, 1)), GetColor(Pixel));
                }
            }
            nLeft += eWidth;
        }
    }
    CImageList Images;
    Images.Create(Strip, eWidth, eMask);
    return Images;
}
