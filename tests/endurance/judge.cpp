#include "tests/endurance/judge.h"

#include <cmath>
#include <complex>
#include <cstdio>

#include "platform/rvmdb/matrixtext.h"
#include "tests/system/bestplacement.h"

namespace {

using Complex = std::complex<double>;

constexpr double TEST_SCREW = 2.0;  // the middle of the table

std::string Say(const char* pWhat, std::size_t Plane, double Is, double Limit) {
    char Text[200];
    std::snprintf(Text, sizeof Text, "%s of plane %zu: %.4f, and theory allows %.4f", pWhat, Plane + 1, Is,
                  Limit);
    return Text;
}

}  // namespace

void CJudge::BeginRun(const CRotor& rRotor, bool bRebalance) {
    m_Unbalance.clear();
    for (std::size_t Plane = 0; Plane < rRotor.GetNumberOfPlanes(); ++Plane) {
        m_Unbalance.push_back(rRotor.GetUnbalance(Plane));
        m_Correction.at(Plane) =
            bRebalance ? std::abs(rRotor.GetResidual(Plane)) : rRotor.GetUnbalance(Plane).m_Amount;
    }
}

double CJudge::GetScrewBound(std::size_t Plane, double Error) const {
    COptions Options;
    m_rKind.Choose(Options);
    const Complex Unbalance =
        std::polar(m_Unbalance[Plane].m_Amount, m_Unbalance[Plane].m_AngleDeg * Theory::PI / 180.0);
    // The best for what was measured is at most the best for the truth, and the error there and back.
    return BestPlacement::FindBest(Options.m_ScrewTable, m_rKind.m_nScrews == 3,
                                   m_rKind.m_Rotor.m_Planes[Plane].m_Holes, -Unbalance)
               .m_Deviation +
           2.0 * Error;
}

std::vector<double> CJudge::GetBounds() const {
    const double Reading = m_rKind.GetReadingError();
    std::vector<double> Bounds;
    for (const std::size_t Plane : m_rKind.GetPlanes()) {
        const std::size_t Column = Bounds.size();
        if (m_rKind.IsTwoPlane()) {
            const double Bound =
                Theory::GetBounds(m_rKind.m_Rotor, {m_Correction[0], m_Correction[1]}, Reading)[Plane];
            Bounds.push_back(m_rKind.HasScrews(Column) ? GetScrewBound(Plane, Bound - Theory::DEGREE_ERROR)
                                                       : Bound);
            continue;
        }
        const double Influence = m_rKind.m_Rotor.m_Influence[Plane][Plane].m_Amplitude;
        const double Test = m_rKind.HasScrews(0) ? TEST_SCREW : Theory::TEST_WEIGHT;
        const double Bound = Theory::GetBound(Influence, m_Correction.at(Plane), Reading, Test);
        Bounds.push_back(m_rKind.HasScrews(0) ? GetScrewBound(Plane, Bound - Theory::DEGREE_ERROR) : Bound);
    }
    return Bounds;
}

void CJudge::JudgeReadings(const CRotor& rRotor, const nlohmann::json& rReport,
                           std::vector<std::string>& rBroken) const {
    const auto& rFinal = rReport.at("final");
    const double Target = rReport.at("target").get<double>();
    const double Error = m_rKind.GetReadingError();
    const std::vector<std::size_t> Planes = m_rKind.GetPlanes();
    if (rFinal.size() != Planes.size()) {
        rBroken.emplace_back("a verdict without readings");
        return;
    }
    bool bWithin = true;
    bool bOver = false;
    for (std::size_t Column = 0; Column < Planes.size(); ++Column) {
        const double True = std::abs(rRotor.GetReading(Planes[Column]));
        const double Read = rFinal[Column].at("amplitude").get<double>();
        if (std::abs(Read - True) > Error) {
            rBroken.push_back(Say("final reading, wrong by counts,", Planes[Column], Read - True, Error));
        }
        bWithin = bWithin && True <= Target + Error;
        bOver = bOver || True >= Target - Error;
    }
    const bool bSaysOver = rReport.at("result").get<std::string>().ends_with("OverTarget");
    if (bSaysOver ? !bOver : !bWithin) {
        rBroken.push_back("the verdict is not that of the rotor: " + rReport.at("result").get<std::string>() +
                          ", target " + std::to_string(Target) + ", readings " + rFinal.dump());
    }
}

void CJudge::JudgeResiduals(const CRotor& rRotor, std::vector<std::string>& rBroken) const {
    const std::vector<std::size_t> Planes = m_rKind.GetPlanes();
    const std::vector<double> Bounds = GetBounds();
    for (std::size_t Column = 0; Column < Planes.size(); ++Column) {
        const double Left = std::abs(rRotor.GetResidual(Planes[Column]));
        if (Left > Bounds[Column]) {
            rBroken.push_back(Say("residual", Planes[Column], Left, Bounds[Column]));
        }
    }
}

// By the sizes of its blocks, which no convention of signs and senses changes: those of the inverse of the
// rotor's influence.
void CJudge::JudgeCalibration(const std::string& rCalibration, std::vector<std::string>& rBroken) const {
    const auto InvA = PreBalDB::MatrixFromText(rCalibration);
    const std::vector<std::size_t> Planes = m_rKind.GetPlanes();
    if (!InvA || InvA->RowNo() != 2 * Planes.size()) {
        rBroken.push_back("the stored calibration is none: " + rCalibration);
        return;
    }
    const double Reading = 2.0 * m_rKind.GetReadingError();
    // The unit of a plane with screws is the test screw.
    const auto Size = [&](std::uint32_t Row, std::uint32_t Column) {
        const double Unit = m_rKind.HasScrews(Row) ? TEST_SCREW : 1.0;
        return Unit * std::hypot((*InvA)(2 * Row, 2 * Column), (*InvA)(2 * Row + 1, 2 * Column));
    };
    if (Planes.size() == 1) {
        const double Influence = m_rKind.m_Rotor.m_Influence[Planes[0]][Planes[0]].m_Amplitude;
        const double Error = Reading / (m_rKind.HasScrews(0) ? TEST_SCREW : Theory::TEST_WEIGHT);
        const double Is = 1.0 / Size(0, 0);
        if (std::abs(Is - Influence) > Error) {
            rBroken.push_back(Say("calibration, wrong by counts a unit,", Planes[0], Is - Influence, Error));
        }
        return;
    }
    const Theory::Influences A = Theory::GetInfluences(m_rKind.m_Rotor);
    const double Determinant = std::abs(A[0][0] * A[1][1] - A[0][1] * A[1][0]);
    const double True[2][2] = {{std::abs(A[1][1]) / Determinant, std::abs(A[0][1]) / Determinant},
                               {std::abs(A[1][0]) / Determinant, std::abs(A[0][0]) / Determinant}};
    // |dB| <= |B| |dA| |B|, by the norms of rows and columns.
    const double Norm = std::max(True[0][0] + True[0][1], True[1][0] + True[1][1]);
    const double Error = 1.3 * 2.0 * Norm * Norm * Reading / Theory::TEST_WEIGHT;
    for (std::uint32_t Row = 0; Row < 2; ++Row) {
        for (std::uint32_t Column = 0; Column < 2; ++Column) {
            if (const double Off = Size(Row, Column) - True[Row][Column]; std::abs(Off) > Error) {
                rBroken.push_back(Say("calibration, wrong by units a count,", Row, Off, Error));
            }
        }
    }
}

std::vector<std::string> CJudge::Judge(const CRotor& rRotor, const nlohmann::json& rReport,
                                       const std::string& rCalibration) const {
    std::vector<std::string> Broken;
    JudgeReadings(rRotor, rReport, Broken);
    JudgeResiduals(rRotor, Broken);
    JudgeCalibration(rCalibration, Broken);
    return Broken;
}
