#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <QString>
#include <QTcpServer>
#include <QTcpSocket>
#include <memory>
#include <utility>

#include "platform/qt/listen.h"
#include "platform/rvcom/endpoint.h"
#include "platform/rvcom/linkkinds.h"
#include "platform/rvcom/queuedlink.h"

namespace {

/// A peer that vanishes without a word, a device server that loses its power, is to be missed within 10 s.
/// The idle time and the time limit may come one after the other: when something is sent just before the idle
/// time has shown the loss, its own limit counts.
constexpr int KEEP_ALIVE_IDLE = 2;           ///< s without anything from the peer until it is asked
constexpr int KEEP_ALIVE_INTERVAL = 1;       ///< s between two questions
constexpr int KEEP_ALIVE_PROBES = 3;         ///< questions without an answer
constexpr unsigned int USER_TIMEOUT = 4000;  ///< ms that anything sent may stay unacknowledged

/// The toolkit knows the first option only, and on the descriptor it holds from the connection on.
void WatchPeer(QTcpSocket& rSocket) {
    rSocket.setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    const auto Handle = static_cast<int>(rSocket.socketDescriptor());
    const auto Set = [Handle](int Option, const auto& rValue) {
        ::setsockopt(Handle, IPPROTO_TCP, Option, &rValue, sizeof rValue);
    };
    Set(TCP_KEEPIDLE, KEEP_ALIVE_IDLE);
    Set(TCP_KEEPINTVL, KEEP_ALIVE_INTERVAL);
    Set(TCP_KEEPCNT, KEEP_ALIVE_PROBES);
    Set(TCP_USER_TIMEOUT, USER_TIMEOUT);
}

/// What both sides of a connection share: bytes in and out, and the end of it.
class CSocketLink : public CQueuedLink {
public:
    ~CSocketLink() override { DropSocket(); }

    bool Write(std::span<const std::uint8_t> Bytes) override {
        const auto nSize = static_cast<qint64>(Bytes.size());
        return IsOpen() && m_pSocket != nullptr &&
               m_pSocket->write(reinterpret_cast<const char*>(Bytes.data()), nSize) == nSize;
    }
    LinkTrouble GetTrouble() const override { return m_Trouble; }

protected:
    void TakeSocket(std::unique_ptr<QTcpSocket> pSocket) {
        m_pSocket = std::move(pSocket);
        QTcpSocket* pTaken = m_pSocket.get();
        QObject::connect(pTaken, &QTcpSocket::readyRead, [this] { ReadAll(); });
        QObject::connect(pTaken, &QTcpSocket::errorOccurred, [this](QAbstractSocket::SocketError Error) {
            m_Trouble = ToTrouble(Error);
            Lose();
        });
    }
    void Connected() {
        m_bConnected = true;
        // Frames are short and wait for answers.
        m_pSocket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        WatchPeer(*m_pSocket);
        PostOpened();
        ReadAll();
    }
    void DropSocket() {
        m_bConnected = false;
        if (m_pSocket != nullptr) {
            m_pSocket->disconnect();
            m_pSocket.reset();
        }
    }
    bool HasSocket() const { return m_pSocket != nullptr; }
    QTcpSocket& GetSocket() { return *m_pSocket; }

private:
    void ReadAll() {
        const QByteArray Bytes = m_pSocket->readAll();
        PostBytes({Bytes.begin(), Bytes.end()});
    }
    void Lose() {
        std::string Reason = m_pSocket->errorString().toStdString();
        if (m_bConnected) {
            ReadAll();
        } else {
            Reason += "; is the device on, and are host and port its own?";
        }
        // The socket may not go within its own signal.
        m_pSocket->disconnect();
        m_pSocket.release()->deleteLater();
        m_bConnected = false;
        PostClosed(std::move(Reason));
    }

    static LinkTrouble ToTrouble(QAbstractSocket::SocketError Error) {
        switch (Error) {
            case QAbstractSocket::ConnectionRefusedError:
                return LinkTrouble::eRefused;
            case QAbstractSocket::HostNotFoundError:
                return LinkTrouble::eNoSuchHost;
            case QAbstractSocket::NetworkError:
                return LinkTrouble::eUnreachable;
            case QAbstractSocket::SocketTimeoutError:
                return LinkTrouble::eNoAnswer;
            case QAbstractSocket::RemoteHostClosedError:
                return LinkTrouble::eClosed;
            default:
                return LinkTrouble::eOther;
        }
    }

    std::unique_ptr<QTcpSocket> m_pSocket;
    bool m_bConnected = false;
    LinkTrouble m_Trouble = LinkTrouble::eOther;
};

/// The calling side.
class CTcpLink : public CSocketLink {
public:
    CTcpLink(std::string Host, std::uint16_t Port) : m_Host(std::move(Host)), m_Port(Port) {}

    void Open() override {
        Close();
        TakeSocket(std::make_unique<QTcpSocket>());
        QObject::connect(&GetSocket(), &QTcpSocket::connected, [this] { Connected(); });
        GetSocket().connectToHost(QString::fromStdString(m_Host), m_Port);
    }
    void Close() override {
        DropSocket();
        Restart();
    }
    std::string GetName() const override { return ToLinkName({m_Host, m_Port}); }

private:
    std::string m_Host;
    std::uint16_t m_Port;
};

/// The answering side: one client at a time, further ones are turned away at once. Goes on listening when its
/// client has gone.
class CTcpListener : public CSocketLink {
public:
    CTcpListener(std::string Host, std::uint16_t Port) : m_Host(std::move(Host)), m_Port(Port) {
        QObject::connect(&m_Server, &QTcpServer::newConnection, [this] { OnConnection(); });
    }
    ~CTcpListener() override { m_Server.disconnect(); }

    void Open() override {
        Close();
        std::string Reason = ListenAt(m_Server, {m_Host, m_Port});
        if (!Reason.empty()) {
            PostClosed(std::move(Reason));
        }
    }
    void Close() override {
        DropSocket();
        m_Server.close();
        Restart();
    }
    void Sever() override {
        // A free port that was taken is where the other end looks for it again.
        m_Port = m_Server.isListening() ? m_Server.serverPort() : m_Port;
        Close();
    }
    /// With the port that was taken, once it listens.
    std::string GetName() const override {
        return ToLinkName({m_Host, m_Server.isListening() ? m_Server.serverPort() : m_Port});
    }

private:
    void OnConnection() {
        while (QTcpSocket* pPending = m_Server.nextPendingConnection()) {
            // The server would delete it with itself; here the link owns it.
            pPending->setParent(nullptr);
            std::unique_ptr<QTcpSocket> pSocket(pPending);
            if (HasSocket()) {
                pSocket->abort();
                continue;
            }
            TakeSocket(std::move(pSocket));
            Connected();
        }
    }

    std::string m_Host;
    std::uint16_t m_Port;
    QTcpServer m_Server;
};

}  // namespace

std::unique_ptr<IFByteLink> MakeTcpLink(const std::string& rHost, std::uint16_t Port) {
    return std::make_unique<CTcpLink>(rHost, Port);
}

std::unique_ptr<IFByteLink> MakeTcpListener(const std::string& rHost, std::uint16_t Port) {
    return std::make_unique<CTcpListener>(rHost, Port);
}
