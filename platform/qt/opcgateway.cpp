#include "platform/rvopc/opcgateway.h"

#include <sys/socket.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <algorithm>
#include <span>
#include <stdexcept>
#include <utility>

#include "platform/rvlog/log.h"
#include "platform/system/eventloop.h"
#include "platform/system/growingpause.h"
#include "platform/system/linesplitter.h"
#include "platform/system/temporarydirectory.h"
#include "platform/system/timer.h"

namespace {

CLogComponent* g_pLog = CLogComponent::Register("rvOPC", {});

/// Any answer shows that the gateway lives.
constexpr const char* PING = R"({"ping":{"id":0}})";
/// A gateway closes its session with the server before it ends.
constexpr int eEndTimeout = 1500;

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

class COpcGateway : public IFOpcGateway {
public:
    COpcGateway(std::string Program, const COpcGatewayTimes& rTimes)
        : m_Program(std::move(Program)),
          m_Times(rTimes),
          m_Lines([this](const std::string& rLine) { TakeLine(rLine); },
                  [this] { Lose("it sent an overlong line"); }) {}
    ~COpcGateway() override;

    void Start() override;
    bool SendLine(const std::string& rLine) override;
    bool Wait(std::uint32_t Milliseconds) override;

private:
    bool Listen();
    void Launch();
    void OnConnection();
    void OnBytes();
    void TakeLine(const std::string& rLine);
    void TakeRest();
    void LogOutput();
    void Watch();
    /// Gives this gateway up and starts another one after a pause.
    void Lose(const std::string& rWhy);
    void EndProcess(int Timeout);

    std::string m_Program;
    COpcGatewayTimes m_Times;
    std::unique_ptr<CTemporaryDirectory> m_pDirectory;
    QLocalServer m_Server;
    std::unique_ptr<QProcess> m_pProcess;
    QLocalSocket* m_pSocket = nullptr;  ///< the server's child
    CLineSplitter m_Lines;
    CTimer m_LaunchTimer;
    CTimer m_WatchTimer;
    CGrowingPause m_Pause;
    std::uint64_t m_LaunchedAt = 0;
    std::uint32_t m_nUnanswered = 0;  ///< times that it was asked and has said nothing since
    std::uint64_t m_nLines = 0;       ///< that came, from all gateways
    std::string m_LastReason;         ///< of the outage that lasts; told once
};

COpcGateway::~COpcGateway() {
    OnOpened = nullptr;
    OnLine = nullptr;
    OnLost = nullptr;
    m_LaunchTimer.Stop();
    m_WatchTimer.Stop();
    m_Server.close();
    EndProcess(eEndTimeout);
}

void COpcGateway::Start() {
    QObject::connect(&m_Server, &QLocalServer::newConnection, &m_Server, [this] { OnConnection(); });
    Launch();
}

bool COpcGateway::Listen() {
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

void COpcGateway::Launch() {
    m_LaunchTimer.Stop();
    m_LaunchedAt = IFEventLoop::Current().Now();
    m_nUnanswered = 0;
    if (!Listen()) {
        Lose("no local socket can be made in " + FindRuntimeDirectory().toStdString());
        return;
    }
    m_pProcess = std::make_unique<QProcess>();
    m_pProcess->setProcessChannelMode(QProcess::MergedChannels);
    QObject::connect(m_pProcess.get(), &QProcess::readyRead, m_pProcess.get(), [this] { LogOutput(); });
    QObject::connect(m_pProcess.get(), &QProcess::finished, m_pProcess.get(),
                     [this](int Code, QProcess::ExitStatus Status) {
                         TakeRest();
                         if (m_pProcess == nullptr) {
                             return;  // given up for what it said last
                         }
                         Lose(Status == QProcess::CrashExit ? "it was killed"
                                                            : "it ended with status " + std::to_string(Code));
                     });
    QObject::connect(
        m_pProcess.get(), &QProcess::errorOccurred, m_pProcess.get(), [this](QProcess::ProcessError Error) {
            if (Error == QProcess::FailedToStart) {
                Lose(m_Program + " can't be started: " + m_pProcess->errorString().toStdString());
            }
        });
    m_WatchTimer.StartPeriodic(m_Times.m_Ping, [this] { Watch(); });
    m_pProcess->start(QString::fromStdString(m_Program), {m_Server.fullServerName()});
}

void COpcGateway::OnConnection() {
    while (QLocalSocket* const pSocket = m_Server.nextPendingConnection()) {
        if (m_pSocket != nullptr || m_pProcess == nullptr || !IsOfThisUser(*pSocket)) {
            RV_WARNING(g_pLog, "a connection to the gateway's socket is refused: it isn't the gateway's");
            delete pSocket;
            continue;
        }
        m_pSocket = pSocket;
        m_Lines.Reset();
        m_nUnanswered = 0;
        QObject::connect(pSocket, &QLocalSocket::readyRead, pSocket, [this] { OnBytes(); });
        QObject::connect(pSocket, &QLocalSocket::disconnected, pSocket,
                         [this] { Lose("it closed its connection"); });
        if (OnOpened) {
            OnOpened();
        }
    }
}

void COpcGateway::OnBytes() {
    if (m_pSocket != nullptr) {
        const QByteArray Bytes = m_pSocket->readAll();
        m_Lines.Put(std::span(reinterpret_cast<const std::uint8_t*>(Bytes.constData()),
                              static_cast<std::size_t>(Bytes.size())));
    }
}

void COpcGateway::TakeLine(const std::string& rLine) {
    if (m_pSocket == nullptr) {
        return;  // followed the one for which the gateway was given up
    }
    ++m_nLines;
    m_nUnanswered = 0;
    m_LastReason.clear();
    if (IFEventLoop::Current().Now() - m_LaunchedAt >= m_Times.m_Sound) {
        m_Pause.Reset();
    }
    if (OnLine) {
        OnLine(rLine);
    }
}

/// Its end may be noticed before its last words, which tell why.
void COpcGateway::TakeRest() {
    if (m_pSocket != nullptr) {
        QObject::disconnect(m_pSocket, &QLocalSocket::disconnected, nullptr, nullptr);
    }
    while (m_pSocket != nullptr && m_pSocket->waitForReadyRead(0)) {
    }
}

void COpcGateway::LogOutput() {
    for (const QByteArray& rLine : m_pProcess->readAll().split('\n')) {
        if (!rLine.isEmpty()) {
            RV_DEBUG(g_pLog, "gateway: %s", rLine.constData());
        }
    }
}

/// Silence is told by the questions, not by the clock: while this process wasn't running nobody was asked.
void COpcGateway::Watch() {
    const std::uint32_t Patience = m_pSocket != nullptr ? m_Times.m_Silence : m_Times.m_Start;
    if (m_nUnanswered * m_Times.m_Ping >= Patience) {
        Lose("it doesn't answer");
    } else {
        SendLine(PING);
        ++m_nUnanswered;
    }
}

bool COpcGateway::SendLine(const std::string& rLine) {
    if (m_pSocket == nullptr) {
        return false;
    }
    const std::string Line = rLine + "\n";
    return m_pSocket->write(Line.data(), static_cast<qint64>(Line.size())) ==
           static_cast<qint64>(Line.size());
}

bool COpcGateway::Wait(std::uint32_t Milliseconds) {
    const QDeadlineTimer Deadline(Milliseconds);
    const std::uint64_t nBefore = m_nLines;
    while (m_nLines == nBefore && !Deadline.hasExpired()) {
        const int Remaining = static_cast<int>(std::max<qint64>(Deadline.remainingTime(), 1));
        if (m_pSocket == nullptr) {
            // Between two gateways nothing comes; the next one is started by the event loop.
            if (m_pProcess != nullptr) {
                m_Server.waitForNewConnection(Remaining);  // OnConnection takes it at once
            }
            if (m_pSocket == nullptr) {
                break;
            }
        } else if (!m_pSocket->waitForReadyRead(Remaining)) {
            break;
        }
    }
    return m_nLines != nBefore;
}

void COpcGateway::Lose(const std::string& rWhy) {
    EndProcess(0);
    m_WatchTimer.Stop();
    if (std::exchange(m_LastReason, rWhy) != rWhy) {
        RV_WARNING(g_pLog, "the OPC UA gateway is lost and started again: %s", rWhy.c_str());
    }
    m_LaunchTimer.StartOnce(m_Pause.Next(), [this] { Launch(); });
    if (OnLost) {
        OnLost(rWhy);
    }
}

/// Gives it so many ms to end by itself once its socket has closed.
void COpcGateway::EndProcess(int Timeout) {
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
            pProcess->waitForFinished(eEndTimeout);
        }
        pProcess->deleteLater();
    }
}

}  // namespace

std::unique_ptr<IFOpcGateway> MakeOpcGateway(const std::string& rProgram, const COpcGatewayTimes& rTimes) {
    return std::make_unique<COpcGateway>(rProgram, rTimes);
}
