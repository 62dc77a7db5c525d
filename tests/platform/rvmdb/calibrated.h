#pragma once
#include "platform/rvmdb/prebaldatabase.h"
#include "tests/platform/rvmdb/makematrix.h"

/// A calibrated single-plane configuration with weights, in memory.
inline PreBalDB::CPreBalBaseTableEntry& MakeCalibrated(PreBalDB::CPreBalDatabase& rDatabase,
                                                       const std::string& rName, double InvA = 0.5) {
    using namespace PreBalDB;
    CPreBalBaseTableEntry& rEntry = rDatabase.ReadConfiguration(rName);
    rEntry.SetIsCalibrated(1);
    rEntry.SetCalibratedRPM(3000);
    CSinglePlaneBalancingTableEntry& rSingle = rEntry.CreateSinglePlane();
    rSingle.SetProximitySwitchInput(CTypeBase::ePlane1);
    rSingle.SetSensorAdaption(3);
    rSingle.SetInvA(MakeMatrix(2, 2, {InvA, -0.25, 0.25, InvA}));
    rSingle.SetUA(MakeMatrix(2, 1, {1.5, -2.5}));
    rSingle.CreateWeightCompensationTableEntry().SetPlane(CTypeBase::ePlane1);
    return rEntry;
}
