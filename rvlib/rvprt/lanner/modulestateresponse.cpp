#include "rvlib/rvprt/lanner/modulestateresponse.h"

#include "rvlib/rvprt/littleendian.h"
#include "rvlib/rvprt/logblock.h"

namespace Lanner {

namespace {

using Response = CModuleStateResponse;

/// A flag of a plane. The second plane's byte follows the first's.
struct CFlagRow {
    std::uint32_t Response::*m_pFlag;
    std::uint32_t m_FirstPlanesByte;
    unsigned m_Plane;  ///< 0 or 1, when planes are not swapped
    unsigned m_Bit;
    const char* m_pLabel;
};

constexpr std::uint32_t LIMITS = 3;
constexpr std::uint32_t FAILURES = 5;

constexpr CFlagRow FLAG_ROWS[] = {
    {&Response::Plane1RotationLimit1Exceeded, LIMITS, 0, 0, "Plane1RotationLimit1Exceeded: %d"},
    {&Response::Plane1UnbalanceLimit1Exceeded, LIMITS, 0, 1, "Plane1UnbalanceLimit1Exceeded: %d"},
    {&Response::Plane1UnbalanceLimit2Exceeded, LIMITS, 0, 2, "Plane1UnbalanceLimit2Exceeded: %d"},
    {&Response::Plane1DSGNocke, LIMITS, 0, 3, "Plane1DSGNocke: %d"},
    {&Response::Plane2RotationLimit1Exceeded, LIMITS, 1, 0, "Plane2RotationLimit1Exceeded: %d"},
    {&Response::Plane2UnbalanceLimit1Exceeded, LIMITS, 1, 1, "Plane2UnbalanceLimit1Exceeded: %d"},
    {&Response::Plane2UnbalanceLimit2Exceeded, LIMITS, 1, 2, "Plane2UnbalanceLimit2Exceeded: %d"},
    {&Response::Plane2DSGNocke, LIMITS, 1, 3, "Plane2DSGNocke: %d"},
    {&Response::Plane1SensorFailure, FAILURES, 0, 0, "Plane1SensorFailure: %d"},
    {&Response::Plane1RotationToSlow, FAILURES, 0, 1, "Plane1RotationToSlow: %d"},
    {&Response::Plane1Overamplify, FAILURES, 0, 2, "Plane1Overamplify: %d"},
    {&Response::Plane1OutOfLock, FAILURES, 0, 3, "Plane1OutOfLock: %d"},
    {&Response::Plane2SensorFailure, FAILURES, 1, 0, "Plane2SensorFailure: %d"},
    {&Response::Plane2RotationToSlow, FAILURES, 1, 1, "Plane2RotationToSlow: %d"},
    {&Response::Plane2Overamplify, FAILURES, 1, 2, "Plane2Overamplify: %d"},
    {&Response::Plane2OutOfLock, FAILURES, 1, 3, "Plane2OutOfLock: %d"},
};

}  // namespace

int CModuleStateResponse::Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed,
                                 std::uint32_t Swap) {
    *pUsed = 0;
    if (pData == nullptr || nSize < SIZE) {
        return 0;
    }
    if (pData[0] != eSupervisionMode) {
        RV_WARNING(Protocols::g_pLog, "unknown ModuleState received");
        RV_WARNING(Protocols::g_pLog, "could not decode ModuleStateResponse");
        return 0;
    }
    m_ModuleState = eSupervisionMode;
    // Byte 1 isn't read: m_Parameter keeps its initial value.
    UILocked = Comm::ReadBit(pData[2], 7);
    const unsigned Exchange = Swap != 0 ? 1 : 0;
    for (const CFlagRow& rRow : FLAG_ROWS) {
        const std::uint8_t Flags = pData[rRow.m_FirstPlanesByte + (rRow.m_Plane ^ Exchange)];
        this->*rRow.m_pFlag = Comm::ReadBit(Flags, rRow.m_Bit);
    }
    *pUsed = SIZE;
    return 1;
}

void CModuleStateResponse::Log() const {
    const Protocols::CLogBlock Block("Lanner::CModuleStateResponse");
    RV_PROTOCOL_DETAIL("State = %s", m_ModuleState == eSupervisionMode ? "SupervisionMode" : "InvalidState");
    RV_PROTOCOL_DETAIL("Parameter= 0x%02X", static_cast<unsigned>(m_Parameter));
    RV_PROTOCOL_DETAIL("UILocked: %d", static_cast<int>(UILocked));
    for (const CFlagRow& rRow : FLAG_ROWS) {
        RV_PROTOCOL_DETAIL(rRow.m_pLabel, static_cast<int>(this->*rRow.m_pFlag));
    }
}

}  // namespace Lanner
