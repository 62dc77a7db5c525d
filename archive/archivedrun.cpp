#include "archive/archivedrun.h"

#include <algorithm>
#include <utility>

#include "archive/advice.h"

namespace {

/// The larger of two planes.
std::optional<double> GetLargest(const std::array<std::optional<double>, 2>& rPlanes) {
    return std::max(rPlanes[0], rPlanes[1]);
}

bool IsWithin(const std::string& rResult) {
    return !rResult.ends_with("OverTarget");
}

std::optional<CReportTrendPoint> MakePoint(const CRunSummary& rRun) {
    const std::optional<double> Before = GetLargest(rRun.m_Before);
    const std::optional<double> After = GetLargest(rRun.m_After);
    if (!Before || !After || rRun.m_State != CRunRecord::State::eFinished) {
        return std::nullopt;
    }
    return CReportTrendPoint{rRun.m_Started, *Before, *After, IsWithin(rRun.m_Result)};
}

/// Runs before this one. Of those that began in the same second the number tells.
CRunFilter Before(const CRunRecord& rRecord) {
    CRunFilter Filter;
    Filter.m_Until = rRecord.m_Started + std::chrono::seconds(1);
    Filter.m_nLimit = CArchivedRun::TREND + 1;
    return Filter;
}

bool IsEarlier(const CRunSummary& rRun, const CRunRecord& rRecord) {
    return rRun.m_Id != rRecord.m_Id && (rRecord.m_Id == 0 || rRun.m_Id < rRecord.m_Id);
}

}  // namespace

std::optional<CReportTrendPoint> CArchivedRun::MakePoint(const CRunRecord& rRecord) {
    const std::optional<double> Before = rRecord.GetReading(Measurement::eFirst);
    const std::optional<double> After = rRecord.GetReading(Measurement::eFinal);
    if (!Before || !After || rRecord.m_State != CRunRecord::State::eFinished) {
        return std::nullopt;
    }
    return CReportTrendPoint{rRecord.m_Started, *Before, *After, IsWithin(rRecord.m_Result)};
}

std::vector<CReportTrendPoint> CArchivedRun::LoadTrend(CRunStore& rStore, const CRunRecord& rRecord) {
    CRunFilter Filter = Before(rRecord);
    Filter.m_Rotor = rRecord.m_Rotor;
    Filter.m_Machine = rRecord.m_Rotor.empty() ? rRecord.m_Machine : std::string();
    std::vector<CReportTrendPoint> Trend;
    for (const CRunSummary& rRun : rStore.List(Filter)) {
        if (const auto Point = ::MakePoint(rRun); Point && IsEarlier(rRun, rRecord)) {
            Trend.push_back(*Point);
        }
    }
    std::ranges::reverse(Trend);
    return Trend;
}

std::vector<CRunRecord> CArchivedRun::LoadEarlier(CRunStore& rStore, const CRunRecord& rRecord) {
    CRunFilter Filter = Before(rRecord);
    Filter.m_Machine = rRecord.m_Machine;
    Filter.m_Configuration = rRecord.m_Setup.m_Configuration;
    std::vector<CRunRecord> Earlier;
    for (const CRunSummary& rRun : rStore.List(Filter)) {
        if (!IsEarlier(rRun, rRecord)) {
            continue;
        }
        if (std::optional<CRunRecord> Record = rStore.Load(rRun.m_Id)) {
            Earlier.push_back(std::move(*Record));
        }
    }
    return Earlier;
}

std::optional<CArchivedRun> CArchivedRun::Load(CRunStore& rStore, std::int64_t Id) {
    std::optional<CRunRecord> Record = rStore.Load(Id);
    if (!Record) {
        return std::nullopt;
    }
    CArchivedRun Run;
    Run.m_Record = std::move(*Record);
    const std::vector<std::string> Pictures = rStore.GetPictures(Id);
    if (!Pictures.empty()) {
        Run.m_PagePicture = rStore.LoadPicture(Id, Pictures.back()).value_or(std::vector<std::uint8_t>());
    }
    Run.m_Earlier = LoadEarlier(rStore, Run.m_Record);
    Run.m_Trend = LoadTrend(rStore, Run.m_Record);
    if (const auto Point = MakePoint(Run.m_Record)) {
        Run.m_Trend.push_back(*Point);
    }
    return Run;
}

CReportInput CArchivedRun::MakeReportInput() const {
    CReportInput Input;
    CAdviceBasis Basis;
    Basis.m_Earlier = m_Earlier;
    Input.m_Runs.push_back({m_Record, Advise(m_Record, Basis), m_PagePicture});
    Input.m_Trend = m_Trend;
    return Input;
}
