#include "rvlib/math/matrixlog.h"

#include <gtest/gtest.h>

#include "tests/support/logcapture.h"

namespace {

CLogComponent* Publisher() {
    return CLogComponent::Register("MatrixLogTest", {{"PbMath", 0x1000}});
}

math::matrix<double> Block(double a, double b, double c, double d) {
    math::matrix<double> Result(2, 2);
    Result(0, 0) = a;
    Result(0, 1) = b;
    Result(1, 0) = c;
    Result(1, 1) = d;
    return Result;
}

TEST(MatrixLog, WritesALineARowWithTheNameBeforeTheFirst) {
    CLogComponent* pPublisher = Publisher();
    const CLogCapture Capture(true);
    LOG_MATRIX(pPublisher, "rUA", Block(1.5, -0.00004, 12345678.9, -100000000.0));
    const auto Lines = Capture.GetTexts("PbMath");
    ASSERT_EQ(Lines.size(), 2U);
    EXPECT_EQ(Lines[0], "rUA = |    1.5000     -0.0000  |");
    EXPECT_EQ(Lines[1], "      |12345678.9000  -100000000.0000  |");
}

TEST(MatrixLog, HandsThePlaceOfTheCallOn) {
    CLogComponent* pPublisher = Publisher();
    const CLogCapture Capture(true);
    const int Line = __LINE__ + 1;
    LOG_MATRIX(pPublisher, "UA", Block(1, 2, 3, 4));
    ASSERT_EQ(Capture.GetRecords().size(), 2U);
    const CLogRecord& rRecord = Capture.GetRecords()[1];
    EXPECT_NE(rRecord.m_File.find("matrixlog_test.cpp"), std::string::npos);
    EXPECT_EQ(rRecord.m_Line, Line);
    EXPECT_EQ(rRecord.m_Function, "TestBody");
    EXPECT_EQ(rRecord.m_Mask, 0x1000U);
    EXPECT_EQ(rRecord.m_Publisher, "MatrixLogTest");
}

TEST(MatrixLog, WritesTheWholeOfTheLongestNumber) {
    CLogComponent* pPublisher = Publisher();
    const CLogCapture Capture(true);
    math::matrix<double> Huge(1, 1);
    Huge(0, 0) = -1.7976931348623157e308;
    LOG_MATRIX(pPublisher, "", Huge);
    const auto Lines = Capture.GetTexts("PbMath");
    ASSERT_EQ(Lines.size(), 1U);
    // Sign, 309 digits, point, 4 decimals, two blanks between the bars.
    EXPECT_EQ(Lines[0].size(), std::string(" = ||").size() + 1 + 309 + 1 + 4 + 2);
    EXPECT_EQ(Lines[0].substr(Lines[0].size() - 8), ".0000  |");
}

TEST(MatrixLog, WritesNothingWithTheTopicOffOrWithoutPublisher) {
    CLogComponent* pPublisher = Publisher();
    const CLogCapture Capture(true);
    pPublisher->SetLevel(0);
    LOG_MATRIX(pPublisher, "UA", Block(1, 2, 3, 4));
    pPublisher->SetLevel(CLogComponent::ERROR | CLogComponent::WARNING);
    LOG_MATRIX(pPublisher, "UA", Block(1, 2, 3, 4));
    LOG_MATRIX(static_cast<CLogComponent*>(nullptr), "UA", Block(1, 2, 3, 4));
    EXPECT_TRUE(Capture.GetRecords().empty());
}

TEST(MatrixLog, WritesNothingForAMatrixWithoutRows) {
    CLogComponent* pPublisher = Publisher();
    const CLogCapture Capture(true);
    LOG_MATRIX(pPublisher, "UA", math::matrix<double>(0, 0));
    EXPECT_TRUE(Capture.GetRecords().empty());
}

}  // namespace
