#include "rvdlm/m_rtr/rtr_trim/communication/mapperchoice.h"

#include <gmock/gmock.h>

#include "platform/system/virtualeventloop.h"
#include "rvdlm/m_rtr/rtr_trim/communication/lannermapper.h"
#include "rvdlm/m_rtr/rtr_trim/communication/planehandler.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Hears which modules are asked: the third byte of a frame is its destination.
class CListener : public IFFromCommunication {
public:
    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override {
        m_Frames.emplace_back(pData, pData + nSize);
    }
    void OnQueryModuleIdentification(Reason, const std::string*, const std::uint32_t*) override {}
    void OnSetRequest(Reason, const CSet*) override {}
    void OnModuleState(Reason, const std::uint32_t*, const std::uint32_t*, const std::uint32_t*,
                       const std::uint32_t*, const std::uint32_t*, const std::uint32_t*) override {}
    void OnRPMData(Reason, const std::uint32_t*, const std::uint32_t*) override {}
    void OnUnbalanceXYValues(Reason, const std::uint32_t*, const std::uint32_t*,
                             const std::uint32_t*) override {}

    std::vector<std::vector<std::uint8_t>> m_Frames;
};

class CMapperChoiceTest : public testing::Test {
protected:
    /// Frames that a query of both or one module takes.
    std::size_t CountModules(std::intptr_t Flags) {
        const auto pMapper = MakeMapper(m_Listener, 5, CInitFlags(Flags));
        EXPECT_NE(dynamic_cast<CPlaneHandler*>(pMapper.get()), nullptr);
        m_Listener.m_Frames.clear();
        if (pMapper != nullptr) {
            pMapper->QueryUnbalanceXYValues();
        }
        return m_Listener.m_Frames.size();
    }

    CVirtualEventLoop m_Loop;
    CLogCapture m_Log;
    CListener m_Listener;
};

TEST_F(CMapperChoiceTest, KestrelWithoutSlaveIsOneModule) {
    EXPECT_EQ(CountModules(0x010000), 1U);
    EXPECT_EQ(CountModules(0x020000), 1U);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMapperChoiceTest, KestrelWithSlaveIsTwoModules) {
    EXPECT_EQ(CountModules(0x010602), 2U);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMapperChoiceTest, ASlaveInAnotherModeIsAssertedAndUsed) {
    EXPECT_EQ(CountModules(0x010600), 2U);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("Slave address with incorrect balancing mode!"));
}

TEST_F(CMapperChoiceTest, IdentificationNineIsALannerModule) {
    const auto pMapper = MakeMapper(m_Listener, 9, CInitFlags(0x090002));
    ASSERT_NE(dynamic_cast<CLannerMapper*>(pMapper.get()), nullptr);
    EXPECT_EQ(pMapper->QueryActiveSet(), 1);
    EXPECT_THAT(m_Listener.m_Frames, ElementsAre(ElementsAre(0x10, 1, 9, 2)));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// One Lanner module serves both planes: a slave that the host names beside it is never asked.
TEST_F(CMapperChoiceTest, ALannerModuleHasNoSlave) {
    const auto pMapper = MakeMapper(m_Listener, 9, CInitFlags(0x090602));
    pMapper->QueryUnbalanceXYValues();
    EXPECT_THAT(m_Listener.m_Frames, ElementsAre(ElementsAre(0x1E, 1, 9)));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CMapperChoiceTest, UnknownIdentificationsCountAsLannerAfterAnAssertion) {
    for (const std::intptr_t Identification : {0, 3, 8, 10, 255}) {
        m_Log.Clear();
        const auto pMapper = MakeMapper(m_Listener, 5, CInitFlags(Identification << 16));
        EXPECT_NE(dynamic_cast<CLannerMapper*>(pMapper.get()), nullptr);
        EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("Unknown module! Trying to use Lanner mapper..."));
    }
}

}  // namespace
