#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "console/session.h"
#include "console/trainingsituations.h"
#include "console/trainingslip.h"
#include "platform/system/timer.h"

/// How a situation was mastered.
struct CTrainingResult {
    bool m_bMastered = false;
    std::string m_Text;  ///< what happened, and what there is to learn
};

/// A situation that is under way in a session: plays its troubles, and judges each run when it has ended, by
/// what the page showed last and by what the simulated rotor really has left.
class CTrainingLesson {
public:
    CTrainingLesson(const CTrainingSituation& rSituation, CConsoleSession& rSession);
    ~CTrainingLesson();
    CTrainingLesson(const CTrainingLesson&) = delete;
    CTrainingLesson& operator=(const CTrainingLesson&) = delete;

    const CTrainingSituation& GetSituation() const { return m_rSituation; }
    /// What the helper makes of the page's wish.
    std::vector<CFitting> Fit(std::vector<CFitting> Wanted) { return m_Slip.Fit(std::move(Wanted)); }
    /// Of the run that ended last; nothing before.
    const std::optional<CTrainingResult>& GetResult() const { return m_Result; }

    std::function<void(const CTrainingResult&)> OnResult;

private:
    static constexpr std::uint32_t PERIOD = 100;  ///< ms between two looks

    void Look();
    void PlayTrouble(const CSituation& rSituation);
    CTrainingResult Judge() const;
    CTrainingResult JudgeEnding() const;
    /// Largest reading without noise, of the planes that are balanced.
    double GetTruth() const;

    const CTrainingSituation& m_rSituation;
    CConsoleSession& m_rSession;
    CTrainingSlip m_Slip;
    CTimer m_Timer;
    std::optional<CSituation> m_LastSeen;  ///< of the run that is under way
    std::int32_t m_Activity = 0;
    std::set<std::uint32_t> m_Warnings;
    bool m_bTroublePlayed = false;
    std::optional<CTrainingResult> m_Result;
};
