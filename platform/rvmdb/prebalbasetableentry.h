#pragma once
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "platform/rvmdb/planebalancingtableentry.h"
#include "platform/rvmdb/typebase.h"

namespace PreBalDB {

/// One configuration (process) of a machine, with its calibration.
class CPreBalBaseTableEntry : public CTypeBase {
public:
    /// A new, uncalibrated configuration with the default of each property (recordfields.cpp).
    CPreBalBaseTableEntry(std::string MachineName, std::string ProcessName);
    ~CPreBalBaseTableEntry();

    /// Key of the database; the set number follows its last "-".
    const std::string& GetMachineName() const { return m_MachineName; }
    const std::string& GetProcessName() const { return m_ProcessName; }
    void SetProcessName(std::string Name) { m_ProcessName = std::move(Name); }
    int IsCalibrated() const { return m_IsCalibrated; }
    void SetIsCalibrated(int bCalibrated) { m_IsCalibrated = bCalibrated; }
    std::chrono::sys_seconds GetCalibrationDateTime() const { return m_CalibrationDateTime; }
    void SetCalibrationDateTime(std::chrono::sys_seconds Value) { m_CalibrationDateTime = Value; }
    std::uint32_t GetCalibratedRPM() const { return m_CalibratedRPM; }
    void SetCalibratedRPM(std::uint32_t Value) { m_CalibratedRPM = Value; }
    /// Half width of the speed window, rpm.
    std::uint32_t GetRPMTolerance() const { return m_RPMTolerance; }
    void SetRPMTolerance(std::uint32_t Value) { m_RPMTolerance = Value; }
    /// Limit of the final verdict, in the units of the readings.
    std::uint32_t GetTargetUnbalance() const { return m_TargetUnbalance; }
    void SetTargetUnbalance(std::uint32_t Value) { m_TargetUnbalance = Value; }
    /// Length of the moving averages, at least 1.
    std::uint32_t GetNumberOfSamples() const { return m_NumberOfSamples; }
    void SetNumberOfSamples(std::uint32_t Value) { m_NumberOfSamples = Value; }

    const CSinglePlaneBalancingTableEntry* GetSinglePlane() const { return m_pSinglePlane.get(); }
    CSinglePlaneBalancingTableEntry* GetSinglePlane() { return m_pSinglePlane.get(); }
    CSinglePlaneBalancingTableEntry& CreateSinglePlane();
    const CTwoPlaneBalancingTableEntry* GetTwoPlane() const { return m_pTwoPlane.get(); }
    CTwoPlaneBalancingTableEntry* GetTwoPlane() { return m_pTwoPlane.get(); }
    CTwoPlaneBalancingTableEntry& CreateTwoPlane();

private:
    friend class CPreBalDatabase;
    std::string m_MachineName;
    std::string m_ProcessName;
    int m_IsCalibrated{};
    std::chrono::sys_seconds m_CalibrationDateTime{};
    std::uint32_t m_CalibratedRPM{};
    std::uint32_t m_RPMTolerance{};
    std::uint32_t m_TargetUnbalance{};
    std::uint32_t m_NumberOfSamples{};
    std::unique_ptr<CSinglePlaneBalancingTableEntry> m_pSinglePlane;
    std::unique_ptr<CTwoPlaneBalancingTableEntry> m_pTwoPlane;
    class CPreBalDatabase* m_pDatabase = nullptr;
};

}  // namespace PreBalDB
