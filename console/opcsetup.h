#pragma once
#include <optional>
#include <string>

#include "platform/rvopc/opcconfiguration.h"

/// Everything that a connection to an NC needs.
struct COpcSetup {
    COpcConfiguration m_Configuration = MakeConfiguration();
    std::string m_PkiDirectory;    ///< for certificates
    std::string m_GatewayProgram;  ///< the OPC UA client

    /// A configuration without server and links; it knows what the nodes must be able to hold.
    static COpcConfiguration MakeConfiguration();
    /// Reads the file (JSON). Nothing, with rError empty, if there is no such file; else rError says in one
    /// line what is wrong and what would be right.
    static std::optional<COpcConfiguration> Read(const std::string& rFile, std::string& rError);
    /// The gateway beside this program.
    static std::string GetDefaultGateway();
};
