#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "archive/mistakes.h"
#include "archive/rotormodel.h"

/// The mistakes of fitting at one stage of a run: in the test leg of a plane, or at the end.
class CMistakeStage {
public:
    static constexpr std::size_t END = 0;

    /// Leg: the place of the measured state, from 1, or END. The model must outlive the mistakes.
    CMistakeStage(const CRotorModel& rModel, const std::array<CPlaneFitting, 2>& rFinal,
                  const CRotorModel::CAssumption& rNoted, std::size_t Leg)
        : m_rModel(rModel), m_rFinal(rFinal), m_rNoted(rNoted), m_Leg(Leg) {}

    void ListWeights(std::size_t nColumn, std::vector<CMistake>& rList) const;
    void ListScrews(std::size_t nColumn, std::vector<CMistake>& rList) const;

private:
    using Text = std::function<std::string(int)>;

    const CPlaneFitting& GetNoted(std::size_t nColumn) const;
    const CPlaneFitting& GetBefore(std::size_t nColumn) const;
    CRotorModel::CAssumption Assume(std::size_t nColumn, const CPlaneFitting& rTrue) const;
    CMistake Make(const char* pName, std::size_t nColumn, const std::string& rItem, Text Describe) const;
    /// With one case.
    CMistake Make(const char* pName, std::size_t nColumn, const std::string& rItem, Text Describe,
                  const CPlaneFitting& rTrue) const;
    void ListWeight(std::size_t nColumn, std::size_t Weight, std::vector<CMistake>& rList) const;
    void ListBothWeights(std::size_t nColumn, std::vector<CMistake>& rList) const;
    void ListScrew(std::size_t nColumn, std::size_t Screw, std::vector<CMistake>& rList) const;

    const CRotorModel& m_rModel;
    const std::array<CPlaneFitting, 2>& m_rFinal;
    const CRotorModel::CAssumption& m_rNoted;
    std::size_t m_Leg;
};
