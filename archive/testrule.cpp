#include "archive/testrule.h"

#include <cmath>
#include <numbers>

namespace TestRule {

bool IsAccepted(std::complex<double> First, std::complex<double> Second, std::complex<double> Change) {
    const double F = std::abs(First);
    const double S = std::abs(Second);
    if ((F == 0.0 && S == 0.0) || std::abs(Change) == 0.0 ||
        std::norm((Second - First) / Change) < MIN_INFLUENCE) {
        return false;
    }
    return (F > S ? F / S : S / F) > LENGTH_RATIO || std::abs(std::arg(First) - std::arg(Second)) > PHASE;
}

bool IsSurelyAccepted(std::complex<double> First, std::complex<double> Second, std::complex<double> Change,
                      double Error) {
    constexpr int DIRECTIONS = 8;
    bool bAccepted = IsAccepted(First, Second, Change);
    for (int i = 0; i < DIRECTIONS && bAccepted; ++i) {
        bAccepted =
            IsAccepted(First, Second + std::polar(Error, 2.0 * std::numbers::pi * i / DIRECTIONS), Change);
    }
    return bAccepted;
}

}  // namespace TestRule
