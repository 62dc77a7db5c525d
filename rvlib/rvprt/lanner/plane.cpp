#include "rvlib/rvprt/lanner/plane.h"

#include <array>

#include "rvlib/rvprt/lanner/block.h"
#include "rvlib/rvprt/littleendian.h"
#include "rvlib/rvprt/logblock.h"
#include "rvlib/rvprt/names.h"

namespace Lanner {

namespace {

constexpr CBlockRule RULE{CPlane::TYPE, CPlane::SIZE, false, "CPlane::Decode: Null pointer!"};

constexpr std::array INPUT_NAMES{"RPM_Plane1", "RPM_Plane2"};
constexpr std::array ADAPTION_NAMES{":6", ":3", ":2", ":1", "5:6", "5:3", "5:2", "5:1"};

}  // namespace

int CPlane::Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed) {
    *pUsed = 0;
    if (CheckBlock(RULE, pData, nSize) == 0) {
        return 0;
    }
    ID = pData[2];
    RPMInput = static_cast<std::uint8_t>(Comm::ReadBit(pData[3], 0));
    SensorAdaption = pData[4];
    if (SensorAdaption > Comm::LAST_ADAPTION) {
        RV_WARNING(Protocols::g_pLog, "Invalid SensorAdaption received");
        SensorAdaption = UNKNOWN;
    }
    UnbalanceLimit1 = Comm::ReadU16(pData + 5);
    UnbalanceLimit2 = Comm::ReadU16(pData + 7);
    RPMLimit1 = Comm::ReadU16(pData + 9);
    Offset = pData[11];
    // Deliberate: a length field that says more doesn't count.
    *pUsed = SIZE;
    return 1;
}

void CPlane::Log() const {
    const Protocols::CLogBlock Block("Lanner::CPlane");
    RV_PROTOCOL_DETAIL("ID: %d", ID);
    RV_PROTOCOL_DETAIL("RPMInput: %s", RPMInputToString(RPMInput));
    RV_PROTOCOL_DETAIL("SensorAdaption: %s 0x%X", SensorAdaptionToString(SensorAdaption).c_str(),
                       unsigned{SensorAdaption});
    RV_PROTOCOL_DETAIL("UnbalanceLimit1: %d", UnbalanceLimit1);
    RV_PROTOCOL_DETAIL("UnbalanceLimit2: %d", UnbalanceLimit2);
    RV_PROTOCOL_DETAIL("RPMLimit1: %d", RPMLimit1);
    RV_PROTOCOL_DETAIL("Offset: %d", Offset);
}

const char* CPlane::RPMInputToString(std::uint8_t Input) {
    return Comm::NameOf(INPUT_NAMES, Input, "invalid");
}

std::string CPlane::SensorAdaptionToString(std::uint8_t Adaption) {
    return Comm::AdaptionName(ADAPTION_NAMES, "", Adaption).value_or("UnknownAdaption");
}

}  // namespace Lanner
