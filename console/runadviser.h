#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "archive/advice.h"
#include "console/runarchivist.h"
#include "console/situation.h"

/// Follows the record of a run that is under way, and says in time what computation makes of it: after a test
/// run how good it was, before the weights are moved what to expect, at the end how that fits.
class CRunAdviser {
public:
    /// The archivist must outlive this.
    explicit CRunAdviser(CRunArchivist& rArchivist) : m_rArchivist(rArchivist) {}

    /// To be called with each look of a driver, after the archivist has looked.
    void Look(const CSituation& rSituation);
    /// A measurement was accepted, and the archivist has it.
    void Accept();

    /// Of the present run, or of the last one, in the language in use.
    const CRunAdvice& Get();
    /// The calibration that would be kept stands on a test run without an effect that can be told from noise:
    /// what there is to say of it; else empty. Holds until the procedure ends, also if it goes on to a
    /// re-balancing.
    std::string GetDoubt() const;

    /// Takes lines for people who follow the run.
    std::function<void(const std::string&)> OnAdvice;

private:
    /// Between two looks at a final measurement that goes on, ms.
    static constexpr std::uint64_t PERIOD = 1000;

    void Begin(const CRunRecord& rRecord);
    void Compute();
    void Predict(const CSituation& rSituation);
    /// The test that comes after what was measured last.
    void SuggestTest();
    void Tell(const std::string& rText) const;
    /// The run, with the final measurement that is complete but not accepted yet.
    CRunRecord GetRecord() const;

    CRunArchivist& m_rArchivist;
    std::vector<CRunRecord> m_Earlier;  ///< runs of the machine
    CRunAdvice m_Advice;
    std::string m_Language;  ///< that of its texts
    std::array<std::optional<CPlaneFitting>, 2> m_Asked;
    std::optional<CRunAdvice::CQuality> m_Doubt;
    bool m_bFresh = false;         ///< nothing is measured yet
    bool m_bFailed = false;        ///< and looked at
    bool m_bFinal = false;         ///< the advice has a final measurement in it
    std::uint64_t m_Computed = 0;  ///< when
};
