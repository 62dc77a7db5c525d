#pragma once
#include <string>

class QTcpServer;
struct CEndpoint;

/// Begins to listen at an address or name of this machine; port 0 takes a free one. Empty, or a text that
/// tells what is wrong and what would be right.
std::string ListenAt(QTcpServer& rServer, const CEndpoint& rEndpoint);
