#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/communication/iftocommunication.h"
#include "rvdlm/m_rtr/rtr_trim/communication/set.h"

/// A set that suits every mode.
inline CSet MakeSet(std::uint8_t Number = 2) {
    CSet Set;
    Set.Number = Number;
    Set.Name = "WHEEL";
    Set.Mode = CSet::ePlane1;
    Set.RPMInputPlane1 = 0;
    Set.RPMFactorPlane1 = 1;
    Set.RPMInputPlane2 = 1;
    Set.RPMFactorPlane2 = 1;
    Set.SensorAdaptionPlane1 = 3;
    Set.SensorAdaptionPlane2 = 4;
    return Set;
}

/// What the tests see of a module: outlives the mapper that the window owns.
struct CFakeModuleRecord {
    /// The queries in order, and "frame" with the bytes of each frame.
    std::vector<std::string> m_Calls;
    /// What queries answer.
    int m_Sent = 1;
};

/// A mapper without a module behind it: remembers what it was asked.
class CFakeModule : public IFToCommunication {
public:
    explicit CFakeModule(CFakeModuleRecord& rRecord) : m_rRecord(rRecord) {}

    int PutReceivedModuleData(const std::uint8_t* pData, std::uint32_t nSize) override {
        std::string Call = "frame";
        for (std::uint32_t i = 0; i < nSize; ++i) {
            Call += " " + std::to_string(pData[i]);
        }
        return Note(Call);
    }
    int QueryModuleIdentification() override { return Note("identification"); }
    int QueryActiveSet() override { return Note("set"); }
    int QueryModuleState() override { return Note("state"); }
    int QueryRPMData() override { return Note("rpm"); }
    int QueryUnbalanceXYValues() override { return Note("xy"); }

private:
    int Note(std::string Call) {
        m_rRecord.m_Calls.push_back(std::move(Call));
        return m_rRecord.m_Sent;
    }

    CFakeModuleRecord& m_rRecord;
};
