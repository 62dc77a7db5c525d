#pragma once
#include <vector>

#include "console/rundriver.h"
#include "console/trainingsituations.h"

/// A helper who fits what he is told, and errs once: at the first weights that don't just cancel each other.
class CTrainingSlip {
public:
    explicit CTrainingSlip(CTrainingSituation::Slip Kind) : m_Kind(Kind) {}
    /// What he makes of it.
    std::vector<CFitting> Fit(std::vector<CFitting> Wanted);
    bool HasStruck() const { return m_bStruck; }

private:
    CTrainingSituation::Slip m_Kind;
    bool m_bStruck = false;
};
