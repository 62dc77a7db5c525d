#include "platform/paper/svgpaper.h"

#include <gtest/gtest.h>

// As SVG has it: y counts downwards, positive angles turn clockwise.
TEST(SvgPaper, DrawsWhatItIsTold) {
    CSvgPaper Paper(40.0, 20.0, "a \"plot\"");
    Paper.DrawLine({1, 2}, {3, 4.5}, {{255, 0, 16}, 0.25, CPaperPen::Dash::eDashed});
    Paper.DrawEllipse({10, 10}, 4, 2, 30.0, {std::nullopt, CPaperColor{0, 0, 0}});
    Paper.DrawPolygon({{0, 0}, {1, 0}, {-0.001, 1}}, {CPaperPen(), std::nullopt});
    Paper.DrawText({5, 6}, "<b> & 'c'", {3.0, true, {}}, PaperAlign::eRight);
    EXPECT_EQ(
        Paper.GetSvg(),
        "<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"img\" aria-label=\"a &quot;plot&quot;\" "
        "width=\"40.00mm\" height=\"20.00mm\" viewBox=\"0 0 40.00 20.00\" font-family=\"Arial, "
        "'Liberation Sans', Helvetica, sans-serif\">\n"
        "<line x1=\"1.00\" y1=\"2.00\" x2=\"3.00\" y2=\"4.50\" stroke=\"#ff0010\" stroke-width=\"0.25\" "
        "stroke-linejoin=\"round\" stroke-dasharray=\"1.80 1.20\"/>\n"
        "<ellipse cx=\"10.00\" cy=\"10.00\" rx=\"4.00\" ry=\"2.00\" transform=\"rotate(-30.00 10.00 "
        "10.00)\" fill=\"#000000\"/>\n"
        "<polygon points=\"0.00,0.00 1.00,0.00 0.00,1.00\" fill=\"none\" stroke=\"#000000\" "
        "stroke-width=\"0.25\" stroke-linejoin=\"round\"/>\n"
        "<text x=\"5.00\" y=\"6.00\" font-size=\"3.00\" text-anchor=\"end\" fill=\"#000000\" "
        "font-weight=\"bold\">&lt;b&gt; &amp; &#39;c&#39;</text>\n"
        "</svg>\n");
}
