#include "platform/rvopc/opcconnection.h"

#include <utility>

#include "platform/rvopc/inprocessopcserver.h"
#include "platform/rvopc/networkopcserver.h"

namespace {

std::shared_ptr<IFOpcServer> ConnectInProcess(const std::string& rServer, int /*Flag*/) {
    return CInProcessOpcServer::Find(rServer);
}

}  // namespace

COPCConnection::COPCConnection() : m_MakeServer(ConnectInProcess) {}

COPCConnection* COPCConnection::CreateInstance() {
    static COPCConnection s_Instance;
    return &s_Instance;
}

bool COPCConnection::Connect(const std::string& rServer, int Flag) {
    if (m_pServer == nullptr) {
        m_pServer = m_MakeServer(rServer, Flag);
    }
    return IsConnected();
}

void COPCConnection::Disconnect() {
    m_pServer.reset();
}

std::shared_ptr<COPCGroup> COPCConnection::CreateGroup(std::uint32_t UpdateRate, int Mode) {
    if (!IsConnected()) {
        return nullptr;
    }
    return std::make_shared<COPCGroup>(m_pServer, UpdateRate, Mode);
}

void COPCConnection::SetConnector(Connector MakeServer) {
    m_MakeServer = MakeServer ? std::move(MakeServer) : Connector(ConnectInProcess);
}

COPCConnection::Connector MakeNetworkConnector(const COpcConfiguration& rConfiguration,
                                               const std::string& rPkiDirectory,
                                               const std::string& rGatewayProgram) {
    return [=](const std::string& /*rServer*/, int /*Flag*/) {
        return std::make_shared<CNetworkOpcServer>(MakeOpcGateway(rGatewayProgram), rConfiguration,
                                                   rPkiDirectory);
    };
}
