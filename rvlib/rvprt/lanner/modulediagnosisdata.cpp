#include "rvlib/rvprt/lanner/modulediagnosisdata.h"

#include <algorithm>
#include <span>

#include "rvlib/rvprt/littleendian.h"
#include "rvlib/rvprt/logblock.h"

namespace Lanner {

int CModuleDiagnosisData::Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed) {
    *pUsed = 0;
    if (pData == nullptr || nSize < SIZE) {
        RV_WARNING(Protocols::g_pLog, "invalid message length");
        return 0;
    }
    CurrentTemperature = pData[0];
    MaxTemperature = pData[1];
    ReservedDiagFlag0 = Comm::ReadBit(pData[2], 0);
    ReservedDiagFlag3 = Comm::ReadBit(pData[2], 3);
    ReservedDiagValue4 = (pData[2] >> 4U) & 3U;
    ReservedDiagFlag6 = Comm::ReadBit(pData[2], 6);
    ReservedDiagFlag7 = Comm::ReadBit(pData[2], 7);
    DiagByte4 = pData[3];
    PICVersion = Comm::ReadU16(pData + 4);
    SignalCount = Comm::ReadU16(pData + 6);
    CurrentProfibusCommunicationClock = Comm::ReadU16(pData + 8);
    DiagWord4 = Comm::ReadU16(pData + 10);
    DiagWord5 = Comm::ReadU16(pData + 12);
    DiagWord6 = Comm::ReadU16(pData + 14);
    const auto Characters = Comm::Behind(pData, nSize, SIZE);
    const auto End = std::ranges::find(Characters, std::uint8_t{0});
    DiagText.assign(Characters.begin(), End);
    const std::uint32_t nTerminator = End != Characters.end() ? 1 : 0;
    *pUsed = SIZE + static_cast<std::uint32_t>(DiagText.size()) + nTerminator;
    return 1;
}

void CModuleDiagnosisData::Log() const {
    const Protocols::CLogBlock Block("Lanner::CModuleDiagnosisData");
    RV_PROTOCOL_DETAIL("CurrentTemperature %d", CurrentTemperature);
    RV_PROTOCOL_DETAIL("MaxTemperature= %d", MaxTemperature);
    RV_PROTOCOL_DETAIL("ReservedDiagFlag0= %d", static_cast<int>(ReservedDiagFlag0));
    RV_PROTOCOL_DETAIL("ReservedDiagFlag3= %d", static_cast<int>(ReservedDiagFlag3));
    RV_PROTOCOL_DETAIL("ReservedDiagValue4= %d", ReservedDiagValue4);
    RV_PROTOCOL_DETAIL("ReservedDiagFlag6= %d", static_cast<int>(ReservedDiagFlag6));
    RV_PROTOCOL_DETAIL("ReservedDiagFlag7= %d", static_cast<int>(ReservedDiagFlag7));
    RV_PROTOCOL_DETAIL("DiagByte4= %d", DiagByte4);
    RV_PROTOCOL_DETAIL("PICVersion= %d", PICVersion);
    RV_PROTOCOL_DETAIL("SignalCount= %d", SignalCount);
    RV_PROTOCOL_DETAIL("CurrentProfibusCommunicationClock= %d", CurrentProfibusCommunicationClock);
    RV_PROTOCOL_DETAIL("DiagWord4= %d", DiagWord4);
    RV_PROTOCOL_DETAIL("DiagWord5= %d", DiagWord5);
    RV_PROTOCOL_DETAIL("DiagWord6= %d", DiagWord6);
    RV_PROTOCOL_DETAIL("DiagText= %s", DiagText.c_str());
}

}  // namespace Lanner
