#include "archive/mistakes.h"

#include <algorithm>
#include <complex>
#include <cstdint>
#include <utility>

#include "archive/mistakestage.h"
#include "platform/rvldb/gettext.h"

namespace Mistakes {

namespace {

using Fittings = std::array<CPlaneFitting, 2>;
using Vector = CRotorModel::Vector;

CMistake MakeOne(const char* pName, const char* pKey, CRotorModel::CAssumption Assumption) {
    return {
        .m_Name = pName, .m_Where = pName, .m_Cases = {{std::move(Assumption), 0}}, .Describe = [pKey](int) {
            return GetText(pKey);
        }};
}

/// What is fitted to these planes counted the other way round, all the time.
CRotorModel::CAssumption TurnRound(CRotorModel::CAssumption Assumption,
                                   const std::vector<std::size_t>& rPlanes) {
    for (const std::size_t i : rPlanes) {
        Assumption.m_Asked[i] = std::conj(Assumption.m_Asked[i]);
        for (CRotorModel::Fit& rFit : Assumption.m_Measured) {
            rFit[i] = std::conj(rFit[i]);
        }
    }
    return Assumption;
}

void ListSenses(const CRotorModel& rModel, const CRotorModel::CAssumption& rNoted,
                std::vector<CMistake>& rList) {
    if (rModel.GetNumberOfPlanes() == 1) {
        rList.push_back(MakeOne("scale_sense", "ADVICE_SCALE_SENSE", TurnRound(rNoted, {0})));
        rList.push_back(MakeOne("rotation_sense", "ADVICE_ROTATION_SENSE", TurnRound(rNoted, {0})));
        return;
    }
    rList.push_back(MakeOne("scale_sense_1", "ADVICE_SCALE_SENSE_1", TurnRound(rNoted, {0})));
    rList.push_back(MakeOne("scale_sense_2", "ADVICE_SCALE_SENSE_2", TurnRound(rNoted, {1})));
    // Readings of a rotor that turns the other way answer to all that is fitted as if it were mirrored.
    rList.push_back(MakeOne("rotation_sense", "ADVICE_ROTATION_SENSE", TurnRound(rNoted, {0, 1})));
}

/// Whether what belongs to one plane can be fitted to the other.
bool AreExchangeable(const CRotorModel& rModel) {
    if (rModel.GetNumberOfPlanes() != 2) {
        return false;
    }
    const CPlaneSetup& r1 = rModel.GetSetup(0);
    const CPlaneSetup& r2 = rModel.GetSetup(1);
    return r1.m_bScrews == r2.m_bScrews && (!r1.m_bScrews || r1.m_nHoles == r2.m_nHoles);
}

void ListExchanges(const CRotorModel& rModel, const Fittings& rFinal, const CRotorModel::CAssumption& rNoted,
                   std::vector<CMistake>& rList) {
    const auto Exchange = [&rModel](const Fittings& rFittings) {
        return CRotorModel::Fit{rModel.GetSum(0, rFittings[1]), rModel.GetSum(1, rFittings[0])};
    };
    CRotorModel::CAssumption Final = rNoted;
    Final.m_Asked = Exchange(rFinal);
    CRotorModel::CAssumption Tests = rNoted;
    for (std::size_t i = 1; i < rModel.GetStates().size(); ++i) {
        Tests.m_Measured[i] = Exchange(rModel.GetStates()[i].m_Fitted);
    }
    CRotorModel::CAssumption All = Tests;
    All.m_Asked = Final.m_Asked;
    rList.push_back(MakeOne("planes_exchanged", "ADVICE_PLANES_EXCHANGED", std::move(Final)));
    if (!rModel.IsInfluenceStored()) {
        rList.push_back(
            MakeOne("planes_exchanged_in_test", "ADVICE_PLANES_EXCHANGED_IN_TEST", std::move(Tests)));
        rList.push_back(MakeOne("planes_always_exchanged", "ADVICE_PLANES_ALWAYS_EXCHANGED", std::move(All)));
    }
}

}  // namespace

std::vector<CMistake> List(const CRotorModel& rModel, const Fittings& rFinal) {
    std::vector<CMistake> Result;
    const std::size_t nPlanes = rModel.GetNumberOfPlanes();
    CRotorModel::Fit Final{};
    for (std::size_t i = 0; i < nPlanes; ++i) {
        Final[i] = rModel.GetSum(i, rFinal[i]);
    }
    const CRotorModel::CAssumption Noted = rModel.AssumeNoted(Final);
    const auto ListStage = [&](std::size_t Leg, std::size_t nColumn) {
        const CMistakeStage Stage(rModel, rFinal, Noted, Leg);
        if (rModel.GetSetup(nColumn).m_bScrews) {
            Stage.ListScrews(nColumn, Result);
        } else {
            Stage.ListWeights(nColumn, Result);
        }
    };
    for (std::size_t i = 0; i < nPlanes; ++i) {
        ListStage(CMistakeStage::END, i);
    }
    // The influence that a re-balancing begins with is that of another run, whose mistakes nobody sees here.
    if (!rModel.IsInfluenceStored()) {
        for (std::size_t i = 0; i < nPlanes; ++i) {
            ListStage(i + 1, i);
        }
        ListSenses(rModel, Noted, Result);
    }
    if (AreExchangeable(rModel)) {
        ListExchanges(rModel, rFinal, Noted, Result);
    }
    return Result;
}

}  // namespace Mistakes
