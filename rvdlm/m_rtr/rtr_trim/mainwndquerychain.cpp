// What the module reports: which module and set this is, then state, speed and readings.
#include "contract/actions.h"
#include "contract/hostmessages.h"
#include "contract/ncrequests.h"
#include "contract/warnings.h"
#include "platform/rvldb/gettext.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"

using PreBalDB::CPreBalDatabase;
using PreBalDB::CTypeBase;
using RtrTrim::g_pLog;

namespace {

constexpr std::uint8_t eUnknown = 255;

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

/// Where a balancing mode takes speed and readings from. The sensor not in use stays unknown.
struct CSources {
    std::uint8_t m_Input = eUnknown;
    std::uint8_t m_Sensor1 = eUnknown;
    std::uint8_t m_Sensor2 = eUnknown;
    bool m_bComplete = false;
};

CSources ChooseSources(CPreBalDatabase::BalancingMode Mode, const CSet& rSet) {
    CSources Sources;
    switch (Mode) {
        case CPreBalDatabase::eModePlane1:
            Sources.m_Sensor1 = rSet.SensorAdaptionPlane1;
            Sources.m_Input = rSet.RPMInputPlane1;
            Sources.m_bComplete = Sources.m_Sensor1 != eUnknown && Sources.m_Input != eUnknown;
            break;
        case CPreBalDatabase::eModePlane2:
            Sources.m_Sensor1 = rSet.SensorAdaptionPlane2;
            Sources.m_Input = rSet.RPMInputPlane2;
            Sources.m_bComplete = Sources.m_Sensor1 != eUnknown && Sources.m_Input != eUnknown;
            break;
        case CPreBalDatabase::eModeTwoPlane:
            Sources.m_Sensor1 = rSet.SensorAdaptionPlane1;
            Sources.m_Input = rSet.RPMInputPlane1;
            Sources.m_Sensor2 = rSet.SensorAdaptionPlane2;
            Sources.m_bComplete =
                Sources.m_Sensor1 != eUnknown && Sources.m_Input != eUnknown && Sources.m_Sensor2 != eUnknown;
            break;
    }
    return Sources;
}

}  // namespace

void CPreBalancingMainWnd::OnQueryModuleIdentification(Reason Why, const std::string* pArticle,
                                                       const std::uint32_t* pSerial) {
    if (!IsAnswerOrReport(Why) || pArticle == nullptr || pSerial == nullptr) {
        return;
    }
    if (m_MachineName.empty()) {
        // Printed as a signed number: keys of stores in the field are written so.
        m_MachineName = *pArticle + "-" + std::to_string(static_cast<std::int32_t>(*pSerial));
    }
    if (Why == Comm::eSuccess && m_Set.Number == eUnknown && m_pCommunicationIF != nullptr) {
        const int Sent = m_pCommunicationIF->QueryActiveSet();
        RV_ASSERT_AS(g_pLog, Sent, "m_pCommunicationIF->QueryActiveSet()", "QueryActiveSet() failed!", false);
    }
}

bool CPreBalancingMainWnd::EnsureSequence() {
    if (m_pPrebalancingSequence == nullptr && m_tabCtrl.GetCurrentBaseEntry() != nullptr &&
        m_tabCtrl.GetCurrentScrewEntry() != nullptr) {
        StartPrebalancingSequence();
    }
    return m_pPrebalancingSequence != nullptr;
}

void CPreBalancingMainWnd::OnSetRequest(Reason Why, const CSet* pSet) {
    if (!IsAnswerOrReport(Why) || pSet == nullptr) {
        return;
    }
    if (!IsSameSet(*pSet, m_Set) && EnsureSequence()) {
        RV_ERROR(g_pLog, "Set has been changed! calling AbortBalancing()...");
        m_pPrebalancingSequence->AbortBalancing(Warnings::eSetChanged);
    }
    if (m_Set.Number == eUnknown && !m_MachineName.empty()) {
        OnFirstSet(*pSet);
    }
    if (pSet->RPMFactorPlane1 != 1 || pSet->RPMFactorPlane2 != 1) {
        // Starting a procedure aborts it at once, so that the operator sees why such a set can't be used.
        PostMessage(WM_RV_MODULEACTION, Actions::eStart);
    }
    if (Why == Comm::eSuccess && m_pCommunicationIF != nullptr) {
        const int Sent = m_pCommunicationIF->QueryModuleState();
        RV_ASSERT_AS(g_pLog, Sent, "m_pCommunicationIF->QueryModuleState()", "QueryModuleState() failed!",
                     false);
    }
}

/// The set since the window was initialised: completes the key of the database and opens it. m_Set keeps it,
/// so that every later report of another one aborts.
void CPreBalancingMainWnd::OnFirstSet(const CSet& rSet) {
    m_Set = rSet;
    const std::string Number = std::to_string(rSet.Number);
    m_tabCtrl.SetTitle(GetText("PREBAL_CONFIG") + " (" + GetText("SET") + " " + Number + ")");

    const CPreBalDatabase::BalancingMode Mode = m_tabCtrl.GetBalancingMode();
    const CSources Sources = ChooseSources(Mode, rSet);
    RV_ASSERT(g_pLog, Sources.m_bComplete, "current set configuration does not fit with balancing mode!");
    m_MachineName = std::to_string(Sources.m_Input) + "#" + std::to_string(Sources.m_Sensor1) + "#" +
                    std::to_string(Sources.m_Sensor2) + "-" + std::to_string(Mode) +
                    (rSet.Swap != 0 ? "s-" : "-") + m_MachineName + "-" + Number;
    m_tabCtrl.InitDatabase(m_MachineName, Sources.m_Sensor1, Sources.m_Sensor2,
                           static_cast<CTypeBase::AffectedPlane>(Sources.m_Input));
    PostMessage(WM_RV_DBINITDONE);
}

LRESULT CPreBalancingMainWnd::OnDBInitDone(WPARAM, LPARAM) {
    PostToParent(WM_RV_BALANCINGACTIVITY, 0, IsCalibrated() ? 1 : 0);
    NotifyConfigurationShown(IsCalibrated());
    ResetNotificationFromNC(NcRequests::eDone);
    return 1;
}

void CPreBalancingMainWnd::OnModuleState(Reason Why, const std::uint32_t* /*pUILocked*/,
                                         const std::uint32_t* pOutOfLockPlane1,
                                         const std::uint32_t* pInvalidRPMPlane1,
                                         const std::uint32_t* pOutOfLockPlane2,
                                         const std::uint32_t* pInvalidRPMPlane2,
                                         const std::uint32_t* pWrongState) {
    if (!IsAnswerOrReport(Why)) {
        return;
    }
    const CPreBalDatabase::BalancingMode Mode = m_tabCtrl.GetBalancingMode();
    const bool bPlane1 = IsPlane1Used(Mode);
    const bool bPlane2 = IsPlane2Used(Mode);
    if (pWrongState != nullptr && *pWrongState != 0) {
        const bool bSequence = EnsureSequence();
        RV_ASSERT(g_pLog, bSequence, "impossible");
        if (bSequence) {
            RV_ERROR(g_pLog, "Module state has been changed! calling AbortBalancing()...");
            m_pPrebalancingSequence->AbortBalancing(Warnings::eModuleStateChanged);
        }
    } else if ((bPlane1 && (pOutOfLockPlane1 == nullptr || pInvalidRPMPlane1 == nullptr)) ||
               (bPlane2 && (pOutOfLockPlane2 == nullptr || pInvalidRPMPlane2 == nullptr))) {
        RV_ASSERT_FAIL(g_pLog, "impossible");
    } else {
        m_OutOfLock = (bPlane1 && *pOutOfLockPlane1 != 0) || (bPlane2 && *pOutOfLockPlane2 != 0) ? 1 : 0;
        m_InvalidRPM = (bPlane1 && *pInvalidRPMPlane1 != 0) || (bPlane2 && *pInvalidRPMPlane2 != 0) ? 1 : 0;
        UpdateWatchConditions();
        if (m_pPrebalancingSequence != nullptr) {
            m_pPrebalancingSequence->OutOfLock(GetOutOfLock());
            m_pPrebalancingSequence->InvalidRPM(m_InvalidRPM);
        }
    }
    if (Why == Comm::eSuccess && m_pCommunicationIF != nullptr) {
        const int Sent = m_pCommunicationIF->QueryRPMData();
        RV_ASSERT_AS(g_pLog, Sent, "m_pCommunicationIF->QueryRPMData()", "QueryRPMData() failed!", false);
    }
}

void CPreBalancingMainWnd::OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM) {
    if (!IsAnswerOrReport(Why) || pPlane == nullptr || pRPM == nullptr) {
        return;
    }
    const std::uint32_t Plane = m_tabCtrl.GetBalancingMode() == CPreBalDatabase::eModePlane2 ? 1 : 0;
    if (*pPlane == Plane) {
        m_CurrentRPM = static_cast<std::uint16_t>(*pRPM);
        UpdateWatchConditions();
        if (m_pPrebalancingSequence != nullptr) {
            m_pPrebalancingSequence->CurrentRPM(m_CurrentRPM);
            Repaint(CPreBalancing::ePaintStatus);
        }
    }
    if (Why == Comm::eSuccess) {
        PleaseQueryXYValuesNOW();
    }
}

void CPreBalancingMainWnd::OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane,
                                               const std::uint32_t* pX, const std::uint32_t* pY) {
    if (!IsAnswerOrReport(Why) || pPlane == nullptr || pX == nullptr || pY == nullptr) {
        return;
    }
    RV_ASSERT(g_pLog, *pPlane <= 1, "impossible");
    m_ModuleWatch.OnReading(*pPlane, Why == Comm::eIndication);
    if (m_pPrebalancingSequence == nullptr) {
        return;
    }
    const auto x = static_cast<std::int16_t>(*pX);
    const auto y = static_cast<std::int16_t>(*pY);
    if (*pPlane == 0) {
        m_pPrebalancingSequence->CurrentXYValuePlane1(x, y);
    } else if (*pPlane == 1) {
        m_pPrebalancingSequence->CurrentXYValuePlane2(x, y);
    }
}

bool CPreBalancingMainWnd::DependsOnModules() const {
    return m_pPrebalancingSequence != nullptr && m_pPrebalancingSequence->DependsOnModuleState();
}

void CPreBalancingMainWnd::PleaseQueryXYValuesNOW() {
    if (DependsOnModules()) {
        m_ModuleWatch.OnSampling();
    }
    if (m_pCommunicationIF != nullptr) {
        const int Sent = m_pCommunicationIF->QueryUnbalanceXYValues();
        RV_ASSERT_AS(g_pLog, Sent, "m_pCommunicationIF->QueryUnbalanceXYValues()",
                     "QueryUnbalanceXYValues() failed!", false);
    }
}

void CPreBalancingMainWnd::BeginWatch() {
    const CPreBalDatabase::BalancingMode Mode = m_tabCtrl.GetBalancingMode();
    m_ModuleWatch.Begin({IsPlane1Used(Mode), IsPlane2Used(Mode)});
    UpdateWatchConditions();
    SetTimer(eWatchTimer, CModuleWatch::ePeriod);
}

void CPreBalancingMainWnd::WatchModules() {
    const CModuleWatch::Finding Found = m_ModuleWatch.Tick(DependsOnModules());
    if (Found == CModuleWatch::Finding::eNothing) {
        return;
    }
    if (Found == CModuleWatch::Finding::eFellSilent) {
        RV_WARNING(g_pLog, "readings stay away: measuring waits");
    } else {
        RV_INFORMATION(g_pLog, "readings come again");
    }
    if (m_pPrebalancingSequence != nullptr) {
        m_pPrebalancingSequence->OutOfLock(GetOutOfLock());
    }
}
