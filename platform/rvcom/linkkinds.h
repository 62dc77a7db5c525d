#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/rvcom/bytelink.h"

// The kinds of links, one function each; bytelink.cpp chooses by the description. Ports and sockets are the
// toolkit's, the pseudo terminal is the system's.

/// A serial port, 8N1.
std::unique_ptr<IFByteLink> MakeSerialLink(const std::string& rPath, std::uint32_t Baud);
/// A TCP connection to a server.
std::unique_ptr<IFByteLink> MakeTcpLink(const std::string& rHost, std::uint16_t Port);
/// A TCP server for one client at a time; open while a client is there.
std::unique_ptr<IFByteLink> MakeTcpListener(const std::string& rHost, std::uint16_t Port);
/// A pseudo terminal, linked at rPath; open from Open() on, whether a client is there or not.
std::unique_ptr<IFByteLink> MakePseudoTerminal(const std::string& rPath);
