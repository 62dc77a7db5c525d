#pragma once
#include <complex>

#include "platform/rvmdb/screw.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screw.h"
#include "rvdlm/m_rtr/rtr_trim/methods/screwsearch.h"
#include "rvlib/math/matrix.h"
#include "rvlib/rvbas/array.h"

/// Turns a compensation vector into two or three screws of a table, each in a hole of a ring of equally
/// spaced ones: those whose vector sum comes nearest. Hole 1 lies on the x axis, the following ones towards
/// the y axis.
class CScrewCompensation {
public:
    /// NumberOfScrews 3 places three, every other value two. Plane: 0 the first plane, 1 the second, whose
    /// holes are counted in the mirrored sense. Radius of the hole circle: kept, not used.
    CScrewCompensation(const Base::CWDArray<PreBalDB::CScrew>& rScrewTable, int NumberOfScrews,
                       int NumberOfHoles, unsigned Plane, double Radius);

    /// Finds the screws for UA (2 by 1, in units of ReferenceWeight grams). rScrews must be empty; it gets
    /// two or three elements, with hole 0 where there is no placement. rUA (2 by 1) gets the vector that they
    /// produce. The percentage (may be null) says by how much the vector is longer than what screws of the
    /// table's last weight reach, 0 if it isn't; a shortage changes nothing else. Result true.
    ///
    /// Without a placement rUA is that of the last one found. Throws std::invalid_argument if the table is
    /// empty, math::matrix_error if rUA has fewer than 2 rows.
    bool UA2Screws(math::matrix<double> UA, Base::CWDArray<CScrew>& rScrews,
                   double* pPerCentCompensationDifference, math::matrix<double>& rUA, double ReferenceWeight);

    /// How many screws a configured number stands for.
    static constexpr unsigned GetScrewCount(int NumberOfScrews) { return NumberOfScrews == 3 ? 3 : 2; }

protected:
    ~CScrewCompensation() = default;
    unsigned GetPlane() const { return m_Plane; }
    int GetHoleCount() const { return m_NumberOfHoles; }

private:
    void Search(std::complex<double> Vector, Base::CWDArray<CScrew>& rScrews,
                double* pPerCentCompensationDifference, math::matrix<double>& rUA);
    /// What the largest screws reach together in neighbouring holes, in grams.
    double GetCapacity() const;

    Base::CWDArray<PreBalDB::CScrew> m_ScrewTable;
    double m_Radius;
    double m_ReferenceWeight = 0.0;
    int m_NumberOfScrews;
    int m_NumberOfHoles;
    unsigned m_Plane;
    std::complex<double> m_Residual;  ///< deviation of the last search's placement, grams
    std::complex<double> m_BestSum;   ///< of the last placement found by any search, grams
    std::complex<double> m_Target;    ///< grams
    CScrewSearch m_Search;
};
