#include "tests/pictures/picturefile.h"

#include <QImage>
#include <algorithm>
#include <cstdlib>
#include <map>
#include <vector>

#include "platform/window/dc.h"

namespace {

int GetDistance(COLORREF First, COLORREF Second) {
    return std::max({std::abs(GetRValue(First) - GetRValue(Second)),
                     std::abs(GetGValue(First) - GetGValue(Second)),
                     std::abs(GetBValue(First) - GetBValue(Second))});
}

/// At most 256 of the colours: those used most, then again and again the one that is farthest from all chosen
/// so far. rIndex: for each colour the place of the nearest one chosen.
std::vector<COLORREF> ChooseColors(const std::map<COLORREF, int>& rUses,
                                   std::map<COLORREF, unsigned>& rIndex) {
    constexpr std::size_t COLORS = 256;
    constexpr std::size_t MOST_USED = 64;
    struct CColor {
        COLORREF m_Color;
        int m_nUses;
        int m_nDistance = 256;
        unsigned m_Nearest = 0;
    };
    std::vector<CColor> Colors;
    for (const auto& [Color, nUses] : rUses) {
        Colors.push_back({Color, nUses});
    }
    std::vector<COLORREF> Chosen;
    while (Chosen.size() < std::min(COLORS, Colors.size())) {
        const bool bByUse = Chosen.size() < MOST_USED;
        const auto Next = std::max_element(
            Colors.begin(), Colors.end(), [bByUse](const CColor& rLeft, const CColor& rRight) {
                const auto Rank = [bByUse](const CColor& rColor) {
                    return bByUse && rColor.m_nDistance > 0 ? rColor.m_nUses : rColor.m_nDistance;
                };
                return Rank(rLeft) < Rank(rRight);
            });
        const COLORREF Color = Next->m_Color;
        for (CColor& rOther : Colors) {
            const int nDistance = GetDistance(rOther.m_Color, Color);
            if (nDistance < rOther.m_nDistance) {
                rOther.m_nDistance = nDistance;
                rOther.m_Nearest = static_cast<unsigned>(Chosen.size());
            }
        }
        Chosen.push_back(Color);
    }
    for (const CColor& rColor : Colors) {
        rIndex[rColor.m_Color] = rColor.m_Nearest;
    }
    return Chosen;
}

}  // namespace

bool SavePicture(const CBitmap& rPicture, const std::filesystem::path& rFile) {
    const CSize Size = rPicture.GetSize();
    std::map<COLORREF, int> Uses;
    for (int y = 0; y < Size.cy; ++y) {
        for (int x = 0; x < Size.cx; ++x) {
            ++Uses[rPicture.GetPixel(x, y)];
        }
    }
    std::map<COLORREF, unsigned> Index;
    QList<QRgb> Table;
    for (const COLORREF Color : ChooseColors(Uses, Index)) {
        Table.append(qRgb(GetRValue(Color), GetGValue(Color), GetBValue(Color)));
    }
    QImage Image(Size.cx, Size.cy, QImage::Format_Indexed8);
    Image.setColorTable(Table);
    for (int y = 0; y < Size.cy; ++y) {
        for (int x = 0; x < Size.cx; ++x) {
            Image.setPixel(x, y, Index[rPicture.GetPixel(x, y)]);
        }
    }
    return Image.save(QString::fromStdString(rFile.string()), "PNG");
}

CPictureDifference::CPictureDifference(const CBitmap& rActual, const CBitmap& rExpected)
    : m_Actual(rActual.GetSize()), m_Expected(rExpected.GetSize()) {
    constexpr int FAR_OFF = 40;
    if (m_Actual != m_Expected) {
        return;
    }
    const int nColumns = m_Actual.cx / BLOCK + 1;
    std::vector<int> Blocks(static_cast<std::size_t>(nColumns * (m_Actual.cy / BLOCK + 1)));
    m_Picture = rExpected;
    CDC DC(m_Picture);
    for (int y = 0; y < m_Actual.cy; ++y) {
        for (int x = 0; x < m_Actual.cx; ++x) {
            const COLORREF Expected = rExpected.GetPixel(x, y);
            const CRect Pixel(x, y, x + 1, y + 1);
            if (GetDistance(rActual.GetPixel(x, y), Expected) <= FAR_OFF) {
                continue;
            }
            ++m_nPixels;
            int& rBlock = Blocks[static_cast<std::size_t>(y / BLOCK * nColumns + x / BLOCK)];
            m_nWorstBlock = std::max(m_nWorstBlock, ++rBlock);
            m_Where = m_nPixels == 1 ? Pixel
                                     : CRect(std::min(m_Where.left, x), m_Where.top,
                                             std::max(m_Where.right, x + 1), y + 1);
            DC.FillSolidRect(Pixel, RGB(255, 0, 0));
        }
    }
}

bool CPictureDifference::IsAlike() const {
    constexpr int PER_MILLE = 1;
    constexpr int PER_BLOCK = BLOCK * BLOCK / 20;
    return m_Actual == m_Expected && m_nPixels <= m_Actual.cx * m_Actual.cy * PER_MILLE / 1000 &&
           m_nWorstBlock <= PER_BLOCK;
}

std::string CPictureDifference::ToText() const {
    if (m_Actual != m_Expected) {
        return "size " + std::to_string(m_Actual.cx) + " by " + std::to_string(m_Actual.cy) +
               " in place of " + std::to_string(m_Expected.cx) + " by " + std::to_string(m_Expected.cy);
    }
    return std::to_string(m_nPixels) + " pixels are far off, " + std::to_string(m_nWorstBlock) +
           " of them in one block, around " + std::to_string(m_Where.left) + "," +
           std::to_string(m_Where.top) + " to " + std::to_string(m_Where.right) + "," +
           std::to_string(m_Where.bottom);
}
