#include "platform/rvcom/bytelink.h"

#include <string_view>

#include "platform/rvcom/endpoint.h"
#include "platform/rvcom/linkkinds.h"

namespace {

constexpr std::uint32_t DEFAULT_BAUD = 115200;
constexpr std::uint32_t MAX_BAUD = 4000000;

constexpr std::string_view SERIAL_PREFIX = "serial:";
constexpr std::string_view TCP_PREFIX = "tcp:";
constexpr std::string_view PTY_PREFIX = "pty:";

std::unique_ptr<IFByteLink> FromSerial(std::string_view Text, std::string& rError) {
    // Device paths may hold colons themselves (/dev/serial/by-path/...): only digits behind the last are a
    // rate.
    std::string_view Path = Text;
    std::uint32_t Baud = DEFAULT_BAUD;
    if (const std::size_t Colon = Text.rfind(':'); Colon != std::string_view::npos) {
        const std::string_view Tail = Text.substr(Colon + 1);
        if (Tail.find_first_not_of("0123456789") == std::string_view::npos) {
            Path = Text.substr(0, Colon);
            const auto Given = ToNumber(Tail);
            if (!Given || *Given == 0 || *Given > MAX_BAUD) {
                rError = "\"" + std::string(Tail) +
                         "\" is no baud rate; give 1 to 4000000, or leave it out for 115200";
                return nullptr;
            }
            Baud = *Given;
        }
    }
    if (Path.empty()) {
        rError = "the path of the serial port is missing; give for example serial:/dev/ttyUSB0:115200";
        return nullptr;
    }
    return MakeSerialLink(std::string(Path), Baud);
}

}  // namespace

std::unique_ptr<IFByteLink> MakeByteLink(const std::string& rDescription, std::string& rError) {
    rError.clear();
    const std::string_view Text = rDescription;
    if (Text.starts_with(SERIAL_PREFIX)) {
        return FromSerial(Text.substr(SERIAL_PREFIX.size()), rError);
    }
    if (Text.starts_with(TCP_PREFIX)) {
        const auto Endpoint = ToEndpoint(Text.substr(TCP_PREFIX.size()), 1);
        if (!Endpoint) {
            rError = "\"" + rDescription +
                     "\" names no host and port; give for example tcp:192.168.0.10:4001, " +
                     "a port from 1 to 65535";
            return nullptr;
        }
        return MakeTcpLink(Endpoint->m_Host, Endpoint->m_Port);
    }
    rError = "\"" + rDescription + "\" is no link; give serial:PATH[:BAUD] or tcp:HOST:PORT";
    return nullptr;
}

std::unique_ptr<IFByteLink> MakeListeningLink(const std::string& rDescription, std::string& rError) {
    rError.clear();
    const std::string_view Text = rDescription;
    if (Text.starts_with(TCP_PREFIX)) {
        const auto Endpoint = ToEndpoint(Text.substr(TCP_PREFIX.size()), 0);
        if (!Endpoint) {
            rError = "\"" + rDescription +
                     "\" names no host and port; give for example tcp:127.0.0.1:4001, " +
                     "a port from 0 (takes a free one) to 65535";
            return nullptr;
        }
        return MakeTcpListener(Endpoint->m_Host, Endpoint->m_Port);
    }
    if (Text.starts_with(PTY_PREFIX)) {
        const std::string Path(Text.substr(PTY_PREFIX.size()));
        if (Path.empty()) {
            rError = "the path of the pseudo terminal is missing; give for example pty:/tmp/spindle";
            return nullptr;
        }
        return MakePseudoTerminal(Path);
    }
    rError = "\"" + rDescription + "\" is no link to listen on; give tcp:HOST:PORT or pty:PATH";
    return nullptr;
}
