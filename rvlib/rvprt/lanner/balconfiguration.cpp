#include "rvlib/rvprt/lanner/balconfiguration.h"

#include <array>

#include "rvlib/rvprt/littleendian.h"
#include "rvlib/rvprt/logblock.h"
#include "rvlib/rvprt/names.h"

namespace Lanner {

namespace {

using Configuration = CBalConfiguration;

struct CRateRow {
    std::uint8_t Configuration::*m_pRate;
    std::uint32_t m_Byte;     ///< when planes are not swapped
    std::uint32_t m_Swapped;  ///< when they are
    const char* m_pLabel;
};

constexpr CRateRow RATE_ROWS[] = {
    {&Configuration::Plane1MaxRPMDataRate, 4, 8, " Plane1MaxRPMDataRate: 0x%02X"},
    {&Configuration::Plane1MaxUnbalanceAmplitudeDatarate, 5, 9,
     " Plane1MaxUnbalanceAmplitudeDatarate: 0x%02X"},
    {&Configuration::Plane1MaxXYDatarate, 6, 10, " Plane1MaxXYDatarate: 0x%02X"},
    {&Configuration::Plane1ConfigurationXY, 7, 11, " Plane1ConfigurationXY: 0x%02X"},
    {&Configuration::Plane2MaxRPMDataRate, 8, 4, " Plane2MaxRPMDataRate: 0x%02X"},
    {&Configuration::Plane2MaxUnbalanceAmplitudeDatarate, 9, 5,
     " Plane2MaxUnbalanceAmplitudeDatarate: 0x%02X"},
    {&Configuration::Plane2MaxXYDatarate, 10, 6, " Plane2MaxXYDatarate: 0x%02X"},
    {&Configuration::Plane2ConfigurationXY, 11, 7, " Plane2ConfigurationXY: 0x%02X"},
};

constexpr std::array INPUT_NAMES{"PNP", "NPN"};

}  // namespace

int CBalConfiguration::Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed,
                              std::uint32_t Swap) {
    *pUsed = 0;
    if (pData == nullptr || nSize < SIZE) {
        RV_WARNING(Protocols::g_pLog, "not enough data to decode");
        return 0;
    }
    Plane1Input = Comm::ReadBit(pData[0], 0);
    Plane2Input = Comm::ReadBit(pData[0], 1);
    RPMLimitLocked = Comm::ReadBit(pData[0], 2);
    RPMLimit = Comm::ReadU16(pData + 2);
    for (const CRateRow& rRow : RATE_ROWS) {
        this->*rRow.m_pRate = pData[Swap != 0 ? rRow.m_Swapped : rRow.m_Byte];
    }
    MaxDiagnosisDatrate = pData[12] >> 4U;
    ConfigurationDiagnosis = pData[13];
    *pUsed = SIZE;
    return 1;
}

void CBalConfiguration::Log() const {
    const Protocols::CLogBlock Block("Lanner::CBalConfiguration");
    RV_PROTOCOL_DETAIL(" Plane1Input: %s", InputToString(Plane1Input));
    RV_PROTOCOL_DETAIL(" Plane2Input: %s", InputToString(Plane2Input));
    // The limit itself has no line; only whether it is locked.
    RV_PROTOCOL_DETAIL(" RPMLimitLocked: %d", static_cast<int>(RPMLimitLocked));
    for (const CRateRow& rRow : RATE_ROWS) {
        RV_PROTOCOL_DETAIL(rRow.m_pLabel, unsigned{this->*rRow.m_pRate});
    }
    RV_PROTOCOL_DETAIL(" MaxDiagnosisDatrate: 0x%02X", unsigned{MaxDiagnosisDatrate});
    RV_PROTOCOL_DETAIL(" ConfigurationDiagnosis: 0x%02X", unsigned{ConfigurationDiagnosis});
}

const char* CBalConfiguration::InputToString(std::uint32_t Input) {
    return Comm::NameOf(INPUT_NAMES, Input, "Invalid Input");
}

}  // namespace Lanner
