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
