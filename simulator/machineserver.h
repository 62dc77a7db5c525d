#pragma once
#include <memory>
#include <string>
#include <vector>

class IFMachine;
class QTcpServer;

/// The control link of a machine: JSON lines over TCP, one request a line, one answer a line in the order of
/// the requests. Any number of clients. A line that is no JSON, or longer than 64 KiB, is answered with an
/// error, and the connection goes on; blank lines are passed over.
class CMachineServer {
public:
    explicit CMachineServer(IFMachine& rMachine);
    ~CMachineServer();
    CMachineServer(const CMachineServer&) = delete;
    CMachineServer& operator=(const CMachineServer&) = delete;

    /// Listens at "tcp:HOST:PORT", port 0 takes a free one. False with rError telling what would be right.
    bool Listen(const std::string& rDescription, std::string& rError);
    /// "tcp:HOST:PORT" with the port taken.
    std::string GetName() const;
    std::size_t GetNumberOfClients() const { return m_Sessions.size(); }

private:
    class CSession;

    void OnConnection();
    void Remove(const CSession* pSession);

    IFMachine& m_rMachine;
    std::string m_Host;
    std::unique_ptr<QTcpServer> m_pServer;
    std::vector<std::shared_ptr<CSession>> m_Sessions;
};
