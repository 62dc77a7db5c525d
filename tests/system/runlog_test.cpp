// The story of runs in the log.
#include <gtest/gtest.h>

#include "platform/rvlog/logcomponent.h"
#include "tests/support/logcapture.h"
#include "tests/system/wholerun.h"

namespace {

class RunLogTest : public testing::Test {
protected:
    RunLogTest() {
        CLogComponent::Choose(
            {CLogComponent::ERROR | CLogComponent::WARNING | CLogComponent::INFORMATION, {}});
    }
    ~RunLogTest() override { CLogComponent::Choose({}); }
    /// The first line from m_Next on that begins so, or fails.
    void ExpectNext(const std::string& rBeginning) {
        const std::vector<std::string> Texts = m_Log.GetTexts("Information");
        while (m_Next < Texts.size() && !Texts[m_Next].starts_with(rBeginning)) {
            ++m_Next;
        }
        EXPECT_LT(m_Next, Texts.size()) << rBeginning;
    }

    CWholeRun m_Run{CRotorFile::GetBuiltIn()};
    const CLogCapture m_Log;
    std::size_t m_Next = 0;
};

}  // namespace

TEST_F(RunLogTest, AGoodRunIsToldFromTheModuleToTheResult) {
    m_Run.m_Options.m_RotorName = "Spindle 7";
    ASSERT_EQ(m_Run.Run(COptions::Procedure::ePrebalanceAndRebalance), eExitWithinTarget);
    const std::string Machine = "machine " + m_Run.m_MachineName;
    ExpectNext("found kestrel, address 5: " + Machine + ", configuration Default, not calibrated");
    ExpectNext("pre-balancing begins, driven by the program: " + Machine +
               ", configuration Default, target 5, rotor Spindle 7");
    ExpectNext("weights of plane 1 to 0°, 180°");
    ExpectNext("3000 rpm, in lock, samples are taken");
    ExpectNext("measured  120");
    ExpectNext("weights of plane 1 to 30°, 180°");
    ExpectNext("3000 rpm, in lock, samples are taken");
    ExpectNext("measured ");
    ExpectNext("3000 rpm, in lock, samples are taken");
    ExpectNext("final ");
    ExpectNext("pre-balancing is finished: SetupSuccess, saved");
    ExpectNext("re-balancing begins");
    ExpectNext("final ");
    ExpectNext("re-balancing is finished: RebalSuccess, saved");
}

TEST_F(RunLogTest, ALockThatIsLostIsTold) {
    m_Run.m_Rotor.m_RampRpmPerS = 1500;
    ASSERT_EQ(m_Run.Run(COptions::Procedure::ePrebalance), eExitWithinTarget);
    ExpectNext("3000 rpm, out of lock");
    ExpectNext("3000 rpm, in lock");
}
