#pragma once
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "simulator/rotor.h"
#include "tests/endurance/runkind.h"
#include "tests/system/whattheoryallows.h"

/// Says of a run that has come to a verdict what its rotor contradicts. The rotor's own vectors are the
/// truth: nothing of what the module thinks is taken for granted.
class CJudge {
public:
    explicit CJudge(const CRunKind& rKind) : m_rKind(rKind) {}

    /// Notes what the run has to correct: the rotor's own unbalance, or what is left of it before a
    /// re-balancing.
    void BeginRun(const CRotor& rRotor, bool bRebalance);

    /// Promises that are broken, in words; none in good order. rReport: of the run. rCalibration: the stored
    /// matrix, as text.
    std::vector<std::string> Judge(const CRotor& rRotor, const nlohmann::json& rReport,
                                   const std::string& rCalibration) const;

    /// Of a stored matrix alone.
    void JudgeCalibration(const std::string& rCalibration, std::vector<std::string>& rBroken) const;

    /// What may be left in each balanced plane.
    std::vector<double> GetBounds() const;

private:
    double GetScrewBound(std::size_t Plane, double Error) const;
    void JudgeReadings(const CRotor& rRotor, const nlohmann::json& rReport,
                       std::vector<std::string>& rBroken) const;
    void JudgeResiduals(const CRotor& rRotor, std::vector<std::string>& rBroken) const;

    const CRunKind& m_rKind;
    Theory::TwoPlanes m_Correction{};
    std::vector<CRotorFile::CUnbalance> m_Unbalance;
};
