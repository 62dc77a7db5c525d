// What a run knows of its modules: their frames go through the window, the mappers and the line as ever; the
// procedure is the one that only remembers.
#include <gmock/gmock.h>

#include "contract/hostmessages.h"
#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/linediscipline.h"
#include "tests/rvdlm/m_rtr/rtr_trim/mainwndfixture.h"
#include "tests/support/frames.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr std::uint8_t MASTER = 5;
constexpr std::uint8_t SLAVE = 6;

class ModuleWatch : public CMainWndFixture {
protected:
    ModuleWatch() {
        CLinkPair Pair = MakeLinkPair();
        m_pModules = std::move(Pair.m_pSecond);
        m_pModules->OnBytes = [this](std::span<const std::uint8_t> Bytes) { m_Decoder.Put(Bytes); };
        m_pModules->Open();
        rvCOM::SetLink(std::move(Pair.m_pFirst));
        m_Loop.Advance(1);
    }
    ~ModuleWatch() override {
        m_pWnd.reset();
        rvCOM::SetLink(nullptr);
    }
    /// A run in lock at 3000 rpm, whose modules have told their state. Flags as for Init.
    void StartRun(LPARAM Flags) {
        CMainWndMakers Makers = FakeMakers();
        Makers.m_MakeMapper = ::MakeMapper;
        Create(Makers);
        Init(Flags);
        m_Modules = {MASTER};
        if (Flags == KESTREL_TWO_PLANE) {
            m_Modules.push_back(SLAVE);
        }
        Identify();
        ReportSet(MakeSet());
        m_Loop.Advance(3000);  // the questions of the beginning are given up
        for (const std::uint8_t Module : m_Modules) {
            State(Module, true);
        }
        Speed(3000);
        Act(102);
        Forget();
        ForgetQuestions();
    }
    /// Also those that are still to be answered.
    void ForgetQuestions() {
        m_Questions.clear();
        m_New.clear();
    }
    void Put(std::vector<std::uint8_t> Frame) {
        Frame.insert(Frame.begin(), {0, 0, 0});
        m_pWnd->SendMessage(WM_RV_RAWDATA_FIRST, reinterpret_cast<WPARAM>(Frame.data()),
                            static_cast<LPARAM>(Frame.size()));
    }
    void State(std::uint8_t Module, bool bInLock, std::uint8_t Destination = 0) {
        Put({0x08, Module, Destination, 7, 0, 0, 0, static_cast<std::uint8_t>(bInLock ? 0 : 0x20)});
    }
    void Answer(std::uint8_t Module, bool bInLock) { State(Module, bInLock, 1); }
    void Speed(std::uint16_t RPM) {
        Put({0x1C, MASTER, 0, static_cast<std::uint8_t>(RPM & 0xFFU), static_cast<std::uint8_t>(RPM >> 8U)});
    }
    void Reading(std::uint8_t Module) { Put({0x1E, Module, 0, 1, 0, 2, 0}); }
    /// Lets time pass while modules report readings every 50 ms; those that answer a question for their state
    /// do so at once.
    void Pass(std::uint64_t Milliseconds, const std::vector<std::uint8_t>& rReporting,
              const std::vector<std::uint8_t>& rAnswering = {}) {
        for (std::uint64_t Passed = 0; Passed < Milliseconds; Passed += 50) {
            for (const std::uint8_t Module : rReporting) {
                Reading(Module);
            }
            m_Loop.Advance(50);
            for (const std::string& rQuestion : std::exchange(m_New, {})) {
                const std::vector<std::uint8_t> Question = Bytes(rQuestion);
                const std::uint8_t Module = Question[2];
                if (Question[0] == 0x08 && std::ranges::find(rAnswering, Module) != rAnswering.end()) {
                    Answer(Module, true);
                }
            }
        }
    }
    std::vector<std::string> GetLockCalls() {
        std::vector<std::string> Calls = GetSequenceCalls();
        std::erase_if(Calls, [](const std::string& rCall) { return !rCall.starts_with("OutOfLock"); });
        return Calls;
    }

    std::vector<std::uint8_t> m_Modules;
    std::vector<std::string> m_Questions;  ///< frames that the modules were sent
    std::vector<std::string> m_New;        ///< the same, until Pass has looked at them
    std::unique_ptr<IFByteLink> m_pModules;
    LineDiscipline::CDecoder m_Decoder{[this](std::span<const std::uint8_t> Frame) {
        m_Questions.push_back(Hex(Frame));
        m_New.push_back(Hex(Frame));
    }};
};

}  // namespace

TEST_F(ModuleWatch, AsksForAStateThatIsASecondOldAndTheAnswerHasNoEffect) {
    StartRun(KESTREL_PLANE1);
    Pass(5000, m_Modules, m_Modules);
    EXPECT_THAT(m_Questions, testing::SizeIs(testing::AllOf(testing::Ge(3U), testing::Le(5U))));
    EXPECT_THAT(m_Questions, testing::Each("08 01 05"));
    EXPECT_THAT(GetLockCalls(), IsEmpty());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(ModuleWatch, AsksWhenSamplingBeginsHoweverNewTheStateIs) {
    StartRun(KESTREL_PLANE1);
    Pass(100, m_Modules);
    State(MASTER, true);
    m_Loop.Advance(1);
    ASSERT_THAT(m_Questions, IsEmpty());
    m_pWnd->PleaseQueryXYValuesNOW();
    m_Loop.Advance(1);
    EXPECT_THAT(m_Questions, Contains("08 01 05"));
}

TEST_F(ModuleWatch, LockWhoseReturnWasReportedInALostFrameIsFoundByAsking) {
    StartRun(KESTREL_PLANE1);
    State(MASTER, false);
    Pass(3000, m_Modules, m_Modules);
    EXPECT_THAT(GetLockCalls(), ElementsAre("OutOfLock 1", "OutOfLock 0"));
}

TEST_F(ModuleWatch, LossWhoseReportIsLostIsFoundByAsking) {
    StartRun(KESTREL_PLANE1);
    Pass(1500, m_Modules);
    ASSERT_THAT(m_Questions, Not(IsEmpty()));
    Answer(MASTER, false);
    EXPECT_THAT(GetLockCalls(), ElementsAre("OutOfLock 1"));
}

// Both have been seen once; from then on neither waits for the other.
TEST_F(ModuleWatch, ReportsOfTheMasterReachTheProcedureAtOnceWhateverTheSlaveLeavesUnanswered) {
    StartRun(KESTREL_TWO_PLANE);
    for (int i = 0; i < 50; ++i) {
        m_Sequence.m_Calls.clear();
        State(MASTER, false);
        EXPECT_THAT(GetSequenceCalls(), ElementsAre("OutOfLock 1", "InvalidRPM 0"));
        m_Sequence.m_Calls.clear();
        State(MASTER, true);
        EXPECT_THAT(GetSequenceCalls(), ElementsAre("OutOfLock 0", "InvalidRPM 0"));
        Pass(550, m_Modules, {MASTER});
    }
    EXPECT_THAT(m_Questions, Contains("08 01 06"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(ModuleWatch, AnswerThatAReportHasOvertakenCountsForNothing) {
    StartRun(KESTREL_PLANE1);
    Pass(1500, m_Modules);
    ASSERT_THAT(m_Questions, Not(IsEmpty()));
    State(MASTER, false);
    m_Sequence.m_Calls.clear();
    Answer(MASTER, true);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
}

TEST_F(ModuleWatch, AnswerOfBeforeTheSpindleStoppedCountsForNothing) {
    StartRun(KESTREL_PLANE1);
    State(MASTER, false);
    Pass(1500, m_Modules);
    ASSERT_THAT(m_Questions, Not(IsEmpty()));
    Speed(0);
    m_Sequence.m_Calls.clear();
    Answer(MASTER, true);
    EXPECT_THAT(GetSequenceCalls(), IsEmpty());
}

TEST_F(ModuleWatch, SilentPlaneCountsAsOutOfLockWhateverTheOtherModuleSays) {
    StartRun(KESTREL_TWO_PLANE);
    Pass(1000, m_Modules, m_Modules);
    Pass(1500, {MASTER}, {MASTER});
    EXPECT_THAT(GetLockCalls(), ElementsAre("OutOfLock 1"));
    State(MASTER, true);
    EXPECT_THAT(GetLockCalls(), ElementsAre("OutOfLock 1", "OutOfLock 1"));
    Pass(20000, {MASTER}, {MASTER});
    EXPECT_EQ(GetLockCalls().size(), 2U);
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("readings stay away: measuring waits"));
}

// No readings are expected there, so only the missing answers tell.
TEST_F(ModuleWatch, ModuleThatAnswersNoMoreIsSilentOutOfLockToo) {
    StartRun(KESTREL_PLANE1);
    Pass(1500, m_Modules, m_Modules);
    State(MASTER, false);
    Pass(6000, {});
    EXPECT_THAT(GetLockCalls(), ElementsAre("OutOfLock 1", "OutOfLock 1"));
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("readings stay away: measuring waits"));
}

TEST_F(ModuleWatch, BehindASilenceTheStateIsHeardOfFirst) {
    StartRun(KESTREL_TWO_PLANE);
    Pass(1000, m_Modules, m_Modules);
    Pass(3000, {MASTER}, {MASTER});
    m_Sequence.m_Calls.clear();
    Pass(500, m_Modules, {MASTER});
    EXPECT_THAT(GetLockCalls(), IsEmpty());
    Pass(600, m_Modules, m_Modules);
    EXPECT_THAT(GetLockCalls(), ElementsAre("OutOfLock 0"));
}

TEST_F(ModuleWatch, ModuleThatReportsAgainButAnswersNothingIsBelievedAfterTwoSeconds) {
    StartRun(KESTREL_TWO_PLANE);
    Pass(1000, m_Modules, {MASTER});
    Pass(3000, {MASTER}, {MASTER});
    m_Sequence.m_Calls.clear();
    Pass(1900, m_Modules, {MASTER});
    EXPECT_THAT(GetLockCalls(), IsEmpty());
    Pass(500, m_Modules, {MASTER});
    EXPECT_THAT(GetLockCalls(), ElementsAre("OutOfLock 0"));
}

TEST_F(ModuleWatch, SecondRunOnTheSameDeadLineIsToldToo) {
    StartRun(KESTREL_PLANE1);
    Pass(1000, m_Modules, m_Modules);
    for (int nRun = 0; nRun < 2; ++nRun) {
        Pass(5000, {});
        EXPECT_THAT(GetLockCalls(), ElementsAre("OutOfLock 1")) << "run " << nRun;
        Act(4501);
        Act(102);
        Forget();
    }
}

// What the run before left unanswered is no sign of a dead line in this one.
TEST_F(ModuleWatch, RunBehindADeadLineIsNotSilentFromItsBeginning) {
    StartRun(KESTREL_PLANE1);
    Pass(1000, m_Modules, m_Modules);
    Pass(5000, {});
    Act(4501);
    Act(102);
    Forget();
    Pass(1000, {});
    Pass(3000, m_Modules, m_Modules);
    EXPECT_THAT(GetLockCalls(), IsEmpty());
}

TEST_F(ModuleWatch, SpindleAtRestMayBeSilentAndIsNotAskedFor) {
    StartRun(KESTREL_PLANE1);
    Speed(0);
    ForgetQuestions();
    Pass(60000, {});
    EXPECT_THAT(m_Questions, IsEmpty());
    EXPECT_THAT(GetLockCalls(), IsEmpty());
}

TEST_F(ModuleWatch, NothingIsAskedWhereTheStateDoesNotMatter) {
    StartRun(KESTREL_PLANE1);
    m_Sequence.m_bDependsOnModuleState = false;
    Pass(10000, m_Modules);
    EXPECT_THAT(m_Questions, IsEmpty());
}

TEST_F(ModuleWatch, NothingIsAskedOnceTheHostHasEndedTheRun) {
    StartRun(KESTREL_PLANE1);
    m_pWnd->SendMessage(WM_RV_DESTROYPENDING);
    ForgetQuestions();
    Pass(10000, m_Modules);
    EXPECT_THAT(m_Questions, IsEmpty());
}
