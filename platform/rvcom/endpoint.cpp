#include "platform/rvcom/endpoint.h"

#include <charconv>

std::optional<std::uint32_t> ToNumber(std::string_view Text) {
    std::uint32_t Number = 0;
    const auto [pEnd, Error] = std::from_chars(Text.data(), Text.data() + Text.size(), Number);
    if (Text.empty() || Error != std::errc() || pEnd != Text.data() + Text.size()) {
        return std::nullopt;
    }
    return Number;
}

std::optional<CEndpoint> ToEndpoint(std::string_view Text, std::uint32_t MinPort) {
    const std::size_t Colon = Text.rfind(':');
    if (Colon == std::string_view::npos) {
        return std::nullopt;
    }
    std::string_view Host = Text.substr(0, Colon);
    if (Host.size() > 2 && Host.front() == '[' && Host.back() == ']') {
        Host = Host.substr(1, Host.size() - 2);
    } else if (Host.find(':') != std::string_view::npos) {
        return std::nullopt;
    }
    const auto Port = ToNumber(Text.substr(Colon + 1));
    if (Host.empty() || !Port || *Port < MinPort || *Port > 65535) {
        return std::nullopt;
    }
    return CEndpoint{std::string(Host), static_cast<std::uint16_t>(*Port)};
}

std::string ToLinkName(const CEndpoint& rEndpoint) {
    const bool bBrackets = rEndpoint.m_Host.find(':') != std::string::npos;
    return "tcp:" + (bBrackets ? "[" + rEndpoint.m_Host + "]" : rEndpoint.m_Host) + ":" +
           std::to_string(rEndpoint.m_Port);
}
