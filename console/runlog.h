#pragma once
#include <optional>
#include <string>

#include "archive/runrecord.h"
#include "console/situation.h"

/// Writes the story of runs into the log, at level Information, by the publisher "Console".
class CRunLog {
public:
    /// To be called with each look at the panel of a run: tells of speed and lock.
    void Look(const CSituation& rSituation);
    /// What there is to say of the run's progress.
    static void Tell(const std::string& rText);
    /// A run has begun, or has ended.
    void Begin(const CRunRecord& rRecord);
    static void End(const CRunRecord& rRecord);

private:
    /// Of a measurement: while it waits for speed and lock, and while it takes samples.
    enum class Condition : std::uint8_t { eNone, eWrongSpeed, eOutOfLock, eSettling, eSampling };
    static Condition GetCondition(const CPreBalProgress::CMeasuring& rMeasuring);

    Condition m_Last = Condition::eNone;
};
