#include "rvdlm/m_rtr/rtr_trim/moduleconversation.h"

#include <utility>

#include "contract/warnings.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"

using PreBalDB::CPreBalDatabase;
using RtrTrim::g_pLog;

namespace {

constexpr std::uint8_t UNKNOWN = 255;
/// First byte of frames that the module has no use for.
constexpr std::uint8_t RESERVED_COMMAND = 4;

bool IsAnswerOrReport(Reason Why) {
    return Why == Comm::eSuccess || Why == Comm::eIndication;
}

/// The name doesn't count: renaming a set changes nothing in a measurement.
bool IsSameSet(const CSet& rFirst, const CSet& rSecond) {
    return rFirst.Number == rSecond.Number && rFirst.Mode == rSecond.Mode &&
           rFirst.RPMInputPlane1 == rSecond.RPMInputPlane1 &&
           rFirst.RPMFactorPlane1 == rSecond.RPMFactorPlane1 &&
           rFirst.RPMInputPlane2 == rSecond.RPMInputPlane2 &&
           rFirst.RPMFactorPlane2 == rSecond.RPMFactorPlane2 &&
           rFirst.SensorAdaptionPlane1 == rSecond.SensorAdaptionPlane1 &&
           rFirst.SensorAdaptionPlane2 == rSecond.SensorAdaptionPlane2 && rFirst.Swap == rSecond.Swap;
}

bool IsPlane1Used(CPreBalDatabase::BalancingMode Mode) {
    return Mode != CPreBalDatabase::eModePlane2;
}

bool IsPlane2Used(CPreBalDatabase::BalancingMode Mode) {
    return Mode == CPreBalDatabase::eModePlane2 || Mode == CPreBalDatabase::eModeTwoPlane;
}

CSources ChooseSources(CPreBalDatabase::BalancingMode Mode, const CSet& rSet) {
    CSources Sources;
    switch (Mode) {
        case CPreBalDatabase::eModePlane1:
            Sources = {rSet.RPMInputPlane1, rSet.SensorAdaptionPlane1};
            break;
        case CPreBalDatabase::eModePlane2:
            Sources = {rSet.RPMInputPlane2, rSet.SensorAdaptionPlane2};
            break;
        case CPreBalDatabase::eModeTwoPlane:
            Sources = {rSet.RPMInputPlane1, rSet.SensorAdaptionPlane1, rSet.SensorAdaptionPlane2};
            break;
    }
    Sources.m_bComplete = Sources.m_Input != UNKNOWN && Sources.m_Sensor1 != UNKNOWN &&
                          (Mode != CPreBalDatabase::eModeTwoPlane || Sources.m_Sensor2 != UNKNOWN);
    return Sources;
}

}  // namespace

CModuleConversation::CModuleConversation(CConversationCallbacks Callbacks)
    : m_Callbacks(std::move(Callbacks)), m_ModuleWatch(m_Callbacks.m_Send) {}

void CModuleConversation::Begin(const std::vector<std::uint8_t>& rModules,
                                CPreBalDatabase::BalancingMode Mode) {
    m_Mode = Mode;
    m_ModuleWatch.SetModules(rModules);
    Ask(&IFToCommunication::QueryModuleIdentification, "QueryModuleIdentification()");
}

void CModuleConversation::End() {
    m_MachineName.clear();
    m_Set = CSet();
}

void CModuleConversation::Ask(Query pQuery, const std::string& rName) {
    if (m_pCommunicationIF != nullptr) {
        const int Sent = ((*m_pCommunicationIF).*pQuery)();
        RV_ASSERT_AS(g_pLog, Sent, ("m_pCommunicationIF->" + rName).c_str(), (rName + " failed!").c_str(),
                     false);
    }
}

void CModuleConversation::OnFrame(std::span<const std::uint8_t> Frame) {
    if (m_pCommunicationIF == nullptr || Frame.empty() || Frame[0] == RESERVED_COMMAND) {
        return;
    }
    if (m_ModuleWatch.OnFrame(Frame)) {
        m_pCommunicationIF->PutReceivedModuleData(Frame.data(), static_cast<std::uint32_t>(Frame.size()));
    }
    if (m_ModuleWatch.IsSilent()) {
        WatchModules();  // this frame may end the silence
    }
}

void CModuleConversation::QueryReadings() {
    if (DependsOnModules()) {
        m_ModuleWatch.OnSampling();
    }
    Ask(&IFToCommunication::QueryUnbalanceXYValues, "QueryUnbalanceXYValues()");
}

void CModuleConversation::OnQueryModuleIdentification(Reason Why, const std::string* pArticle,
                                                      const std::uint32_t* pSerial) {
    if (!IsAnswerOrReport(Why) || pArticle == nullptr || pSerial == nullptr) {
        return;
    }
    if (m_MachineName.empty()) {
        // Printed as a signed number: keys of stores in the field are written so.
        m_MachineName = *pArticle + "-" + std::to_string(static_cast<std::int32_t>(*pSerial));
    }
    if (Why == Comm::eSuccess && m_Set.Number == UNKNOWN) {
        Ask(&IFToCommunication::QueryActiveSet, "QueryActiveSet()");
    }
}

void CModuleConversation::OnSetRequest(Reason Why, const CSet* pSet) {
    if (!IsAnswerOrReport(Why) || pSet == nullptr) {
        return;
    }
    if (!IsSameSet(*pSet, m_Set)) {
        if (CPreBalancing* const pProcedure = m_Callbacks.m_GetProcedureToAbort()) {
            RV_ERROR(g_pLog, "Set has been changed! calling AbortBalancing()...");
            pProcedure->AbortBalancing(Warnings::eSetChanged);
        }
    }
    if (m_Set.Number == UNKNOWN && !m_MachineName.empty()) {
        OnFirstSet(*pSet);
    }
    if (pSet->RPMFactorPlane1 != 1 || pSet->RPMFactorPlane2 != 1) {
        m_Callbacks.m_OnUnusableSet();
    }
    if (Why == Comm::eSuccess) {
        Ask(&IFToCommunication::QueryModuleState, "QueryModuleState()");
    }
}

void CModuleConversation::OnFirstSet(const CSet& rSet) {
    m_Set = rSet;
    const CSources Sources = ChooseSources(m_Mode, rSet);
    RV_ASSERT(g_pLog, Sources.m_bComplete, "current set configuration does not fit with balancing mode!");
    m_MachineName = std::to_string(Sources.m_Input) + "#" + std::to_string(Sources.m_Sensor1) + "#" +
                    std::to_string(Sources.m_Sensor2) + "-" + std::to_string(m_Mode) +
                    (rSet.Swap != 0 ? "s-" : "-") + m_MachineName + "-" + std::to_string(rSet.Number);
    m_Callbacks.m_OnMachineKnown(Sources);
}

void CModuleConversation::OnModuleState(Reason Why, const std::uint32_t* pOutOfLockPlane1,
                                        const std::uint32_t* pInvalidRPMPlane1,
                                        const std::uint32_t* pOutOfLockPlane2,
                                        const std::uint32_t* pInvalidRPMPlane2,
                                        const std::uint32_t* pWrongState) {
    if (!IsAnswerOrReport(Why)) {
        return;
    }
    const bool bPlane1 = IsPlane1Used(m_Mode);
    const bool bPlane2 = IsPlane2Used(m_Mode);
    if (pWrongState != nullptr && *pWrongState != 0) {
        CPreBalancing* const pProcedure = m_Callbacks.m_GetProcedureToAbort();
        const bool bSequence = pProcedure != nullptr;
        RV_ASSERT(g_pLog, bSequence, "impossible");
        if (bSequence) {
            RV_ERROR(g_pLog, "Module state has been changed! calling AbortBalancing()...");
            pProcedure->AbortBalancing(Warnings::eModuleStateChanged);
        }
    } else if ((bPlane1 && (pOutOfLockPlane1 == nullptr || pInvalidRPMPlane1 == nullptr)) ||
               (bPlane2 && (pOutOfLockPlane2 == nullptr || pInvalidRPMPlane2 == nullptr))) {
        RV_ASSERT_FAIL(g_pLog, "impossible");
    } else {
        m_OutOfLock = (bPlane1 && *pOutOfLockPlane1 != 0) || (bPlane2 && *pOutOfLockPlane2 != 0) ? 1 : 0;
        m_InvalidRPM = (bPlane1 && *pInvalidRPMPlane1 != 0) || (bPlane2 && *pInvalidRPMPlane2 != 0) ? 1 : 0;
        UpdateWatchConditions();
        if (CPreBalancing* const pProcedure = m_Callbacks.m_GetProcedure()) {
            pProcedure->OutOfLock(GetLockLost());
            pProcedure->InvalidRPM(m_InvalidRPM);
        }
    }
    if (Why == Comm::eSuccess) {
        Ask(&IFToCommunication::QueryRPMData, "QueryRPMData()");
    }
}

void CModuleConversation::OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) {
    if (!IsAnswerOrReport(Why) || pPlane == nullptr || pRPM == nullptr) {
        return;
    }
    const std::uint32_t Plane = m_Mode == CPreBalDatabase::eModePlane2 ? 1 : 0;
    if (*pPlane == Plane) {
        m_CurrentRPM = static_cast<std::uint16_t>(*pRPM);
        UpdateWatchConditions();
        if (CPreBalancing* const pProcedure = m_Callbacks.m_GetProcedure()) {
            pProcedure->CurrentRPM(m_CurrentRPM);
            m_Callbacks.m_OnSpeed();
        }
    }
    if (Why == Comm::eSuccess) {
        QueryReadings();
    }
}

void CModuleConversation::OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane,
                                              const std::uint32_t* pX, const std::uint32_t* pY) {
    if (!IsAnswerOrReport(Why) || pPlane == nullptr || pX == nullptr || pY == nullptr) {
        return;
    }
    RV_ASSERT(g_pLog, *pPlane <= 1, "impossible");
    m_ModuleWatch.OnReading(*pPlane, Why == Comm::eIndication);
    CPreBalancing* const pProcedure = m_Callbacks.m_GetProcedure();
    if (pProcedure == nullptr) {
        return;
    }
    const auto x = static_cast<std::int16_t>(*pX);
    const auto y = static_cast<std::int16_t>(*pY);
    if (*pPlane == 0) {
        pProcedure->CurrentXYValuePlane1(x, y);
    } else if (*pPlane == 1) {
        pProcedure->CurrentXYValuePlane2(x, y);
    }
}

void CModuleConversation::BeginWatch() {
    m_ModuleWatch.Begin({IsPlane1Used(m_Mode), IsPlane2Used(m_Mode)});
    UpdateWatchConditions();
    m_WatchTimer.StartPeriodic(CModuleWatch::PERIOD,
                               [this] { m_Callbacks.m_Guard("OnTimer", [this] { WatchModules(); }); });
}

bool CModuleConversation::DependsOnModules() const {
    const CPreBalancing* const pProcedure = m_Callbacks.m_GetProcedure();
    return pProcedure != nullptr && pProcedure->DependsOnModuleState();
}

void CModuleConversation::WatchModules() {
    const CModuleWatch::Finding Found = m_ModuleWatch.Tick(DependsOnModules());
    if (Found == CModuleWatch::Finding::eNothing) {
        return;
    }
    if (Found == CModuleWatch::Finding::eFellSilent) {
        RV_WARNING(g_pLog, "readings stay away: measuring waits");
    } else {
        RV_INFORMATION(g_pLog, "readings come again");
    }
    if (CPreBalancing* const pProcedure = m_Callbacks.m_GetProcedure()) {
        pProcedure->OutOfLock(GetLockLost());
    }
}
