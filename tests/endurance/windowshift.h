#pragma once
#include "tests/endurance/runkind.h"
#include "tests/endurance/tally.h"
#include "tests/support/chance.h"
#include "tests/system/randomoperator.h"

/// Somebody at the window who does anything, while the line is struck by faults.
class CWindowShift : public CRandomOperatorTestBase {
public:
    CWindowShift(std::uint64_t Seed, CTally& rTally);
    ~CWindowShift() override;
    void Work(int nActions = 60);

private:
    void TestBody() override {}
    void BeforeActing() override;
    bool IsExplained(const std::string& rAssertion) const override;

    std::uint64_t m_Seed;
    CTally& m_rTally;
    CChance m_Chance;
    std::set<CTroubles::Kind> m_Happened;
};
