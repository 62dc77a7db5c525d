#include "rvlib/rvprt/lanner/setparams.h"

#include <array>

#include "rvlib/rvprt/lanner/block.h"
#include "rvlib/rvprt/littleendian.h"
#include "rvlib/rvprt/logblock.h"
#include "rvlib/rvprt/names.h"

namespace Lanner {

namespace {

constexpr CBlockRule RULE{CSetParams::TYPE, 5, true, "CSetParams::Decode: Null pointer!"};
/// What stands before the name.
constexpr std::uint32_t FIXED_PART = 7;

struct CModeRow {
    std::uint8_t m_Mode;
    std::uint32_t m_Swap;
};

/// By the block's mode byte.
constexpr CModeRow MODE_ROWS[] = {
    {CSetParams::eNothing, 0},         {CSetParams::ePlane1, 0},   {CSetParams::ePlane2, 0},
    {CSetParams::eBothIndependent, 0}, {CSetParams::eTwoPlane, 0}, {CSetParams::eBothIndependent, 1},
    {CSetParams::eTwoPlane, 1},
};

constexpr std::array OUTPUT_NAMES{"Plane1AnalogRPMOutput", "Plane2AnalogRPMOutput"};
constexpr std::array MODE_NAMES{"Nothing", "Plane1", "Plane2", "BothIndependent", "TwoPlane"};
constexpr std::array SCALING_NAMES{"1000PerVolt", "2000PerVolt", "3000PerVolt", "4000PerVolt",
                                   "5000PerVolt", "6000PerVolt", "7000PerVolt", "8000PerVolt"};

}  // namespace

int CSetParams::Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed) {
    *pUsed = 0;
    const std::uint32_t nLength = CheckBlock(RULE, pData, nSize);
    if (nLength < FIXED_PART || pData[6] + FIXED_PART > nLength) {
        return 0;
    }
    AnalogOutput = static_cast<std::uint8_t>(Comm::ReadBit(pData[3], 0));
    if (pData[4] < std::size(MODE_ROWS)) {
        Mode = MODE_ROWS[pData[4]].m_Mode;
        Swap = MODE_ROWS[pData[4]].m_Swap;
    } else {
        RV_WARNING(Protocols::g_pLog, "undefined mode");
        Mode = eUndefinedMode;
        Swap = 0;
    }
    AnalogScaling = pData[5];
    if (AnalogScaling >= SCALING_NAMES.size()) {
        RV_WARNING(Protocols::g_pLog, "Undefined scaling received: 0x%02X", unsigned{AnalogScaling});
        AnalogScaling = UNDEFINED;
    }
    SetName.assign(pData + FIXED_PART, pData + FIXED_PART + pData[6]);
    *pUsed = nLength;
    return 1;
}

void CSetParams::Log() const {
    const Protocols::CLogBlock Block("Lanner::CSetParams");
    RV_PROTOCOL_DETAIL("AnalogOutput: %s", AnalogOutputToString(AnalogOutput));
    RV_PROTOCOL_DETAIL("Mode: %s", ModeToString(Mode));
    RV_PROTOCOL_DETAIL("AnalogScaling: %s", AnalogScalingToString(AnalogScaling));
    RV_PROTOCOL_DETAIL("SetName: %s", SetName.c_str());
    RV_PROTOCOL_DETAIL("Swap: %d", static_cast<int>(Swap));
}

const char* CSetParams::AnalogOutputToString(std::uint8_t Output) {
    return Comm::NameOf(OUTPUT_NAMES, Output, "invalid");
}

const char* CSetParams::ModeToString(std::uint8_t Mode) {
    return Comm::NameOf(MODE_NAMES, Mode, "UndefinedMode");
}

const char* CSetParams::AnalogScalingToString(std::uint8_t Scaling) {
    return Comm::NameOf(SCALING_NAMES, Scaling, "UndefinedScaling");
}

}  // namespace Lanner
