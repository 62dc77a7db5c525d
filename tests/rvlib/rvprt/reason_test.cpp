#include "rvlib/rvprt/reason.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/logcapture.h"

TEST(Reason, HasItsEnumeratorsNames) {
    EXPECT_STREQ(Comm::ReasonToString(static_cast<Reason>(0)), "eSuccess");
    EXPECT_STREQ(Comm::ReasonToString(static_cast<Reason>(1)), "eIndication");
    EXPECT_STREQ(Comm::ReasonToString(static_cast<Reason>(2)), "eTimeout");
    EXPECT_STREQ(Comm::ReasonToString(static_cast<Reason>(3)), "eError");
}

TEST(Reason, UnknownValueAsserts) {
    const CLogCapture Log;
    EXPECT_STREQ(Comm::ReasonToString(static_cast<Reason>(4)), "unknown Reason !?!");
    EXPECT_THAT(Log.GetAssertions(), testing::ElementsAre("unknown Reason"));
}
