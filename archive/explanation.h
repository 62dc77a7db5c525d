#pragma once
#include <optional>
#include <string>
#include <vector>

#include "archive/rotormodel.h"
#include "archive/runadvice.h"
#include "archive/runrecord.h"

/// Which mistake explains a final reading that a right run wouldn't have given.
namespace Explanation {

/// A mistake that explains it, with the value of its unknown.
struct CNamed {
    std::string m_Name;
    std::string m_Where;
    int m_Value = 0;
    std::string m_Text;
    double m_SquaredDistance = 0.0;
};

struct CFinding {
    bool m_bInside = true;           ///< what a right run may give
    double m_SquaredDistance = 0.0;  ///< from a right run
    std::vector<double> m_Expected;  ///< length of the reading of a right run, by planes of the procedure
    std::vector<double> m_Came;
    std::vector<CNamed> m_Named;  ///< all that can't be told apart, the nearest first
};

/// Nothing if the final measurement isn't there, or if a scatter isn't known.
std::optional<CFinding> Find(const CRotorModel& rModel, const CRunRecord& rRun);
CRunAdvice::CExplanation Describe(const CFinding& rFinding);

}  // namespace Explanation
