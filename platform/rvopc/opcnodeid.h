#pragma once
#include <string_view>

/// Whether a text is a node id of an OPC UA server: "ns=2;s=Request", without "ns=0;", or "nsu=URI;s=Request"
/// with the URI of the namespace in place of its index; s a text, i a number, g a GUID, b base64.
bool IsOpcNodeId(std::string_view Text);
