#include "rvlib/rvprt/lanner/moduleconfiguration.h"

#include <algorithm>
#include <array>

#include "rvlib/rvprt/littleendian.h"
#include "rvlib/rvprt/logblock.h"
#include "rvlib/rvprt/names.h"

namespace Lanner {

namespace {

struct CBaudrateRow {
    std::uint8_t m_Value;
    const char* m_pName;
};

/// The rates depend on the module's clock. The capital letter of one name is meant to stay.
constexpr CBaudrateRow BAUDRATE_ROWS[] = {
    {0, "e1200baud20Mhz"},    {1, "e2400baud20Mhz"},
    {2, "e4800baud20Mhz"},    {3, "e9600baud20Mhz"},
    {4, "e19200baud20Mhz"},   {5, "e38400baud20Mhz"},
    {6, "e57600baud20Mhz"},   {7, "e125000baud20Mhz"},
    {8, "e156250baud20Mhz"},  {9, "e208333baud20Mhz"},
    {10, "e312500baud20Mhz"}, {16, "e1200Baud30Mhz"},
    {17, "e2400baud30Mhz"},   {18, "e4800baud30Mhz"},
    {19, "e9600baud30Mhz"},   {20, "e19200baud30Mhz"},
    {21, "e38400baud30Mhz"},  {22, "e57600baud30Mhz"},
    {23, "e115200baud30Mhz"}, {24, "e230400baud30Mhz"},
    {25, "e460800baud30Mhz"}, {CModuleConfiguration::INVALID_BAUD_RATE, "eInvalidBaudRate"},
};

constexpr std::array STOP_BIT_NAMES{"e1StopBit", "e2StopBits"};

}  // namespace

int CModuleConfiguration::Decode(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t* pUsed) {
    *pUsed = 0;
    if (pData == nullptr || nSize < SIZE) {
        RV_WARNING(Protocols::g_pLog, "not enough data to decode");
        return 0;
    }
    constexpr std::uint8_t BAUDRATE_BITS = 0x3F;  // bit 6 is ignored
    Baudrate = pData[0] & BAUDRATE_BITS;
    StopBit = static_cast<std::uint8_t>(Comm::ReadBit(pData[0], 7));
    FanPowerOnTemperature = pData[1];
    TestFlags = pData[2];
    AttachedSlaveModuleID = pData[3];
    *pUsed = SIZE;
    return 1;
}

void CModuleConfiguration::Log() const {
    const Protocols::CLogBlock Block("Lanner::CModuleConfiguration");
    RV_PROTOCOL_DETAIL("Baudrate = %s", BaudrateToString(Baudrate));
    RV_PROTOCOL_DETAIL("StopBit = %s", StopBitToString(StopBit));
    RV_PROTOCOL_DETAIL("FanPowerOnTemperature = %d", FanPowerOnTemperature);
    RV_PROTOCOL_DETAIL("TestFlags = %d", TestFlags);
    RV_PROTOCOL_DETAIL("AttachedSlaveModuleID = %d", AttachedSlaveModuleID);
}

const char* CModuleConfiguration::BaudrateToString(std::uint8_t Baudrate) {
    const auto* const pRow = std::ranges::find(BAUDRATE_ROWS, Baudrate, &CBaudrateRow::m_Value);
    if (pRow != std::end(BAUDRATE_ROWS)) {
        return pRow->m_pName;
    }
    RV_ASSERT_FAIL(Protocols::g_pLog, "Invalid Baud Rate");
    return "invalid";
}

const char* CModuleConfiguration::StopBitToString(std::uint8_t StopBit) {
    const char* const pName = Comm::NameOf(STOP_BIT_NAMES, StopBit, nullptr);
    RV_ASSERT_AS(Protocols::g_pLog, pName != nullptr, "FALSE", "invalid StopBits", false);
    return pName != nullptr ? pName : "invalid";
}

}  // namespace Lanner
