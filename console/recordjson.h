#pragma once
#include <nlohmann/json.hpp>
#include <vector>

#include "archive/runadvice.h"
#include "archive/runrecord.h"

/// What a report tells of the records of a run. Figures as they are stored, planes are those that were
/// balanced, in their order.
namespace RecordJson {

/// Module and set of the machine, by its key; names that it doesn't tell are left out.
nlohmann::ordered_json MakeModule(const CRunRecord& rRecord);
nlohmann::ordered_json MakeSet(const CRunRecord& rRecord);
nlohmann::ordered_json MakeMeasurements(const std::vector<CRunRecord>& rRecords);
/// What is fitted at the end, holes as they are engraved; empty before a measurement.
nlohmann::ordered_json MakePositions(const CRunRecord& rRecord);
/// Smoothed amplitude and angle per plane.
nlohmann::ordered_json MakeReadings(const CRunMeasurement& rMeasurement);
/// Empty, that is null, where nothing is known.
nlohmann::ordered_json MakePrediction(const CRunRecord& rRecord, const CRunAdvice& rAdvice);
nlohmann::ordered_json MakeQuality(const CRunAdvice& rAdvice);
nlohmann::ordered_json MakeExplanation(const CRunAdvice& rAdvice);
nlohmann::ordered_json MakeIso(const CRunRecord& rRecord);

/// "2026-01-31T12:00:00Z"
std::string WriteInstant(std::chrono::sys_seconds Moment);

}  // namespace RecordJson
