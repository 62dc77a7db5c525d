#pragma once
#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "platform/system/growingpause.h"
#include "platform/system/linesplitter.h"
#include "platform/system/timer.h"
#include "simulator/machine.h"

class IFByteLink;

/// A machine elsewhere, over its control link. Requests go out in order and answers are given out in order.
/// Those made while a connection is being set up wait for it; without one they are answered with an error. A
/// lost connection answers what was under way with an error, and is set up again after 500 ms, then after
/// growing pauses of up to 10 s. An answer that takes longer than 5 s is an error too, and the connection is
/// set up anew, so that a late answer can't be taken for the next one's.
class CMachineClient : public IFMachine {
public:
    static constexpr std::uint32_t ANSWER_TIMEOUT_MS = 5000;

    /// For "tcp:HOST:PORT". Null with rError telling what would be right.
    static std::unique_ptr<CMachineClient> Create(const std::string& rDescription, std::string& rError);
    /// Takes any link and opens it at once.
    explicit CMachineClient(std::unique_ptr<IFByteLink> pLink);
    ~CMachineClient() override;
    CMachineClient(const CMachineClient&) = delete;
    CMachineClient& operator=(const CMachineClient&) = delete;

    void Request(const nlohmann::json& rRequest, Done OnAnswer) override;
    bool IsConnected() const;

private:
    struct CPending {
        std::string m_Line;
        std::uint64_t m_Deadline = 0;
        Done m_OnAnswer;
    };

    void OnOpened();
    void OnClosed(const std::string& rWhy);
    void OnLine(const std::string& rLine);
    void Lose(const std::string& rWhy);
    void WatchOldest();
    /// Hands answers out through the loop.
    static void PostAnswer(Done OnAnswer, nlohmann::json Answer);

    std::unique_ptr<IFByteLink> m_pLink;
    CLineSplitter m_Lines;
    std::deque<CPending> m_Pending;  ///< oldest first
    bool m_bConnecting = false;
    std::string m_Why;  ///< of the last loss
    CGrowingPause m_Pause;
    CTimer m_ReopenTimer;
    CTimer m_AnswerTimer;
};
