#include "console/runarchivist.h"

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <type_traits>
#include <utility>

#include "archive/archivedrun.h"
#include "console/offlinenotes.h"
#include "console/runsetup.h"
#include "console/session.h"
#include "contract/ncnotification.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/offline.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/rvmdb/storetexts.h"
#include "platform/system/realdate.h"
#include "platform/system/version.h"

namespace {

/// Of message 1124.
constexpr std::int32_t REBALANCING = 2;

/// Nothing if there is no archive, or no answer in time: advice and reports do without.
template <typename Work>
std::invoke_result_t<Work, CRunStore&> AskAndWait(CRunArchive* pArchive, Work Do) {
    constexpr std::chrono::milliseconds PATIENCE{1000};
    using Result = std::invoke_result_t<Work, CRunStore&>;
    if (pArchive == nullptr) {
        return {};
    }
    const auto pAnswer = std::make_shared<std::promise<Result>>();
    std::future<Result> Answer = pAnswer->get_future();
    pArchive->Ask(
        [pAnswer, Do](CRunStore& rStore) -> std::function<void()> {
            pAnswer->set_value(Do(rStore));
            return [] {};
        },
        [pAnswer](const std::string& /*rWhy*/) {});
    if (Answer.wait_for(PATIENCE) != std::future_status::ready) {
        return {};
    }
    try {
        return Answer.get();
    } catch (const std::future_error&) {
        return {};  // the archive can't be read, and tells that when it is written to
    }
}

bool AsksForMeans(const CSituation& rSituation) {
    return rSituation.m_Notification.GetAction() == CNcNotification::eSetWeights;
}

}  // namespace

CRunArchivist::CRunArchivist(CConsoleSession& rSession) : m_rSession(rSession) {
    if (rSession.GetOptions().m_bArchive && !rSession.GetOptions().IsLesson()) {
        m_pArchive = std::make_unique<CRunArchive>(
            PreBalDB::GetDatabaseConnection(),
            PreBalDB::Offline::IsUsed() ? PreBalDB::Offline::GetFile() : std::string());
        if (PreBalDB::Offline::IsUsed()) {
            m_pArchive->DeliverEarlier();
        }
    }
    m_Gatherer.OnChanged = [this] {
        if (m_pArchive != nullptr) {
            m_pArchive->Keep(m_Mark, m_Gatherer.Get());
        }
        if (OnChanged) {
            OnChanged(m_Gatherer.Get());
        }
    };
}

CRunRecord CRunArchivist::MakeHead() const {
    const COptions& rOptions = m_rSession.GetOptions();
    CRunRecord Head;
    Head.m_Started = GetRealDate();
    Head.m_Version = GetProjectVersion();
    Head.m_Machine = m_rSession.GetMachineName();
    Head.m_Rotor = rOptions.m_RotorName;
    Head.m_Driver = rOptions.IsDrivenByNc() ? CRunRecord::Driver::eNc
                    : rOptions.m_bHeadless  ? CRunRecord::Driver::eHeadless
                                            : CRunRecord::Driver::ePanel;
    Head.m_bRebalance = m_rSession.GetHost().GetActivity() == REBALANCING;
    Head.m_Family = m_rSession.GetFamilyName();
    Head.m_Addresses = rOptions.m_Addresses;
    Head.m_Setup = ReadRunSetup(m_rSession);
    return Head;
}

void CRunArchivist::Begin() {
    m_Arrived = {};
    m_Mark = CRunArchive::MakeMark();
    m_bTroubleTold = m_bMeansMoved = false;
    m_Gatherer.Begin(MakeHead());
    m_Log.Begin(m_Gatherer.Get());
}

void CRunArchivist::Look(const CSituation& rSituation) {
    if (m_Gatherer.HasGoneOn(rSituation)) {
        End(true);
    }
    if (rSituation.m_bRunning && !IsRunning()) {
        Begin();
        m_Gatherer.See(rSituation);
        if (m_Gatherer.Get().m_bRebalance && m_rSession.AreMeansElsewhere() && !AsksForMeans(rSituation) &&
            OnTrouble) {
            OnTrouble(GetText("RUN_MEANS_ELSEWHERE"));
        }
    }
    m_bMeansMoved = m_bMeansMoved || AsksForMeans(rSituation);
    m_Log.Look(rSituation);
    TellTrouble();
    m_Arrived.m_Readings.clear();
    if (IsRunning() && m_rSession.GetReadings(m_Arrived)) {
        m_Gatherer.Look(rSituation, m_Arrived.m_Readings);
    }
}

std::vector<CReportTrendPoint> CRunArchivist::LoadTrend(const CRunRecord& rRecord) {
    CRunRecord Run = rRecord;
    Run.m_Id = GetPresentId();
    auto Trend = AskAndWait(m_pArchive.get(),
                            [Run](CRunStore& rStore) { return CArchivedRun::LoadTrend(rStore, Run); });
    if (const auto Point = CArchivedRun::MakePoint(rRecord)) {
        Trend.push_back(*Point);
    }
    return Trend;
}

std::vector<CRunRecord> CRunArchivist::LoadEarlier() {
    CRunRecord Run = GetPresent();
    Run.m_Id = GetPresentId();
    return AskAndWait(m_pArchive.get(),
                      [Run](CRunStore& rStore) { return CArchivedRun::LoadEarlier(rStore, Run); });
}

void CRunArchivist::End(bool bFinished) {
    if (!IsRunning()) {
        return;
    }
    const bool bFailed = m_Gatherer.Get().m_Result == "Failure";
    const CRunRecord::State State = bFinished ? CRunRecord::State::eFinished
                                    : bFailed ? CRunRecord::State::eFailed
                                              : CRunRecord::State::eBrokenOff;
    const bool bSaved = m_rSession.GetHost().IsResultSaved();
    m_rSession.SetMeansElsewhere(!bSaved && (m_bMeansMoved || m_rSession.AreMeansElsewhere()));
    m_Gatherer.End(State, GetRealDate(), bSaved,
                   bSaved ? ReadRunCalibration(m_rSession) : std::optional<CRunCalibration>());
    m_Records.push_back(m_Gatherer.Get());
    CRunLog::End(m_Gatherer.Get());
}

void CRunArchivist::KeepPicture(std::vector<unsigned char> Png) {
    // A third more as text; a run is to take 60 kB at most.
    constexpr std::size_t LARGEST = 30000;
    if (m_pArchive != nullptr && IsRunning() && !Png.empty() && Png.size() <= LARGEST) {
        m_pArchive->KeepPicture(m_Mark, "final", std::move(Png));
    }
}

void CRunArchivist::FinishArchive() {
    if (m_pArchive != nullptr) {
        m_pArchive->Finish(CRunArchive::LIMIT);
        TellTrouble();
    }
}

void CRunArchivist::TellTrouble() {
    for (const std::string& rNote : OfflineNotes::Take()) {
        if (OnTrouble) {
            OnTrouble(rNote);
        }
    }
    if (m_pArchive == nullptr) {
        return;
    }
    const std::string Trouble = m_pArchive->TakeTrouble();
    if (!Trouble.empty() && OnTrouble && !std::exchange(m_bTroubleTold, true)) {
        OnTrouble(PreBalDB::StoreTexts::Fill("ARCHIVE_NOT_KEPT", {Trouble}));
    }
}
