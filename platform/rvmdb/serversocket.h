#pragma once
#include <mutex>

namespace PreBalDB {

/// The socket of a connection to a PostgreSQL server. A statement on a server that has frozen ends by none of
/// the time limits that client and server know; shutting the socket down from another thread ends it.
class CServerSocket {
public:
    CServerSocket() = default;
    ~CServerSocket() { Detach(); }
    CServerSocket(const CServerSocket&) = delete;
    CServerSocket& operator=(const CServerSocket&) = delete;

    /// Of an open connection of the client library. Does nothing if that gives no socket away.
    void Attach(const void* pConnection);
    void Detach();
    /// From any thread.
    void ShutDown();

private:
    std::mutex m_Lock;
    /// A duplicate, so that the number stays this socket's whatever the driver does with its own.
    int m_Handle = -1;
};

}  // namespace PreBalDB
