#include "console/linkoptions.h"

#include "archive/machinekey.h"
#include "platform/rvcom/endpoint.h"

namespace {

std::string CheckAddress(const std::string& rText) {
    constexpr std::uint32_t HIGHEST = 254;
    const std::optional<std::uint32_t> Address = ToNumber(rText);
    return Address && *Address >= 1 && *Address <= HIGHEST
               ? ""
               : "\"" + rText + "\" is no module address; give 1 to 254";
}

}  // namespace

void AddLinkOptions(CLI::App& rApp, COptions& rOptions) {
    rApp.add_option("--link", rOptions.m_Link, "sim | serial:PATH[:BAUD] | tcp:HOST:PORT")
        ->capture_default_str()
        ->type_name("LINK");
    rApp.add_option("--modules", rOptions.m_Modules, "kestrel | kestrel-pair | lanner")
        ->check(OneOf({"kestrel", "kestrel-pair", "lanner"}))
        ->type_name("KIND");
    rApp.add_option("--addresses", rOptions.m_Addresses, "Module addresses A[,B]")
        ->delimiter(',')
        ->check(CheckAddress)
        ->type_name("A[,B]");
    rApp.add_option("--mode", rOptions.m_Mode, "plane1 | plane2 | two-plane")
        ->check(OneOf<std::string>({BALANCING_MODE_NAMES.begin(), BALANCING_MODE_NAMES.end()}))
        ->type_name("MODE");
}

std::string FindLinkContradiction(const COptions& rOptions) {
    const bool bLink = rOptions.IsSimulated() || rOptions.m_Link.starts_with("serial:") ||
                       rOptions.m_Link.starts_with("tcp:");
    if (!bLink) {
        return "--link " + rOptions.m_Link + ": must be sim, serial:PATH[:BAUD] or tcp:HOST:PORT";
    }
    // Modules that only the rotor file tells are known when it is read.
    const bool bPair =
        rOptions.m_Modules == "kestrel-pair" || (rOptions.m_Modules.empty() && !rOptions.m_RotorFile.empty());
    if (rOptions.m_Addresses.size() > 2 || (rOptions.m_Addresses.size() == 2 && !bPair)) {
        return "--addresses: one address, or two with --modules kestrel-pair";
    }
    if (rOptions.m_Addresses.size() == 2 && rOptions.m_Addresses[0] == rOptions.m_Addresses[1]) {
        return "--addresses: master and slave must differ";
    }
    return {};
}
