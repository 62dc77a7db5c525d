#include "simulator/machineclient.h"

#include <algorithm>
#include <span>
#include <utility>

#include "platform/rvcom/bytelink.h"

using nlohmann::json;

std::unique_ptr<CMachineClient> CMachineClient::Create(const std::string& rDescription, std::string& rError) {
    if (!rDescription.starts_with("tcp:")) {
        rError = "\"" + rDescription +
                 "\" is no link to a machine; give tcp:HOST:PORT, for example tcp:127.0.0.1:4002";
        return nullptr;
    }
    auto pLink = MakeByteLink(rDescription, rError);
    return pLink ? std::make_unique<CMachineClient>(std::move(pLink)) : nullptr;
}

CMachineClient::CMachineClient(std::unique_ptr<IFByteLink> pLink)
    : m_pLink(std::move(pLink)),
      m_Lines([this](const std::string& rLine) { OnLine(rLine); },
              [this] { Lose("an overlong answer came"); }) {
    m_pLink->OnOpened = [this] { OnOpened(); };
    m_pLink->OnClosed = [this](const std::string& rWhy) { OnClosed(rWhy); };
    m_pLink->OnBytes = [this](std::span<const std::uint8_t> Bytes) { m_Lines.Put(Bytes); };
    m_bConnecting = true;
    m_pLink->Open();
}

CMachineClient::~CMachineClient() {
    m_pLink->OnOpened = nullptr;
    m_pLink->OnClosed = nullptr;
    m_pLink->OnBytes = nullptr;
}

bool CMachineClient::IsConnected() const {
    return m_pLink->IsOpen();
}

void CMachineClient::Request(const json& rRequest, Done OnAnswer) {
    if (!m_pLink->IsOpen() && !m_bConnecting) {
        PostAnswer(std::move(OnAnswer),
                   {{"error", "no connection to the machine at " + m_pLink->GetName() + ": " + m_Why}});
        return;
    }
    CPending Pending;
    Pending.m_Line = rRequest.dump(-1, ' ', false, json::error_handler_t::replace) + "\n";
    Pending.m_Deadline = IFEventLoop::Current().Now() + ANSWER_TIMEOUT_MS;
    Pending.m_OnAnswer = std::move(OnAnswer);
    m_Pending.push_back(std::move(Pending));
    const std::string& rLine = m_Pending.back().m_Line;
    if (m_pLink->IsOpen()) {
        m_pLink->Write({reinterpret_cast<const std::uint8_t*>(rLine.data()), rLine.size()});
    }
    if (m_Pending.size() == 1) {
        WatchOldest();
    }
}

void CMachineClient::OnOpened() {
    m_bConnecting = false;
    m_Pause.Reset();
    m_Lines.Reset();
    for (const CPending& rPending : m_Pending) {
        m_pLink->Write(
            {reinterpret_cast<const std::uint8_t*>(rPending.m_Line.data()), rPending.m_Line.size()});
    }
}

void CMachineClient::OnClosed(const std::string& rWhy) {
    Lose(rWhy);
}

void CMachineClient::OnLine(const std::string& rLine) {
    if (m_Pending.empty()) {
        return;  // nobody asked; nothing depends on it
    }
    constexpr bool ALLOW_EXCEPTIONS = false;
    json Answer = json::parse(rLine, nullptr, ALLOW_EXCEPTIONS);
    if (!Answer.is_object()) {
        Lose("an answer came that is no JSON object");
        return;
    }
    Done OnAnswer = std::move(m_Pending.front().m_OnAnswer);
    m_Pending.pop_front();
    WatchOldest();
    PostAnswer(std::move(OnAnswer), std::move(Answer));
}

void CMachineClient::WatchOldest() {
    m_AnswerTimer.Stop();
    if (!m_Pending.empty()) {
        const std::uint64_t Now = IFEventLoop::Current().Now();
        const std::uint64_t Deadline = std::max(m_Pending.front().m_Deadline, Now);
        m_AnswerTimer.StartOnce(static_cast<std::uint32_t>(Deadline - Now),
                                [this] { Lose("it didn't answer within 5 s"); });
    }
}

void CMachineClient::Lose(const std::string& rWhy) {
    m_Why = rWhy;
    m_bConnecting = false;
    m_pLink->Close();
    m_Lines.Reset();
    m_AnswerTimer.Stop();
    for (CPending& rPending : std::exchange(m_Pending, {})) {
        PostAnswer(std::move(rPending.m_OnAnswer), {{"error", "the connection to the machine at " +
                                                                  m_pLink->GetName() + " is lost: " + rWhy}});
    }
    m_ReopenTimer.StartOnce(m_Pause.Next(), [this] {
        m_bConnecting = true;
        m_pLink->Open();
    });
}

void CMachineClient::PostAnswer(Done OnAnswer, json Answer) {
    IFEventLoop::Current().Post(
        [OnAnswer = std::move(OnAnswer), Answer = std::move(Answer)] { OnAnswer(Answer); });
}
