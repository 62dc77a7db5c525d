#pragma once
#include <array>
#include <span>

#include "archive/isodata.h"

/// The fields of CIsoData as people and files know them, a row a field: pages, commands and their checks all
/// follow from it. 0 always stands for "not known".
struct CIsoField {
    const char* m_pName;     ///< in commands and files; of a field per plane that of the list
    const char* m_pTextKey;  ///< its label
    /// A language key, or the text itself, with weights; with screws a unit of compensation counts in mm.
    const char* m_pUnit;
    double m_Min;
    double m_Max;
    bool m_bPerPlane;
    double CIsoData::*m_pValue;                  ///< null for one per plane
    std::array<double, 2> CIsoData::*m_pValues;  ///< null for the others

    double Get(const CIsoData& rData, std::size_t Plane) const {
        return m_bPerPlane ? (rData.*m_pValues).at(Plane) : rData.*m_pValue;
    }
    void Set(CIsoData& rData, std::size_t Plane, double Value) const {
        (m_bPerPlane ? (rData.*m_pValues).at(Plane) : rData.*m_pValue) = Value;
    }
    bool Allows(double Value) const { return Value == 0.0 || (Value >= m_Min && Value <= m_Max); }
};

inline constexpr std::array ISO_FIELDS = {
    CIsoField{"rotor_mass_kg", "ISO_ROTOR_MASS", "kg", 0.001, 1e5, false, &CIsoData::m_RotorMass, nullptr},
    CIsoField{"service_rpm", "ISO_SERVICE_SPEED", "RPM", 1.0, 1e6, false, &CIsoData::m_ServiceSpeed, nullptr},
    CIsoField{"grade", "ISO_GRADE", "mm/s", 0.01, 4000.0, false, &CIsoData::m_Grade, nullptr},
    CIsoField{"unit_gmm", "ISO_UNIT", "g·mm", 0.001, 1e7, true, nullptr, &CIsoData::m_Unit},
    CIsoField{"distance_mm", "ISO_DISTANCE", "mm", 0.001, 1e5, true, nullptr, &CIsoData::m_Distance},
};
