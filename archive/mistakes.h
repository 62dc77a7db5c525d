#pragma once
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "archive/rotormodel.h"

/// A mistake that may have been made in a run, and made alone.
struct CMistake {
    /// What would then have been fitted in truth.
    struct CCase {
        CRotorModel::CAssumption m_Assumption;
        int m_Value = 0;  ///< of what is unknown: an angle, a hole
    };
    std::string m_Name;  ///< in files: "weight_not_moved"
    /// What is wrong, as "0/0/1" for the second weight of the first plane at the end: who names a weight as
    /// not moved needn't say that it stands elsewhere.
    std::string m_Where;
    std::vector<CCase> m_Cases;  ///< one; of a mistake with an unknown one for each of its values
    /// What follows "as if", for a value.
    std::function<std::string(int)> Describe;
};

namespace Mistakes {

/// All those that are looked at in a run: Final is what was noted as fitted at the end, by planes of the
/// procedure. What they refer to must outlive them.
std::vector<CMistake> List(const CRotorModel& rModel, const std::array<CPlaneFitting, 2>& rFinal);

}  // namespace Mistakes
