#include "tests/rvdlm/m_rtr/rtr_trim/methods/plainscrewsearch.h"

#include <cmath>

std::optional<CPlainPlacement> SearchPlainly(const std::vector<double>& rTable, bool bThree, int nHoles,
                                             double TargetX, double TargetY) {
    std::optional<CPlainPlacement> Best;
    double ResidualX = 100000.0;
    double ResidualY = 100000.0;
    std::vector<double> Cosine;
    std::vector<double> Sine;
    for (int h = 0; h < nHoles; ++h) {
        const double Angle = h * (360.0 / nHoles) * 3.141592653589793 / 180;
        Cosine.push_back(std::cos(Angle));
        Sine.push_back(std::sin(Angle));
    }
    const int n = nHoles;
    const int m = static_cast<int>(rTable.size());
    const auto w = [&](int s) { return rTable[static_cast<std::size_t>(s)]; };
    const auto C = [&](int h) { return Cosine[static_cast<std::size_t>(h)]; };
    const auto S = [&](int h) { return Sine[static_cast<std::size_t>(h)]; };
    const auto Number = [](int i) { return static_cast<std::uint16_t>(i); };
    for (int h1 = 0; h1 < n; ++h1) {
        for (int h2 = h1 + 1; h2 < n; ++h2) {
            for (int h3 = bThree ? h2 + 1 : n - 1; h3 < n; ++h3) {
                for (int s1 = 0; s1 < m; ++s1) {
                    for (int s2 = 0; s2 < m; ++s2) {
                        for (int s3 = bThree ? 0 : m - 1; s3 < m; ++s3) {
                            double X = w(s2) * C(h2) + w(s1) * C(h1);
                            double Y = w(s2) * S(h2) + w(s1) * S(h1);
                            if (bThree) {
                                X += w(s3) * C(h3);
                                Y += w(s3) * S(h3);
                            }
                            const double DeltaX = X - TargetX;
                            const double DeltaY = Y - TargetY;
                            if ((ResidualX * ResidualX + ResidualY * ResidualY) -
                                    (DeltaX * DeltaX + DeltaY * DeltaY) >
                                2.220446049250313e-13) {
                                ResidualX = DeltaX;
                                ResidualY = DeltaY;
                                Best = {{Number(h1), Number(h2), Number(h3)},
                                        {Number(s1), Number(s2), Number(s3)},
                                        X,
                                        Y,
                                        DeltaX,
                                        DeltaY};
                            }
                        }
                    }
                }
            }
        }
    }
    return Best;
}
