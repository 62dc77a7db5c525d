#pragma once
#include <cstdint>
#include <span>

/// A situation that a trainee is put into: a rotor, how the machine is configured for it, and what goes wrong
/// on the way. Texts by key.
struct CTrainingSituation {
    /// How it is mastered.
    enum class Goal {
        eBalanced,   ///< a final measurement within the target, which the rotor bears out
        eEnded,      ///< ended behind the warning, and nothing kept
        eRebalanced  ///< as eBalanced, without a test run
    };
    /// What the helper who fits the weights "as shown" does wrong, once, where it matters.
    enum class Slip { eNone, eMirrored, eForgotten };
    /// For what the configuration is set up at the beginning.
    enum class Setting { eRotor, eOtherRotation, eOtherScale };

    const char* m_pId;
    const char* m_pTitleKey;
    const char* m_pTaskKey;
    const char* m_pLessonKey;
    const char* m_pRotor;        ///< as in a rotor file
    const char* m_pMode = "";    ///< as on the command line; empty: the modules' own
    const char* m_pMethod = "";  ///< the same; empty: weights
    Goal m_Goal = Goal::eBalanced;
    Slip m_Slip = Slip::eNone;
    Setting m_Setting = Setting::eRotor;
    std::uint32_t m_Warning = 0;  ///< with eEnded: the one that is to be heeded
    bool m_bLosesLock = false;    ///< in the final measurement, for a while
};

std::span<const CTrainingSituation> GetTrainingSituations();
