#pragma once
#include <array>
#include <optional>

#include "archive/runrecord.h"
#include "contract/holering.h"

class CConsoleSession;

/// The configuration of the session as it stands in the store, for the record of a run. As far as it can be
/// read: a store that doesn't answer disturbs no run.
CRunSetup ReadRunSetup(const CConsoleSession& rSession);

/// The calibration that stands in the store; nothing if it can't be read, or there is none.
std::optional<CRunCalibration> ReadRunCalibration(const CConsoleSession& rSession);

/// The rings of holes per plane of the machine, counted as a record counts; without holes for a plane with
/// weights.
std::array<CHoleRing, 2> GetRecordRings(const CRunSetup& rSetup);
