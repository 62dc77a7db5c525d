#pragma once
#include <optional>
#include <string>

#include "rvlib/math/matrix.h"

namespace PreBalDB {

/// A matrix as it is stored: size, then the rows, "2x2: 0.5 -0; 0 1e-310". The shortest decimal form of every
/// element that reads back as the same bits, so that a person can read what the sqlite shell shows.
std::string MatrixToText(const math::matrix<double>& rMatrix);
/// Nothing if the text isn't of that form.
std::optional<math::matrix<double>> MatrixFromText(const std::string& rText);

}  // namespace PreBalDB
