#include "console/runlog.h"

#include <utility>

#include "console/log.h"

namespace {

const char* GetDriver(CRunRecord::Driver Who) {
    switch (Who) {
        case CRunRecord::Driver::eNc:
            return "the NC";
        case CRunRecord::Driver::eHeadless:
            return "the program";
        case CRunRecord::Driver::ePanel:
            break;
    }
    return "the panel";
}

const char* GetEnd(CRunRecord::State How) {
    switch (How) {
        case CRunRecord::State::eFinished:
            return "is finished";
        case CRunRecord::State::eBrokenOff:
            return "was broken off";
        case CRunRecord::State::eFailed:
            return "has failed";
        case CRunRecord::State::eRunning:
            break;
    }
    return "goes on";
}

}  // namespace

CRunLog::Condition CRunLog::GetCondition(const CPreBalProgress::CMeasuring& rMeasuring) {
    if (rMeasuring.m_Which == Measurement::eNone) {
        return Condition::eNone;
    }
    if (rMeasuring.m_bSampling) {
        return Condition::eSampling;
    }
    if (!rMeasuring.m_bAtSpeed) {
        return Condition::eWrongSpeed;
    }
    return rMeasuring.m_bLocked ? Condition::eSettling : Condition::eOutOfLock;
}

void CRunLog::Look(const CSituation& rSituation) {
    const CPreBalProgress& rProgress = rSituation.m_Progress;
    const CPreBalProgress::CMeasuring& rMeasuring = rProgress.m_Measuring;
    const Condition Now = rSituation.m_bRunning ? GetCondition(rMeasuring) : Condition::eNone;
    if (std::exchange(m_Last, Now) == Now) {
        return;
    }
    const unsigned Rpm = rProgress.m_CurrentRPM;
    switch (Now) {
        case Condition::eWrongSpeed:
            RV_INFORMATION(Console::g_pLog, "%u rpm, wanted %u +- %u", Rpm, rMeasuring.m_TargetRPM,
                           rMeasuring.m_RPMTolerance);
            break;
        case Condition::eOutOfLock:
            RV_INFORMATION(Console::g_pLog, "%u rpm, out of lock", Rpm);
            break;
        case Condition::eSettling:
            RV_INFORMATION(Console::g_pLog, "%u rpm, in lock", Rpm);
            break;
        case Condition::eSampling:
            RV_INFORMATION(Console::g_pLog, "%u rpm, in lock, samples are taken", Rpm);
            break;
        case Condition::eNone:
            break;
    }
}

void CRunLog::Tell(const std::string& rText) {
    RV_INFORMATION(Console::g_pLog, "%s", rText.c_str());
}

void CRunLog::Begin(const CRunRecord& rRecord) {
    m_Last = Condition::eNone;
    RV_INFORMATION(Console::g_pLog, "%s begins, driven by %s: machine %s, configuration %s, target %u%s%s",
                   rRecord.m_bRebalance ? "re-balancing" : "pre-balancing", GetDriver(rRecord.m_Driver),
                   rRecord.m_Machine.c_str(), rRecord.m_Setup.m_Configuration.c_str(),
                   rRecord.m_Setup.m_TargetUnbalance, rRecord.m_Rotor.empty() ? "" : ", rotor ",
                   rRecord.m_Rotor.c_str());
}

void CRunLog::End(const CRunRecord& rRecord) {
    RV_INFORMATION(Console::g_pLog, "%s %s: %s, %s", rRecord.m_bRebalance ? "re-balancing" : "pre-balancing",
                   GetEnd(rRecord.m_State), rRecord.m_Result.c_str(),
                   rRecord.m_bSaved ? "saved" : "not saved");
}
