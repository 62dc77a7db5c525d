#include "archive/mistakestage.h"

#include <algorithm>
#include <utility>

#include "archive/advicefigures.h"
#include "contract/holering.h"
#include "platform/rvldb/gettext.h"

namespace {

using AdviceFigures::Angle;
using AdviceFigures::Fill;

constexpr int FULL_TURN = 360;

int Wrap(int Degrees) {
    return (Degrees % FULL_TURN + FULL_TURN) % FULL_TURN;
}

bool IsTaken(const std::vector<CFittedScrew>& rScrews, std::uint32_t Hole) {
    return std::any_of(rScrews.begin(), rScrews.end(),
                       [Hole](const CFittedScrew& rScrew) { return rScrew.m_Hole == Hole; });
}

/// The hole at the mirrored angle.
std::uint32_t Mirror(std::uint32_t Hole, std::uint32_t nHoles) {
    return (nHoles - (Hole - 1)) % nHoles + 1;
}

/// "weight 2", with two planes "weight 2 of plane 1".
std::string AddPlane(const CRotorModel& rModel, std::size_t nColumn, const std::string& rThing) {
    return rModel.GetNumberOfPlanes() == 1
               ? rThing
               : Fill("ADVICE_OF_PLANE", {rThing, std::to_string(rModel.GetPlane(nColumn) + 1)});
}

/// By the number that is engraved.
std::string NameHole(const CRotorModel& rModel, std::size_t nColumn, std::uint32_t Hole) {
    const CPlaneSetup& rSetup = rModel.GetSetup(nColumn);
    const CHoleRing Ring{rSetup.m_nHoles, !rSetup.m_bScaleClockwise};
    return AddPlane(rModel, nColumn, Fill("ADVICE_HOLE", {std::to_string(Ring.GetRotorHole(Hole))}));
}

}  // namespace

const CPlaneFitting& CMistakeStage::GetNoted(std::size_t nColumn) const {
    return m_Leg == END ? m_rFinal[nColumn] : m_rModel.GetStates()[m_Leg].m_Fitted[nColumn];
}

const CPlaneFitting& CMistakeStage::GetBefore(std::size_t nColumn) const {
    const auto& rStates = m_rModel.GetStates();
    return m_Leg == END ? rStates.back().m_Fitted[nColumn] : rStates[m_Leg - 1].m_Fitted[nColumn];
}

CRotorModel::CAssumption CMistakeStage::Assume(std::size_t nColumn, const CPlaneFitting& rTrue) const {
    CRotorModel::CAssumption Result = m_rNoted;
    const CRotorModel::Vector True = m_rModel.GetSum(nColumn, rTrue);
    if (m_Leg == END) {
        Result.m_Asked[nColumn] = True;
        return Result;
    }
    // What was fitted for a test stays for the tests that follow.
    const auto& rStates = m_rModel.GetStates();
    for (std::size_t i = m_Leg; i < rStates.size(); ++i) {
        if (rStates[i].m_Fitted[nColumn] == rStates[m_Leg].m_Fitted[nColumn]) {
            Result.m_Measured[i][nColumn] = True;
        }
    }
    return Result;
}

CMistake CMistakeStage::Make(const char* pName, std::size_t nColumn, const std::string& rItem,
                             Text Describe) const {
    CMistake Result{.m_Name = pName,
                    .m_Where = std::to_string(m_Leg) + "/" + std::to_string(nColumn) + "/" + rItem,
                    .m_Cases = {},
                    .Describe = std::move(Describe)};
    if (m_Leg != END) {
        Result.m_Name += "_in_test";
        Result.Describe = [Inner = std::move(Result.Describe)](int Value) {
            return Fill("ADVICE_IN_TEST", {Inner(Value)});
        };
    }
    return Result;
}

CMistake CMistakeStage::Make(const char* pName, std::size_t nColumn, const std::string& rItem, Text Describe,
                             const CPlaneFitting& rTrue) const {
    CMistake Result = Make(pName, nColumn, rItem, std::move(Describe));
    Result.m_Cases.push_back({Assume(nColumn, rTrue), 0});
    return Result;
}

void CMistakeStage::ListWeights(std::size_t nColumn, std::vector<CMistake>& rList) const {
    const std::size_t nWeights = GetNoted(nColumn).m_Weights.size();
    for (std::size_t i = 0; i < nWeights; ++i) {
        ListWeight(nColumn, i, rList);
    }
    if (nWeights > 1) {
        ListBothWeights(nColumn, rList);
    }
}

void CMistakeStage::ListWeight(std::size_t nColumn, std::size_t Weight, std::vector<CMistake>& rList) const {
    const CPlaneFitting& rNoted = GetNoted(nColumn);
    const std::string Item = std::to_string(Weight);
    const std::string Name = AddPlane(m_rModel, nColumn, Fill("ADVICE_WEIGHT", {std::to_string(Weight + 1)}));
    const int Noted = rNoted.m_Weights[Weight];
    const auto Place = [&](int True) {
        CPlaneFitting Fitting = rNoted;
        Fitting.m_Weights[Weight] = Wrap(True);
        return Fitting;
    };
    const auto Say = [Name](const char* pKey, int Degrees) {
        return [=](int) { return Fill(pKey, {Name, Angle(Degrees)}); };
    };
    const std::vector<int>& rBefore = GetBefore(nColumn).m_Weights;
    if (Weight < rBefore.size()) {
        rList.push_back(Make("weight_not_moved", nColumn, Item, Say("ADVICE_WEIGHT_STAYED", rBefore[Weight]),
                             Place(rBefore[Weight])));
    }
    rList.push_back(
        Make("weight_mirrored", nColumn, Item, Say("ADVICE_WEIGHT_MIRRORED", -Noted), Place(-Noted)));
    rList.push_back(Make("weight_opposite", nColumn, Item,
                         Say("ADVICE_WEIGHT_OPPOSITE", Noted + FULL_TURN / 2), Place(Noted + FULL_TURN / 2)));
    CMistake Elsewhere = Make("weight_elsewhere", nColumn, Item, [Name, Noted](int True) {
        return Fill("ADVICE_WEIGHT_ELSEWHERE", {Name, Angle(True), Angle(Noted)});
    });
    for (int Turn = 1; Turn < FULL_TURN; ++Turn) {
        Elsewhere.m_Cases.push_back({Assume(nColumn, Place(Noted + Turn)), Wrap(Noted + Turn)});
    }
    rList.push_back(std::move(Elsewhere));
}

void CMistakeStage::ListBothWeights(std::size_t nColumn, std::vector<CMistake>& rList) const {
    const CPlaneFitting& rNoted = GetNoted(nColumn);
    const auto Say = [this, nColumn](const char* pKey) {
        return [Text = AddPlane(m_rModel, nColumn, GetText("ADVICE_WEIGHTS")), pKey](int) {
            return Fill(pKey, {Text});
        };
    };
    const auto Turn = [&rNoted](int Sense, int Degrees) {
        CPlaneFitting Fitting = rNoted;
        for (int& rEach : Fitting.m_Weights) {
            rEach = Wrap(Sense * rEach + Degrees);
        }
        return Fitting;
    };
    if (GetBefore(nColumn).m_Weights.size() == rNoted.m_Weights.size()) {
        rList.push_back(
            Make("weights_not_moved", nColumn, "both", Say("ADVICE_WEIGHTS_STAYED"), GetBefore(nColumn)));
    }
    rList.push_back(Make("weights_mirrored", nColumn, "both", Say("ADVICE_WEIGHTS_MIRRORED"), Turn(-1, 0)));
    rList.push_back(
        Make("weights_opposite", nColumn, "both", Say("ADVICE_WEIGHTS_OPPOSITE"), Turn(1, FULL_TURN / 2)));
}

void CMistakeStage::ListScrews(std::size_t nColumn, std::vector<CMistake>& rList) const {
    const CPlaneFitting& rNoted = GetNoted(nColumn);
    const std::uint32_t nHoles = m_rModel.GetSetup(nColumn).m_nHoles;
    if (nHoles == 0) {
        return;
    }
    for (std::size_t i = 0; i < rNoted.m_Screws.size(); ++i) {
        ListScrew(nColumn, i, rList);
    }
    if (m_Leg != END) {
        return;
    }
    const auto Say = [this, nColumn](const char* pKey) {
        return [Text = AddPlane(m_rModel, nColumn, GetText("ADVICE_SCREWS")), pKey](int) {
            return Fill(pKey, {Text});
        };
    };
    CPlaneFitting Mirrored = rNoted;
    CPlaneFitting Opposite = rNoted;
    for (std::size_t i = 0; i < rNoted.m_Screws.size(); ++i) {
        const std::uint32_t Hole = rNoted.m_Screws[i].m_Hole;
        Mirrored.m_Screws[i].m_Hole = Mirror(Hole, nHoles);
        Opposite.m_Screws[i].m_Hole = (Hole - 1 + nHoles / 2) % nHoles + 1;
    }
    rList.push_back(Make("screws_mirrored", nColumn, "all", Say("ADVICE_SCREWS_MIRRORED"), Mirrored));
    if (nHoles % 2 == 0) {
        rList.push_back(Make("screws_opposite", nColumn, "all", Say("ADVICE_SCREWS_OPPOSITE"), Opposite));
    }
    for (const CFittedScrew& rTest : GetBefore(nColumn).m_Screws) {
        if (!IsTaken(rNoted.m_Screws, rTest.m_Hole)) {
            CPlaneFitting Left = rNoted;
            Left.m_Screws.push_back(rTest);
            const std::string Where = NameHole(m_rModel, nColumn, rTest.m_Hole);
            rList.push_back(Make(
                m_rModel.IsInfluenceStored() ? "old_screw_left" : "test_screw_left", nColumn,
                "left " + std::to_string(rTest.m_Hole),
                [Where, pKey = m_rModel.IsInfluenceStored()
                                   ? "ADVICE_OLD_SCREW_LEFT"
                                   : "ADVICE_TEST_SCREW_LEFT"](int) { return Fill(pKey, {Where}); },
                Left));
        }
    }
}

void CMistakeStage::ListScrew(std::size_t nColumn, std::size_t Screw, std::vector<CMistake>& rList) const {
    const CPlaneFitting& rNoted = GetNoted(nColumn);
    const CFittedScrew& rScrew = rNoted.m_Screws[Screw];
    const std::uint32_t nHoles = m_rModel.GetSetup(nColumn).m_nHoles;
    const std::string Item = std::to_string(Screw);
    const std::string Grams = AdviceFigures::Grams(rScrew.m_Grams);
    if (m_Leg == END) {
        CPlaneFitting Without = rNoted;
        Without.m_Screws.erase(Without.m_Screws.begin() + static_cast<std::ptrdiff_t>(Screw));
        const std::string Where = NameHole(m_rModel, nColumn, rScrew.m_Hole);
        rList.push_back(Make(
            "screw_forgotten", nColumn, Item,
            [Grams, Where](int) {
                return Fill("ADVICE_SCREW_FORGOTTEN", {Grams, Where});
            },
            Without));
    }
    CMistake Elsewhere =
        Make("screw_elsewhere", nColumn, Item,
             [&rModel = m_rModel, nColumn, Grams, Hole = rScrew.m_Hole](int True) {
                 return Fill("ADVICE_SCREW_ELSEWHERE",
                             {Grams, NameHole(rModel, nColumn, static_cast<std::uint32_t>(True)),
                              NameHole(rModel, nColumn, Hole)});
             });
    for (std::uint32_t Hole = 1; Hole <= nHoles; ++Hole) {
        if (!IsTaken(rNoted.m_Screws, Hole)) {
            CPlaneFitting Fitting = rNoted;
            Fitting.m_Screws[Screw].m_Hole = Hole;
            Elsewhere.m_Cases.push_back({Assume(nColumn, Fitting), static_cast<int>(Hole)});
        }
    }
    rList.push_back(std::move(Elsewhere));
}
