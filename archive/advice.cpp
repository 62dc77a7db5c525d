#include "archive/advice.h"

#include "archive/advicethresholds.h"
#include "archive/explanation.h"
#include "archive/influence.h"
#include "archive/prediction.h"
#include "archive/repeatability.h"
#include "archive/rotormodel.h"
#include "archive/testquality.h"

namespace {

/// What is fitted for the final measurement, by planes of the machine: what was, or what is asked for.
std::optional<std::array<CPlaneFitting, 2>> FindFinalFitting(const CRunRecord& rRun,
                                                             const CAdviceBasis& rBasis,
                                                             const CRotorModel& rModel) {
    const CRunMeasurement* const pFinal = rRun.Find(Measurement::eFinal);
    std::array<CPlaneFitting, 2> Result;
    for (std::size_t i = 0; i < rModel.GetNumberOfPlanes(); ++i) {
        const std::size_t Plane = rModel.GetPlane(i);
        if (pFinal != nullptr && pFinal->m_Planes[Plane]) {
            Result[Plane] = pFinal->m_Planes[Plane]->m_Fitted;
        } else if (rBasis.m_Asked[Plane]) {
            Result[Plane] = *rBasis.m_Asked[Plane];
        } else {
            return std::nullopt;
        }
    }
    return Result;
}

}  // namespace

CRunAdvice Advise(const CRunRecord& rRun, const CAdviceBasis& rBasis) {
    CRunAdvice Result;
    const std::optional<double> Learned =
        rBasis.m_Repeatability ? rBasis.m_Repeatability : Repeatability::Learn(rBasis.m_Earlier);
    const double Deviation = Learned.value_or(AdviceThresholds::REPEATABILITY);
    Result.m_Quality = TestQuality::Judge(rRun, Deviation, Learned.has_value());
    Result.m_Refusal = TestQuality::DescribeRefusal(rRun, Deviation);
    const auto Model = CRotorModel::Make(rRun, Deviation);
    if (Model && Result.m_Quality && Model->GetNumberOfPlanes() == 2) {
        if (const auto Coefficients = Model->GetInfluence()) {
            Influence::SetCondition(*Result.m_Quality, Influence::GetCondition(*Coefficients));
        }
    }
    if (!Model || !Result.m_Refusal.empty() ||
        (Result.m_Quality && Result.m_Quality->m_TestRun == CRunAdvice::CQuality::TestRun::eNone)) {
        return Result;
    }
    if (const auto Final = FindFinalFitting(rRun, rBasis, *Model)) {
        Result.m_Prediction = Prediction::Make(*Model, Model->MakeFit(*Final), rRun.m_Setup.m_bClockwise);
    }
    Result.m_Influence = Influence::Compare(rRun, rBasis.m_Earlier);
    if (const auto Finding = Explanation::Find(*Model, rRun)) {
        Result.m_Explanation = Explanation::Describe(*Finding);
    }
    return Result;
}
