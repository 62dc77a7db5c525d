#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/statediagram.h"

#include <gtest/gtest.h>

#include "tests/support/testpaths.h"
#include "tests/support/textfiles.h"

TEST(StateDiagram, ThePageOfTheDocumentsIsMadeFromTheTables) {
    EXPECT_TRUE(ReadTestFile(TestData("../docs/state-machines.md")) == MakeStateMachinesPage())
        << "make it anew: build/release/bin/statediagram >docs/state-machines.md";
}
