// What must hold at the window whatever an operator does: nothing asserts, no run ends unasked, no
// calibration is lost, no label is cut off. Ten thousand things done at random, always the same ones.
#include "tests/system/randomoperator.h"
#include "tests/support/casenames.h"

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int ACTIONS = 60;
#else
constexpr int ACTIONS = 500;
#endif

class RandomOperatorTest : public CRandomOperatorTestBase,
                           public testing::WithParamInterface<std::uint32_t> {};

}  // namespace

TEST_P(RandomOperatorTest, BreaksNothing) {
    constexpr std::uint32_t KINDS = 3;
    if (GetParam() % KINDS == 1) {
        m_Run.m_Options.m_Methods = {"screws"};
    } else if (GetParam() % KINDS == 2) {
        m_Run.m_Rotor = CRotorFile::GetBuiltIn(CRotorFile::eLanner);
        m_Run.m_Options.m_Mode = "two-plane";
    }
    m_Run.m_Rotor.m_RampRpmPerS = 6000.0;
    Play(GetParam(), ACTIONS);
    if (ACTIONS >= 500) {
        EXPECT_GT(GetFinished(), 0) << "of " << GetEnded() << ": too impatient to show anything";
    }
    RecordProperty("runs_finished", GetFinished());
    RecordProperty("runs_ended", GetEnded());
}

INSTANTIATE_TEST_SUITE_P(All, RandomOperatorTest, testing::Range(1U, 21U), CaseNames::ByNumber("Seed"));
