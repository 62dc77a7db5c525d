#pragma once
#include <string>

struct COpcConfiguration;

/// Lines to the gateway that others than the server object write, too.
namespace OpcLines {

/// The first line to a gateway, with passwords in it. PkiDirectory holds the certificates.
std::string MakeConnect(const COpcConfiguration& rConfiguration, const std::string& rPkiDirectory);

}  // namespace OpcLines
