#include "console/screenrun.h"

#include <utility>

#include "console/offlinenotes.h"
#include "contract/actions.h"
#include "platform/rvldb/gettext.h"

namespace {

/// Of message 1124.
constexpr std::int32_t PREBALANCING = 1;
constexpr std::int32_t REBALANCING = 2;

std::vector<Actions::Action> ChooseProcedures(const COptions& rOptions) {
    // An NC starts what it wants by itself.
    if (!rOptions.m_bProcedureGiven || rOptions.IsDrivenByNc()) {
        return {};
    }
    std::vector<Actions::Action> Procedures;
    if (rOptions.m_Procedure != COptions::Procedure::ePrebalance) {
        Procedures.push_back(Actions::eRebalance);
    }
    if (rOptions.m_Procedure != COptions::Procedure::eRebalance) {
        Procedures.push_back(Actions::eStart);
    }
    return Procedures;
}

}  // namespace

CScreenRun::CScreenRun(CConsoleSession& rSession)
    : m_rSession(rSession),
      m_Recorder(rSession),
      m_Watch([&rSession] { return rSession.Look(); }, CNcWatch::Driver::ePerson),
      m_ToStart(ChooseProcedures(rSession.GetOptions())) {
    m_Recorder.OnTrouble = [this](const std::string& rText) {
        if (OnSay) {
            OnSay(rText);
        }
    };
    m_Recorder.OnRecorded = [this] { GoOn(); };
    m_Recorder.Attach(m_Watch);
    m_Watch.Start();
}

CScreenRun::~CScreenRun() {
    m_Watch.Stop();
}

void CScreenRun::GoOn() {
    const std::int32_t Activity = m_rSession.GetHost().GetActivity();
    m_bPrebalanced |= Activity == PREBALANCING;
    m_bRebalanced |= Activity == REBALANCING;
    const bool bRunning = m_rSession.Look().m_bRunning;
    if (!std::exchange(m_bRunning, bRunning) && bRunning) {
        m_Watch.SetHoleRings(m_rSession.GetHoleRings());
    }
    m_Watch.LookNow();
    if (m_Watch.GetOutcome() != CRunDriver::Outcome::eRunning) {
        FinishRun(m_Watch.GetOutcome() == CRunDriver::Outcome::eFinished);
        m_Watch.Start();
    }
    if (!m_ToStart.empty() && m_rSession.GetHost().IsConfigured() && !bRunning) {
        StartNext();
    }
}

void CScreenRun::StartNext() {
    const Actions::Action Start = m_ToStart.back();
    m_ToStart.pop_back();
    if (m_rSession.StartProcedure(Start)) {
        return;
    }
    m_ToStart.clear();
    if (OnSay) {
        OnSay(GetText(Start == Actions::eRebalance ? "CONSOLE_NOT_CALIBRATED" : "CONSOLE_NOT_STARTED"));
    }
}

void CScreenRun::End(bool bKeep) {
    if (!m_rSession.Look().m_bRunning) {
        return;
    }
    m_ToStart.clear();
    m_Recorder.Record();
    m_rSession.SendAction(Actions::eTerminate, bKeep ? Actions::eCommit : Actions::eNone);
    if (bKeep) {
        GoOn();
    }
    // A result that can't be saved keeps the run, which nobody can end once more.
    if (!bKeep || m_rSession.Look().m_bRunning) {
        FinishRun(false);
    }
}

void CScreenRun::FinishRun(bool bFinished) {
    if (!bFinished) {
        m_ToStart.clear();
    }
    CRunReport& rReport = m_Recorder.GetReport();
    rReport.SetProcedure(ToString(!m_bRebalanced    ? COptions::Procedure::ePrebalance
                                  : !m_bPrebalanced ? COptions::Procedure::eRebalance
                                                    : COptions::Procedure::ePrebalanceAndRebalance));
    rReport.SetFinished(bFinished);
    rReport.SetSaved(m_rSession.GetHost().IsResultSaved());
    m_Recorder.EndRun(bFinished);
    m_rSession.GetHost().ForgetResult();
    if (bFinished) {
        m_Recorder.RecordCalibration();
    }
    rReport.SetDelivered(OfflineNotes::IsAllDelivered());
    m_Recorder.WriteReport();
    if (m_ToStart.empty()) {
        m_Recorder.BeginReport();
        m_bPrebalanced = m_bRebalanced = false;
    }
}
