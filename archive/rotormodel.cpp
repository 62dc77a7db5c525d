#include "archive/rotormodel.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "archive/advicethresholds.h"

namespace {

using Vector = CRotorModel::Vector;

/// Below this nothing differs: what is fitted is of the order of 1.
constexpr double NO_DIFFERENCE = 1e-6;

Vector ToVector(const CVectorReading& rReading) {
    return {rReading.m_X, rReading.m_Y};
}

CErrorSum GetErrorInFrame(const CMeasuredPlane& rPlane, bool bClockwise) {
    CMeasuredPlane Turned = rPlane;
    Turned.m_CovarianceXY = bClockwise ? -rPlane.m_CovarianceXY : rPlane.m_CovarianceXY;
    return NoiseModel::GetErrorOfMean(Turned);
}

}  // namespace

std::optional<CRotorModel> CRotorModel::Make(const CRunRecord& rRun, double Repeatability) {
    CRotorModel Model;
    Model.m_bClockwise = rRun.m_Setup.m_bClockwise;
    Model.m_Repeatability = Repeatability;
    for (std::size_t i = 0; i < rRun.m_Setup.m_Planes.size(); ++i) {
        if (const auto& rPlane = rRun.m_Setup.m_Planes[i]) {
            Model.m_Planes.push_back(i);
            Model.m_Setups.push_back(*rPlane);
        }
    }
    std::vector<Measurement> Needed{Measurement::eFirst};
    if (!rRun.m_bRebalance) {
        Needed.push_back(Measurement::eTest1);
        if (Model.m_Planes.size() == 2) {
            Needed.push_back(Measurement::eTest2);
        }
    }
    for (const Measurement Which : Needed) {
        const CRunMeasurement* const pMeasurement = rRun.Find(Which);
        if (pMeasurement == nullptr || !Model.AddState(*pMeasurement)) {
            return std::nullopt;
        }
    }
    if (Model.m_Planes.empty() || (rRun.m_bRebalance && !Model.SetStoredInfluence(rRun.m_Setup))) {
        return std::nullopt;
    }
    return Model;
}

std::optional<CRotorModel::CState> CRotorModel::Read(const CRunMeasurement& rMeasurement) const {
    CState State;
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        const auto& rPlane = rMeasurement.m_Planes[m_Planes[i]];
        if (!rPlane) {
            return std::nullopt;
        }
        State.m_Reading[i] = TurnX(ToVector(rPlane->m_Smoothed), m_bClockwise);
        State.m_Error[i] = GetErrorInFrame(*rPlane, m_bClockwise);
        State.m_Fitted[i] = rPlane->m_Fitted;
        State.m_bScatterKnown = State.m_bScatterKnown && NoiseModel::IsScatterKnown(*rPlane);
    }
    return State;
}

CErrorSum CRotorModel::GetError(const CState& rState, std::size_t nColumn) const {
    CErrorSum Result = rState.m_Error[nColumn];
    Result.Add(CCovariance::Isotropic(std::norm(m_Repeatability * rState.m_Reading[nColumn])));
    return Result;
}

bool CRotorModel::AddState(const CRunMeasurement& rMeasurement) {
    auto State = Read(rMeasurement);
    if (!State) {
        return false;
    }
    m_bScatterKnown = m_bScatterKnown && State->m_bScatterKnown;
    m_States.push_back(*std::move(State));
    return true;
}

bool CRotorModel::SetStoredInfluence(const CRunSetup& rSetup) {
    auto Influence = InvertBlocks(rSetup.m_InvA);
    if (!Influence || Influence->size() != m_Planes.size() || rSetup.m_UA.size() != m_Planes.size()) {
        return false;
    }
    Fit Stored{};
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        const math::matrix<double>& rUA = rSetup.m_UA[i];
        if (rUA.RowNo() != 2 || rUA.ColNo() != 1) {
            return false;
        }
        Stored[i] = Vector(rUA(0, 0), rUA(1, 0));
        if (!m_Setups[i].m_bScrews) {
            continue;
        }
        // The unit of the compensation, the screw of its test, isn't known: but what is fitted is, and what
        // that stands for.
        const Vector Fitted = GetSum(i, m_States.front().m_Fitted[i]);
        if (std::abs(Fitted) < NO_DIFFERENCE || std::abs(Stored[i]) < NO_DIFFERENCE) {
            return false;
        }
        const double Grams = std::abs(Fitted) / std::abs(Stored[i]);
        Stored[i] *= Grams;
        for (auto& rRow : *Influence) {
            rRow[i] /= Grams;
        }
    }
    m_Influence = *std::move(Influence);
    m_StoredFit = Stored;
    return true;
}

std::optional<std::vector<std::vector<Vector>>> CRotorModel::InvertBlocks(
    const math::matrix<double>& rBlocks) {
    const std::uint32_t nRows = rBlocks.RowNo();
    if (nRows != rBlocks.ColNo() || (nRows != 2 && nRows != 4)) {
        return std::nullopt;
    }
    const auto Get = [&rBlocks](std::uint32_t Row, std::uint32_t Column) {
        return Vector(rBlocks(2 * Row, 2 * Column), rBlocks(2 * Row + 1, 2 * Column));
    };
    if (nRows == 2) {
        if (std::abs(Get(0, 0)) == 0.0) {
            return std::nullopt;
        }
        return std::vector<std::vector<Vector>>{{1.0 / Get(0, 0)}};
    }
    const Vector Determinant = Get(0, 0) * Get(1, 1) - Get(0, 1) * Get(1, 0);
    if (std::abs(Determinant) == 0.0) {
        return std::nullopt;
    }
    return std::vector<std::vector<Vector>>{{Get(1, 1) / Determinant, -Get(0, 1) / Determinant},
                                            {-Get(1, 0) / Determinant, Get(0, 0) / Determinant}};
}

Vector CRotorModel::GetPlace(std::size_t nColumn, double AngleDeg) const {
    const double Angle = AngleDeg * std::numbers::pi / 180.0;
    const bool bOpposite = nColumn == 1;
    const bool bClockwise = m_Setups[nColumn].m_bScrews || m_Setups[nColumn].m_bScaleClockwise;
    return std::polar(1.0, bClockwise != bOpposite ? Angle : -Angle);
}

Vector CRotorModel::GetHolePlace(std::size_t nColumn, std::uint32_t Hole) const {
    const std::uint32_t nHoles = std::max<std::uint32_t>(m_Setups[nColumn].m_nHoles, 1);
    return GetPlace(nColumn, (Hole - 1.0) * 360.0 / nHoles);
}

Vector CRotorModel::GetSum(std::size_t nColumn, const CPlaneFitting& rFitting) const {
    Vector Sum;
    if (m_Setups[nColumn].m_bScrews) {
        for (const CFittedScrew& rScrew : rFitting.m_Screws) {
            Sum += rScrew.m_Grams * GetHolePlace(nColumn, rScrew.m_Hole);
        }
    } else {
        for (const int AngleDeg : rFitting.m_Weights) {
            Sum += GetPlace(nColumn, AngleDeg);
        }
    }
    return Sum;
}

CRotorModel::Fit CRotorModel::MakeFit(const std::array<CPlaneFitting, 2>& rFittings) const {
    Fit Result{};
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        Result[i] = GetSum(i, rFittings[m_Planes[i]]);
    }
    return Result;
}

CRotorModel::CAssumption CRotorModel::AssumeNoted(const Fit& rAsked) const {
    CAssumption Result{.m_Measured = {}, .m_Asked = rAsked};
    for (const CState& rState : m_States) {
        Fit Fitted{};
        for (std::size_t i = 0; i < m_Planes.size(); ++i) {
            const CPlaneFitting& rPlane = rState.m_Fitted[i];
            const bool bKnown = !rPlane.m_Weights.empty() || !rPlane.m_Screws.empty();
            // Nobody tells a re-balancing what is fitted at its beginning, but the module goes by this.
            Fitted[i] = bKnown || !m_StoredFit ? GetSum(i, rPlane) : (*m_StoredFit)[i];
        }
        Result.m_Measured.push_back(Fitted);
    }
    return Result;
}

std::optional<std::vector<Vector>> CRotorModel::GetShares(const CAssumption& rAssumption) const {
    const std::vector<Fit>& rMeasured = rAssumption.m_Measured;
    const auto Differ = [&rMeasured](const Fit& rFit) {
        return Fit{rFit[0] - rMeasured[0][0], rFit[1] - rMeasured[0][1]};
    };
    const Fit Asked = Differ(rAssumption.m_Asked);
    const Fit First = Differ(rMeasured[1]);
    if (rMeasured.size() == 2) {
        if (std::abs(First[0]) < NO_DIFFERENCE) {
            return std::nullopt;
        }
        const Vector Share = Asked[0] / First[0];
        return std::vector<Vector>{1.0 - Share, Share};
    }
    // Cramer's rule.
    const Fit Second = Differ(rMeasured[2]);
    const Vector Determinant = First[0] * Second[1] - Second[0] * First[1];
    if (std::abs(Determinant) < NO_DIFFERENCE * NO_DIFFERENCE) {
        return std::nullopt;
    }
    const Vector Share1 = (Asked[0] * Second[1] - Second[0] * Asked[1]) / Determinant;
    const Vector Share2 = (First[0] * Asked[1] - Asked[0] * First[1]) / Determinant;
    return std::vector<Vector>{1.0 - Share1 - Share2, Share1, Share2};
}

std::optional<std::vector<std::vector<Vector>>> CRotorModel::GetInfluence() const {
    if (IsInfluenceStored()) {
        return m_Influence;
    }
    const std::size_t nPlanes = m_Planes.size();
    std::vector<std::vector<Vector>> Result(nPlanes, std::vector<Vector>(nPlanes));
    CAssumption Assumption = AssumeNoted({});
    for (std::size_t q = 0; q < nPlanes; ++q) {
        // What one unit more would change.
        Assumption.m_Asked = Assumption.m_Measured.front();
        Assumption.m_Asked[q] += 1.0;
        const auto Shares = GetShares(Assumption);
        if (!Shares) {
            return std::nullopt;
        }
        for (std::size_t p = 0; p < nPlanes; ++p) {
            Result[p][q] = -m_States.front().m_Reading[p];
            for (std::size_t i = 0; i < m_States.size(); ++i) {
                Result[p][q] += (*Shares)[i] * m_States[i].m_Reading[p];
            }
        }
    }
    return Result;
}

std::vector<CRotorModel::CPredicted> CRotorModel::PredictByInfluence(const CAssumption& rAssumption,
                                                                     double NewMeasurement) const {
    const CState& rState = m_States.front();
    std::vector<CPredicted> Result(m_Planes.size());
    for (std::size_t p = 0; p < m_Planes.size(); ++p) {
        CPredicted& rEach = Result[p];
        rEach.m_Reading = rState.m_Reading[p];
        rEach.m_Error.Add(rState.m_Error[p], 1.0, NewMeasurement);
        double Variance = std::norm(m_Repeatability * rState.m_Reading[p]);
        for (std::size_t q = 0; q < m_Planes.size(); ++q) {
            const Vector Effect =
                m_Influence[p][q] * (rAssumption.m_Asked[q] - rAssumption.m_Measured.front()[q]);
            rEach.m_Reading += Effect;
            Variance += std::norm(AdviceThresholds::STORED_INFLUENCE * Effect);
        }
        Variance += NewMeasurement * std::norm(m_Repeatability * rEach.m_Reading);
        rEach.m_Error.Add(CCovariance::Isotropic(Variance));
    }
    return Result;
}

std::optional<std::vector<CRotorModel::CPredicted>> CRotorModel::Predict(const CAssumption& rAssumption,
                                                                         double NewMeasurement) const {
    if (IsInfluenceStored()) {
        return PredictByInfluence(rAssumption, NewMeasurement);
    }
    const auto Shares = GetShares(rAssumption);
    if (!Shares || std::any_of(Shares->begin(), Shares->end(), [](const Vector& rShare) {
            return !(std::abs(rShare) <= AdviceThresholds::MAX_SHARE);
        })) {
        return std::nullopt;
    }
    std::vector<CPredicted> Result(m_Planes.size());
    for (std::size_t p = 0; p < m_Planes.size(); ++p) {
        CPredicted& rEach = Result[p];
        double Variance = 0.0;
        for (std::size_t i = 0; i < m_States.size(); ++i) {
            const Vector Part = (*Shares)[i] * m_States[i].m_Reading[p];
            rEach.m_Reading += Part;
            // A new measurement scatters as these do, on the average.
            rEach.m_Error.Add(m_States[i].m_Error[p], (*Shares)[i],
                              NewMeasurement / static_cast<double>(m_States.size()));
            Variance += std::norm(m_Repeatability * Part);
        }
        Variance += NewMeasurement * std::norm(m_Repeatability * rEach.m_Reading);
        rEach.m_Error.Add(CCovariance::Isotropic(Variance));
    }
    return Result;
}

std::optional<std::vector<CRotorModel::CPredicted>> CRotorModel::Predict(
    const CAssumption& rAssumption) const {
    return Predict(rAssumption, 0.0);
}

std::optional<std::vector<CRotorModel::CPredicted>> CRotorModel::PredictMeasurement(
    const CAssumption& rAssumption) const {
    return Predict(rAssumption, 1.0);
}
