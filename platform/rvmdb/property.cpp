#include "platform/rvmdb/property.h"

#include <cmath>

#include "platform/rvmdb/matrixtext.h"

namespace PreBalDB {

double CProperty::FromUnit(double Shown) const {
    return std::trunc(Shown * m_PerUnit);
}

std::string CStoredLimits::Check(const CDirectSQL::CValue& rValue) const {
    const auto* const pWhole = std::get_if<std::int64_t>(&rValue);
    const auto* const pText = std::get_if<std::string>(&rValue);
    if (m_Kind == eMatrix) {
        return pText == nullptr ? "no matrix" : CheckMatrix(*pText);
    }
    if (m_Kind == eText) {
        return pText == nullptr ? "no text" : "";
    }
    if (pText != nullptr) {
        return "\"" + *pText + "\" is no number";
    }
    if (m_Kind == ePositive) {
        const double Number = pWhole != nullptr ? static_cast<double>(*pWhole) : std::get<double>(rValue);
        return std::isfinite(Number) && Number > 0.0 ? "" : std::to_string(Number) + " isn't above 0";
    }
    if (pWhole == nullptr) {
        return std::to_string(std::get<double>(rValue)) + " is no whole number";
    }
    if ((*pWhole >= m_Min && *pWhole <= m_Max) || *pWhole == m_Also) {
        return "";
    }
    return std::to_string(*pWhole) + " isn't within " + std::to_string(m_Min) + " to " +
           std::to_string(m_Max);
}

std::string CStoredLimits::CheckMatrix(const std::string& rText) const {
    const auto Matrix = MatrixFromText(rText);
    if (!Matrix) {
        return "\"" + rText + "\" is no matrix";
    }
    if (Matrix->RowNo() != m_Min || Matrix->ColNo() != m_Max) {
        return "\"" + rText + "\" isn't " + std::to_string(m_Min) + " by " + std::to_string(m_Max);
    }
    for (std::uint32_t i = 0; i < Matrix->RowNo(); ++i) {
        for (std::uint32_t j = 0; j < Matrix->ColNo(); ++j) {
            if (!std::isfinite((*Matrix)(i, j))) {
                return "\"" + rText + "\" has an element that is no finite number";
            }
        }
    }
    return "";
}

}  // namespace PreBalDB
