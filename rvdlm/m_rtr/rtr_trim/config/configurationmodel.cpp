#include "rvdlm/m_rtr/rtr_trim/config/configurationmodel.h"

#include "rvdlm/m_rtr/rtr_trim/log.h"

using namespace PreBalDB;
using RtrTrim::g_pLog;

namespace ConfigurationModel {

namespace {

constexpr std::uint8_t UNKNOWN_SENSOR = 255;

/// Brings the entry of the method in use into being and sets its plane. True for screws. A method that isn't
/// chosen yet counts as weights.
template <typename CreateWeight, typename CreateScrew>
bool PrepareCompensation(CCompensationTableEntry::CompensationMethod Method, CTypeBase::AffectedPlane Plane,
                         CreateWeight Weight, CreateScrew Screw) {
    CCompensationTableEntry* pCompensation = nullptr;
    switch (Method) {
        case CCompensationTableEntry::eWeights:
        case CCompensationTableEntry::eNotChosen:
            pCompensation = &Weight();
            break;
        case CCompensationTableEntry::eScrews:
            pCompensation = &Screw();
            break;
        case CCompensationTableEntry::eNotImplemented:
            RV_ASSERT_FAIL(g_pLog, "not implemented!");
            break;
        default:
            RV_ASSERT_FAIL(g_pLog, "unknown compensation!");
            break;
    }
    RV_ASSERT(g_pLog, pCompensation != nullptr, "compensation pointer is invalid!");
    if (pCompensation != nullptr) {
        pCompensation->SetPlane(Plane);
    }
    return Method == CCompensationTableEntry::eScrews;
}

CTypeBase::AffectedPlane GetPlane(CPreBalDatabase::BalancingMode Mode) {
    return Mode == CPreBalDatabase::eModePlane2 ? CTypeBase::ePlane2 : CTypeBase::ePlane1;
}

bool PrepareSinglePlane(CPreBalBaseTableEntry& rEntry, const CModuleSet& rSet) {
    CSinglePlaneBalancingTableEntry& rPlane = rEntry.CreateSinglePlane();
    rPlane.SetProximitySwitchInput(rSet.m_ProximitySwitchInput);
    rPlane.SetSensorAdaption(rSet.m_SensorAdaption1);
    return PrepareCompensation(
        rPlane.GetUsedCompensationMethod(), GetPlane(rSet.m_BalancingMode),
        [&]() -> CCompensationTableEntry& { return rPlane.CreateWeightCompensationTableEntry(); },
        [&]() -> CCompensationTableEntry& { return rPlane.CreateScrewCompensationTableEntry(); });
}

bool PrepareTwoPlane(CPreBalBaseTableEntry& rEntry, const CModuleSet& rSet) {
    RV_ASSERT(g_pLog, rSet.m_SensorAdaption2 != UNKNOWN_SENSOR, "Sensor Adaption 2 invalid!");
    CTwoPlaneBalancingTableEntry& rPlanes = rEntry.CreateTwoPlane();
    rPlanes.SetProximitySwitchInput(rSet.m_ProximitySwitchInput);
    rPlanes.SetPlane1SensorAdaption(rSet.m_SensorAdaption1);
    rPlanes.SetPlane2SensorAdaption(rSet.m_SensorAdaption2);
    const bool bScrews1 = PrepareCompensation(
        rPlanes.GetPlane1UsedCompensationMethod(), CTypeBase::ePlane1,
        [&]() -> CCompensationTableEntry& { return rPlanes.CreatePlane1WeightCompensationTableEntry(); },
        [&]() -> CCompensationTableEntry& { return rPlanes.CreatePlane1ScrewCompensationTableEntry(); });
    const bool bScrews2 = PrepareCompensation(
        rPlanes.GetPlane2UsedCompensationMethod(), CTypeBase::ePlane2,
        [&]() -> CCompensationTableEntry& { return rPlanes.CreatePlane2WeightCompensationTableEntry(); },
        [&]() -> CCompensationTableEntry& { return rPlanes.CreatePlane2ScrewCompensationTableEntry(); });
    return bScrews1 || bScrews2;
}

}  // namespace

bool IsCalibrated(const CPreBalBaseTableEntry* pEntry) {
    return pEntry != nullptr && pEntry->IsCalibrated() != 0;
}

bool Prepare(CPreBalBaseTableEntry& rEntry, const CModuleSet& rSet) {
    RV_ASSERT(g_pLog, rSet.m_ProximitySwitchInput != CTypeBase::eUnknownPlane,
              "Proximity Switch Input is invalid!");
    RV_ASSERT(g_pLog, rSet.m_SensorAdaption1 != UNKNOWN_SENSOR, "Sensor Adaption 1 invalid!");
    return rSet.m_BalancingMode == CPreBalDatabase::eModeTwoPlane ? PrepareTwoPlane(rEntry, rSet)
                                                                  : PrepareSinglePlane(rEntry, rSet);
}

void SetPlane(CPreBalBaseTableEntry& rEntry, CPreBalDatabase::BalancingMode Mode) {
    CSinglePlaneBalancingTableEntry* const pPlane = rEntry.GetSinglePlane();
    if (Mode == CPreBalDatabase::eModeTwoPlane || pPlane == nullptr) {
        return;
    }
    if (pPlane->GetUsedCompensationMethod() == CCompensationTableEntry::eScrews) {
        pPlane->CreateScrewCompensationTableEntry().SetPlane(GetPlane(Mode));
    } else {
        pPlane->CreateWeightCompensationTableEntry().SetPlane(GetPlane(Mode));
    }
}

}  // namespace ConfigurationModel
