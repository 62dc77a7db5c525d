#include "console/moduleanswers.h"

#include <gtest/gtest.h>

#include "tests/support/frames.h"

namespace {

void Put(CModuleAnswers& rAnswers, const char* pFrame) {
    rAnswers.OnFrame(Bytes(pFrame));
}

}  // namespace

TEST(ModuleAnswers, NothingCameBack) {
    EXPECT_EQ(CModuleAnswers({5}).Describe(0, 0), "module 5: nothing came back");
}

TEST(ModuleAnswers, RefusedSetIsShownAsItCame) {
    CModuleAnswers Answers({5});
    Put(Answers, "11 05 01 08 01");
    Put(Answers, "10 05 01 07");
    EXPECT_EQ(
        Answers.Describe(0, 0),
        "module 5: the question who it is was answered by 5 bytes (11 05 01 08 01), that for its active set "
        "was answered by 4 bytes (10 05 01 07)");
}

TEST(ModuleAnswers, EachModuleOfAPairIsToldOf) {
    CModuleAnswers Answers({5, 6});
    Put(Answers, "11 05 01 08 01");
    Put(Answers, "1C 06 00 00 00");
    EXPECT_EQ(
        Answers.Describe(3, 2),
        "module 5: the question who it is was answered by 5 bytes (11 05 01 08 01), that for its active set "
        "wasn't answered; module 6: it reports, but doesn't answer the question who it is; damaged frames: "
        "3; "
        "frames from other addresses: 2");
}

TEST(ModuleAnswers, LongAnswersAreCut) {
    CModuleAnswers Answers({5});
    Put(Answers, "11 05 01 08 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F");
    EXPECT_NE(Answers.Describe(0, 0).find("19 bytes (11 05 01 08 01 02 03 04 05 06 07 08 09 0A 0B 0C ...)"),
              std::string::npos);
}
