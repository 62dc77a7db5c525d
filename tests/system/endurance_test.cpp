// Some minutes of the endurance run of bench/endurance: sessions of all kinds, one after the other in one
// process, while everything around them goes wrong.
#include <gmock/gmock.h>

#include "tests/endurance/endurance.h"
#include "tests/support/tempdirectory.h"

namespace {

class EnduranceTest : public testing::TestWithParam<std::uint64_t> {};

}  // namespace

TEST_P(EnduranceTest, APromiseIsKeptWhateverGoesWrong) {
    const CTempDirectory Log;
    CEndurance Endurance(1, Log.GetPath().string());
    Endurance.WorkShift(GetParam());
    EXPECT_THAT(Endurance.GetTally().m_Broken, testing::IsEmpty());
    EXPECT_GT(Endurance.GetTally().m_VirtualMs, 0U);
}

INSTANTIATE_TEST_SUITE_P(Shifts, EnduranceTest, testing::Range(std::uint64_t{0}, std::uint64_t{20}));

// A re-balancing counted from where weights no longer were; in the first of them the module had also missed
// that the spindle stands.
INSTANTIATE_TEST_SUITE_P(OnceBroken, EnduranceTest,
                         testing::Values(std::uint64_t{1000232}, std::uint64_t{1000620},
                                         std::uint64_t{1000647}));
