#include "platform/qt/fontmetric.h"

#include <QFontMetrics>
#include <algorithm>
#include <map>
#include <tuple>

namespace {

// Cells are taller than the size by which the toolkit calls a font; the proportion is the face's own.
struct CFitted {
    int m_PixelSize = 1;
    int m_Ascent = 0;
    int m_Descent = 0;
};

CFontMetric MakeFont(const CFont& rFont, int PixelSize) {
    CFontMetric Result;
    Result.m_Font = QFont(QString::fromStdString(rFont.m_FaceName));
    Result.m_Font.setPixelSize(PixelSize);
    Result.m_Font.setWeight(static_cast<QFont::Weight>(std::clamp(rFont.m_Weight, 1, 1000)));
    // Grey edges, whatever the screen: pictures are the same with and without a display.
    Result.m_Font.setStyleStrategy(
        static_cast<QFont::StyleStrategy>(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    return Result;
}

CFitted Measure(const CFont& rFont, int PixelSize) {
    const QFontMetrics Metrics(MakeFont(rFont, PixelSize).m_Font);
    return {PixelSize, Metrics.ascent(), Metrics.descent()};
}

CFitted Fit(const CFont& rFont) {
    const auto Fits = [&rFont](const CFitted& rFitted) {
        return rFitted.m_Ascent + rFitted.m_Descent <= rFont.m_Height;
    };
    // A cell is never lower than the size, so the height is an upper bound.
    CFitted Result = Measure(rFont, std::max(rFont.m_Height, 1));
    while (!Fits(Result) && Result.m_PixelSize > 1) {
        // In proportion, but at least one step.
        const int Cell = Result.m_Ascent + Result.m_Descent;
        const int Guess = Result.m_PixelSize * rFont.m_Height / Cell + 1;
        Result = Measure(rFont, std::clamp(Guess, 1, Result.m_PixelSize - 1));
    }
    return Result;
}

}  // namespace

CFontMetric FindFont(const CFont& rFont) {
    // Only numbers are kept: fonts of the toolkit must not outlive the application object.
    using Key = std::tuple<std::string, int, int>;
    static std::map<Key, CFitted> s_Known;
    constexpr std::size_t MAX_KNOWN = 1000;

    const Key Wanted(rFont.m_FaceName, rFont.m_Height, rFont.m_Weight);
    auto Found = s_Known.find(Wanted);
    if (Found == s_Known.end()) {
        if (s_Known.size() == MAX_KNOWN) {
            s_Known.clear();
        }
        Found = s_Known.emplace(Wanted, Fit(rFont)).first;
    }
    CFontMetric Result = MakeFont(rFont, Found->second.m_PixelSize);
    Result.m_Ascent = Found->second.m_Ascent;
    Result.m_Descent = Found->second.m_Descent;
    return Result;
}
