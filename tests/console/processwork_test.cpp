#include "console/processwork.h"

#include <gtest/gtest.h>

#include <QProcess>

#include "platform/qt/qteventloop.h"

namespace {

constexpr std::uint32_t eTimeout = 60000;

/// A shell that does what it is told until the test ends.
class CShell {
public:
    explicit CShell(const char* pCommand) { m_Process.start("/bin/sh", {"-c", pCommand}); }
    ~CShell() {
        m_Process.kill();
        m_Process.waitForFinished();
    }
    std::int64_t GetPid() const { return m_Process.processId(); }

private:
    QProcess m_Process;
};

}  // namespace

TEST(ProcessWork, OneThatComputesWorksHoweverSlowlyByTheClock) {
    CQtEventLoop Loop;
    const CShell Busy("while :; do :; done");
    CProcessWork Work;
    for (std::uint64_t nPeriods = 1; nPeriods <= 2; ++nPeriods) {
        bool bWorked = false;
        // Looks are so far apart that a starved process gets its part between them.
        const std::uint32_t TimerID =
            Loop.SetTimer(1000, [&](std::uint32_t) { bWorked = Work.HasWorked(Busy.GetPid()); });
        EXPECT_TRUE(Loop.RunUntil([&] { return bWorked; }, eTimeout));
        EXPECT_GE(Work.GetTotal(), nPeriods * CProcessWork::LEAST);
        Loop.KillTimer(TimerID);
    }
}

TEST(ProcessWork, OneThatWaitsDoesNotWork) {
    CQtEventLoop Loop;
    const CShell Waiting("exec sleep 1000");
    CProcessWork Work;
    Work.HasWorked(Waiting.GetPid());  // its start
    Loop.RunUntil([] { return false; }, 200);
    EXPECT_FALSE(Work.HasWorked(Waiting.GetPid()));
}

TEST(ProcessWork, OneThatHasEndedDoesNotWork) {
    QProcess Ended;
    Ended.start("/bin/true", QStringList());
    const std::int64_t Pid = Ended.processId();
    ASSERT_TRUE(Ended.waitForFinished(eTimeout));
    CProcessWork Work;
    EXPECT_FALSE(Work.HasWorked(Pid));
}
