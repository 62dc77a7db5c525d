#pragma once
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "archive/runadvice.h"
#include "console/runpath.h"
#include "console/situation.h"

class QString;

/// What there is to say at present, in the language in use.
struct CSentence {
    enum class Kind : std::uint8_t {
        eNothing,
        eStep,      ///< a run is on its way
        eProgress,  ///< so is its measurement
        eWaiting,   ///< something is missing, or not as it should be
        eReady,     ///< it is the operator's turn
        eWithin,
        eOver,
        eFailed
    };
    Kind m_Kind = Kind::eNothing;
    std::string m_Text;
    std::string m_Detail;  ///< less important; may be empty

    bool operator==(const CSentence&) const = default;
};

/// Where the result of a run stands.
struct CSavedResult {
    bool m_bSaved = false;
    std::chrono::sys_seconds m_When{};
    std::string m_Configuration;
    std::string m_Store;  ///< for people; empty: one that goes with the program
    bool m_bDelivered =
        true;  ///< false: it stands on the console's own disk until the store's server is back
};

/// Follows runs, and puts into words how a measurement gets on, what the final one says, and what has become
/// of the result. Knows only what anybody at the panel can see. It keeps figures, not texts, so that the
/// language may change at any time.
class CRunVerdict {
public:
    /// To be called whenever the panel may have changed, and now and then while a run measures.
    void Look(const CSituation& rSituation);
    /// A result was to be saved.
    void SetSaved(const CSavedResult& rSaved) { m_Saved = rSaved; }
    /// The run has come to an end that the panel doesn't tell.
    void SetReason(const std::string& rReason) { m_Reason = rReason; }
    /// The run is broken off, by that: "SIGTERM".
    void SetBrokenOff(const std::string& rBy) { m_BrokenOffBy = rBy; }
    /// What computation says of the run, in the language in use.
    void SetAdvice(const CRunAdvice& rAdvice) { m_Advice = rAdvice; }
    /// The next procedure begins.
    void Forget() { *this = CRunVerdict(); }

    /// For the band below the page.
    CSentence GetSentence() const;
    /// A run that has ended, in one sentence.
    std::string GetConclusion() const;

private:
    using Readings = CRunPath::Readings;

    /// The readings of a verdict that stands on a whole measurement.
    const std::optional<Readings>& GetFinal() const { return m_Path.Get(Measurement::eFinal); }
    bool HasTwoPlanes() const;
    bool IsFailed() const;
    bool HasReason() const { return !m_Reason.empty() || !m_BrokenOffBy.empty(); }
    /// Of a verdict in all planes.
    bool IsWithin() const;
    CSentence::Kind GetKindOfVerdict() const;
    CSentence DescribeMeasuring() const;
    /// Between measurements: what to expect of the next one, how good the last was.
    QString DescribeBetween() const;
    /// Below a verdict: what to do, or what explains it.
    QString DescribeWhatNow() const;
    CSentence DescribeEnd() const;
    CSentence DescribeUnsaved() const;
    CSentence DescribeWaiting(const CPreBalProgress& rProgress) const;
    QString DescribeMeasurement() const;
    QString DescribeReadings(const Readings& rReadings) const;
    QString DescribeVerdict() const;
    QString DescribePlane(std::size_t Plane) const;
    QString DescribePlaceOfResult() const;
    QString DescribeReason() const;

    std::optional<CSituation> m_Run;  ///< as last seen; of the last run between runs
    bool m_bRunning = false;
    CRunPath m_Path;
    std::optional<CSavedResult> m_Saved;
    std::string m_Reason;
    std::string m_BrokenOffBy;
    CRunAdvice m_Advice;
};
