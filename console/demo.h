#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "console/operator.h"

/// A run that plays by itself for somebody who looks on: the operator of a run without a display, who
/// explains each step in words before he does it, and gives time to read them. What happens is a real run.
class CDemo {
public:
    /// As COperator takes them.
    CDemo(IFOperatorPanel& rPanel, IFMachine& rMachine, std::uint32_t WorkingSpeed);
    ~CDemo();
    CDemo(const CDemo&) = delete;
    CDemo& operator=(const CDemo&) = delete;

    /// Explains, and operates from now on what runs. The procedure itself is started by somebody else.
    void Start(const std::array<CHoleRing, 2>& rRings);
    /// At any moment: nothing more is done, and the run is the onlooker's.
    void BreakOff();

    /// Nothing is done any more until it is taken back.
    void SetPaused(bool bPaused);
    bool IsPaused() const { return m_bPaused; }
    /// The explanation has been read: what it announces is done now.
    void GoOn();
    bool IsPlaying() const { return m_bPlaying; }
    /// Whether what the explanation announces waits for its being read.
    bool IsWaiting() const { return m_bPlaying && m_bAnnounced && GetTimeToRead() > 0; }
    /// What happens, in words.
    const std::string& GetText() const { return m_Text; }
    /// Of the explanation, 0 once it is over, ms.
    std::uint32_t GetTimeToRead() const;

    /// Words or state have changed.
    std::function<void()> OnChanged;

    /// So long somebody reads a text, ms.
    static std::uint32_t GetReadingTime(const std::string& rText);

private:
    static constexpr std::uint32_t PERIOD = 250;  ///< ms, between two looks at how it goes

    /// Whether the operator is to wait.
    bool Hold();
    void Announce(const CSituation& rSituation, Deed ToDo);
    void SetText(const std::string& rText);
    void Watch();
    void End(const char* pTextKey);
    void TellChanged();

    IFOperatorPanel& m_rPanel;
    COperator m_Operator;
    std::array<CHoleRing, 2> m_Rings;
    CTimer m_WatchTimer;
    bool m_bPlaying = false;
    bool m_bPaused = false;
    bool m_bHasRun = false;     ///< a procedure has been seen
    bool m_bAnnounced = false;  ///< the text announces a deed
    std::string m_Text;
    std::string m_LastState;
    Deed m_LastDeed = Deed::eWait;
    std::uint64_t m_ReadUntil = 0;
    std::uint64_t m_PausedAt = 0;
};
