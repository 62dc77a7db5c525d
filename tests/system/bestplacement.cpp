#include "tests/system/bestplacement.h"

#include <algorithm>
#include <cmath>

namespace BestPlacement {

CBest FindBest(std::vector<double> Weights, bool bThree, int nHoles, Complex Target) {
    std::sort(Weights.begin(), Weights.end());
    std::vector<Complex> Holes;
    for (int h = 0; h < nHoles; ++h) {
        Holes.push_back(DirectionOfHole(h, nHoles));
    }
    CBest Best;
    double SmallestSquare = std::numeric_limits<double>::infinity();
    const auto TryLast = [&](Complex Sum, std::size_t Hole) {
        const double Exact = ((Target - Sum) * std::conj(Holes[Hole])).real();
        auto Next = std::lower_bound(Weights.begin(), Weights.end(), Exact);
        for (int i = 0; i < 2; ++i) {
            if (Next != Weights.end()) {
                const Complex All = Sum + *Next * Holes[Hole];
                if (const double Square = std::norm(All - Target); Square < SmallestSquare) {
                    SmallestSquare = Square;
                    Best = {All, std::sqrt(Square)};
                }
            }
            if (Next == Weights.begin()) {
                break;
            }
            --Next;
        }
    };
    for (std::size_t h1 = 0; h1 < Holes.size(); ++h1) {
        for (std::size_t h2 = h1 + 1; h2 < Holes.size(); ++h2) {
            for (const double w1 : Weights) {
                if (!bThree) {
                    TryLast(w1 * Holes[h1], h2);
                    continue;
                }
                for (const double w2 : Weights) {
                    const Complex Sum = w1 * Holes[h1] + w2 * Holes[h2];
                    for (std::size_t h3 = h2 + 1; h3 < Holes.size(); ++h3) {
                        TryLast(Sum, h3);
                    }
                }
            }
        }
    }
    return Best;
}

}  // namespace BestPlacement
