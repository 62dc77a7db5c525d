#pragma once
#include <cstddef>

/// The thresholds of advice, all in one place. docs/method.md tells where they come from.
namespace AdviceThresholds {

/// Fewer readings than this in a measurement: its scatter isn't known, and nothing is said that rests on it.
inline constexpr std::size_t MIN_READINGS = 5;
/// Variance of a value rounded to whole counts, counts squared.
inline constexpr double ROUNDING_VARIANCE = 1.0 / 12.0;
/// Readings of two neighbouring counts have this variance at most: up to it noise doesn't smooth the steps.
inline constexpr double DITHER_VARIANCE = 0.25;
/// Standard deviation between measurements of the same state, relative to the reading, until it is learned.
inline constexpr double REPEATABILITY = 0.01;
/// Runs that it takes to learn it.
inline constexpr std::size_t LEARNING_RUNS = 5;
/// Relative standard deviation of a stored influence whose run isn't known.
inline constexpr double STORED_INFLUENCE = 0.02;

/// A test run has an effect if its change would come by chance with this probability at most: 4.3 standard
/// errors, for many readings.
inline constexpr double NO_EFFECT = 1e-4;
/// Its influence is known to a tenth from so many standard errors on, repeatability included: good.
inline constexpr double GOOD_STANDARD_ERRORS = 10.0;
/// A good test changes the reading by so much, relative to the first.
inline constexpr double GOOD_CHANGE = 0.1;
/// Weights closer than this touch each other, degrees.
inline constexpr int WEIGHT_DISTANCE = 20;
/// What a suggested test is to change the reading by.
inline constexpr double SUGGESTED_CHANGE = 0.3;
/// Force of a suggested test without former runs, relative to the rotor's weight.
inline constexpr double SUGGESTED_FORCE = 0.1;

/// Condition numbers of two planes: green up to the first, red beyond the second.
inline constexpr double GOOD_CONDITION = 3.0;
inline constexpr double BAD_CONDITION = 10.0;

/// Of predictions.
inline constexpr double PREDICTION_REGION = 0.95;
/// A run is accused of a mistake only beyond this region of the right run,
inline constexpr double ACCUSATION_REGION = 0.9999;
/// when the reading lies inside this region of the mistake,
inline constexpr double MISTAKE_REGION = 0.999;
/// and is nearer to it by so much, in squared Mahalanobis distance.
inline constexpr double MISTAKE_ADVANTAGE = 10.0;
/// Mistakes no farther from the best one than this can't be told apart: 99 % for two degrees of freedom.
inline constexpr double SAME_MISTAKE = 9.21;
/// A mistake that tells nothing any more of what was to be expected explains nothing: largest share of a
/// measurement in a prediction.
inline constexpr double MAX_SHARE = 20.0;

/// Earlier runs of a configuration from which on their influences are averaged, and how many are, at most.
inline constexpr std::size_t AVERAGING_RUNS = 3;
inline constexpr std::size_t MAX_AVERAGED = 10;
inline constexpr double AVERAGE_REGION = 0.99;

}  // namespace AdviceThresholds
