#pragma once

/// Fisher's F distribution, by the regularised incomplete beta function. Degrees of freedom are positive, and
/// needn't be whole.
namespace FDistribution {

/// The regularised incomplete beta function I_x(a, b) for a, b > 0 and x in [0, 1], by Lentz's evaluation of
/// its continued fraction (Abramowitz and Stegun 26.5.8): good to some 1e-14.
double BetaRegularised(double a, double b, double x);

/// Probability that a value of the distribution is at most f. 0 for f <= 0.
double GetProbability(double f, double Numerator, double Denominator);

/// The value that is exceeded with probability 1 - p only, 0 <= p < 1: by bisection, to all the digits that
/// a double has.
double GetQuantile(double p, double Numerator, double Denominator);

}  // namespace FDistribution
