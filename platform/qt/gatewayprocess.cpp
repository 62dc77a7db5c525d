#include "platform/rvopc/gatewayprocess.h"

#include <sys/socket.h>
#include <unistd.h>

#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <stdexcept>
#include <utility>

#include "platform/rvlog/log.h"
#include "platform/system/temporarydirectory.h"

namespace {

CLogComponent* g_pLog = CLogComponent::Register("rvOPC", {});

/// A gateway closes its session with the server before it ends.
constexpr int END_TIMEOUT = 1500;

QString FindRuntimeDirectory() {
    const QString Runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !Runtime.isEmpty() && QDir(Runtime).exists() ? Runtime : QDir::tempPath();
}

bool IsOfThisUser(const QLocalSocket& rSocket) {
    ucred Peer{};
    socklen_t nSize = sizeof Peer;
    const int Handle = static_cast<int>(rSocket.socketDescriptor());
    return getsockopt(Handle, SOL_SOCKET, SO_PEERCRED, &Peer, &nSize) == 0 && Peer.uid == geteuid();
}

class CGatewayProcess : public IFGatewayProcess {
public:
    CGatewayProcess() {
        QObject::connect(&m_Server, &QLocalServer::newConnection, &m_Server, [this] { TakeConnection(); });
    }
    ~CGatewayProcess() override {
        m_Server.close();
        End(END_TIMEOUT);
    }
    CGatewayProcess(const CGatewayProcess&) = delete;
    CGatewayProcess& operator=(const CGatewayProcess&) = delete;

    std::string Start(const std::string& rProgram) override;
    bool IsConnected() const override { return m_pSocket != nullptr; }
    bool Write(std::string_view Bytes) override {
        const auto nSize = static_cast<qint64>(Bytes.size());
        return m_pSocket != nullptr && m_pSocket->write(Bytes.data(), nSize) == nSize;
    }
    bool Wait(int Milliseconds) override;
    void Kill() override { End(0); }

private:
    bool Listen();
    void TakeConnection();
    void TakeBytes();
    void TakeRest();
    void TakeOutput();
    void End(int Timeout);

    std::unique_ptr<CTemporaryDirectory> m_pDirectory;
    QLocalServer m_Server;
    std::unique_ptr<QProcess> m_pProcess;
    QLocalSocket* m_pSocket = nullptr;  ///< the server's child
};

bool CGatewayProcess::Listen() {
    if (m_Server.isListening()) {
        return true;
    }
    // Only this user can enter such a directory, whatever becomes of the socket in it.
    try {
        m_pDirectory = std::make_unique<CTemporaryDirectory>(FindRuntimeDirectory().toStdString());
    } catch (const std::runtime_error&) {
        return false;
    }
    m_Server.setSocketOptions(QLocalServer::UserAccessOption);
    return m_Server.listen(QString::fromStdString((m_pDirectory->GetPath() / "gateway").string()));
}

std::string CGatewayProcess::Start(const std::string& rProgram) {
    if (!Listen()) {
        return "no local socket can be made in " + FindRuntimeDirectory().toStdString();
    }
    m_pProcess = std::make_unique<QProcess>();
    m_pProcess->setProcessChannelMode(QProcess::MergedChannels);
    QObject::connect(m_pProcess.get(), &QProcess::readyRead, m_pProcess.get(), [this] { TakeOutput(); });
    QObject::connect(m_pProcess.get(), &QProcess::finished, m_pProcess.get(),
                     [this](int Code, QProcess::ExitStatus Status) {
                         TakeRest();
                         if (m_pProcess == nullptr) {
                             return;  // given up for what it said last
                         }
                         OnEnded(Status == QProcess::CrashExit
                                     ? "it was killed"
                                     : "it ended with status " + std::to_string(Code));
                     });
    QObject::connect(
        m_pProcess.get(), &QProcess::errorOccurred, m_pProcess.get(),
        [this, rProgram](QProcess::ProcessError Error) {
            if (Error == QProcess::FailedToStart) {
                OnEnded(rProgram + " can't be started: " + m_pProcess->errorString().toStdString());
            }
        });
    m_pProcess->start(QString::fromStdString(rProgram), {m_Server.fullServerName()});
    return {};
}

void CGatewayProcess::TakeConnection() {
    while (QLocalSocket* const pSocket = m_Server.nextPendingConnection()) {
        if (m_pSocket != nullptr || m_pProcess == nullptr || !IsOfThisUser(*pSocket)) {
            RV_WARNING(g_pLog, "a connection to the gateway's socket is refused: it isn't the gateway's");
            delete pSocket;
            continue;
        }
        m_pSocket = pSocket;
        QObject::connect(pSocket, &QLocalSocket::readyRead, pSocket, [this] { TakeBytes(); });
        QObject::connect(pSocket, &QLocalSocket::disconnected, pSocket,
                         [this] { OnEnded("it closed its connection"); });
        OnConnected();
    }
}

void CGatewayProcess::TakeBytes() {
    if (m_pSocket != nullptr) {
        const QByteArray Bytes = m_pSocket->readAll();
        OnBytes(std::span(reinterpret_cast<const std::uint8_t*>(Bytes.constData()),
                          static_cast<std::size_t>(Bytes.size())));
    }
}

/// Its end may be noticed before its last words, which tell why.
void CGatewayProcess::TakeRest() {
    if (m_pSocket != nullptr) {
        QObject::disconnect(m_pSocket, &QLocalSocket::disconnected, nullptr, nullptr);
    }
    while (m_pSocket != nullptr && m_pSocket->waitForReadyRead(0)) {
    }
}

void CGatewayProcess::TakeOutput() {
    for (const QByteArray& rLine : m_pProcess->readAll().split('\n')) {
        if (!rLine.isEmpty()) {
            OnOutput(rLine.toStdString());
        }
    }
}

bool CGatewayProcess::Wait(int Milliseconds) {
    if (m_pSocket != nullptr) {
        return m_pSocket->waitForReadyRead(Milliseconds);
    }
    // Between two gateways nothing comes; the next one is started by the event loop.
    if (m_pProcess != nullptr) {
        m_Server.waitForNewConnection(Milliseconds);  // TakeConnection takes it at once
    }
    return m_pSocket != nullptr;
}

/// Gives it so many ms to end by itself once its socket has closed.
void CGatewayProcess::End(int Timeout) {
    // Both may be the sender of the signal that led here, and go when it has returned.
    if (QLocalSocket* const pSocket = std::exchange(m_pSocket, nullptr)) {
        pSocket->disconnect();
        pSocket->abort();
        pSocket->deleteLater();
    }
    if (m_pProcess != nullptr) {
        QProcess* const pProcess = m_pProcess.release();
        pProcess->disconnect();
        if (pProcess->state() != QProcess::NotRunning &&
            !(Timeout > 0 && pProcess->waitForFinished(Timeout))) {
            pProcess->kill();
            pProcess->waitForFinished(END_TIMEOUT);
        }
        pProcess->deleteLater();
    }
}

}  // namespace

std::unique_ptr<IFGatewayProcess> MakeGatewayProcess() {
    return std::make_unique<CGatewayProcess>();
}
