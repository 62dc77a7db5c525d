#include "platform/rvopc/opcgateway.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/rvlog/log.h"
#include "platform/rvopc/gatewayprocess.h"
#include "platform/system/eventloop.h"
#include "platform/system/growingpause.h"
#include "platform/system/linesplitter.h"
#include "platform/system/timer.h"

namespace {

CLogComponent* g_pLog = CLogComponent::Register("rvOPC", {});

/// Any answer shows that the gateway lives.
constexpr const char* PING = R"({"ping":{"id":0}})";

class COpcGateway : public IFOpcGateway {
public:
    COpcGateway(std::string Program, const COpcGatewayTimes& rTimes);

    void Start() override { Launch(); }
    bool SendLine(const std::string& rLine) override { return m_pProcess->Write(rLine + "\n"); }
    bool Wait(std::uint32_t Milliseconds) override;

private:
    void Launch();
    void TakeLine(const std::string& rLine);
    void Watch();
    /// Gives this gateway up and starts another one after a pause.
    void Lose(const std::string& rWhy);

    std::string m_Program;
    COpcGatewayTimes m_Times;
    CLineSplitter m_Lines;
    CGrowingPause m_Pause;
    std::uint64_t m_LaunchedAt = 0;
    std::uint32_t m_nUnanswered = 0;  ///< times that it was asked and has said nothing since
    std::uint64_t m_nLines = 0;       ///< that came, from all gateways
    std::string m_LastReason;         ///< of the outage that lasts; told once
    // These call, so they go first.
    std::unique_ptr<IFGatewayProcess> m_pProcess = MakeGatewayProcess();
    CTimer m_LaunchTimer;
    CTimer m_WatchTimer;
};

COpcGateway::COpcGateway(std::string Program, const COpcGatewayTimes& rTimes)
    : m_Program(std::move(Program)),
      m_Times(rTimes),
      m_Lines([this](const std::string& rLine) { TakeLine(rLine); },
              [this] { Lose("it sent an overlong line"); }) {
    m_pProcess->OnConnected = [this] {
        m_Lines.Reset();
        m_nUnanswered = 0;
        if (OnOpened) {
            OnOpened();
        }
    };
    m_pProcess->OnBytes = [this](std::span<const std::uint8_t> Bytes) { m_Lines.Put(Bytes); };
    m_pProcess->OnOutput = [](const std::string& rLine) { RV_DEBUG(g_pLog, "gateway: %s", rLine.c_str()); };
    m_pProcess->OnEnded = [this](const std::string& rWhy) { Lose(rWhy); };
}

void COpcGateway::Launch() {
    m_LaunchTimer.Stop();
    m_LaunchedAt = IFEventLoop::Current().Now();
    m_nUnanswered = 0;
    m_WatchTimer.StartPeriodic(m_Times.m_Ping, [this] { Watch(); });
    if (const std::string Reason = m_pProcess->Start(m_Program); !Reason.empty()) {
        Lose(Reason);
    }
}

void COpcGateway::TakeLine(const std::string& rLine) {
    if (!m_pProcess->IsConnected()) {
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

/// Silence is told by the questions, not by the clock: while this process wasn't running nobody was asked.
void COpcGateway::Watch() {
    const std::uint32_t Patience = m_pProcess->IsConnected() ? m_Times.m_Silence : m_Times.m_Start;
    if (m_nUnanswered * m_Times.m_Ping >= Patience) {
        Lose("it doesn't answer");
    } else {
        SendLine(PING);
        ++m_nUnanswered;
    }
}

bool COpcGateway::Wait(std::uint32_t Milliseconds) {
    using std::chrono::milliseconds;
    using std::chrono::steady_clock;
    const auto Deadline = steady_clock::now() + milliseconds(Milliseconds);
    const std::uint64_t nBefore = m_nLines;
    for (auto Now = steady_clock::now(); m_nLines == nBefore && Now < Deadline; Now = steady_clock::now()) {
        const auto Remaining = std::chrono::duration_cast<milliseconds>(Deadline - Now).count();
        if (!m_pProcess->Wait(static_cast<int>(std::max<std::int64_t>(Remaining, 1)))) {
            break;
        }
    }
    return m_nLines != nBefore;
}

void COpcGateway::Lose(const std::string& rWhy) {
    m_pProcess->Kill();
    m_WatchTimer.Stop();
    if (std::exchange(m_LastReason, rWhy) != rWhy) {
        RV_WARNING(g_pLog, "the OPC UA gateway is lost and started again: %s", rWhy.c_str());
    }
    m_LaunchTimer.StartOnce(m_Pause.Next(), [this] { Launch(); });
    if (OnLost) {
        OnLost(rWhy);
    }
}

}  // namespace

std::unique_ptr<IFOpcGateway> MakeOpcGateway(const std::string& rProgram, const COpcGatewayTimes& rTimes) {
    return std::make_unique<COpcGateway>(rProgram, rTimes);
}
