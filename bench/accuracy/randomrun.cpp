#include "bench/accuracy/randomrun.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "bench/accuracy/truerotor.h"

namespace {

using Complex = std::complex<double>;
using std::numbers::pi;

/// The reading is a velocity of vibration: of a stiff rotor it grows with the third power of the speed.
constexpr double SPEED_POWER = 3.0;

double Draw(CChance& rChance, const CAccuracyRange& rRange) {
    return rChance.Between(rRange.m_Low, rRange.m_High);
}
Complex DrawDirection(CChance& rChance) {
    return std::polar(1.0, rChance.Between(0.0, 2.0 * pi));
}
double ToDegrees(Complex Value) {
    return std::arg(Value) * 180.0 / pi;
}
CRotorFile::CInfluence ToInfluence(Complex Value) {
    return {std::abs(Value), ToDegrees(Value)};
}

/// The rotor's own unbalance is such that this correction makes the readings of the balanced planes' sensors
/// vanish.
void SetUnbalance(CRotorFile& rRotor, const Textbook::Vector& rCorrection, std::size_t nPlanes) {
    for (std::size_t i = 0; i < nPlanes; ++i) {
        Complex Unbalance = -rCorrection[i];
        if (nPlanes < rRotor.m_Planes.size()) {
            const CTrueRotor Rotor(rRotor);
            Unbalance -= Rotor.GetInfluence(0, 1) / Rotor.GetInfluence(0, 0) * Rotor.GetUnbalance(1);
        }
        // The sensors see the mirror image of what is in the plane.
        rRotor.m_Planes[i].m_Unbalance = {std::abs(Unbalance), ToDegrees(std::conj(Unbalance))};
    }
}

/// What each plane makes of the other's sensor, with columns (1, k e^ia) and (k e^-ia, 1) but for a factor
/// each: their inner product is 2 k / (1 + k^2), the condition number (1 + k) / (1 - k).
void SetCondition(CRotorFile& rRotor, double Condition, Complex Direction) {
    const Complex Other = (Condition - 1.0) / (Condition + 1.0) * Direction;
    const CTrueRotor Rotor(rRotor);
    const Complex First = Rotor.GetInfluence(0, 0) * Other;
    const Complex Second = Rotor.GetInfluence(1, 1) * std::conj(Other);
    rRotor.m_Influence[1][0] = ToInfluence(First);
    rRotor.m_Influence[0][1] = ToInfluence(Second);
}

void DrawTable(CSimulatedRun::CSetup& rSetup, CChance& rChance) {
    rSetup.m_nScrews = static_cast<std::uint32_t>(rChance.Integer(2, 3));
    const double Largest = rChance.Integer(500, 5000) / 1000.0;
    std::vector<double> Weights{Largest};
    for (int n = rChance.Integer(3, 15); n > 0; --n) {
        Weights.push_back(std::ceil(rChance.Between(0.02, 1.0) * Largest * 1000.0) / 1000.0);
    }
    std::sort(Weights.begin(), Weights.end());
    rSetup.m_Table.clear();
    for (const double Weight : Weights) {
        rSetup.m_Table.push_back({std::to_string(rSetup.m_Table.size() + 1), Weight});
    }
}

}  // namespace

std::string CAccuracyWorld::GetName() const {
    return std::string(m_bTwoPlanes ? "two planes" : "one plane") + (m_bScrews ? ", screws" : ", weights") +
           (m_bRebalance ? ", re-balancing" : ", pre-balancing");
}

std::vector<CAccuracyWorld> CAccuracyWorld::GetAll() {
    std::vector<CAccuracyWorld> All;
    for (const bool bRebalance : {false, true}) {
        for (const bool bTwo : {false, true}) {
            for (const bool bScrews : {false, true}) {
                All.push_back({bTwo, bScrews, bRebalance});
            }
        }
    }
    return All;
}

CAccuracyConditions CAccuracyConditions::MakeFull() {
    CAccuracyConditions Full;
    Full.m_Drift = {0.0, 0.003};
    Full.m_SpeedTolerance = {0.0, 50.0 / 3000.0};
    Full.m_CrossTalk = {0.0, 0.3};
    Full.m_InfluenceDrift = {0.0, 0.02};
    return Full;
}

double CRandomRun::GetCapacity(const CSimulatedRun::CSetup& rSetup, std::size_t Plane) {
    if (!rSetup.m_bScrews) {
        return 1.95;
    }
    const double Largest = rSetup.m_Table.back().m_Grams;
    const double Pitch = 2.0 * pi / rSetup.m_Rotor.m_Planes[Plane].m_Holes;
    return rSetup.m_nScrews == 3 ? Largest * (2.0 * std::cos(Pitch) + 1.0)
                                 : Largest * 2.0 * std::cos(Pitch / 2.0);
}

CRandomRun CRandomRun::Make(const CAccuracyWorld& rWorld, const CAccuracyConditions& rConditions,
                            CChance& rChance) {
    CRandomRun Run;
    Run.m_World = rWorld;
    CSimulatedRun::CSetup& rSetup = Run.m_Setup;
    const std::size_t nPlanes = rWorld.GetPlanes();
    rSetup.m_Mode = rWorld.m_bTwoPlanes ? "two-plane" : "plane1";
    rSetup.m_bScrews = rWorld.m_bScrews;
    rSetup.m_nReadings = static_cast<std::size_t>(rChance.Integer(
        static_cast<int>(rConditions.m_Samples.m_Low), static_cast<int>(rConditions.m_Samples.m_High)));
    rSetup.m_Seed = rChance.Next();
    DrawTable(rSetup, rChance);

    CRotorFile& rRotor = rSetup.m_Rotor;
    const double CrossTalk = Draw(rChance, rConditions.m_CrossTalk);
    const bool bBothPlanes = rWorld.m_bTwoPlanes || CrossTalk > 0.0;
    rRotor = CRotorFile::GetBuiltIn(bBothPlanes ? CRotorFile::eKestrelPair : CRotorFile::eKestrel);
    rRotor.m_Rotation = rChance.Coin() ? CRotorFile::eClockwise : CRotorFile::eCounterClockwise;
    Textbook::Vector Correction{};
    std::array<double, 2> Direct{};
    for (std::size_t i = 0; i < rRotor.m_Planes.size(); ++i) {
        CRotorFile::CRotorPlane& rPlane = rRotor.m_Planes[i];
        rPlane.m_Scale = rChance.Coin() ? CRotorFile::eClockwise : CRotorFile::eCounterClockwise;
        rPlane.m_Holes = rChance.Integer(8, 24);
        Correction[i] =
            Draw(rChance, rConditions.m_Capacity) * GetCapacity(rSetup, i) * DrawDirection(rChance);
        Direct[i] = rChance.Logarithmic(rConditions.m_Reading.m_Low, rConditions.m_Reading.m_High) /
                    std::abs(Correction[i]);
        rPlane.m_Unbalance = {std::abs(Correction[i]), ToDegrees(DrawDirection(rChance))};
    }
    for (std::size_t i = 0; i < rRotor.m_Planes.size(); ++i) {
        for (std::size_t j = 0; j < rRotor.m_Planes.size(); ++j) {
            const double Ratio = i == j                ? 1.0
                                 : rWorld.m_bTwoPlanes ? Draw(rChance, rConditions.m_Coupling)
                                                       : CrossTalk;
            rRotor.m_Influence[i][j] = ToInfluence(Ratio * Direct[j] * DrawDirection(rChance));
        }
    }
    if (rWorld.m_bTwoPlanes && rConditions.m_Condition) {
        SetCondition(rRotor, *rConditions.m_Condition, DrawDirection(rChance));
    }
    SetUnbalance(rRotor, Correction, nPlanes);

    const CTrueRotor Rotor(rRotor);
    const Textbook::Vector First = Rotor.GetReading({});
    const double Noise = Draw(rChance, rConditions.m_Noise);
    rSetup.m_RelativeNoise = Noise / std::sqrt(static_cast<double>(rSetup.m_nReadings));
    for (std::size_t i = 0; i < nPlanes; ++i) {
        Run.m_ReadingDeviation[i] = Noise * std::abs(First[i]);
        const double Effect = rChance.Logarithmic(rConditions.m_Effect.m_Low, rConditions.m_Effect.m_High);
        const double Wanted = Effect * std::abs(First[i]) / std::abs(Rotor.GetInfluence(i, i));
        // One of two opposed weights, moved by s, changes their sum by 2 sin(s / 2).
        const double Step = 2.0 * std::asin(std::min(Wanted / 2.0, 1.0)) * 180.0 / pi;
        rSetup.m_TestStep[i] =
            rConditions.m_bStandardStep ? 30 : std::clamp(static_cast<int>(std::lround(Step)), 1, 180);
        rSetup.m_TestGrams[i] =
            std::min_element(rSetup.m_Table.begin(), rSetup.m_Table.end(),
                             [Wanted](const CTableScrew& rLeft, const CTableScrew& rRight) {
                                 return std::abs(rLeft.m_Grams - Wanted) < std::abs(rRight.m_Grams - Wanted);
                             })
                ->m_Grams;
    }

    rSetup.m_Drift = Draw(rChance, rConditions.m_Drift);
    const double Tolerance = Draw(rChance, rConditions.m_SpeedTolerance);
    for (std::size_t i = 0; i < nPlanes + 2; ++i) {
        rSetup.m_Gains.push_back(std::pow(1.0 + rChance.Between(-Tolerance, Tolerance), SPEED_POWER));
    }
    Run.m_GainVariance = std::pow(SPEED_POWER * Tolerance, 2) / 3.0;

    Run.m_InfluenceDrift = Draw(rChance, rConditions.m_InfluenceDrift);
    Run.m_Later = rRotor;
    CNoise Drift(rChance.Next(), 0, Run.m_InfluenceDrift);
    for (std::size_t i = 0; i < rRotor.m_Planes.size(); ++i) {
        for (std::size_t j = 0; j < rRotor.m_Planes.size(); ++j) {
            Run.m_Later.m_Influence[i][j] = ToInfluence(Rotor.GetInfluence(i, j) * (1.0 + Drift.Next()));
        }
    }
    Textbook::Vector Later{};
    for (std::size_t i = 0; i < nPlanes; ++i) {
        // A change that is worth balancing again.
        do {
            Later[i] =
                Draw(rChance, rConditions.m_Capacity) * GetCapacity(rSetup, i) * DrawDirection(rChance);
        } while (std::abs(Later[i] - Correction[i]) < 0.1 * std::abs(Correction[i]));
    }
    SetUnbalance(Run.m_Later, Later, nPlanes);
    return Run;
}
