#include "platform/system/localtime.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/scopedenvironment.h"

namespace {

using std::chrono::seconds;
using std::chrono::sys_seconds;

TEST(LocalTimeTest, TellsTheTimeOfTheZone) {
    CScopedEnvironment Zone("TZ", "UTC");
    const sys_seconds Moment(seconds(1769862896));
    EXPECT_EQ(FormatLocalTime(Moment, "%d.%m.%Y %H:%M:%S"), "31.01.2026 12:34:56");
    Zone.Set("XXX+13");  // west of Greenwich: the day before
    EXPECT_EQ(FormatLocalTime(Moment, "%d.%m.%Y %H:%M:%S"), "30.01.2026 23:34:56");
}

TEST(LocalTimeTest, AMomentBehindAllYearsIsNoText) {
    EXPECT_EQ(FormatLocalTime(sys_seconds(seconds(std::numeric_limits<std::int64_t>::max())), "%d.%m.%Y"),
              "");
}

}  // namespace
