#pragma once
#include <cstdint>
#include <optional>
#include <vector>

#include "archive/report/reportinput.h"
#include "archive/runrecord.h"
#include "archive/runstore.h"

/// A run of the archive with what a report needs besides: plain values, to be loaded in one thread and made
/// use of in another.
struct CArchivedRun {
    CRunRecord m_Record;
    std::vector<std::uint8_t> m_PagePicture;  ///< PNG of the page at its end; empty if there is none
    /// Those of the same machine and configuration before it, the newest first.
    std::vector<CRunRecord> m_Earlier;
    std::vector<CReportTrendPoint> m_Trend;  ///< of its rotor, or else its machine, up to it; oldest first

    /// Nothing if there is no such run. Throws PreBalDB::CSqlError.
    static std::optional<CArchivedRun> Load(CRunStore& rStore, std::int64_t Id);
    /// The report, with the advice that it would have got, in the language in use.
    CReportInput MakeReportInput() const;

    /// How many runs a trend goes back, and how many earlier ones advice rests on.
    static constexpr std::size_t TREND = 20;
    /// The trend that a run ends, itself not among it, by what the archive holds. Throws as above.
    static std::vector<CReportTrendPoint> LoadTrend(CRunStore& rStore, const CRunRecord& rRecord);
    /// A run's own place in a trend; nothing without both readings of a finished run.
    static std::optional<CReportTrendPoint> MakePoint(const CRunRecord& rRecord);
    static std::vector<CRunRecord> LoadEarlier(CRunStore& rStore, const CRunRecord& rRecord);
};
