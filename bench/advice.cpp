// How often what advice says comes true: the coverage of the regions that it predicts, and the mistakes that
// it names, by simulation of whole runs of random rotors. Prints tables; the same numbers each time.
//
//     advice [--runs N] [--world "two planes, screws"] [coverage|mistakes]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <numbers>
#include <string>
#include <vector>

#include "archive/advicethresholds.h"
#include "archive/explanation.h"
#include "archive/prediction.h"
#include "archive/testquality.h"
#include "tests/archive/simulatedrun.h"
#include "tests/support/chance.h"

namespace {

struct CWorld {
    const char* m_pName;
    const char* m_pMode;
    bool m_bScrews;
};
constexpr CWorld WORLDS[] = {{"one plane, weights", "plane1", false},
                             {"one plane, screws", "plane1", true},
                             {"two planes, weights", "two-plane", false},
                             {"two planes, screws", "two-plane", true}};

/// A rotor by chance, within what balancing is for.
class CRandomRotors : public CChance {
public:
    using CChance::CChance;

    CSimulatedRun::CSetup Make(const CWorld& rWorld) {
        CSimulatedRun::CSetup Setup;
        Setup.m_Mode = rWorld.m_pMode;
        Setup.m_bScrews = rWorld.m_bScrews;
        Setup.m_nScrews = 3;
        Setup.m_Table = {{"A", 0.1}, {"B", 0.2}, {"C", 0.4}, {"D", 0.8}};
        Setup.m_TestGrams = {0.8, 0.8};
        Setup.m_TestStep.fill(Integer(40, 90));
        Setup.m_Seed = Next();
        const bool bTwo = Setup.m_Mode == "two-plane";
        CRotorFile& rRotor = Setup.m_Rotor;
        rRotor = CRotorFile::GetBuiltIn(bTwo ? CRotorFile::eKestrelPair : CRotorFile::eKestrel);
        rRotor.m_Rotation = Integer(0, 1) != 0 ? CRotorFile::eClockwise : CRotorFile::eCounterClockwise;
        for (std::size_t i = 0; i < rRotor.m_Planes.size(); ++i) {
            auto& rPlane = rRotor.m_Planes[i];
            // The sense in which the module orders the positions of weights without turning them round.
            rPlane.m_Scale = i == 0 ? CRotorFile::eClockwise : CRotorFile::eCounterClockwise;
            rPlane.m_Unbalance = {Between(0.3, 1.7), Between(0.0, 360.0)};
            rPlane.m_Holes = 18;
            for (std::size_t j = 0; j < rRotor.m_Planes.size(); ++j) {
                const double Amplitude = i == j ? Between(100.0, 300.0) : Between(10.0, 80.0);
                rRotor.m_Influence[i][j] = {Amplitude, Between(0.0, 360.0)};
            }
        }
        return Setup;
    }
};

struct CShare {
    std::size_t m_nHits = 0;
    std::size_t m_nAll = 0;
    void Add(bool bHit) {
        m_nHits += bHit ? 1 : 0;
        ++m_nAll;
    }
    double GetPercent() const {
        return m_nAll == 0 ? 0.0 : 100.0 * static_cast<double>(m_nHits) / static_cast<double>(m_nAll);
    }
};

/// Whether the final readings came as predicted: in the region, and below the bound.
void AddCoverage(CSimulatedRun& rRun, double Repeatability, CShare& rRegion, CShare& rBound) {
    const auto Model = CRotorModel::Make(rRun.GetRecord(), Repeatability);
    const auto Fit = Model->MakeFit(rRun.GetNoted());
    const auto Predicted = Model->PredictMeasurement(Model->AssumeNoted(Fit));
    const auto Planes = Prediction::Make(*Model, Fit, rRun.GetRecord().m_Setup.m_bClockwise)->m_Planes;
    rRun.RunFinal();
    const CRunMeasurement& rFinal = *rRun.GetRecord().Find(Measurement::eFinal);
    const auto Final = Model->Read(rFinal);
    for (std::size_t i = 0; i < Predicted->size(); ++i) {
        const CErrorSum& rError = (*Predicted)[i].m_Error;
        const double Distance =
            rError.GetCovariance().GetSquaredDistance(Final->m_Reading[i] - (*Predicted)[i].m_Reading);
        rRegion.Add(
            NoiseModel::IsInside(Distance, AdviceThresholds::PREDICTION_REGION, 2.0, rError.GetFreedom()));
        rBound.Add(std::abs(Final->m_Reading[i]) <= Planes[Model->GetPlane(i)]->m_AtMost95);
    }
    rRun.GetRecord().m_Measurements.pop_back();
}

void PrintCoverage(const std::vector<CWorld>& rWorlds, std::size_t nRuns) {
    std::printf(
        "Coverage of the 95 %% region and of \"at most\", %%, capacity not exceeded, %zu runs each\n\n",
        nRuns);
    std::printf("| world | noise, counts | readings | drift | repeatability taken | region | at most |\n");
    std::printf("|---|---:|---:|---:|---|---:|---:|\n");
    struct CCase {
        double m_Drift;
        double m_Repeatability;
        const char* m_pText;
    };
    constexpr CCase CASES[] = {{0.0, 0.0, "0, learned"},
                               {0.002, 0.002, "0.2 %, learned"},
                               {0.002, 0.01, "1 %, unless learned"},
                               {0.01, 0.01, "1 %, unless learned"},
                               {0.002, 0.0, "0, wrongly"}};
    for (const CWorld& rWorld : rWorlds) {
        for (const double Noise : {1.0, 5.0}) {
            for (const std::size_t nReadings : {std::size_t{30}, std::size_t{100}}) {
                for (const CCase& rCase : CASES) {
                    CRandomRotors Rotors(1);
                    CShare Region;
                    CShare Bound;
                    for (std::size_t i = 0; i < nRuns;) {
                        auto Setup = Rotors.Make(rWorld);
                        Setup.m_Noise = Noise;
                        Setup.m_nReadings = nReadings;
                        Setup.m_Drift = rCase.m_Drift;
                        CSimulatedRun Run(std::move(Setup));
                        Run.RunTests();
                        if (!Run.IsAccepted() || !Run.IsCapacityEnough()) {
                            continue;
                        }
                        AddCoverage(Run, rCase.m_Repeatability, Region, Bound);
                        ++i;
                    }
                    std::printf("| %s | %.0f | %zu | %.1f %% | %s | %.2f | %.2f |\n", rWorld.m_pName, Noise,
                                nReadings, 100.0 * rCase.m_Drift, rCase.m_pText, Region.GetPercent(),
                                Bound.GetPercent());
                    std::fflush(stdout);
                }
            }
        }
    }
    std::printf("\n");
}

int Wrap(int Angle) {
    return (Angle % 360 + 360) % 360;
}

/// A mistake that the simulated operator makes.
struct CMade {
    const char* m_pName;
    bool m_bScrews;     ///< else weights
    bool m_bTwoPlanes;  ///< needs them
};
constexpr CMade MADE[] = {{"right", false, false},
                          {"weight_not_moved", false, false},
                          {"weight_mirrored", false, false},
                          {"weight_opposite", false, false},
                          {"weight_elsewhere", false, false},
                          {"weights_opposite", false, false},
                          {"weight_mirrored_in_test", false, false},
                          {"weight_opposite_in_test", false, false},
                          {"weight_elsewhere_in_test", false, false},
                          {"weights_opposite_in_test", false, false},
                          {"scale_sense", false, false},
                          {"rotation_sense", false, false},
                          {"planes_exchanged", false, true},
                          {"right", true, false},
                          {"screw_forgotten", true, false},
                          {"screw_elsewhere", true, false},
                          {"test_screw_left", true, false},
                          {"screw_elsewhere_in_test", true, false},
                          {"screws_mirrored", true, false},
                          {"scale_sense", true, false},
                          {"rotation_sense", true, false},
                          {"planes_exchanged", true, true}};

/// Makes it in a run: what is fitted in truth.
class CWrongHand {
public:
    CWrongHand(const CMade& rMade, CSimulatedRun& rRun, CRandomRotors& rChance)
        : m_Name(rMade.m_pName),
          m_rRun(rRun),
          m_Plane(rRun.GetPlanes()[static_cast<std::size_t>(
              rChance.Integer(0, static_cast<int>(rRun.GetPlanes().size()) - 1))]),
          m_Item(static_cast<std::size_t>(rChance.Integer(0, 1))),
          m_Turn(rChance.Integer(5, 355)),
          m_Hole(static_cast<std::uint32_t>(rChance.Integer(1, 17))) {
        if (m_Name.ends_with("_in_test")) {
            m_Name.resize(m_Name.size() - std::strlen("_in_test"));
            m_bInTest = true;
        }
    }

    CPlaneFitting Fit(Measurement Which, std::size_t Plane, const CPlaneFitting& rNoted) {
        if (m_Name == "rotation_sense") {
            if (Which == Measurement::eFirst && Plane == m_rRun.GetPlanes().front()) {
                m_rRun.TurnSense();
                m_bEffective = true;
            }
            return rNoted;
        }
        CPlaneFitting True = rNoted;
        if (m_Name == "scale_sense" && Plane == m_Plane) {
            Mirror(True);
            m_bEffective = true;
            return True;
        }
        const bool bTest = Which == Measurement::eTest1 || Which == Measurement::eTest2;
        const bool bPlaced = bTest && !(Which == Measurement::eTest1 && Plane != m_rRun.GetPlanes().front());
        if (m_bInTest ? !bPlaced : Which != Measurement::eFinal) {
            return True;
        }
        if (m_Name == "planes_exchanged") {
            m_bEffective = true;
            return m_rRun.GetNoted()[1 - Plane];
        }
        if (Plane == m_Plane) {
            Spoil(True);
            // By less than 5°, or to where the other weight was to be, or two screws in one hole: no mistake.
            m_bEffective = IsEffective(rNoted, True);
        }
        return True;
    }
    bool IsMade() const { return m_bEffective; }
    /// Where the mistake is, in the notation of the names, for those that leave it open what is wrong.
    bool IsNamed(const Explanation::CFinding& rFinding) const {
        for (const auto& rNamed : rFinding.m_Named) {
            std::string Name = rNamed.m_Name;
            const bool bInTest = Name.ends_with("_in_test");
            if (bInTest) {
                Name.resize(Name.size() - std::strlen("_in_test"));
            }
            const bool bSame = Name == m_Name || (m_Name == "scale_sense" && Name.starts_with(m_Name));
            const bool bSameItem = rNamed.m_Where == GetWhere();
            if (bInTest == m_bInTest &&
                ((bSame && (bSameItem || !IsOfItem())) || (IsOfItem() && bSameItem))) {
                return true;
            }
        }
        return false;
    }

private:
    bool IsOfItem() const { return m_Name.starts_with("weight_") || m_Name.starts_with("screw_"); }
    std::string GetWhere() const {
        const std::size_t nColumn = m_Plane == m_rRun.GetPlanes().front() ? 0 : 1;
        return std::to_string(m_bInTest ? nColumn + 1 : 0) + "/" + std::to_string(nColumn) + "/" +
               std::to_string(m_ItemDone);
    }
    std::uint32_t Turn(std::uint32_t Hole, std::uint32_t By) const { return (Hole - 1 + By) % HOLES + 1; }
    void Mirror(CPlaneFitting& rTrue) const {
        for (int& rEach : rTrue.m_Weights) {
            rEach = Wrap(-rEach);
        }
        for (CFittedScrew& rEach : rTrue.m_Screws) {
            rEach.m_Hole = (HOLES - (rEach.m_Hole - 1)) % HOLES + 1;
        }
    }
    void Spoil(CPlaneFitting& rTrue) {
        if (m_Name == "screws_mirrored") {
            Mirror(rTrue);
            return;
        }
        if (m_Name == "test_screw_left") {
            rTrue.m_Screws.push_back({1, 0.8});
            return;
        }
        if (m_Name == "weights_opposite") {
            for (int& rEach : rTrue.m_Weights) {
                rEach = Wrap(rEach + 180);
            }
            return;
        }
        if (!rTrue.m_Screws.empty()) {
            m_ItemDone = m_Item % rTrue.m_Screws.size();
            CFittedScrew& rScrew = rTrue.m_Screws[m_ItemDone];
            if (m_Name == "screw_forgotten") {
                rTrue.m_Screws.erase(rTrue.m_Screws.begin() + static_cast<std::ptrdiff_t>(m_ItemDone));
            } else if (m_Name == "screw_elsewhere") {
                rScrew.m_Hole = Turn(rScrew.m_Hole, m_Hole);
            }
            return;
        }
        m_ItemDone = m_Item;
        int& rWeight = rTrue.m_Weights[m_Item];
        if (m_Name == "weight_not_moved") {
            const std::size_t nColumn = m_Plane == m_rRun.GetPlanes().front() ? 0 : 1;
            const auto& rLast = m_rRun.GetRecord().m_Measurements[nColumn + 1];
            rWeight = rLast.m_Planes[m_Plane]->m_Fitted.m_Weights[m_Item];
        } else if (m_Name == "weight_mirrored") {
            rWeight = Wrap(-rWeight);
        } else if (m_Name == "weight_opposite") {
            rWeight = Wrap(rWeight + 180);
        } else if (m_Name == "weight_elsewhere") {
            rWeight = Wrap(rWeight + m_Turn);
        }
    }
    static bool IsEffective(const CPlaneFitting& rNoted, const CPlaneFitting& rTrue) {
        for (std::size_t i = 0; i < rTrue.m_Screws.size(); ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                if (rTrue.m_Screws[i].m_Hole == rTrue.m_Screws[j].m_Hole) {
                    return false;
                }
            }
        }
        if (!rTrue.m_Screws.empty()) {
            return true;
        }
        bool bMoved = false;
        for (std::size_t i = 0; i < rTrue.m_Weights.size(); ++i) {
            const int Move = Wrap(rTrue.m_Weights[i] - rNoted.m_Weights[i]);
            bMoved = bMoved || (Move >= 5 && Move <= 355);
        }
        const bool bExchanged = Wrap(rTrue.m_Weights[0]) == Wrap(rNoted.m_Weights[1]) &&
                                Wrap(rTrue.m_Weights[1]) == Wrap(rNoted.m_Weights[0]);
        return bMoved && !bExchanged;
    }

    static constexpr std::uint32_t HOLES = 18;
    std::string m_Name;
    bool m_bInTest = false;
    CSimulatedRun& m_rRun;
    std::size_t m_Plane;
    std::size_t m_Item;
    std::size_t m_ItemDone = 0;
    int m_Turn;
    std::uint32_t m_Hole;
    bool m_bEffective = false;
};

struct CCount {
    std::size_t m_nRuns = 0;
    std::size_t m_nTrue = 0;
    std::size_t m_nFalse = 0;
    std::size_t m_nUnexplained = 0;
    std::size_t m_nAccused = 0;
    std::size_t m_nNames = 0;
};

CCount CountNamed(const CWorld& rWorld, const CMade& rMade, double Repeatability, std::size_t nRuns) {
    CRandomRotors Rotors(2);
    CRandomRotors Chance(3);
    CCount Count;
    const bool bRight = std::strcmp(rMade.m_pName, "right") == 0;
    while (Count.m_nRuns < nRuns) {
        auto Setup = Rotors.Make(rWorld);
        Setup.m_RelativeNoise = 0.005;
        CSimulatedRun Run(std::move(Setup));
        CWrongHand Hand(rMade, Run, Chance);
        if (!bRight) {
            Run.SetHand([&Hand](Measurement Which, std::size_t Plane, const CPlaneFitting& rNoted) {
                return Hand.Fit(Which, Plane, rNoted);
            });
        }
        Run.RunTests();
        if (!Run.IsAccepted() || !Run.IsCapacityEnough()) {
            continue;
        }
        Run.RunFinal();
        if (!bRight && !Hand.IsMade()) {
            continue;
        }
        const auto Quality = TestQuality::Judge(Run.GetRecord(), Repeatability, true);
        if (!Quality || Quality->m_TestRun == CRunAdvice::CQuality::TestRun::eNone) {
            continue;
        }
        const auto Model = CRotorModel::Make(Run.GetRecord(), Repeatability);
        const auto Finding = Explanation::Find(*Model, Run.GetRecord());
        ++Count.m_nRuns;
        if (!Finding || Finding->m_bInside) {
            continue;
        }
        if (Finding->m_Named.empty()) {
            ++Count.m_nUnexplained;
            continue;
        }
        ++Count.m_nAccused;
        Count.m_nNames += Finding->m_Named.size();
        ++(Hand.IsNamed(*Finding) && !bRight ? Count.m_nTrue : Count.m_nFalse);
    }
    return Count;
}

void PrintMistakes(const std::vector<CWorld>& rWorlds, std::size_t nRuns) {
    for (const double Repeatability : {0.0, AdviceThresholds::REPEATABILITY}) {
        std::printf(
            "Mistakes named, %%, noise 0.5 %% of the first reading in each of X and Y, repeatability taken "
            "as "
            "%.0f %%, %zu runs each\n\n",
            100.0 * Repeatability, nRuns);
        std::printf(
            "| world | mistake | true one in the set | set without it | unexplained | as expected | names in "
            "a set "
            "|\n|---|---|---:|---:|---:|---:|---:|\n");
        for (const CWorld& rWorld : rWorlds) {
            CCount All;
            for (const CMade& rMade : MADE) {
                if (rMade.m_bScrews != rWorld.m_bScrews ||
                    (rMade.m_bTwoPlanes && std::strcmp(rWorld.m_pMode, "two-plane") != 0)) {
                    continue;
                }
                const CCount Count = CountNamed(rWorld, rMade, Repeatability, nRuns);
                const auto Print = [&](const char* pName, const CCount& rCount) {
                    const double n = static_cast<double>(rCount.m_nRuns) / 100.0;
                    const auto Percent = [n](std::size_t nOf) { return static_cast<double>(nOf) / n; };
                    std::printf(
                        "| %s | %s | %.2f | %.2f | %.2f | %.2f | %.1f |\n", rWorld.m_pName, pName,
                        Percent(rCount.m_nTrue), Percent(rCount.m_nFalse), Percent(rCount.m_nUnexplained),
                        Percent(rCount.m_nRuns - rCount.m_nAccused - rCount.m_nUnexplained),
                        rCount.m_nAccused == 0
                            ? 0.0
                            : static_cast<double>(rCount.m_nNames) / static_cast<double>(rCount.m_nAccused));
                    std::fflush(stdout);
                };
                Print(rMade.m_pName, Count);
                if (std::strcmp(rMade.m_pName, "right") != 0) {
                    All.m_nRuns += Count.m_nRuns;
                    All.m_nTrue += Count.m_nTrue;
                    All.m_nFalse += Count.m_nFalse;
                    All.m_nUnexplained += Count.m_nUnexplained;
                    All.m_nAccused += Count.m_nAccused;
                    All.m_nNames += Count.m_nNames;
                }
                if (&rMade == &MADE[std::size(MADE) - 1] || (&rMade)[1].m_bScrews != rMade.m_bScrews ||
                    ((&rMade)[1].m_bTwoPlanes && std::strcmp(rWorld.m_pMode, "two-plane") != 0)) {
                    Print("all mistakes", All);
                }
            }
        }
        std::printf("\n");
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t nRuns = 10000;
    std::string Table;
    std::vector<CWorld> Worlds(std::begin(WORLDS), std::end(WORLDS));
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--runs") == 0 && i + 1 < argc) {
            nRuns = std::strtoul(argv[++i], nullptr, 10);
        } else if (std::strcmp(argv[i], "--world") == 0 && i + 1 < argc) {
            const std::string Wanted = argv[++i];
            std::erase_if(Worlds, [&Wanted](const CWorld& rWorld) { return Wanted != rWorld.m_pName; });
        } else {
            Table = argv[i];
        }
    }
    if (nRuns == 0 || Worlds.empty() || (!Table.empty() && Table != "coverage" && Table != "mistakes")) {
        std::fprintf(stderr, "advice [--runs N] [--world NAME] [coverage|mistakes]\n");
        return 3;
    }
    if (Table != "mistakes") {
        PrintCoverage(Worlds, nRuns);
    }
    if (Table != "coverage") {
        PrintMistakes(Worlds, nRuns);
    }
    return 0;
}
