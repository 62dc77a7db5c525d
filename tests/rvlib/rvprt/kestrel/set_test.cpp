#include "rvlib/rvprt/kestrel/set.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/rvlib/rvprt/decode.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;

TEST(KestrelSet, NewOneIsNotKnown) {
    const Kestrel::CSet Set(nullptr);
    EXPECT_EQ(Set.m_Set, 255);
    EXPECT_EQ(Set.m_RPMFactor, 255);
    EXPECT_EQ(Set.m_SensorAdaption, 255U);
    EXPECT_EQ(Set.GetLogID(), "notSet");
}

TEST(KestrelSet, DecodesNumberFactorAndAdaption) {
    Kestrel::CSet Set("MMapper");
    EXPECT_EQ(Decode(Set, "02 01 AA BB 1F"), 5U);
    EXPECT_EQ(Set.m_Set, 2);
    EXPECT_EQ(Set.m_RPMFactor, 1);
    EXPECT_EQ(Set.m_SensorAdaption, 31U);
}

TEST(KestrelSet, ShortOrMissingDataFails) {
    for (const char* pHex : {"", "02", "02 01", "02 01 00", "02 01 00 00"}) {
        Kestrel::CSet Set("MMapper");
        EXPECT_EQ(Decode(Set, pHex), 0U) << pHex;
        EXPECT_EQ(Set.m_Set, 255);
    }
    Kestrel::CSet Set("MMapper");
    std::uint32_t nUsed = 99;
    EXPECT_EQ(Set.Decode(nullptr, 5, &nUsed), 0);
    EXPECT_EQ(nUsed, 0U);
}

TEST(KestrelSet, NamesOfAllAdaptions) {
    const std::vector<std::string> Names{"Div6", "Div3", "Div2", "Div1", "5Div6", "5Div3", "5Div2", "5Div1"};
    for (std::uint32_t i = 0; i < Names.size(); ++i) {
        EXPECT_EQ(Kestrel::CSet::SensorAdaptionToString(i), Names[i]);
    }
    EXPECT_EQ(Kestrel::CSet::SensorAdaptionToString(8), "Value8");
    EXPECT_EQ(Kestrel::CSet::SensorAdaptionToString(19), "Value19");
    EXPECT_EQ(Kestrel::CSet::SensorAdaptionToString(31), "Value31");
    EXPECT_EQ(Kestrel::CSet::SensorAdaptionToString(255), "UnknownAdaption");
}

TEST(KestrelSet, AdaptionWithoutANameAsserts) {
    const CLogCapture Log;
    EXPECT_EQ(Kestrel::CSet::SensorAdaptionToString(32), "invalid");
    EXPECT_EQ(Kestrel::CSet::SensorAdaptionToString(254), "invalid");
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("impossible", "impossible"));
}

TEST(KestrelSet, LogsItsFieldsAsABlock) {
    Kestrel::CSet Set("MMapper");
    Decode(Set, "02 01 00 00 04");
    const CLogCapture Log(true);
    Set.Log();
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"),
                ElementsAre("Kestrel::CSet", "Set: 2", "RPMFactor: 1", "SensorAdaption: 5Div6"));
}
