#pragma once
#include <complex>
#include <optional>

#include "archive/noisemodel.h"
#include "archive/rotormodel.h"
#include "archive/runadvice.h"

/// What the final measurement is to be expected to show.
namespace Prediction {

/// The length that a reading exceeds with probability 1 - p only, if it is known to be Mean but for an error
/// of this covariance, of so many degrees of freedom: the error has Student's t distribution in two
/// dimensions, for which Hotelling's T-squared is the measure, and the probability within a circle about 0 is
/// an integral over directions.
double GetBound(std::complex<double> Mean, const CCovariance& rCovariance, double Freedom, double p);

/// Of what the model says with this fitted. Nothing if the model can't tell. m_AtMost95 is 0 if the scatter
/// isn't known.
std::optional<CRunAdvice::CPrediction> Make(const CRotorModel& rModel, const CRotorModel::Fit& rAsked,
                                            bool bClockwise);

/// "Expected: 1.4 µm/s, at most 2.9", in the language in use.
std::string Describe(const std::array<std::optional<CPlanePrediction>, 2>& rPlanes);

}  // namespace Prediction
