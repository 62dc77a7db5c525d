// What the comparison of pictures lets pass, and what it doesn't.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/pictures/picturefile.h"
#include "tests/pictures/scenepage.h"
#include "tests/support/tempdirectory.h"

namespace {

CBitmap Render(CScene Scene) {
    return RenderScene(Scene);
}

bool IsAlike(const CBitmap& rActual, const CBitmap& rExpected) {
    return CPictureDifference(rActual, rExpected).IsAlike();
}

TEST(PictureComparisonTest, APictureIsLikeItself) {
    const CBitmap Picture = Render(GetScene("weights-correction"));
    EXPECT_TRUE(IsAlike(Picture, Picture));
    EXPECT_EQ(CPictureDifference(Picture, Picture).m_nPixels, 0);
}

TEST(PictureComparisonTest, ShadesMayDiffer) {
    const CBitmap Picture = Render(GetScene("weights-correction"));
    CBitmap Other = Picture;
    CDC DC(Other);
    for (int y = 0; y < 440; ++y) {
        for (int x = y % 3; x < 600; x += 3) {
            const COLORREF Color = Picture.GetPixel(x, y);
            const auto Shade = [](int Component) {
                return Component > 127 ? Component - 30 : Component + 30;
            };
            DC.FillSolidRect(CRect(x, y, x + 1, y + 1),
                             RGB(Shade(GetRValue(Color)), Shade(GetGValue(Color)), Shade(GetBValue(Color))));
        }
    }
    EXPECT_FALSE(Other == Picture);
    EXPECT_TRUE(IsAlike(Other, Picture));
}

TEST(PictureComparisonTest, AnotherNumberIsSeen) {
    CScene Scene = GetScene("weights-correction");
    const CBitmap Picture = Render(Scene);
    ++Scene.m_Step;
    EXPECT_FALSE(IsAlike(Render(Scene), Picture)) << "a digit of twelve pixels";
    Scene = GetScene("digits-1-2");
    const CBitmap Digits = Render(Scene);
    Scene.m_Planes.front().m_Angle = 1.0;
    EXPECT_FALSE(IsAlike(Render(Scene), Digits));
}

TEST(PictureComparisonTest, AMovedWeightAndAnotherSenseOfRotationAreSeen) {
    CScene Scene = GetScene("weights-correction");
    const CBitmap Picture = Render(Scene);
    Scene.m_Planes.front().m_Angle1 += 1;
    EXPECT_FALSE(IsAlike(Render(Scene), Picture));
    Scene = GetScene("weights-correction");
    Scene.m_Planes.front().m_Rotation = PreBalDB::CTypeBase::eCounterClockwise;
    EXPECT_FALSE(IsAlike(Render(Scene), Picture));
}

TEST(PictureComparisonTest, APictureMovedByOnePixelIsSeen) {
    const CBitmap Picture = Render(GetScene("screws-correction"));
    CBitmap Moved(Picture.GetSize());
    CDC(Moved).BitBlt(CRect(1, 0, 600, 440), Picture, CPoint());
    EXPECT_FALSE(IsAlike(Moved, Picture));
}

TEST(PictureComparisonTest, AnotherSizeIsSeen) {
    const CBitmap Picture(CSize(20, 10));
    const CPictureDifference Difference(CBitmap(CSize(20, 11)), Picture);
    EXPECT_FALSE(Difference.IsAlike());
    EXPECT_EQ(Difference.ToText(), "size 20 by 11 in place of 20 by 10");
}

TEST(PictureComparisonTest, TheDifferenceSaysWhereItIs) {
    const CBitmap Picture(CSize(100, 80));
    CBitmap Other = Picture;
    CDC(Other).FillSolidRect(CRect(30, 40, 36, 50), RGB(0, 0, 0));
    const CPictureDifference Difference(Other, Picture);
    EXPECT_EQ(Difference.m_Where, CRect(30, 40, 36, 50));
    EXPECT_EQ(Difference.m_nPixels, 60);
    EXPECT_EQ(Difference.m_Picture.GetPixel(30, 40), RGB(255, 0, 0));
    EXPECT_EQ(Difference.m_Picture.GetPixel(29, 40), RGB(255, 255, 255));
    EXPECT_FALSE(Difference.IsAlike());
}

// A stored picture has 256 colours; the page has more, at its edges.
TEST(PictureFileTest, AStoredPictureIsLikeItsOriginal) {
    const CTempDirectory Folder;
    for (const char* pName : {"screws-correction", "two-planes-first", "values-final-coloured"}) {
        const CBitmap Picture = Render(GetScene(pName));
        const std::filesystem::path File = std::filesystem::path(Folder.GetPath()) / "picture.png";
        ASSERT_TRUE(SavePicture(Picture, File));
        CBitmap Stored;
        ASSERT_TRUE(Stored.LoadPng(File.string()));
        const CPictureDifference Difference(Picture, Stored);
        EXPECT_EQ(Difference.m_nPixels, 0) << pName;
        for (const CPoint Place : {CPoint(5, 100), CPoint(5, 60), CPoint(150, 200)}) {
            EXPECT_EQ(Stored.GetPixel(Place.x, Place.y), Picture.GetPixel(Place.x, Place.y)) << pName;
        }
    }
}

TEST(PictureFileTest, AFileThatCantBeWrittenIsReported) {
    EXPECT_FALSE(SavePicture(CBitmap(CSize(10, 10)), "/no/such/folder/picture.png"));
}

}  // namespace
