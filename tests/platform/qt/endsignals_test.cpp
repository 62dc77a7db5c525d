#include "platform/qt/endsignals.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <csignal>
#include <optional>

#include "platform/qt/qteventloop.h"

namespace {

/// Far more than anything here needs.
constexpr std::uint32_t eTimeout = 60000;

/// Sets what a signal does, and puts back what it did.
class CScopedDisposition {
public:
    CScopedDisposition(int nSignal, void (*pHandler)(int))
        : m_nSignal(nSignal), m_pFormer(std::signal(nSignal, pHandler)) {}
    ~CScopedDisposition() { std::signal(m_nSignal, m_pFormer); }
    CScopedDisposition(const CScopedDisposition&) = delete;
    CScopedDisposition& operator=(const CScopedDisposition&) = delete;

private:
    int m_nSignal;
    void (*m_pFormer)(int);
};

void (*GetDisposition(int nSignal))(int) {
    struct sigaction Action {};
    sigaction(nSignal, nullptr, &Action);
    return Action.sa_handler;
}

class EndSignalsTest : public testing::TestWithParam<std::pair<int, const char*>> {};

}  // namespace

TEST_P(EndSignalsTest, IsNamedAndWakesTheLoop) {
    CQtEventLoop Loop;
    CEndSignals Signals;
    EXPECT_EQ(CEndSignals::GetName(), "");
    int nCalls = 0;
    Signals.Watch([&nCalls] { ++nCalls; });
    Loop.Post([] { std::raise(GetParam().first); });
    // Nothing else would make the loop look again.
    EXPECT_TRUE(Loop.RunUntil([] { return !CEndSignals::GetName().empty(); }, eTimeout));
    EXPECT_EQ(CEndSignals::GetName(), GetParam().second);
    EXPECT_TRUE(Loop.RunUntil([&] { return nCalls == 1; }, eTimeout));
    std::raise(SIGTERM);
    EXPECT_EQ(CEndSignals::GetName(), GetParam().second) << "the first one counts";
}

INSTANTIATE_TEST_SUITE_P(All, EndSignalsTest,
                         testing::Values(std::pair{SIGINT, "SIGINT"}, std::pair{SIGTERM, "SIGTERM"},
                                         std::pair{SIGHUP, "SIGHUP"}),
                         [](const auto& rInfo) { return rInfo.param.second; });

TEST(EndSignals, OneThatCameBeforeTheWatchIsToldToo) {
    CQtEventLoop Loop;
    CEndSignals Signals;
    std::raise(SIGTERM);
    bool bCalled = false;
    Signals.Watch([&bCalled] { bCalled = true; });
    EXPECT_TRUE(Loop.RunUntil([&] { return bCalled; }, eTimeout));
}

TEST(EndSignals, AProcessThatIsToOutliveItsTerminalDoes) {
    const CScopedDisposition Ignored(SIGHUP, SIG_IGN);
    const CEndSignals Signals;
    std::raise(SIGHUP);
    EXPECT_EQ(CEndSignals::GetName(), "");
}

TEST(EndSignals, WhatWasBeforeIsPutBack) {
    const auto pBefore = GetDisposition(SIGTERM);
    {
        const CEndSignals Signals;
        EXPECT_NE(GetDisposition(SIGTERM), pBefore);
    }
    EXPECT_EQ(GetDisposition(SIGTERM), pBefore);
    {
        const CEndSignals Signals;
        EXPECT_EQ(CEndSignals::GetName(), "") << "the next one begins anew";
    }
}

TEST(EndSignals, ProgramsThatAreStartedStillEndBySignals) {
    const CEndSignals Signals;
    QProcess Child;
    Child.start("/bin/sh", {"-c", "kill -TERM $$; echo survived"});
    ASSERT_TRUE(Child.waitForFinished(eTimeout));
    EXPECT_EQ(Child.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(Child.readAll(), "");
}
