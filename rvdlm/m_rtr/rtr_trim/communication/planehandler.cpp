#include "rvdlm/m_rtr/rtr_trim/communication/planehandler.h"

#include <algorithm>

#include "rvdlm/m_rtr/rtr_trim/communication/kestrelmapper.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"

using RtrTrim::g_pLog;

namespace {

constexpr std::size_t ARTICLE_LENGTH = 6;
constexpr std::uint8_t NOT_KNOWN = 0xFF;

bool IsFailure(Reason Why) {
    return Why == Comm::eTimeout || Why == Comm::eError;
}

}  // namespace

CPlaneHandler::CPlaneHandler(IFFromCommunication* pIFFromCommunication, std::uint8_t Master,
                             std::uint8_t Slave)
    : m_pIFFromCommunication(pIFFromCommunication), m_MasterAddress(Master), m_SlaveAddress(Slave) {
    if (Master != 0) {
        m_pIFToKestrelSaker[0] = std::make_unique<CKestrelMapper>(*this, Master);
    } else {
        RV_ASSERT_AS(g_pLog, false, "Master != 0", "Incorrect master module address!", true);
    }
    if (Slave != NO_SLAVE) {
        m_pIFToKestrelSaker[1] = std::make_unique<CKestrelMapper>(*this, Slave);
    }
}

CPlaneHandler::~CPlaneHandler() = default;

int CPlaneHandler::PutReceivedModuleData(const std::uint8_t* pData, std::uint32_t nSize) {
    int nTaken = 1;
    for (const auto& pModule : m_pIFToKestrelSaker) {
        if (pModule) {
            nTaken &= pModule->PutReceivedModuleData(pData, nSize) != 0 ? 1 : 0;
        }
    }
    return nTaken;
}

int CPlaneHandler::AskAll(Query pQuery) {
    // A module that isn't there doesn't spoil the result.
    return std::ranges::all_of(
               m_pIFToKestrelSaker,
               [pQuery](const auto& pModule) { return !pModule || (*pModule.*pQuery)() != 0; })
               ? 1
               : 0;
}

int CPlaneHandler::QueryModuleIdentification() {
    m_ArticleNumber.clear();
    m_SerialNumber = 0;
    return AskAll(&IFToCommunication::QueryModuleIdentification);
}

int CPlaneHandler::QueryActiveSet() {
    const int nSent = AskAll(&IFToCommunication::QueryActiveSet);
    if (nSent != 0) {
        m_Set = CSet();
    }
    return nSent;
}

int CPlaneHandler::QueryModuleState() {
    const int nSent = AskAll(&IFToCommunication::QueryModuleState);
    if (nSent != 0) {
        m_UILocked = {};
        m_OutOfLock = {};
        m_InvalidRPM = {};
        m_WrongState = {};
        m_bPlane1StateReceived = false;
        m_bPlane2StateReceived = false;
    }
    return nSent;
}

int CPlaneHandler::QueryRPMData() {
    // Both planes turn on one spindle.
    return m_pIFToKestrelSaker[0] ? m_pIFToKestrelSaker[0]->QueryRPMData() : 1;
}

int CPlaneHandler::QueryUnbalanceXYValues() {
    return AskAll(&IFToCommunication::QueryUnbalanceXYValues);
}

void CPlaneHandler::SendRawData(std::uint8_t /*Address*/, const std::uint8_t* pData, std::uint32_t nSize) {
    m_pIFFromCommunication->SendRawData(pData, nSize);
}

void CPlaneHandler::OnQueryModuleIdentification(std::uint8_t Address, Reason Why, const std::string* pArticle,
                                                const std::uint32_t* pSerial) {
    if (Why == Comm::eIndication) {
        return;
    }
    if (Why != Comm::eSuccess || pArticle == nullptr || pSerial == nullptr) {
        m_pIFFromCommunication->OnQueryModuleIdentification(Why, nullptr, nullptr);
        return;
    }
    if (Address == m_MasterAddress) {
        m_ArticleNumber.insert(0, *pArticle);
        m_SerialNumber |= *pSerial << 16U;
    } else if (Address == m_SlaveAddress) {
        m_ArticleNumber += "-" + *pArticle;
        // Not masked, deliberately: a slave's serial above 0xFFFF reaches into the master's half.
        m_SerialNumber |= *pSerial;
    }
    if (HasSlave()) {
        const bool bBothArticles = m_ArticleNumber.size() > ARTICLE_LENGTH;
        const bool bBothSerials = m_SerialNumber >= 0x10000 && (m_SerialNumber & 0xFFFFU) != 0;
        if (!bBothArticles || !bBothSerials) {
            return;
        }
    } else {
        // Plausibility only: the report goes out whatever they find.
        RV_ASSERT(g_pLog, m_pIFToKestrelSaker[0], "must be valid!");
        RV_ASSERT_AS(g_pLog, m_ArticleNumber.size() == ARTICLE_LENGTH, "m_ArticleNumber.GetLength() == 6",
                     "Incorrect F-Number!", false);
        RV_ASSERT_AS(g_pLog, (m_SerialNumber & 0xFFFF0000U) != 0, "m_SerialNumber&0xFFFF0000",
                     "Invalid serial number!", false);
    }
    m_pIFFromCommunication->OnQueryModuleIdentification(Comm::eSuccess, &m_ArticleNumber, &m_SerialNumber);
}

void CPlaneHandler::OnSetRequest(std::uint8_t Address, Reason Why, const CSet* pSet) {
    if (IsFailure(Why) || pSet == nullptr) {
        // Deliberate: a failed set never reaches OnSetRequest on this road.
        m_pIFFromCommunication->OnQueryModuleIdentification(Why, nullptr, nullptr);
        return;
    }
    if (Address == m_MasterAddress) {
        m_Set.Number = pSet->Number;
        m_Set.Name.clear();
        m_Set.Mode = HasSlave() ? CSet::eTwoPlane : CSet::ePlane1;
        m_Set.RPMFactorPlane1 = pSet->RPMFactorPlane1;
        m_Set.RPMInputPlane1 = pSet->RPMInputPlane1;
        m_Set.SensorAdaptionPlane1 = pSet->SensorAdaptionPlane1;
    } else if (Address == m_SlaveAddress) {
        // The module knows of one plane, its first. Its set number is dropped.
        m_Set.Name.clear();
        m_Set.RPMFactorPlane2 = pSet->RPMFactorPlane1;
        m_Set.RPMInputPlane2 = pSet->RPMInputPlane1;
        m_Set.SensorAdaptionPlane2 = pSet->SensorAdaptionPlane1;
    }
    if (HasSlave()) {
        const auto Fields = {m_Set.RPMFactorPlane1, m_Set.RPMInputPlane1, m_Set.SensorAdaptionPlane1,
                             m_Set.RPMFactorPlane2, m_Set.RPMInputPlane2, m_Set.SensorAdaptionPlane2};
        if (std::ranges::find(Fields, NOT_KNOWN) != Fields.end()) {
            return;
        }
    } else {
        RV_ASSERT_AS(g_pLog,
                     (m_Set.GetRPMFactorPlane1() != NOT_KNOWN) && (m_Set.GetRPMInputPlane1() != NOT_KNOWN) &&
                         (m_Set.GetSensorAdaptionPlane1() != NOT_KNOWN),
                     "(m_Set.GetRPMFactorPlane1() != 0xFF) && (m_Set.GetRPMInputPlane1() != 0xFF) && "
                     "(m_Set.GetSensorAdaptionPlane1() != 0xFF)",
                     "invalid parameters!", false);
        // The main window tests that both factors are 1; with one module it must not find fault.
        m_Set.RPMFactorPlane2 = 1;
    }
    m_pIFFromCommunication->OnSetRequest(Why, &m_Set);
}

void CPlaneHandler::OnModuleState(std::uint8_t Address, Reason Why, const std::uint32_t* pUILocked,
                                  const std::uint32_t* pOutOfLock, const std::uint32_t* pInvalidRPM,
                                  const std::uint32_t* /*pUnused1*/, const std::uint32_t* /*pUnused2*/,
                                  const std::uint32_t* pWrongState) {
    if (IsFailure(Why)) {
        // Deliberate: a failed module state never reaches OnModuleState on this road.
        m_pIFFromCommunication->OnQueryModuleIdentification(Why, nullptr, nullptr);
        return;
    }
    const bool bKnownAddress = Address == m_MasterAddress || Address == m_SlaveAddress;
    if (bKnownAddress && pUILocked != nullptr && pOutOfLock != nullptr && pInvalidRPM != nullptr &&
        pWrongState != nullptr) {
        const std::size_t nPlane = Address == m_MasterAddress ? 0 : 1;
        m_UILocked[nPlane] = *pUILocked;
        m_OutOfLock[nPlane] = *pOutOfLock;
        m_InvalidRPM[nPlane] = *pInvalidRPM;
        m_WrongState[nPlane] = *pWrongState;
        (nPlane == 0 ? m_bPlane1StateReceived : m_bPlane2StateReceived) = true;
    } else {
        RV_ASSERT_AS(g_pLog, false, "FALSE", "impossible", true);
    }
    const std::uint32_t UILocked = m_UILocked[0] != 0 || m_UILocked[1] != 0 ? 1 : 0;
    const std::uint32_t WrongState = m_WrongState[0] != 0 || m_WrongState[1] != 0 ? 1 : 0;
    if (HasSlave()) {
        if (!m_bPlane1StateReceived || !m_bPlane2StateReceived) {
            return;
        }
    } else {
        RV_ASSERT(g_pLog, m_bPlane1StateReceived, "must be received!");
    }
    m_pIFFromCommunication->OnModuleState(Why, &UILocked, &m_OutOfLock[0], &m_InvalidRPM[0], &m_OutOfLock[1],
                                          &m_InvalidRPM[1], &WrongState);
}

void CPlaneHandler::OnRPMData(std::uint8_t Address, Reason Why, const std::uint32_t* pRPM) {
    const std::uint32_t Plane = GetPlane(Address);
    m_pIFFromCommunication->OnRPMData(Why, &Plane, pRPM);
}

void CPlaneHandler::OnUnbalanceXYValues(std::uint8_t Address, Reason Why, const std::uint32_t* pX,
                                        const std::uint32_t* pY) {
    const std::uint32_t Plane = GetPlane(Address);
    m_pIFFromCommunication->OnUnbalanceXYValues(Why, &Plane, pX, pY);
}

std::uint32_t CPlaneHandler::GetPlane(std::uint8_t Address) const {
    if (Address == m_MasterAddress) {
        return 0;
    }
    if (Address == m_SlaveAddress) {
        return 1;
    }
    RV_ASSERT_AS(g_pLog, false, "FALSE", "impossible", true);
    return Address;
}
