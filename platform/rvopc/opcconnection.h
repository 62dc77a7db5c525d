#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/rvopc/opcgroup.h"
#include "platform/rvopc/opcserver.h"

/// The process's one connection to an OPC server. Window thread only.
class COPCConnection {
public:
    /// Makes the server object for a name; null if that server can't be reached.
    using Connector = std::function<std::shared_ptr<IFOpcServer>(const std::string& rServer, int Flag)>;

    /// The process's one connection, made when new.
    static COPCConnection* CreateInstance();

    COPCConnection(const COPCConnection&) = delete;
    COPCConnection& operator=(const COPCConnection&) = delete;

    bool IsConnected() const { return m_pServer != nullptr; }
    /// Connects to the server of that name; Flag goes to the connector. True if connected; a connection that
    /// stands stays.
    bool Connect(const std::string& rServer, int Flag);
    /// Ends the connection. Groups and items made from it keep their server until they go.
    void Disconnect();
    /// A group of items; null without a connection. Rate in ms.
    std::shared_ptr<COPCGroup> CreateGroup(std::uint32_t UpdateRate, int Mode);

    /// What Connect makes servers with. Null puts back the default: the server of that name in this process.
    void SetConnector(Connector MakeServer);

private:
    COPCConnection();
    ~COPCConnection() = default;

    Connector m_MakeServer;
    std::shared_ptr<IFOpcServer> m_pServer;
};

struct COpcConfiguration;

/// Connects over the network, through a gateway: the program at rGatewayProgram. rPkiDirectory holds the
/// certificates. The server is what the configuration says, whatever its name; it is reached in the
/// background, so a connection is there at once.
COPCConnection::Connector MakeNetworkConnector(const COpcConfiguration& rConfiguration,
                                               const std::string& rPkiDirectory,
                                               const std::string& rGatewayProgram);
