#include "rvdlm/m_rtr/rtr_trim/communication/lannermapper.h"

#include "rvdlm/m_rtr/rtr_trim/log.h"

using RtrTrim::g_pLog;

namespace {

enum class Outcome { eValues, eFailure, eNeither };

/// Whether a callback brings values. A reason that is none asserts and shows it.
Outcome ToOutcome(Reason Why) {
    switch (Why) {
        case Comm::eSuccess:
        case Comm::eIndication:
            return Outcome::eValues;
        case Comm::eTimeout:
        case Comm::eError:
            return Outcome::eFailure;
    }
    RV_ASSERT_AS(g_pLog, false, "FALSE", "impossible", true);
    return Outcome::eNeither;
}

/// The set as the main window sees it. Without set params nothing of it is known.
CSet ToSet(const Lanner::CSet* pSet) {
    CSet Set;
    if (pSet == nullptr || pSet->GetSetParams() == nullptr) {
        return Set;
    }
    const Lanner::CSetParams& rParams = *pSet->GetSetParams();
    Set.Number = pSet->m_Set;
    Set.Name = rParams.SetName;
    Set.Mode = rParams.Mode;
    Set.RPMFactorPlane1 = 1;  // this family has no factors
    Set.RPMFactorPlane2 = 1;
    Set.Swap = rParams.Swap;
    if (const Lanner::CPlane* const pPlane = pSet->GetPlane1()) {
        Set.RPMInputPlane1 = pPlane->RPMInput;
        Set.SensorAdaptionPlane1 = pPlane->SensorAdaption;
    }
    if (const Lanner::CPlane* const pPlane = pSet->GetPlane2()) {
        Set.RPMInputPlane2 = pPlane->RPMInput;
        Set.SensorAdaptionPlane2 = pPlane->SensorAdaption;
    }
    return Set;
}

}  // namespace

CLannerMapper::CLannerMapper(IFFromCommunication* pIFFromCommunication, std::uint8_t ModuleAddress)
    : CModuleMapper(ModuleAddress), m_pIFFromCommunication(pIFFromCommunication) {}

void CLannerMapper::SendRawData(const std::uint8_t* pData, std::uint32_t nSize) {
    m_pIFFromCommunication->SendRawData(pData, nSize);
}

void CLannerMapper::OnQueryModuleIdentification(Reason Why, const Lanner::CModuleIdentification* pModule) {
    switch (ToOutcome(Why)) {
        case Outcome::eValues:
            RV_ASSERT_AS(g_pLog, pModule != nullptr, "pModule", "impossible", true);
            if (pModule != nullptr) {
                m_pIFFromCommunication->OnQueryModuleIdentification(Why, &pModule->m_ArticleNumber,
                                                                    &pModule->m_SerialNumber);
            }
            break;
        case Outcome::eFailure:
            m_pIFFromCommunication->OnQueryModuleIdentification(Why, nullptr, nullptr);
            break;
        case Outcome::eNeither:
            break;
    }
}

void CLannerMapper::OnSetRequest(Reason Why, const Lanner::CSet* pSet) {
    switch (ToOutcome(Why)) {
        case Outcome::eValues: {
            RV_ASSERT_AS(g_pLog, pSet != nullptr && pSet->GetSetParams() != nullptr,
                         "pSet && pSet->GetSetParams()", "pSet && pSet->GetSetParams()", false);
            const CSet Set = ToSet(pSet);
            m_pIFFromCommunication->OnSetRequest(Why, &Set);
            break;
        }
        case Outcome::eFailure:
            // Unlike with the other family, a failure stays with its own callback; below likewise.
            m_pIFFromCommunication->OnSetRequest(Why, nullptr);
            break;
        case Outcome::eNeither:
            break;
    }
}

void CLannerMapper::OnModuleState(Reason Why, const Lanner::CModuleStateResponse* pResponse) {
    switch (ToOutcome(Why)) {
        case Outcome::eValues:
            RV_ASSERT_AS(g_pLog, pResponse != nullptr, "pResponse", "pResponse", false);
            if (pResponse != nullptr) {
                // This family has no state in which its values mean something else.
                const std::uint32_t WrongState = 0;
                m_pIFFromCommunication->OnModuleState(
                    Why, &pResponse->UILocked, &pResponse->Plane1OutOfLock, &pResponse->Plane1RotationToSlow,
                    &pResponse->Plane2OutOfLock, &pResponse->Plane2RotationToSlow, &WrongState);
            }
            break;
        case Outcome::eFailure:
            m_pIFFromCommunication->OnModuleState(Why, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
            break;
        case Outcome::eNeither:
            break;
    }
}

void CLannerMapper::OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) {
    switch (ToOutcome(Why)) {
        case Outcome::eValues:
            RV_ASSERT_AS(g_pLog, pPlane != nullptr && pRPM != nullptr, "pPlane && pRPM", "impossible", false);
            if (pPlane != nullptr && pRPM != nullptr) {
                m_pIFFromCommunication->OnRPMData(Why, pPlane, pRPM);
            }
            break;
        case Outcome::eFailure:
            m_pIFFromCommunication->OnRPMData(Why, nullptr, nullptr);
            break;
        case Outcome::eNeither:
            break;
    }
}

void CLannerMapper::OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pX,
                                        const std::uint32_t* pY) {
    switch (ToOutcome(Why)) {
        case Outcome::eValues:
            // Deliberate: of the three only the plane is tested.
            RV_ASSERT_AS(g_pLog, pPlane != nullptr, "pPlane", "impossible", false);
            if (pPlane != nullptr) {
                m_pIFFromCommunication->OnUnbalanceXYValues(Why, pPlane, pX, pY);
            }
            break;
        case Outcome::eFailure:
            m_pIFFromCommunication->OnUnbalanceXYValues(Why, nullptr, nullptr, nullptr);
            break;
        case Outcome::eNeither:
            break;
    }
}
