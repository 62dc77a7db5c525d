#pragma once
#include <string>

#include "archive/runrecord.h"

/// What the values of a rotor come to for its configuration, in words.
class CIsoFigures {
public:
    /// The configuration with the values (CRunSetup::m_Iso) and the influence that is stored with it.
    explicit CIsoFigures(CRunSetup Setup);

    /// "permissible 120 g·mm, target 14 µm/s", or what is missing for it. Each sentence stands in a line.
    std::string GetResult() const;
    /// Which target the grade means, and what the present one comes to; why not, if that can't be told.
    std::string GetTargetOfGrade() const;

private:
    CRunRecord m_Record;
};
