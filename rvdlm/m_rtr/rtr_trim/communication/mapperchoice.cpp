#include "rvdlm/m_rtr/rtr_trim/communication/mapperchoice.h"

#include "platform/rvmdb/prebaldatabase.h"
#include "rvdlm/m_rtr/rtr_trim/communication/lannermapper.h"
#include "rvdlm/m_rtr/rtr_trim/communication/planehandler.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"

namespace {

using PreBalDB::CPreBalDatabase;
using RtrTrim::g_pLog;

std::unique_ptr<IFToCommunication> MakeKestrelMapper(IFFromCommunication& rWindow, std::uint8_t Master,
                                                     const CInitFlags& rFlags) {
    if (!rFlags.HasSlave()) {
        return std::make_unique<CPlaneHandler>(&rWindow, Master, CPlaneHandler::NO_SLAVE);
    }
    RV_ASSERT(g_pLog, rFlags.GetBalancingMode() == CPreBalDatabase::eModeTwoPlane,
              "Slave address with incorrect balancing mode!");
    return std::make_unique<CPlaneHandler>(&rWindow, Master, rFlags.GetSlaveAddress());
}

}  // namespace

std::unique_ptr<IFToCommunication> MakeMapper(IFFromCommunication& rWindow, std::uint32_t Address,
                                              const CInitFlags& rFlags) {
    if (rFlags.IsKestrel()) {
        return MakeKestrelMapper(rWindow, static_cast<std::uint8_t>(Address), rFlags);
    }
    RV_ASSERT(g_pLog, rFlags.IsLanner(), "Unknown module! Trying to use Lanner mapper...");
    return std::make_unique<CLannerMapper>(&rWindow, static_cast<std::uint8_t>(Address));
}
