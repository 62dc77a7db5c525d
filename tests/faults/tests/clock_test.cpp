// A computer whose clock is set back and forth, or has forgotten the time: runs go by another clock, and the
// archive counts them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "archive/runstore.h"
#include "tests/faults/diskplan.h"
#include "tests/faults/faultseries.h"
#include "tests/support/testpaths.h"

using testing::IsEmpty;

namespace {

TEST(ClockTest, ARunWhileTheClockIsSetBackAndForthByHoursIsTheSame) {
    CFaultSeries Series;
    CFaultSeries::CFault Fault{DiskPlan::COUNT};
    Fault.m_ClockShifts = "0,7200,-18000,86400,-3,-315360000";
    const auto Outcome = Series.Run(Fault, true);
    EXPECT_THAT(Outcome.m_Faults, IsEmpty()) << Outcome.m_Program.m_Output;
    EXPECT_EQ(Outcome.m_Program.m_Status, 0);
    EXPECT_TRUE(Outcome.m_bRunComplete);
    EXPECT_EQ(Outcome.m_Report, Series.GetReport());
}

/// An installation whose runs each have a clock of their own.
class ClocksTest : public testing::Test {
protected:
    CStartedProgram Run(std::vector<std::string> Arguments, const std::string& rShift) const {
        Arguments.insert(Arguments.begin(), TestProgram("console"));
        Arguments.insert(Arguments.end(), {"--config-dir", m_Directory.At("root"), "--language", "en"});
        return CStartedProgram::Run(Arguments, {{"LD_PRELOAD", TestProgram("libdiskfaults.so")},
                                                {"ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0"},
                                                {"CORVANE_DATABASE", ""},
                                                {DiskPlan::CLOCK, rShift}});
    }
    /// Numbers and rotors, by number.
    std::vector<std::pair<std::int64_t, std::string>> List() const {
        std::vector<std::pair<std::int64_t, std::string>> Runs;
        for (const auto& rRun : CRunStore("sqlite:" + m_Directory.At("root/cnf/prebal.db")).List({})) {
            Runs.emplace_back(rRun.m_Id, rRun.m_Rotor);
        }
        std::ranges::sort(Runs);
        return Runs;
    }

    const CTempDirectory m_Directory;
};

using Runs = std::vector<std::pair<std::int64_t, std::string>>;

TEST_F(ClocksTest, RunsAreCountedAsTheyWereMadeWhateverTheClockSays) {
    for (const auto& [pRotor, pShift] :
         {std::pair{"first", "0"}, {"second", "-315360000"}, {"third", "36000"}}) {
        ASSERT_EQ(Run({"--headless", "--rotor-name", pRotor}, pShift).m_Status, 0);
    }
    EXPECT_EQ(List(), (Runs{{1, "first"}, {2, "second"}, {3, "third"}}));
}

// A computer whose battery is empty believes to be ten years back.
TEST_F(ClocksTest, TheRunThatWasMadeLastIsNotTheOldestOneWhenOldOnesAreRemoved) {
    for (const auto& [pRotor, pShift] : {std::pair{"first", "0"}, {"second", "-315360000"}}) {
        ASSERT_EQ(Run({"--headless", "--rotor-name", pRotor}, pShift).m_Status, 0);
    }
    const CStartedProgram Pruned = Run({"archive", "prune", "--keep", "1", "--yes"}, "0");
    ASSERT_EQ(Pruned.m_Status, 0) << Pruned.m_Output;
    EXPECT_EQ(List(), (Runs{{2, "second"}}));
}

}  // namespace
