// The identification, which both families have alike but for the name of its class.
#include "rvlib/rvprt/moduleidentification.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "rvlib/rvprt/kestrel/moduleidentification.h"
#include "rvlib/rvprt/lanner/moduleidentification.h"
#include "tests/rvlib/rvprt/decode.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;

namespace {

/// Sub-code, five single bytes, article, serial, hours; then bytes that nobody reads.
std::string Body(std::size_t nSize) {
    return Cut("08 02 18 0C 07 03 12 AB 0F 78 56 34 12 E8 03 00 00", nSize);
}

template <class Message>
class CModuleIdentificationTest : public testing::Test {};
using Families = testing::Types<Kestrel::CModuleIdentification, Lanner::CModuleIdentification>;
TYPED_TEST_SUITE(CModuleIdentificationTest, Families);

}  // namespace

TYPED_TEST(CModuleIdentificationTest, NewOneIsEmpty) {
    const TypeParam Message(nullptr);
    EXPECT_EQ(Message.GetLogID(), "notSet");
    EXPECT_EQ(Message.m_ModuleTyp, 0);
    EXPECT_EQ(Message.m_SerialNumber, 0U);
    EXPECT_EQ(Message.m_WorkingHours, 0U);
    EXPECT_EQ(Message.m_ArticleNumber, "");
}

TYPED_TEST(CModuleIdentificationTest, DecodesAllFields) {
    TypeParam Message("MMapper");
    EXPECT_EQ(Decode(Message, Body(46)), 46U);
    EXPECT_EQ(Message.m_ModuleTyp, 2);
    EXPECT_EQ(Message.m_YearOfProduction, 24);
    EXPECT_EQ(Message.m_CalendarWeekOfProduction, 12);
    EXPECT_EQ(Message.m_SoftwareVersion, 7);
    EXPECT_EQ(Message.m_TNumber, 3);
    EXPECT_EQ(Message.m_ArticleNumber, "12AB0F");
    EXPECT_EQ(Message.m_SerialNumber, 0x12345678U);
    EXPECT_EQ(Message.m_WorkingHours, 1000U);
}

TYPED_TEST(CModuleIdentificationTest, AnyLengthBelow46Fails) {
    for (std::size_t nSize = 0; nSize < 46; ++nSize) {
        TypeParam Message("MMapper");
        EXPECT_EQ(Decode(Message, Body(nSize)), 0U) << nSize;
        EXPECT_EQ(Message.m_ArticleNumber, "");
    }
}

TYPED_TEST(CModuleIdentificationTest, AnotherSubCodeFails) {
    TypeParam Message("MMapper");
    EXPECT_EQ(Decode(Message, "09" + Body(46).substr(2)), 0U);
}

TYPED_TEST(CModuleIdentificationTest, LogsItsFields) {
    TypeParam Message("MMapper");
    Decode(Message, Body(46));
    const CLogCapture Log(true);
    Message.Log();
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"),
                ElementsAre(testing::_, "ModuleTyp= 2", "YearOfProduction = 24",
                            "CalendarWeekOfProduction = 12", "SoftwareVersion = 7", "TNumber = 3",
                            "ArticleNumber = 12AB0F", "SerialNumber = 305419896", "WorkingHours = 1000"));
}

TEST(ModuleIdentification, BlockInTheLogIsHeadedByTheFamilysClass) {
    const CLogCapture Log(true);
    Kestrel::CModuleIdentification("MMapper").Log();
    Lanner::CModuleIdentification("PreBal").Log();
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"),
                testing::IsSupersetOf({"Kestrel::CModuleIdentification", "Lanner::CModuleIdentification"}));
}
