// Each situation of the training, played through the real frames under virtual time: the right way it gets
// its tick, the wrong way it doesn't and is told why.
#include <gmock/gmock.h>

#include <fstream>
#include <memory>

#include "console/commission.h"
#include "console/traininglesson.h"
#include "console/trainingsetup.h"
#include "console/trainingticks.h"
#include "contract/hostmessages.h"
#include "contract/warnings.h"
#include "platform/system/virtualeventloop.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/testpaths.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using Mode = PreBalDB::CPreBalDatabase::BalancingMode;

/// The helper of a lesson between the operator and the machine; one who is watched puts right what he did.
class CHelpedMachine : public IFMachine {
public:
    CHelpedMachine(IFMachine& rMachine, CTrainingLesson& rLesson, bool bWatched)
        : m_rMachine(rMachine), m_rLesson(rLesson), m_bWatched(bWatched) {}
    void Request(const json& rRequest, Done OnAnswer) override {
        if (!rRequest.contains("weights")) {
            m_rMachine.Request(rRequest, std::move(OnAnswer));
            return;
        }
        CFitting Wanted;
        Wanted.m_Plane = rRequest["weights"]["plane"].get<std::size_t>() - 1;
        Wanted.m_Angles = rRequest["weights"]["angles"].get<std::vector<int>>();
        const json Fitted = MakeRequest(m_rLesson.Fit({Wanted}).front());
        m_bErred = m_bErred || Fitted != rRequest;
        if (m_bWatched && Fitted != rRequest) {
            m_rMachine.Request(Fitted, [](const json&) {});
            m_rMachine.Request(rRequest, std::move(OnAnswer));
            return;
        }
        m_rMachine.Request(Fitted, std::move(OnAnswer));
    }
    bool HasErred() const { return m_bErred; }

private:
    IFMachine& m_rMachine;
    CTrainingLesson& m_rLesson;
    bool m_bWatched;
    bool m_bErred = false;
};

/// A trainee who does what the page says, but for what a test wants otherwise.
struct CTrainee {
    bool m_bWatchesHelper = true;
    bool m_bSetsConfigurationRight = true;
    /// When he ends the run by himself; never: at a measured verdict.
    std::function<bool(const CSituation&)> EndsRun = nullptr;
};

class CPlayed {
public:
    explicit CPlayed(const char* pId, const CTrainee& rTrainee) {
        COptions Options;
        Options.m_bTraining = true;
        Options.m_ModuleLibrary = TestProgram("librtr_trim.so");
        const CTrainingSituation& rSituation = Find(pId);
        const CTrainingSetup Setup(rSituation, Options);
        CVirtualEventLoop Loop;
        CConsoleSession Session(Setup.GetOptions(), &Setup.GetRotor(), Setup.GetDatabaseFile());
        Session.OnSay = [](const std::string&) {};
        Setup.Begin(Session);
        CTrainingLesson Lesson(rSituation, Session);
        EXPECT_TRUE(Session.Initialise());
        Session.Commission();
        if (rTrainee.m_bSetsConfigurationRight && Setup.GetOptions().m_pCommissionAs) {
            COptions Right = Setup.GetOptions();
            Right.m_bCommission = true;
            const CShownConfiguration Shown = *Session.GetShownConfiguration();
            CCommission(Right, Setup.GetRotor(), Mode::eModePlane1).SetUp(Shown.m_Machine, Shown.m_Name);
            Session.GetModule().SendMessage(WM_RV_STORECHANGED);
        }
        Play(Loop, Session, Lesson, rTrainee);
        if (Lesson.GetResult()) {
            m_Result = *Lesson.GetResult();
        } else {
            ADD_FAILURE() << pId << ": no run has ended";
        }
    }
    const CTrainingResult& GetResult() const { return m_Result; }
    bool HasErred() const { return m_bErred; }

    static const CTrainingSituation& Find(const std::string& rId) {
        for (const CTrainingSituation& rSituation : GetTrainingSituations()) {
            if (rSituation.m_pId == rId) {
                return rSituation;
            }
        }
        throw std::logic_error("no situation " + rId);
    }

private:
    void Play(CVirtualEventLoop& rLoop, CConsoleSession& rSession, CTrainingLesson& rLesson,
              const CTrainee& rTrainee) {
        const bool bAgain = rLesson.GetSituation().m_Goal == CTrainingSituation::Goal::eRebalanced;
        CHelpedMachine Machine(*rSession.GetMachine(), rLesson, rTrainee.m_bWatchesHelper);
        EXPECT_TRUE(rSession.StartProcedure(bAgain ? Actions::eRebalance : Actions::eStart));
        COperator Operator(rSession, &Machine, rSession.GetWorkingSpeed());
        Operator.SetHoleRings(rSession.GetHoleRings());
        Operator.Start();
        rLoop.RunUntil(
            [&] {
                return Operator.GetOutcome() != CRunDriver::Outcome::eRunning ||
                       (rTrainee.EndsRun && rTrainee.EndsRun(rSession.Look()));
            },
            1000000);
        Operator.Stop();
        rLoop.Advance(200);
        rSession.SendAction(Actions::eTerminate, Actions::eCommit);
        rLoop.Advance(1000);
        m_bErred = Machine.HasErred();
    }

    CTrainingResult m_Result;
    bool m_bErred = false;
};

bool HasWarning(const CSituation& rSituation, std::uint32_t Warning) {
    return rSituation.m_Progress.m_WarningMode == Warning;
}

void ExpectMastered(const char* pId, const CTrainee& rTrainee = {}) {
    const CPlayed Played(pId, rTrainee);
    EXPECT_TRUE(Played.GetResult().m_bMastered) << pId << ": " << Played.GetResult().m_Text;
    EXPECT_THAT(Played.GetResult().m_Text, testing::StartsWith("Done"));
}

void ExpectNotYet(const char* pId, const CTrainee& rTrainee, const std::string& rWhy) {
    const CPlayed Played(pId, rTrainee);
    EXPECT_FALSE(Played.GetResult().m_bMastered) << pId << ": " << Played.GetResult().m_Text;
    EXPECT_THAT(Played.GetResult().m_Text, HasSubstr("Not yet"));
    EXPECT_THAT(Played.GetResult().m_Text, HasSubstr(rWhy));
}

bool IsAtFirstMeasurement(const CSituation& rSituation) {
    return rSituation.m_Notification.GetAction() == CPreBalCodes::eMeasurementValuesOK;
}

bool IsAtUnmeasuredVerdict(const CSituation& rSituation) {
    return IsVerdict(rSituation.m_Notification.GetStep()) && !IsMeasuredVerdict(rSituation);
}

}  // namespace

TEST(TrainingTest, ThereAreTwelveSituationsWithTextsOfTheirOwn) {
    const auto Situations = GetTrainingSituations();
    EXPECT_EQ(Situations.size(), 12U);
    std::set<std::string> Keys;
    for (const CTrainingSituation& rSituation : Situations) {
        Keys.insert(
            {rSituation.m_pId, rSituation.m_pTitleKey, rSituation.m_pTaskKey, rSituation.m_pLessonKey});
    }
    EXPECT_EQ(Keys.size(), 48U);
}

TEST(TrainingTest, HeavyIsMasteredByPatienceAndNotByHaste) {
    ExpectMastered("heavy");
    ExpectNotYet("heavy", {.EndsRun = IsAtFirstMeasurement}, "before its final measurement");
}

TEST(TrainingTest, NoisyIsMasteredByAWholeMeasurementOnly) {
    ExpectMastered("noisy");
    ExpectNotYet("noisy", {.EndsRun = IsAtUnmeasuredVerdict}, "whole measurement");
}

TEST(TrainingTest, CounterClockwiseIsMasteredByTheRightDirectionOnly) {
    ExpectMastered("counter-clockwise");
    ExpectNotYet("counter-clockwise", {.m_bSetsConfigurationRight = false}, "mirrored");
}

TEST(TrainingTest, TheMirroredWeightIsToBeFound) {
    EXPECT_TRUE(CPlayed("mirrored", {}).HasErred());
    ExpectMastered("mirrored");
    ExpectNotYet("mirrored", {.m_bWatchesHelper = false}, "are left");
}

TEST(TrainingTest, TheForgottenWeightIsToBeFound) {
    EXPECT_TRUE(CPlayed("forgotten", {}).HasErred());
    ExpectMastered("forgotten");
    ExpectNotYet("forgotten", {.m_bWatchesHelper = false}, "are left");
}

TEST(TrainingTest, TheScaleIsMasteredByTheRightSenseOnly) {
    ExpectMastered("scale");
    ExpectNotYet("scale", {.m_bSetsConfigurationRight = false}, "are left");
}

TEST(TrainingTest, ATestRunWithoutEffectIsToBeEndedBehindItsWarning) {
    const auto Heeds = [](const CSituation& rSituation) {
        return HasWarning(rSituation, Warnings::eNoInfluence);
    };
    ExpectMastered("no-effect", {.EndsRun = Heeds});
    ExpectNotYet("no-effect", {.EndsRun = IsAtFirstMeasurement}, "before anything was wrong");
}

TEST(TrainingTest, MissingCapacityIsToBeHeeded) {
    const auto Heeds = [](const CSituation& rSituation) {
        return HasWarning(rSituation, Warnings::eCapacity);
    };
    ExpectMastered("capacity", {.EndsRun = Heeds});
    ExpectNotYet("capacity", {}, "went on to its end");
    ExpectNotYet("capacity", {.EndsRun = IsAtFirstMeasurement}, "before anything was wrong");
}

TEST(TrainingTest, OutOfLockIsMasteredByWaiting) {
    ExpectMastered("lock");
    ExpectNotYet("lock", {.EndsRun = IsAtUnmeasuredVerdict}, "whole measurement");
}

TEST(TrainingTest, ScrewsAreMasteredByFittingThemAll) {
    ExpectMastered("screws");
    ExpectNotYet("screws", {.EndsRun = IsAtFirstMeasurement}, "before its final measurement");
}

TEST(TrainingTest, TwoPlanesAreMasteredTogether) {
    ExpectMastered("two-planes");
    ExpectNotYet("two-planes", {.EndsRun = IsAtUnmeasuredVerdict}, "whole measurement");
}

TEST(TrainingTest, RebalancingIsMasteredFromWhereTheLastRunLeftTheWeights) {
    ExpectMastered("rebalancing");
    ExpectNotYet("rebalancing", {.EndsRun = IsAtUnmeasuredVerdict}, "whole measurement");
}

TEST(TrainingTest, TicksAreKeptAndADamagedFileIsNotLost) {
    const CTempDirectory Directory;
    const std::filesystem::path File = Directory.At("training.json");
    {
        CTrainingTicks Ticks(File);
        EXPECT_EQ(Ticks.FindFirstOpen(), 0U);
        EXPECT_TRUE(Ticks.Add("heavy"));
        EXPECT_TRUE(Ticks.Add("noisy"));
    }
    const CTrainingTicks Again(File);
    EXPECT_TRUE(Again.Has("heavy"));
    EXPECT_FALSE(Again.Has("scale"));
    EXPECT_EQ(Again.FindFirstOpen(), 2U);
    std::ofstream(File) << "{\"mastered\": [";
    CTrainingTicks Damaged(File);
    EXPECT_FALSE(Damaged.Has("heavy"));
    EXPECT_TRUE(Damaged.Add("scale"));
    EXPECT_TRUE(std::filesystem::exists(File.string() + ".unreadable"));
    EXPECT_TRUE(CTrainingTicks(File).Has("scale"));
}

TEST(TrainingTest, TheHelperErrsOnceAndOnlyWhereItMatters) {
    CTrainingSlip Mirrored(CTrainingSituation::Slip::eMirrored);
    const auto Fit = [](CTrainingSlip& rSlip, std::vector<int> Angles) {
        return rSlip.Fit({{0, 0, std::move(Angles), false, {}}}).front().m_Angles;
    };
    using testing::ElementsAre;
    EXPECT_THAT(Fit(Mirrored, {0, 180}), ElementsAre(0, 180));
    EXPECT_THAT(Fit(Mirrored, {5, 40}), ElementsAre(5, 320)) << "5° and 355° are too near to be noticed";
    EXPECT_TRUE(Mirrored.HasStruck());
    EXPECT_THAT(Fit(Mirrored, {5, 40}), ElementsAre(5, 40));
    CTrainingSlip Forgotten(CTrainingSituation::Slip::eForgotten);
    EXPECT_THAT(Fit(Forgotten, {90, 270}), ElementsAre(90, 270));
    EXPECT_THAT(Fit(Forgotten, {5, 40}), ElementsAre(5));
    EXPECT_THAT(Fit(Forgotten, {5, 40}), ElementsAre(5, 40));
}
