#include "archive/fdistribution.h"

#include <cmath>
#include <limits>
#include <numeric>

namespace FDistribution {

namespace {

constexpr int MAX_TERMS = 10000;
constexpr double TINY = 1e-300;  // in the place of a zero that would be divided by

double AvoidZero(double Value) {
    return std::abs(Value) < TINY ? TINY : Value;
}

/// The continued fraction; it converges quickly for x < (a + 1) / (a + b + 2).
double GetBetaFraction(double a, double b, double x) {
    double c = 1.0;
    double d = 1.0 / AvoidZero(1.0 - (a + b) * x / (a + 1.0));
    double Fraction = d;
    for (int m = 1; m < MAX_TERMS; ++m) {
        const double Even = m * (b - m) * x / ((a + 2.0 * m - 1.0) * (a + 2.0 * m));
        d = 1.0 / AvoidZero(1.0 + Even * d);
        c = AvoidZero(1.0 + Even / c);
        Fraction *= c * d;
        const double Odd = -(a + m) * (a + b + m) * x / ((a + 2.0 * m) * (a + 2.0 * m + 1.0));
        d = 1.0 / AvoidZero(1.0 + Odd * d);
        c = AvoidZero(1.0 + Odd / c);
        Fraction *= c * d;
        if (std::abs(c * d - 1.0) < std::numeric_limits<double>::epsilon()) {
            break;
        }
    }
    return Fraction;
}

}  // namespace

double BetaRegularised(double a, double b, double x) {
    if (x <= 0.0) {
        return 0.0;
    }
    if (x >= 1.0) {
        return 1.0;
    }
    const double Front =
        std::exp(std::lgamma(a + b) - std::lgamma(a) - std::lgamma(b) + a * std::log(x) + b * std::log1p(-x));
    return x < (a + 1.0) / (a + b + 2.0) ? Front * GetBetaFraction(a, b, x) / a
                                         : 1.0 - Front * GetBetaFraction(b, a, 1.0 - x) / b;
}

double GetProbability(double f, double Numerator, double Denominator) {
    if (f <= 0.0) {
        return 0.0;
    }
    const double x = Numerator * f / (Numerator * f + Denominator);
    return BetaRegularised(Numerator / 2.0, Denominator / 2.0, x);
}

double GetQuantile(double p, double Numerator, double Denominator) {
    if (p <= 0.0) {
        return 0.0;
    }
    double Low = 0.0;
    double High = 1.0;
    while (GetProbability(High, Numerator, Denominator) < p && std::isfinite(High)) {
        Low = High;
        High *= 2.0;
    }
    for (double Middle = std::midpoint(Low, High); Middle > Low && Middle < High;
         Middle = std::midpoint(Low, High)) {
        (GetProbability(Middle, Numerator, Denominator) < p ? Low : High) = Middle;
    }
    return High;
}

}  // namespace FDistribution
