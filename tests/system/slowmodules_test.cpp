// Modules that report seldom, don't answer, or answer late; and lines that are dead.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "contract/actions.h"
#include "tests/support/logcapture.h"
#include "tests/system/wholerun.h"

namespace {

using nlohmann::json;
using Procedure = COptions::Procedure;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

struct CFamilyCase {
    const char* m_pName;
    CRotorFile::Modules m_Modules;
    const char* m_pMode;
};
constexpr CFamilyCase FAMILIES[] = {
    {"Kestrel", CRotorFile::eKestrel, ""},
    {"KestrelPair", CRotorFile::eKestrelPair, ""},
    {"LannerPlane2", CRotorFile::eLanner, "plane2"},
    {"LannerTwoPlane", CRotorFile::eLanner, "two-plane"},
};

CRotorFile MakeRotor(CRotorFile::Modules Modules, std::uint32_t PeriodMs) {
    CRotorFile Rotor = CRotorFile::GetBuiltIn(Modules);
    Rotor.m_NoiseCounts = 0.0;
    Rotor.m_ReportPeriodMs = PeriodMs;
    return Rotor;
}

/// Without noise: rounding to whole counts and degrees leaves less.
constexpr double SMALL = 0.05;

/// A run without a page that has a request carried out once its configuration is found.
class CSlowRun : public CWholeRun {
public:
    CSlowRun(const CFamilyCase& rFamily, std::uint32_t PeriodMs, const json& rRequest = nullptr)
        : CWholeRun(MakeRotor(rFamily.m_Modules, PeriodMs)) {
        m_Options.m_Mode = rFamily.m_pMode;
        m_Options.m_bShowPage = false;
        OnSituation = [rRequest, bDone = false](const CSituation&, CConsoleSession& rSession) mutable {
            if (!bDone && !rRequest.is_null()) {
                bDone = true;
                EXPECT_EQ(rSession.GetSimulator()->Carry(rRequest), json({{"ok", true}}));
            }
        };
    }
    void ExpectGoodRun() {
        const CLogCapture Log;
        EXPECT_EQ(Run(Procedure::ePrebalanceAndRebalance), eExitWithinTarget) << m_Lines.back();
        EXPECT_THAT(GetAssertions(), testing::IsEmpty());
        ASSERT_TRUE(m_bInitialised);
        for (const std::complex<double>& rResidual : m_Residuals) {
            if (m_Options.m_Mode != "plane2" || &rResidual == &m_Residuals.back()) {
                EXPECT_LT(std::abs(rResidual), SMALL);
            }
        }
        EXPECT_THAT(Log.GetTexts("Warning"), Not(Contains(HasSubstr("readings stay away"))));
    }
};

using CCase = std::tuple<CFamilyCase, std::uint32_t>;

class SlowModule : public testing::TestWithParam<CCase> {};

std::string NameCase(const testing::TestParamInfo<CCase>& rInfo) {
    return std::string(std::get<0>(rInfo.param).m_pName) + std::to_string(std::get<1>(rInfo.param)) + "Ms";
}

constexpr std::uint32_t PERIODS[] = {200, 1000, 2000, 5000};

}  // namespace

TEST_P(SlowModule, IsBalancedInGoodOrder) {
    const auto& [rFamily, PeriodMs] = GetParam();
    CSlowRun(rFamily, PeriodMs).ExpectGoodRun();
}

// Answers take longer than the module's next reports, and are older than these when they come.
TEST_P(SlowModule, IsBalancedInGoodOrderWithLateAnswers) {
    const auto& [rFamily, PeriodMs] = GetParam();
    CSlowRun(rFamily, PeriodMs, {{"answer_delay", {{"value", 700}, {"overtaken", true}}}}).ExpectGoodRun();
}

INSTANTIATE_TEST_SUITE_P(WholeRun, SlowModule,
                         testing::Combine(testing::ValuesIn(FAMILIES), testing::ValuesIn(PERIODS)), NameCase);

namespace {

class MuteSlave : public testing::TestWithParam<std::uint32_t> {};

}  // namespace

// The slave answers nothing any more, but reports as ever: the pair is balanced all the same.
TEST_P(MuteSlave, IsBalancedAllTheSame) {
    const json Fault = {{"fault", {{"kind", "drop"}, {"only", "answers"}, {"next", 1000000}, {"module", 2}}}};
    CSlowRun Run(FAMILIES[1], GetParam(), Fault);
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget) << Run.m_Lines.back();
    EXPECT_THAT(Run.GetAssertions(), testing::IsEmpty());
    for (const std::complex<double>& rResidual : Run.m_Residuals) {
        EXPECT_LT(std::abs(rResidual), SMALL);
    }
}

INSTANTIATE_TEST_SUITE_P(WholeRun, MuteSlave, testing::Values(50, 200, 1000, 2000, 5000),
                         [](const auto& rInfo) { return std::to_string(rInfo.param) + "Ms"; });

namespace {

struct CSilentCase {
    CFamilyCase m_Family;
    std::uint32_t m_PeriodMs;
    int m_Module;  ///< that falls silent, 0 for all
};

/// A balanced machine at its speed, and its line dead.
class DeadLine : public testing::TestWithParam<CSilentCase> {
protected:
    DeadLine() : m_Run(MakeRotor(GetParam().m_Family.m_Modules, GetParam().m_PeriodMs)) {
        m_Run.m_Options.m_Mode = GetParam().m_Family.m_pMode;
        m_Run.m_Options.m_bShowPage = false;
        m_pSession = std::make_unique<CConsoleSession>(m_Run.m_Options, &m_Run.m_Rotor,
                                                       m_Run.m_Installation.GetDatabaseFile().string());
    }
    void Carry(const json& rRequest) {
        EXPECT_EQ(m_pSession->GetSimulator()->Carry(rRequest), json({{"ok", true}}));
    }
    void Balance() {
        ASSERT_TRUE(m_pSession->Initialise());
        m_pSession->Commission();
        CHeadlessRun Headless(*m_pSession, m_Run.m_Options);
        Headless.OnProgress = [](const std::string&) {};
        ASSERT_EQ(Headless.Run(), eExitWithinTarget);
    }
    void Silence() {
        json Fault = {{"kind", "silence_ms"}, {"value", 3600000}};
        if (GetParam().m_Module != 0) {
            Fault["module"] = GetParam().m_Module;
        }
        Carry({{"fault", Fault}});
    }
    /// Lets a re-balancing run for 30 s, and ends it.
    void ExpectThatNothingIsMeasured() {
        m_pSession->SendAction(Actions::eRebalance, Actions::eNone);
        ASSERT_TRUE(m_pSession->Look().m_bRunning);
        for (int nTick = 0; nTick < 300; ++nTick) {
            m_Loop.Advance(100);
            ASSERT_NE(m_pSession->Look().m_Notification.GetAction(), CPreBalCodes::eMeasurementValuesOK)
                << nTick * 100 << " ms";
        }
        EXPECT_EQ(m_pSession->Look().m_Warning, 3U);
        m_pSession->SendAction(Actions::eTerminate, Actions::eCommit);
        m_Loop.Advance(1000);
    }

    CVirtualEventLoop m_Loop;
    CWholeRun m_Run;
    std::unique_ptr<CConsoleSession> m_pSession;
};

}  // namespace

TEST_P(DeadLine, IsMeasuredInNoRun) {
    Balance();
    Silence();
    ExpectThatNothingIsMeasured();
    ExpectThatNothingIsMeasured();
}

// A window of samples that is begun before may end on a line that has just died, but none is begun on it.
TEST_P(DeadLine, IsNeverAveragedWheneverItDies) {
    constexpr std::uint32_t WINDOW = 2000;  // 40 samples, one every 50 ms
    Balance();
    for (std::uint32_t Death = 0; Death < 8000; Death += 700) {
        SCOPED_TRACE(Death);
        m_pSession->SendAction(Actions::eRebalance, Actions::eNone);
        std::optional<std::uint32_t> Measured;
        for (std::uint32_t Now = 0; Now < 40000; Now += 100) {
            if (Now == Death) {
                Silence();
            }
            m_Loop.Advance(100);
            if (!Measured &&
                m_pSession->Look().m_Notification.GetAction() == CPreBalCodes::eMeasurementValuesOK) {
                Measured = Now;
            }
        }
        EXPECT_LE(Measured.value_or(0), Death + WINDOW);
        EXPECT_EQ(m_pSession->Look().m_Warning, 3U);
        Carry({{"fault", {{"kind", "silence_ms"}, {"value", 0}}}});
        m_pSession->SendAction(Actions::eTerminate, Actions::eCommit);
        m_Loop.Advance(20000);
    }
}

TEST_P(DeadLine, IsMeasuredWhenItLivesAgain) {
    Balance();
    Silence();
    m_pSession->SendAction(Actions::eRebalance, Actions::eNone);
    m_Loop.Advance(20000);
    Carry({{"fault", {{"kind", "silence_ms"}, {"value", 0}}}});
    m_Loop.Advance(25000);
    EXPECT_EQ(m_pSession->Look().m_Notification.GetAction(), CPreBalCodes::eMeasurementValuesOK);
    EXPECT_EQ(m_pSession->Look().m_Warning, 0U);
}

INSTANTIATE_TEST_SUITE_P(WholeRun, DeadLine,
                         testing::Values(CSilentCase{FAMILIES[0], 50, 0}, CSilentCase{FAMILIES[0], 5000, 0},
                                         CSilentCase{FAMILIES[1], 50, 0}, CSilentCase{FAMILIES[1], 50, 1},
                                         CSilentCase{FAMILIES[1], 50, 2}, CSilentCase{FAMILIES[1], 2000, 2},
                                         CSilentCase{FAMILIES[3], 200, 0}),
                         [](const auto& rInfo) {
                             return std::string(rInfo.param.m_Family.m_pName) +
                                    std::to_string(rInfo.param.m_PeriodMs) + "MsModule" +
                                    std::to_string(rInfo.param.m_Module);
                         });
