#pragma once
#include <optional>
#include <string>

#include "archive/runrecord.h"

/// The configuration of a run as JSON, for the archive. What a later version adds is left out by this one,
/// and what an older one didn't have stays at its default.
std::string SetupToText(const CRunSetup& rSetup);
/// Nothing if the text isn't of that form.
std::optional<CRunSetup> SetupFromText(const std::string& rText);

/// What is fitted to a plane, likewise: {"weights": [30, 150], "screws": [{"hole": 1, "grams": 2.5}]}.
std::string FittingToText(const CPlaneFitting& rFitting);
std::optional<CPlaneFitting> FittingFromText(const std::string& rText);
