#include "rvdlm/m_rtr/rtr_trim/methods/screwcompensation.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/log.h"

namespace {

constexpr int THREE_SCREWS = 3;
constexpr unsigned SECOND_PLANE = 1;

std::vector<double> GetWeights(const Base::CWDArray<PreBalDB::CScrew>& rTable) {
    std::vector<double> Weights;
    for (const PreBalDB::CScrew& rScrew : rTable) {
        Weights.push_back(rScrew.GetWeight());
    }
    return Weights;
}

}  // namespace

CScrewCompensation::CScrewCompensation(const Base::CWDArray<PreBalDB::CScrew>& rScrewTable,
                                       int NumberOfScrews, int NumberOfHoles, unsigned Plane, double Radius)
    : m_ScrewTable(rScrewTable),
      m_Radius(Radius),
      m_NumberOfScrews(NumberOfScrews),
      m_NumberOfHoles(NumberOfHoles),
      m_Plane(Plane),
      m_Search(GetWeights(rScrewTable), NumberOfScrews == THREE_SCREWS, NumberOfHoles) {}

bool CScrewCompensation::UA2Screws(math::matrix<double> UA, Base::CWDArray<CScrew>& rScrews,
                                   double* pPerCentCompensationDifference, math::matrix<double>& rUA,
                                   double ReferenceWeight) {
    // The parenthesis stays open: readers of the log search for the line as it is.
    PB_FLOW("CScrewCompensation::UA2Screws(rScrews, ReferenceWeight=%.2lf", ReferenceWeight);
    std::complex<double> Vector(std::as_const(UA)(0, 0), std::as_const(UA)(1, 0));
    if (m_Plane == SECOND_PLANE) {
        Vector.imag(-Vector.imag());
    }
    m_ReferenceWeight = ReferenceWeight;
    rScrews.SetSize(rScrews.GetSize() + GetScrewCount(m_NumberOfScrews));
    Search(Vector, rScrews, pPerCentCompensationDifference, rUA);
    for (std::size_t i = 0; i < rScrews.GetSize(); ++i) {
        PB_MATH("Screw %d (hole: %d, weight: %.2lf)", static_cast<int>(i), rScrews[i].m_Hole,
                rScrews[i].m_Weight);
    }
    return true;
}

void CScrewCompensation::Search(std::complex<double> Vector, Base::CWDArray<CScrew>& rScrews,
                                double* pPerCentCompensationDifference, math::matrix<double>& rUA) {
    m_Target = {Vector.real() * m_ReferenceWeight, Vector.imag() * m_ReferenceWeight};
    m_Residual = {100000.0, 100000.0};
    if (const auto Placement = m_Search.Find({m_Target.real(), m_Target.imag()})) {
        m_Residual = {Placement->m_Delta.x, Placement->m_Delta.y};
        m_BestSum = {Placement->m_Sum.x, Placement->m_Sum.y};
        const std::size_t nScrews = std::min<std::size_t>(rScrews.GetSize(), CScrewSearch::MAX_SCREWS);
        for (std::size_t i = 0; i < nScrews; ++i) {
            const PreBalDB::CScrew& rKind = m_ScrewTable[Placement->m_Entries[i]];
            rScrews[i] = {static_cast<std::uint16_t>(Placement->m_Holes[i] + 1), rKind.GetWeight(),
                          rKind.GetScrewName()};
        }
    }
    rUA(0, 0) = m_BestSum.real() / m_ReferenceWeight;
    rUA(1, 0) = m_BestSum.imag() / m_ReferenceWeight;
    if (m_Plane == SECOND_PLANE) {
        rUA(1, 0) = -rUA(1, 0);
    }
    const double Capacity = GetCapacity();
    if (pPerCentCompensationDifference != nullptr) {
        const double Length = std::abs(m_Target);
        // Two comparisons: without a hole the capacity is no number, and nothing is said.
        if (Length > Capacity) {
            *pPerCentCompensationDifference = (Length - Capacity) / Capacity * 100;
        } else if (Length <= Capacity) {
            *pPerCentCompensationDifference = 0.0;
        }
    }
}

double CScrewCompensation::GetCapacity() const {
    if (m_ScrewTable.IsEmpty()) {
        throw std::invalid_argument("CScrewCompensation: the screw table is empty");
    }
    // The last one counts as the largest, whatever the order of the table.
    const double W = m_ScrewTable[m_ScrewTable.GetSize() - 1].GetWeight();
    const double n = m_NumberOfHoles;
    return m_NumberOfScrews == THREE_SCREWS ? W * (2 * std::cos(6.283185307179586 / n) + 1)
                                            : W * 2 * std::cos(3.141592653589793 / n);
}
