#pragma once
#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

/// Asks one module for its state, beside the window's chain of queries and without disturbing anything.
/// Modules report their state on change only: one lost report would leave a procedure waiting for a lock that
/// is long there, or measuring without one.
///
/// The question goes out as it is, once, with no transaction waiting for the answer; so an answer counts as
/// what the module reports by itself, and no other module's report waits for it. Only an answer that holds
/// news goes up at all: not one that says what is known, nor one that a report of the module has overtaken,
/// which is older than that.
///
/// An answer is told from a report by its destination: this computer, while reports are for everybody. Of a
/// module that addresses its reports as well, the first state behind a question counts as the answer.
///
/// No clock of its own: Now is that of the event loop, in ms.
class CStateQuestion {
public:
    using Frame = std::span<const std::uint8_t>;
    using Question = std::array<std::uint8_t, 3>;

    /// A state older than this is asked for: well before a measurement can be through on a wrong one.
    static constexpr std::uint64_t STATE_LIFE = 1000;
    /// Between two questions that aren't answered.
    static constexpr std::uint64_t REPEAT = 500;
    /// A module that answers has done so by then, even if a question gets lost.
    static constexpr std::uint64_t ANSWER_LIMIT = 1500;
    /// No answer comes later than this.
    static constexpr std::uint64_t ANSWER_LIFE = 3000;

    explicit CStateQuestion(std::uint8_t Address) : m_Address(Address) {}

    /// A run begins: what was asked before is no sign of anything.
    void Begin();
    /// Whether it is time to ask: the state is old, or not heard of since that instant.
    bool IsDue(std::uint64_t Now, std::uint64_t Since = 0) const;
    /// The question to send now, from an address of this computer.
    Question Ask(std::uint64_t Now, std::uint8_t TransmitAddress);
    /// Every received frame, before anybody else gets it. Whether it is to be passed on.
    bool OnFrame(std::uint64_t Now, Frame Received);
    /// What is still to be answered is older than something else that has happened.
    void Overtake();
    /// Whether report or answer have told the state since that instant.
    bool IsKnownSince(std::uint64_t Instant) const { return m_KnownAt && *m_KnownAt >= Instant; }
    /// Whether a module that used to answer does so no more, and sends nothing else either.
    bool IsDead(std::uint64_t Now) const;

private:
    struct CAsked {
        std::uint64_t m_At;
        bool m_bOvertaken;
    };
    bool OnAnswer(std::uint64_t Now, Frame State);
    void ForgetOld(std::uint64_t Now);

    std::uint8_t m_Address;
    std::deque<CAsked> m_Asked;   ///< not answered yet, the oldest in front: modules answer in order
    std::uint64_t m_AskedAt = 0;  ///< the last question
    std::optional<std::uint64_t> m_WaitingSince;  ///< the first question since the last answer
    std::optional<std::uint64_t> m_KnownAt;
    std::uint64_t m_HeardAt = 0;        ///< any frame
    bool m_bAnswers = false;            ///< it has answered, and not failed to since
    std::vector<std::uint8_t> m_State;  ///< as last passed on
};
