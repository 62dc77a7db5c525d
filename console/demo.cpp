#include "console/demo.h"

#include <QString>
#include <QStringList>
#include <algorithm>

#include "contract/actions.h"
#include "contract/menukeys.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/eventloop.h"

namespace {

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

/// "Plane 1: 30°, 150°" or "Plane 1: 2.5 g in hole 4".
QString DescribePlaces(const std::vector<CFitting>& rFittings) {
    QStringList Planes;
    for (const CFitting& rFitting : rFittings) {
        QStringList Places;
        for (const int Angle : rFitting.m_Angles) {
            Places << QString("%1°").arg(Angle);
        }
        for (const CRotorScrew& rScrew : rFitting.m_Screws) {
            Places << Text("MACHINE_SCREW_IN_HOLE").arg(rScrew.m_Grams).arg(rScrew.m_Hole);
        }
        Planes << Text("PB_PLANE_TEXT") + QString(" %1: ").arg(rFitting.m_Plane + 1) +
                      (Places.isEmpty() ? Text("DEMO_NO_SCREW") : Places.join(", "));
    }
    return Planes.join("; ");
}

/// "120 µm/s at 32°", per plane.
QString DescribeReadings(const CSituation& rSituation) {
    QStringList Planes;
    for (const CPreBalProgress::CReading& rReading : rSituation.m_Progress.m_Readings) {
        if (rReading.m_bShown) {
            Planes << Text("DEMO_READING")
                          .arg(rReading.m_Amplitude, 0, 'f', 1)
                          .arg(rReading.m_AngleDeg, 0, 'f', 0);
        }
    }
    return Planes.join(", ");
}

const char* ChooseFitText(const std::string& rState) {
    if (rState.find("Neutral") != std::string::npos) {
        return "DEMO_NEUTRAL";
    }
    return rState.find("TestUnbalance") != std::string::npos ? "DEMO_TEST" : "DEMO_CORRECTION";
}

}  // namespace

CDemo::CDemo(IFOperatorPanel& rPanel, IFMachine& rMachine, std::uint32_t WorkingSpeed)
    : m_rPanel(rPanel), m_Operator(rPanel, &rMachine, WorkingSpeed) {
    m_Operator.IsHeld = [this] { return Hold(); };
}

CDemo::~CDemo() {
    m_Operator.Stop();
}

void CDemo::Start(const std::array<CHoleRing, 2>& rRings) {
    m_bPlaying = true;
    m_Rings = rRings;
    m_Operator.SetHoleRings(rRings);
    SetText(::GetText("DEMO_BEGIN"));
    m_Operator.Start();
    m_WatchTimer.StartPeriodic(PERIOD, [this] { Watch(); });
}

void CDemo::BreakOff() {
    if (m_bPlaying) {
        End("DEMO_BROKEN_OFF");
    }
}

void CDemo::SetPaused(bool bPaused) {
    const std::uint64_t Now = IFEventLoop::Current().Now();
    if (bPaused && !m_bPaused) {
        m_PausedAt = Now;
    } else if (!bPaused && m_bPaused && m_ReadUntil > m_PausedAt) {
        m_ReadUntil += Now - m_PausedAt;  // what was left to read still is
    }
    m_bPaused = bPaused;
    TellChanged();
}

void CDemo::GoOn() {
    m_bPaused = false;
    m_ReadUntil = 0;
    TellChanged();
}

std::uint32_t CDemo::GetTimeToRead() const {
    const std::uint64_t Now = m_bPaused ? m_PausedAt : IFEventLoop::Current().Now();
    return m_ReadUntil > Now ? static_cast<std::uint32_t>(m_ReadUntil - Now) : 0;
}

std::uint32_t CDemo::GetReadingTime(const std::string& rText) {
    // Some 18 characters a second, and a moment to look where they point at.
    constexpr std::uint32_t PER_CHARACTER = 55;
    constexpr std::uint32_t MOMENT = 1500;
    return MOMENT + static_cast<std::uint32_t>(QString::fromStdString(rText).size()) * PER_CHARACTER;
}

bool CDemo::Hold() {
    const CSituation Situation = m_rPanel.Look();
    if (Situation.m_bRunning && !m_bHasRun) {
        m_bHasRun = true;
    }
    const Deed ToDo = ChooseDeed(Situation);
    if (Situation.m_Progress.m_State != m_LastState || ToDo != m_LastDeed) {
        Announce(Situation, ToDo);
        m_LastState = Situation.m_Progress.m_State;
        m_LastDeed = ToDo;
    }
    return m_bPaused || GetTimeToRead() > 0;
}

void CDemo::Announce(const CSituation& rSituation, Deed ToDo) {
    const std::int32_t Action = rSituation.m_Notification.GetAction();
    switch (ToDo) {
        case Deed::eWait:
            if (Action == CPreBalCodes::eMeasure || IsVerdict(rSituation.m_Notification.GetStep())) {
                SetText(::GetText("DEMO_MEASURING"));
                m_bAnnounced = false;
                m_ReadUntil = 0;  // measuring waits for nobody
            }
            break;
        case Deed::eStartSpindle:
            SetText(::GetText("DEMO_START"));
            break;
        case Deed::eStopSpindle:
            SetText(::GetText("DEMO_STOP"));
            break;
        case Deed::eFitAndConfirm:
            SetText(Text(ChooseFitText(rSituation.m_Progress.m_State))
                        .arg(DescribePlaces(FindFittings(rSituation, m_Rings)))
                        .toStdString());
            break;
        case Deed::eConfirm:
            SetText(Action == CPreBalCodes::eMeasurementValuesOK
                        ? Text("DEMO_MEASURED").arg(DescribeReadings(rSituation)).toStdString()
                        : ::GetText("DEMO_SPEED"));
            break;
        case Deed::eJudge: {
            const std::int32_t Step = rSituation.m_Notification.GetStep();
            const bool bGood = Step == CPreBalCodes::eSetupSuccess || Step == CPreBalCodes::eRebalSuccess;
            SetText(Text(bGood ? "DEMO_WITHIN" : "DEMO_OVER")
                        .arg(DescribeReadings(rSituation))
                        .arg(rSituation.m_Progress.m_TargetUnbalance)
                        .toStdString());
            break;
        }
        case Deed::eGiveUp:
            break;
    }
}

void CDemo::SetText(const std::string& rText) {
    m_Text = rText;
    m_bAnnounced = true;
    m_ReadUntil = (m_bPaused ? m_PausedAt : IFEventLoop::Current().Now()) + GetReadingTime(rText);
    TellChanged();
}

void CDemo::Watch() {
    const CRunDriver::Outcome Outcome = m_Operator.GetOutcome();
    if (Outcome == CRunDriver::Outcome::eFinished) {
        const MenuKeys::CKey* const pKey = MenuKeys::FindKey(m_rPanel.Look().m_Menu, Actions::eTerminate);
        m_WatchTimer.Stop();
        if (pKey != nullptr) {
            m_rPanel.PressKey(*pKey);
        }
        End("DEMO_END");
    } else if (Outcome != CRunDriver::Outcome::eRunning) {
        End("DEMO_FAILED");
    } else if (m_bHasRun && !m_rPanel.Look().m_bRunning) {
        End("DEMO_BROKEN_OFF");  // by the softkey
    } else {
        TellChanged();  // time goes by
    }
}

void CDemo::End(const char* pTextKey) {
    m_bPlaying = false;
    m_bPaused = false;
    m_Operator.Stop();
    m_WatchTimer.Stop();
    m_Text = ::GetText(pTextKey);
    m_bAnnounced = false;
    m_ReadUntil = 0;
    TellChanged();
}

void CDemo::TellChanged() {
    if (OnChanged) {
        OnChanged();
    }
}
