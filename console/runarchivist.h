#pragma once
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "archive/report/reportinput.h"
#include "archive/runarchive.h"
#include "archive/runrecord.h"
#include "console/rungatherer.h"
#include "console/runlog.h"
#include "contract/arrivedreadings.h"

class CConsoleSession;

/// Keeps the records of a session's runs, one for each procedure: begins one when a procedure is seen to run,
/// and another when it goes on to a re-balancing. What it has goes to the archive at once, unless the session
/// is a lesson.
class CRunArchivist {
public:
    explicit CRunArchivist(CConsoleSession& rSession);
    CRunArchivist(const CRunArchivist&) = delete;
    CRunArchivist& operator=(const CRunArchivist&) = delete;

    /// Forgets the runs that have ended, for a report of those to come.
    void Forget() { m_Records.clear(); }

    /// To be called with each look of a driver, before what it has seen is accepted.
    void Look(const CSituation& rSituation);
    /// Something on the panel has changed.
    void See(const CSituation& rSituation) { m_Gatherer.See(rSituation); }
    /// What was complete when last looked at was accepted.
    void Accept() { m_Gatherer.Accept(); }
    void SetPrediction(const std::array<std::optional<CPlanePrediction>, 2>& rPrediction) {
        m_Gatherer.SetPrediction(rPrediction);
    }
    /// The page at the verdict. One that is too large for an archive of many runs isn't kept.
    void KeepPicture(std::vector<unsigned char> Png);
    /// Waits for a while until the archive has all; what it couldn't take is told.
    void FinishArchive();
    /// The trend that a run ends, itself included if it has both readings. What the archive doesn't give in
    /// time is left out.
    std::vector<CReportTrendPoint> LoadTrend(const CRunRecord& rRecord);
    /// Those of its machine and configuration before the present run, the newest first, as far as the archive
    /// gives them in time.
    std::vector<CRunRecord> LoadEarlier();
    /// Where the runs are kept; null if they aren't.
    CRunArchive* GetArchive() { return m_pArchive.get(); }
    /// The number of the present run, or of the last one, in the archive; 0 as long as it has none.
    std::int64_t GetPresentId() const { return m_pArchive == nullptr ? 0 : m_pArchive->GetId(m_Mark); }
    /// The procedure is over. bFinished: it came to a verdict on a whole measurement.
    void End(bool bFinished);

    bool IsRunning() const { return m_Gatherer.IsGathering(); }
    /// The present run, or the last one.
    const CRunRecord& GetPresent() const { return m_Gatherer.Get(); }
    /// Its measurement that only has to be accepted.
    const std::optional<CRunMeasurement>& GetComplete() const { return m_Gatherer.GetComplete(); }
    /// The runs since they were last forgotten, the present one not among them.
    const std::vector<CRunRecord>& GetRecords() const { return m_Records; }

    /// Called when the present run's record has changed: it began, a measurement was accepted, a warning or a
    /// prediction came, it ended.
    std::function<void(const CRunRecord&)> OnChanged;
    /// Takes why a run isn't kept, or can't be trusted: a sentence, once a run.
    std::function<void(const std::string&)> OnTrouble;

private:
    void Begin();
    CRunRecord MakeHead() const;
    void TellTrouble();

    CConsoleSession& m_rSession;
    CRunGatherer m_Gatherer;
    CRunLog m_Log;
    CArrivedReadings m_Arrived;
    std::vector<CRunRecord> m_Records;
    std::unique_ptr<CRunArchive> m_pArchive;
    std::string m_Mark;  ///< of the present run, or of the last one, in the archive
    bool m_bTroubleTold = false;
    bool m_bMeansMoved = false;  ///< in the present run
};
