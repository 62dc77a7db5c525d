#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// A place on the network: a host's name or address, and a port.
struct CEndpoint {
    std::string m_Host;
    std::uint16_t m_Port = 0;
};

/// Reads HOST:PORT, an IPv6 address in brackets. Nothing for another text or a port below MinPort, which is 1
/// for the calling side and 0 (takes a free one) for the listening one.
std::optional<CEndpoint> ToEndpoint(std::string_view Text, std::uint32_t MinPort);
/// "tcp:HOST:PORT", with the brackets of an IPv6 address.
std::string ToLinkName(const CEndpoint& rEndpoint);
/// A number of decimal digits and nothing else.
std::optional<std::uint32_t> ToNumber(std::string_view Text);
