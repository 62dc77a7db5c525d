#include "console/checklink.h"

#include "console/command.h"
#include "console/linkanalysis.h"
#include "console/linkcheck.h"
#include "console/linkjson.h"
#include "console/serialport.h"
#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/endpoint.h"
#include "platform/system/virtualeventloop.h"
#include "simulator/simulator.h"

namespace {

constexpr const char* SIMULATED = "sim";
const std::string SERIAL_PREFIX = "serial:";
constexpr std::uint32_t MILLISECONDS = 1000;

CLinkCheck::CPlan MakePlan(const CLinkRequest& rRequest) {
    return {.m_Addresses = rRequest.m_Addresses, .m_Milliseconds = rRequest.m_Seconds * MILLISECONDS};
}

/// A rotor that turns, under a time of its own: nobody has to wait for it.
void LookAtSimulation(const CLinkRequest& rRequest, CLinkFacts& rFacts) {
    constexpr std::uint32_t RUN_UP = 10000;
    CVirtualEventLoop Loop;
    CLinkPair Pair = MakeLinkPair();
    std::string Error;
    const CRotorFile Rotor = CRotorFile::GetBuiltIn();
    const auto pSimulator = CSimulator::Create(Rotor, std::move(Pair.m_pSecond), {}, Error);
    pSimulator->Open();
    pSimulator->Carry({{"speed", Rotor.m_SpeedRpm}});
    Loop.Advance(RUN_UP);
    CLinkCheck(MakePlan(rRequest), [&Pair](std::uint32_t) { return std::move(Pair.m_pFirst); }).Run(rFacts);
}

}  // namespace

CCheckReport MakeLinkReport(const CLinkFacts& rFacts) {
    CCheckReport Report("link", rFacts.m_Link);
    Report.GetFacts() = ToJson(rFacts);
    AnalyseLink(rFacts, Report);
    return Report;
}

CCheckReport CheckLink(const CLinkRequest& rRequest) {
    CLinkFacts Facts;
    Facts.m_Link = rRequest.m_Link;
    if (rRequest.m_Link == SIMULATED) {
        LookAtSimulation(rRequest, Facts);
        return MakeLinkReport(Facts);
    }
    std::string Error;
    const auto pLink = MakeByteLink(rRequest.m_Link, Error);
    if (pLink == nullptr) {
        throw CCommandError("--link: " + Error);
    }
    CLinkCheck::CPlan Plan = MakePlan(rRequest);
    const std::string Name = pLink->GetName();
    Facts.m_Kind = Name.starts_with(SERIAL_PREFIX) ? CLinkFacts::Kind::eSerial : CLinkFacts::Kind::eTcp;
    if (Facts.m_Kind == CLinkFacts::Kind::eTcp) {
        CLinkCheck(Plan, [&](std::uint32_t) { return MakeByteLink(rRequest.m_Link, Error); }).Run(Facts);
        return MakeLinkReport(Facts);
    }
    // A serial link's name always ends in its rate.
    const std::size_t Colon = Name.rfind(':');
    const std::string Path = Name.substr(SERIAL_PREFIX.size(), Colon - SERIAL_PREFIX.size());
    Plan.m_Baud = ToNumber(Name.substr(Colon + 1)).value_or(0);
    LookAtSerialPort(Path, Facts);
    if (Facts.m_Trouble == CLinkFacts::Trouble::eNone) {
        const auto Make = [&Path, &Error](std::uint32_t Baud) {
            return MakeByteLink(SERIAL_PREFIX + Path + ":" + std::to_string(Baud), Error);
        };
        CLinkCheck(Plan, Make).Run(Facts);
        if (Facts.m_Trouble == CLinkFacts::Trouble::eOther) {
            // Another program may have taken it by a custom of its own.
            Facts.m_Holder = FindHolder(Path);
            Facts.m_Trouble = Facts.m_Holder.empty() ? Facts.m_Trouble : CLinkFacts::Trouble::eInUse;
        }
    }
    return MakeLinkReport(Facts);
}
