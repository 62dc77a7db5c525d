#include "archive/suggestedtest.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include "archive/advicefigures.h"
#include "archive/advicethresholds.h"
#include "archive/rotormodel.h"
#include "archive/testrule.h"

namespace SuggestedTest {

namespace {

using AdviceFigures::Fill;
using Vector = CRotorModel::Vector;

constexpr int STEP = 5;
constexpr int NEUTRAL = 180;  // where the other weight is

/// What may be tried: a step of the weight, or a screw, and the change that it makes of what is fitted.
struct CChoice {
    CSuggestedTest m_Test;
    Vector m_Change;
};

std::vector<CChoice> ListChoices(const CPlaneSetup& rSetup) {
    std::vector<CChoice> Result;
    if (rSetup.m_bScrews) {
        for (const CTableScrew& rScrew : rSetup.m_Table) {
            if (rScrew.m_Grams > 0.0) {
                Result.push_back({{0, rScrew.m_Grams, false, {}}, rScrew.m_Grams});
            }
        }
        return Result;
    }
    for (int Step = STEP; Step <= NEUTRAL - AdviceThresholds::WEIGHT_DISTANCE; Step += STEP) {
        const double Angle = Step * std::numbers::pi / 180.0;
        Result.push_back(
            {{Step, 0.0, false, {}}, std::polar(1.0, rSetup.m_bScaleClockwise ? Angle : -Angle) - 1.0});
    }
    return Result;
}

const CRunRecord* FindLatest(const CRunSetup& rSetup, std::size_t Plane,
                             std::span<const CRunRecord> Earlier) {
    const CRunRecord* pLatest = nullptr;
    for (const CRunRecord& rEach : Earlier) {
        const auto& rPlane = rEach.m_Setup.m_Planes.at(Plane);
        if (!rEach.m_bRebalance && rEach.m_bSaved && rEach.m_Setup.m_Mode == rSetup.m_Mode && rPlane &&
            rPlane->m_bScrews == rSetup.m_Planes.at(Plane)->m_bScrews &&
            (pLatest == nullptr || rEach.m_Started >= pLatest->m_Started)) {
            pLatest = &rEach;
        }
    }
    return pLatest;
}

std::optional<CSuggestedTest> FindByHistory(const CRunRecord& rRun, const CPlaneSetup& rSetup,
                                            std::size_t Plane) {
    const auto Model = CRotorModel::Make(rRun, 0.0);
    const auto Influence = Model ? Model->GetInfluence() : std::nullopt;
    if (!Influence) {
        return std::nullopt;
    }
    const std::size_t nColumn = Model->GetPlane(0) == Plane ? 0 : 1;
    const Vector First = Model->GetStates().front().m_Reading[nColumn];
    const Vector Own = (*Influence)[nColumn][nColumn];
    const double Wanted = AdviceThresholds::SUGGESTED_CHANGE * std::abs(First);
    std::optional<CSuggestedTest> Best;
    double BestMiss = 0.0;
    for (const CChoice& rChoice : ListChoices(rSetup)) {
        const Vector Effect = Own * rChoice.m_Change;
        // Two planes have no such rule. The rotor of today isn't that one: some room is left.
        constexpr double ROOM = 0.1;
        if (Model->GetNumberOfPlanes() == 1 &&
            !TestRule::IsSurelyAccepted(First, First + Effect,
                                        rSetup.m_bScrews ? Vector(1.0) : rChoice.m_Change,
                                        ROOM * std::abs(Effect))) {
            continue;
        }
        const double Miss = std::abs(std::log(std::abs(Effect) / Wanted));
        if (!Best || Miss < BestMiss) {
            Best = rChoice.m_Test;
            Best->m_bFromHistory = true;
            BestMiss = Miss;
        }
    }
    return Best;
}

std::optional<CSuggestedTest> FindByMass(const CIsoData& rIso, const CPlaneSetup& rSetup, std::size_t Plane) {
    const double Unit = rIso.m_Unit.at(Plane);
    if (!(rIso.m_RotorMass > 0.0 && rIso.m_ServiceSpeed > 0.0 && Unit > 0.0)) {
        return std::nullopt;
    }
    constexpr double GRAVITY = 9.81;
    constexpr double TO_GRAM_MILLIMETRES = 1e6;
    const double Omega = rIso.m_ServiceSpeed * 2.0 * std::numbers::pi / 60.0;
    const double Unbalance = AdviceThresholds::SUGGESTED_FORCE * rIso.m_RotorMass * GRAVITY /
                             (Omega * Omega) * TO_GRAM_MILLIMETRES;
    const double Wanted = Unbalance / Unit;
    std::optional<CSuggestedTest> Best;
    double BestMiss = 0.0;
    for (const CChoice& rChoice : ListChoices(rSetup)) {
        const double Miss = std::abs(std::log(std::abs(rChoice.m_Change) / Wanted));
        if (!Best || Miss < BestMiss) {
            Best = rChoice.m_Test;
            BestMiss = Miss;
        }
    }
    return Best;
}

}  // namespace

std::optional<CSuggestedTest> Find(const CRunSetup& rSetup, std::size_t Plane,
                                   std::span<const CRunRecord> Earlier) {
    const auto& rPlane = rSetup.m_Planes.at(Plane);
    if (!rPlane) {
        return std::nullopt;
    }
    std::optional<CSuggestedTest> Result;
    if (const CRunRecord* const pLatest = FindLatest(rSetup, Plane, Earlier)) {
        Result = FindByHistory(*pLatest, *rPlane, Plane);
    }
    if (!Result) {
        Result = FindByMass(rSetup.m_Iso, *rPlane, Plane);
    }
    if (Result) {
        const std::string Test = rPlane->m_bScrews
                                     ? Fill("ADVICE_TEST_SCREW", {AdviceFigures::Grams(Result->m_Grams)})
                                     : Fill("ADVICE_TEST_STEP", {AdviceFigures::Angle(Result->m_Step)});
        Result->m_Text =
            Fill(Result->m_bFromHistory ? "ADVICE_SUGGESTED_BY_HISTORY" : "ADVICE_SUGGESTED_BY_MASS", {Test});
    }
    return Result;
}

}  // namespace SuggestedTest
