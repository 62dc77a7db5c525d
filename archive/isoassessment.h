#pragma once
#include <optional>

#include "archive/iso21940.h"
#include "archive/runrecord.h"

/// How a run has left its rotor by ISO 21940-11. What isn't known is no value.
struct CIsoAssessment {
    double m_Grade = 0.0;                 ///< asked for, 0: none
    std::optional<double> m_Permissible;  ///< g·mm, whole rotor
    std::array<std::optional<double>, 2> m_PermissiblePerPlane;
    CIso21940::CResiduals m_Residuals;
    std::optional<double> m_Reached;  ///< grade
    std::optional<double> m_Target;   ///< reading that proves the grade, counts

    /// Nothing if the record has no rotor mass and service speed.
    static std::optional<CIsoAssessment> Make(const CRunRecord& rRecord);
};

/// What one unit of compensation is in g·mm, per plane; 0: not known. With screws the unit is the test screw
/// that the influence was found with.
CIso21940::CScale MakeIsoScale(const CRunRecord& rRecord);
