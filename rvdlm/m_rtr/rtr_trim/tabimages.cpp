#include "rvdlm/m_rtr/rtr_trim/tabimages.h"

#include <array>
#include <string_view>

#include "platform/window/dc.h"

namespace {

constexpr int HEIGHT = 16;
constexpr COLORREF MASK = RGB(255, 0, 255);

using CPicture = std::array<std::string_view, HEIGHT>;

/// Three sliders, each at another value.
constexpr CPicture SETTINGS = {
    "................", "................", "....oo..........", "kkkkookkkkkkkkkk",
    "kkkkookkkkkkkkkk", "....oo..........", "................", "..........oo....",
    "kkkkkkkkkkookkkk", "kkkkkkkkkkookkkk", "..........oo....", "......oo........",
    "kkkkkkookkkkkkkk", "kkkkkkookkkkkkkk", "......oo........", "................"};
/// A screw with a hexagonal head.
constexpr CPicture SCREW_TABLE = {
    "................", "...kkkkkkkkkk...", "...kooookoook...", "...kooookoook...",
    "...kooookoook...", "...kkkkkkkkkk...", ".....kggggk.....", ".....kkkkkk.....",
    ".....kggggk.....", ".....kkkkkk.....", ".....kggggk.....", ".....kkkkkk.....",
    ".....kggggk.....", ".....kkkkkk.....", "......kkkk......", "................"};
/// A question mark.
constexpr CPicture HELP = {"................", ".....kkkkkk.....", "....kkkkkkkk....", "...kkk....kkk...",
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
            return MASK;
    }
}

}  // namespace

CImageList TabImages::Make() {
    constexpr std::array PICTURES = {&SETTINGS, &SCREW_TABLE, &HELP};
    CBitmap Strip(CSize(WIDTH * static_cast<int>(PICTURES.size()), HEIGHT));
    {
        CDC DC(Strip);
        int nLeft = 0;
        for (const CPicture* const pPicture : PICTURES) {
            for (int Y = 0; Y < HEIGHT; ++Y) {
                for (int X = 0; X < WIDTH; ++X) {
                    const char Pixel = (*pPicture)[static_cast<std::size_t>(Y)][static_cast<std::size_t>(X)];
                    DC.FillSolidRect(CRect(CPoint(nLeft + X, Y), CSize(1, 1)), GetColor(Pixel));
                }
            }
            nLeft += WIDTH;
        }
    }
    CImageList Images;
    Images.Create(Strip, WIDTH, MASK);
    return Images;
}
