#include "rvlib/rvprt/kestrel/moduleidentification.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/frames.h"
#include "tests/support/logcapture.h"

using Kestrel::CModuleIdentification;
using testing::ElementsAre;

namespace {

/// Sub-code, five single bytes, article, serial, hours; then 29 bytes that nobody reads.
constexpr const char* eKnownPart = "08 02 18 0C 07 03 12 AB 0F 78 56 34 12 E8 03 00 00";

std::vector<std::uint8_t> Body(std::size_t nSize) {
    std::vector<std::uint8_t> Result = Bytes(eKnownPart);
    Result.resize(nSize, 0xEE);
    return Result;
}

int Decode(CModuleIdentification& rMessage, const std::vector<std::uint8_t>& rBody, std::uint32_t& rUsed) {
    return rMessage.Decode(rBody.data(), static_cast<std::uint32_t>(rBody.size()), &rUsed);
}

}  // namespace

TEST(KestrelModuleIdentification, NewOneIsEmpty) {
    const CModuleIdentification Message(nullptr);
    EXPECT_EQ(Message.m_ModuleTyp, 0);
    EXPECT_EQ(Message.m_SerialNumber, 0U);
    EXPECT_EQ(Message.m_WorkingHours, 0U);
    EXPECT_EQ(Message.m_ArticleNumber, "");
}

TEST(KestrelModuleIdentification, DecodesAllFields) {
    CModuleIdentification Message("MMapper");
    std::uint32_t nUsed = 0;
    ASSERT_NE(Decode(Message, Body(46), nUsed), 0);
    EXPECT_EQ(nUsed, 46U);
    EXPECT_EQ(Message.m_ModuleTyp, 2);
    EXPECT_EQ(Message.m_YearOfProduction, 24);
    EXPECT_EQ(Message.m_CalendarWeekOfProduction, 12);
    EXPECT_EQ(Message.m_SoftwareVersion, 7);
    EXPECT_EQ(Message.m_TNumber, 3);
    EXPECT_EQ(Message.m_ArticleNumber, "12AB0F");
    EXPECT_EQ(Message.m_SerialNumber, 0x12345678U);
    EXPECT_EQ(Message.m_WorkingHours, 1000U);
}

TEST(KestrelModuleIdentification, AnyLengthBelow46Fails) {
    for (std::size_t nSize = 0; nSize < 46; ++nSize) {
        CModuleIdentification Message("MMapper");
        std::uint32_t nUsed = 99;
        const std::vector<std::uint8_t> Short = Body(nSize);
        EXPECT_EQ(Decode(Message, Short, nUsed), 0) << nSize;
        EXPECT_EQ(nUsed, 0U);
        EXPECT_EQ(Message.m_ArticleNumber, "");
    }
}

TEST(KestrelModuleIdentification, AnotherSubCodeFails) {
    std::vector<std::uint8_t> Other = Body(46);
    Other[0] = 9;
    CModuleIdentification Message("MMapper");
    std::uint32_t nUsed = 99;
    EXPECT_EQ(Decode(Message, Other, nUsed), 0);
}

TEST(KestrelModuleIdentification, LogsItsFieldsAsABlock) {
    CModuleIdentification Message("MMapper");
    std::uint32_t nUsed = 0;
    Decode(Message, Body(46), nUsed);
    const CLogCapture Log(true);
    Message.Log();
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"),
                ElementsAre("Kestrel::CModuleIdentification", "ModuleTyp= 2", "YearOfProduction = 24",
                            "CalendarWeekOfProduction = 12", "SoftwareVersion = 7", "TNumber = 3",
                            "ArticleNumber = 12AB0F", "SerialNumber = 305419896", "WorkingHours = 1000"));
}
