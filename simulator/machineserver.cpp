#include "simulator/machineserver.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <algorithm>
#include <deque>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "platform/qt/listen.h"
#include "platform/rvcom/endpoint.h"
#include "platform/system/linesplitter.h"
#include "simulator/jsonfields.h"
#include "simulator/machine.h"

using nlohmann::json;

namespace {

constexpr std::string_view TCP_PREFIX = "tcp:";
/// A client that asks and asks and never reads is hung up on.
constexpr qint64 MAX_UNREAD = qint64{4} * 1024 * 1024;

}  // namespace

/// One client. Shared with the answers under way, which may come when the client has gone.
class CMachineServer::CSession : public std::enable_shared_from_this<CSession> {
public:
    CSession(CMachineServer& rServer, std::unique_ptr<QTcpSocket> pSocket)
        : m_rServer(rServer),
          m_pSocket(std::move(pSocket)),
          m_Lines([this](const std::string& rLine) { OnLine(rLine); },
                  [this] {
                      Settle(TakeSlot(),
                             {{"error", "the line is longer than " + std::to_string(CLineSplitter::MAX_LINE) +
                                            " bytes; send one short request a line"}});
                  }) {}
    CSession(const CSession&) = delete;
    CSession& operator=(const CSession&) = delete;

    void Start() {
        QObject::connect(m_pSocket.get(), &QTcpSocket::readyRead, [this] { ReadAll(); });
        QObject::connect(m_pSocket.get(), &QTcpSocket::disconnected, [this] { End(); });
        m_pSocket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        ReadAll();
    }

private:
    using Slot = std::uint64_t;

    void ReadAll() {
        const auto pKeep = shared_from_this();
        const QByteArray Bytes = m_pSocket->readAll();
        m_Lines.Put(
            {reinterpret_cast<const std::uint8_t*>(Bytes.data()), static_cast<std::size_t>(Bytes.size())});
    }
    void End() {
        // The socket may not go within its own signal.
        m_pSocket->disconnect();
        m_pSocket.release()->deleteLater();
        m_rServer.Remove(this);
    }
    void OnLine(const std::string& rLine) {
        if (rLine.find_first_not_of(" \t") == std::string::npos) {
            return;
        }
        const Slot nSlot = TakeSlot();
        json Request;
        try {
            constexpr bool COMMENTS = false;
            Request = ParseJson(rLine, COMMENTS);
        } catch (const CJsonError& rError) {
            Settle(nSlot, {{"error", std::string(rError.what()) + "; send for example {\"speed\": 3000}"}});
            return;
        }
        m_rServer.m_rMachine.Request(Request, [pWeak = weak_from_this(), nSlot](const json& rAnswer) {
            if (const auto pSession = pWeak.lock()) {
                pSession->Settle(nSlot, rAnswer);
            }
        });
    }
    /// A place in the order of answers.
    Slot TakeSlot() {
        m_Answers.emplace_back();
        return m_nFirstSlot + m_Answers.size() - 1;
    }
    void Settle(Slot nSlot, const json& rAnswer) {
        if (m_pSocket == nullptr) {
            return;  // hung up while requests of the same portion were under way
        }
        m_Answers[nSlot - m_nFirstSlot] = rAnswer.dump(-1, ' ', false, json::error_handler_t::replace) + "\n";
        while (!m_Answers.empty() && m_Answers.front()) {
            m_pSocket->write(m_Answers.front()->data(), static_cast<qint64>(m_Answers.front()->size()));
            m_Answers.pop_front();
            ++m_nFirstSlot;
        }
        if (m_pSocket->bytesToWrite() > MAX_UNREAD) {
            m_pSocket->abort();
        }
    }

    CMachineServer& m_rServer;
    std::unique_ptr<QTcpSocket> m_pSocket;
    CLineSplitter m_Lines;
    std::deque<std::optional<std::string>> m_Answers;  ///< from the oldest one not sent yet
    Slot m_nFirstSlot = 0;                             ///< of the front of m_Answers
};

CMachineServer::CMachineServer(IFMachine& rMachine)
    : m_rMachine(rMachine), m_pServer(std::make_unique<QTcpServer>()) {
    QObject::connect(m_pServer.get(), &QTcpServer::newConnection, [this] { OnConnection(); });
}

CMachineServer::~CMachineServer() {
    m_pServer->disconnect();
}

bool CMachineServer::Listen(const std::string& rDescription, std::string& rError) {
    const bool bTcp = rDescription.starts_with(TCP_PREFIX);
    const auto Endpoint =
        bTcp ? ToEndpoint(std::string_view(rDescription).substr(TCP_PREFIX.size()), 0) : std::nullopt;
    if (!Endpoint) {
        rError = "\"" + rDescription +
                 "\" is no link for a machine; give tcp:HOST:PORT, for example tcp:127.0.0.1:4002";
        return false;
    }
    m_Host = Endpoint->m_Host;
    rError = ListenAt(*m_pServer, *Endpoint);
    return rError.empty();
}

std::string CMachineServer::GetName() const {
    return ToLinkName({m_Host, m_pServer->serverPort()});
}

void CMachineServer::OnConnection() {
    while (QTcpSocket* pPending = m_pServer->nextPendingConnection()) {
        // The server would delete it with itself; here the session owns it.
        pPending->setParent(nullptr);
        m_Sessions.push_back(std::make_shared<CSession>(*this, std::unique_ptr<QTcpSocket>(pPending)));
        const auto pSession = m_Sessions.back();
        pSession->Start();
    }
}

void CMachineServer::Remove(const CSession* pSession) {
    std::erase_if(m_Sessions, [pSession](const auto& pEntry) { return pEntry.get() == pSession; });
}
