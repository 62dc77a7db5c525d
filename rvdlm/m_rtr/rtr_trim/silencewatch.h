#pragma once
#include <cstdint>

/// Finds out that frames of the module stay away while the spindle turns. The sampling takes the latest
/// reading at a fixed rate, so without this a lost line would let it average a stale one.
///
/// And finds out that the module's state is old: modules report it on change only, so a single lost frame
/// would leave a procedure waiting for a lock that is long there, or measuring without one. The window asks
/// Tick at a fixed period; no clock of its own.
class CSilenceWatch {
public:
    /// Period of Tick, ms.
    static constexpr std::uint32_t ePeriod = 250;
    /// Silence that counts, ms: modules report ten to twenty times a second, and the shortest useful window
    /// of samples is longer than this, so that it can't be filled with one stale reading.
    static constexpr std::uint32_t eLimit = 1000;
    /// A request is repeated for so long before it is given up, ms.
    static constexpr std::uint32_t eRequestLife = 2000;
    /// A state older than this is asked for, ms: well before a measurement (3000 ms of settling, then the
    /// samples) can be through on a wrong one.
    static constexpr std::uint32_t eStateLife = 2000;

    enum class Finding {
        eNothing,
        eFellSilent,  ///< once: the readings are stale from now on
        eStateIsOld,  ///< the module's state is to be asked for; repeated until it comes
        eSpeaksAgain  ///< frames come again, and the module's state is to be asked for; repeated until it is
                      ///< known
    };

    /// A frame of the module has come.
    void OnFrame() { m_bHeard = m_bEverHeard = true; }
    /// The module's state is known: whatever it says counts from here on.
    void OnModuleState() {
        m_bSilent = m_bWrongState = false;
        m_StateAge = 0;
    }
    /// The module can't be worked with: nothing to ask for until it says that it can.
    void OnWrongState() { m_bWrongState = true; }
    bool IsSilent() const { return m_bSilent; }

    /// bTurning: with the spindle at rest a module has nothing to report.
    Finding Tick(bool bTurning) {
        const bool bHeard = m_bHeard;
        m_bHeard = false;
        m_Quiet = bHeard || !bTurning ? 0 : m_Quiet + ePeriod;
        m_SinceAsked += ePeriod;
        if (m_bSilent) {
            if (bHeard && m_SinceAsked > eRequestLife) {
                m_SinceAsked = 0;
                return Finding::eSpeaksAgain;
            }
            return Finding::eNothing;
        }
        if (m_bEverHeard && m_Quiet >= eLimit) {
            m_bSilent = true;
            m_SinceAsked = eRequestLife;
            return Finding::eFellSilent;
        }
        m_StateAge = m_bEverHeard && bTurning && !m_bWrongState ? m_StateAge + ePeriod : 0;
        if (m_StateAge >= eStateLife) {
            m_StateAge = 0;
            return Finding::eStateIsOld;
        }
        return Finding::eNothing;
    }

private:
    bool m_bEverHeard = false;
    bool m_bHeard = false;
    bool m_bSilent = false;
    bool m_bWrongState = false;
    std::uint32_t m_StateAge = 0;
    std::uint32_t m_Quiet = 0;
    std::uint32_t m_SinceAsked = 0;
};
