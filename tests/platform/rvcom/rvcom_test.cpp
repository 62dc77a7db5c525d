#include "platform/rvcom/rvcom.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "contract/hostmessages.h"
#include "platform/rvcom/linediscipline.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/messages.h"
#include "platform/window/wnd.h"
#include "tests/platform/rvcom/fakelink.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Bytes = std::vector<std::uint8_t>;

struct CDelivery {
    std::uint16_t m_Handle = 0;
    Bytes m_Frame;
    LPARAM m_Length = 0;
};

/// Keeps what was delivered; frees the buffers unless told otherwise.
class CReceiver : public CWnd {
public:
    std::vector<CDelivery> m_Deliveries;
    bool m_bFree = true;
    std::function<void(const std::uint8_t*)> m_OnFrame;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override {
        if (Message == WM_RV_RAWDATA_FIRST) {
            const auto* pBuffer = reinterpret_cast<const std::uint8_t*>(wParam);
            const auto Handle = static_cast<std::uint16_t>(pBuffer[0] | (pBuffer[1] << 8));
            m_Deliveries.push_back({Handle, Bytes(pBuffer + 3, pBuffer + lParam), lParam});
            if (m_OnFrame) {
                m_OnFrame(pBuffer);
            }
            if (m_bFree) {
                EXPECT_TRUE(rvCOM::FreeBuffer(Handle));
            }
        }
        return 0;
    }
};

class CRvComTest : public testing::Test {
protected:
    CRvComTest() { m_Wnd.CreateMessageOnly(); }
    ~CRvComTest() override {
        rvCOM::SetLink(nullptr);
        rvCOM::SetTransmitAddress(1);
    }
    void Start() {
        rvCOM::SetLink(std::make_unique<CFakeLink>(m_Script));
        m_Loop.RunPosted();
    }
    void Receive(const Bytes& rFrame) { m_Script.m_pLink->OnBytes(LineDiscipline::Encode(rFrame)); }
    void Deliver(const Bytes& rFrame) {
        Receive(rFrame);
        m_Loop.RunPosted();
    }
    std::vector<Bytes> GetFrames(const CReceiver& rWnd) const {
        std::vector<Bytes> Frames;
        for (const CDelivery& rOne : rWnd.m_Deliveries) {
            Frames.push_back(rOne.m_Frame);
        }
        return Frames;
    }

    CVirtualEventLoop m_Loop;
    CLinkScript m_Script;
    CReceiver m_Wnd;
};

}  // namespace

TEST_F(CRvComTest, TransmitAddressIsOneUnlessConfigured) {
    EXPECT_EQ(rvCOM::GetTransmitAddress(), 1);
    rvCOM::SetTransmitAddress(17);
    EXPECT_EQ(rvCOM::GetTransmitAddress(), 17);
}

TEST_F(CRvComTest, SendsAFrameAsTheLineWantsIt) {
    Start();
    const Bytes Frame = {0x01, 0x02, 0x03};
    EXPECT_NE(rvCOM::SendRawData(Frame.data(), 3), 0);
    EXPECT_THAT(m_Script.m_Written, ElementsAre(0xC0, 0x01, 0x02, 0x03, 0xAD, 0xAD, 0xC0));
    EXPECT_EQ(rvCOM::GetStatistics().m_FramesSent, 1U);
}

TEST_F(CRvComTest, SendingWithoutALinkIsRefused) {
    const Bytes Frame = {1, 2, 3};
    EXPECT_EQ(rvCOM::SendRawData(Frame.data(), 3), 0);
    rvCOM::SetLink(std::make_unique<CFakeLink>(m_Script));
    EXPECT_EQ(rvCOM::SendRawData(Frame.data(), 3), 0) << "not open yet";
    m_Loop.RunPosted();
    EXPECT_THAT(m_Script.m_Written, IsEmpty()) << "must not be sent late";
    EXPECT_EQ(rvCOM::GetStatistics().m_FramesSent, 0U);
}

TEST_F(CRvComTest, FramesOfImpossibleLengthAreNotSent) {
    Start();
    const Bytes Frame(2049, 0x55);
    EXPECT_EQ(rvCOM::SendRawData(nullptr, 0), 0);
    EXPECT_EQ(rvCOM::SendRawData(Frame.data(), 2), 0);
    EXPECT_EQ(rvCOM::SendRawData(Frame.data(), 2049), 0);
    EXPECT_THAT(m_Script.m_Written, IsEmpty());
    EXPECT_NE(rvCOM::SendRawData(Frame.data(), 2048), 0);
}

TEST_F(CRvComTest, DeliversHandleUnusedByteAndFrameWithTheLengthOfAll) {
    Start();
    EXPECT_NE(rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5), 0);
    Deliver({0x10, 5, 1, 0x42});
    ASSERT_EQ(m_Wnd.m_Deliveries.size(), 1U);
    EXPECT_THAT(m_Wnd.m_Deliveries[0].m_Frame, ElementsAre(0x10, 5, 1, 0x42));
    EXPECT_EQ(m_Wnd.m_Deliveries[0].m_Length, 7);
    EXPECT_NE(m_Wnd.m_Deliveries[0].m_Handle, 0);
    EXPECT_EQ(rvCOM::GetBuffersOut(), 0U);
}

TEST_F(CRvComTest, DeliveryIsPostedNotSent) {
    Start();
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5);
    Receive({0x10, 5, 1});
    EXPECT_THAT(m_Wnd.m_Deliveries, IsEmpty());
    m_Loop.RunPosted();
    EXPECT_EQ(m_Wnd.m_Deliveries.size(), 1U);
}

TEST_F(CRvComTest, DeliversByTheSourceAddressToEveryWindowThatAsked) {
    CReceiver Other;
    Other.CreateMessageOnly();
    Start();
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5);
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 6);
    rvCOM::Notify(&Other, RV_NOTIFY_RAWDATA, 6);
    Deliver({0x10, 5, 1});
    Deliver({0x10, 6, 1});
    Deliver({0x10, 7, 1});
    EXPECT_THAT(GetFrames(m_Wnd), ElementsAre(Bytes{0x10, 5, 1}, Bytes{0x10, 6, 1}));
    EXPECT_THAT(GetFrames(Other), ElementsAre(Bytes{0x10, 6, 1}));
    EXPECT_EQ(rvCOM::GetStatistics().m_FramesReceived, 3U);
    EXPECT_EQ(rvCOM::GetStatistics().m_NotAddressed, 1U);
}

TEST_F(CRvComTest, RegisteringTwiceDeliversOnce) {
    Start();
    EXPECT_NE(rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5), 0);
    EXPECT_NE(rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5), 0);
    Deliver({0x10, 5, 1});
    EXPECT_EQ(m_Wnd.m_Deliveries.size(), 1U);
}

TEST_F(CRvComTest, NotifyRefusesNullAndOtherCodes) {
    Start();
    EXPECT_EQ(rvCOM::Notify(nullptr, RV_NOTIFY_RAWDATA, 5), 0);
    EXPECT_EQ(rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA + 1, 5), 0);
    Deliver({0x10, 5, 1});
    EXPECT_THAT(m_Wnd.m_Deliveries, IsEmpty());
}

TEST_F(CRvComTest, FirstByteFourIsNeverDelivered) {
    Start();
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5);
    Deliver({4, 5, 1, 0});
    Deliver({0x84, 5, 1, 0});
    EXPECT_THAT(GetFrames(m_Wnd), ElementsAre(Bytes{0x84, 5, 1, 0}));
    EXPECT_EQ(rvCOM::GetStatistics().m_ReservedCommand, 1U);
    EXPECT_EQ(rvCOM::GetBuffersOut(), 0U);
}

TEST_F(CRvComTest, BadFramesAreCountedByKind) {
    Start();
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5);
    m_Script.m_pLink->OnBytes(Bytes{0xC0, 1, 5, 3, 0, 0, 0xC0});
    m_Script.m_pLink->OnBytes(LineDiscipline::Encode(Bytes{1, 5}));
    m_Script.m_pLink->OnBytes(LineDiscipline::Encode(Bytes(3000, 5)));
    m_Loop.RunPosted();
    EXPECT_THAT(m_Wnd.m_Deliveries, IsEmpty());
    const rvCOM::CStatistics Statistics = rvCOM::GetStatistics();
    EXPECT_EQ(Statistics.m_BadCrc, 1U);
    EXPECT_EQ(Statistics.m_TooShort, 1U);
    EXPECT_EQ(Statistics.m_TooLong, 1U);
    EXPECT_EQ(Statistics.m_FramesReceived, 0U);
}

TEST_F(CRvComTest, ABufferStaysUntilItIsFreed) {
    const std::uint8_t* pFirst = nullptr;
    m_Wnd.m_bFree = false;
    m_Wnd.m_OnFrame = [&pFirst](const std::uint8_t* pBuffer) {
        pFirst = pFirst != nullptr ? pFirst : pBuffer;
    };
    Start();
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5);
    for (std::uint8_t i = 0; i < 100; ++i) {
        Deliver({0x10, 5, 1, i});
    }
    EXPECT_EQ(rvCOM::GetBuffersOut(), 100U);
    EXPECT_EQ(pFirst[3], 0x10);
    EXPECT_EQ(pFirst[6], 0);
    for (const CDelivery& rOne : m_Wnd.m_Deliveries) {
        EXPECT_TRUE(rvCOM::FreeBuffer(rOne.m_Handle));
        EXPECT_FALSE(rvCOM::FreeBuffer(rOne.m_Handle)) << "freed twice";
    }
    EXPECT_EQ(rvCOM::GetBuffersOut(), 0U);
}

TEST_F(CRvComTest, HandlesAreUsedAgainButNotWhileTheyAreOut) {
    Start();
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5);
    m_Wnd.m_bFree = false;
    Deliver({0x10, 5, 1});
    const std::uint16_t Kept = m_Wnd.m_Deliveries[0].m_Handle;
    m_Wnd.m_bFree = true;
    for (int i = 0; i < 140000; ++i) {
        m_Wnd.m_Deliveries.clear();
        Deliver({0x10, 5, 1});
        ASSERT_EQ(m_Wnd.m_Deliveries.size(), 1U);
        ASSERT_NE(m_Wnd.m_Deliveries[0].m_Handle, Kept);
        ASSERT_NE(m_Wnd.m_Deliveries[0].m_Handle, 0);
    }
    EXPECT_TRUE(rvCOM::FreeBuffer(Kept));
}

TEST_F(CRvComTest, With65535BuffersOutFramesAreDroppedAndCounted) {
    CLogCapture Log;
    Start();
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5);
    m_Wnd.m_bFree = false;
    for (int i = 0; i < 65538; ++i) {
        Deliver({0x10, 5, 1});
    }
    EXPECT_EQ(m_Wnd.m_Deliveries.size(), 65535U);
    EXPECT_EQ(rvCOM::GetBuffersOut(), 65535U);
    EXPECT_EQ(rvCOM::GetStatistics().m_NoBuffer, 3U);
    EXPECT_THAT(Log.GetTexts("Error"), ElementsAre(HasSubstr("65535 buffers are out")));
    EXPECT_TRUE(rvCOM::FreeBuffer(m_Wnd.m_Deliveries[1000].m_Handle));
    Deliver({0x10, 5, 1});
    EXPECT_EQ(m_Wnd.m_Deliveries.size(), 65536U) << "goes on as soon as one is free";
    EXPECT_EQ(m_Wnd.m_Deliveries.back().m_Handle, m_Wnd.m_Deliveries[1000].m_Handle);
}

TEST_F(CRvComTest, AWindowThatGoesIsForgottenAndItsBuffersAreFreed) {
    Start();
    {
        CReceiver Gone;
        Gone.CreateMessageOnly();
        Gone.m_bFree = false;
        rvCOM::Notify(&Gone, RV_NOTIFY_RAWDATA, 5);
        Deliver({0x10, 5, 1});
        Receive({0x11, 5, 1});
        EXPECT_EQ(rvCOM::GetBuffersOut(), 2U) << "one kept by the window, one on its way";
    }
    EXPECT_EQ(rvCOM::GetBuffersOut(), 0U);
    m_Loop.RunPosted();
    Deliver({0x12, 5, 1});
    EXPECT_EQ(rvCOM::GetBuffersOut(), 0U);
    EXPECT_EQ(rvCOM::GetStatistics().m_NotAddressed, 1U);
}

TEST_F(CRvComTest, AWindowThatGoesLeavesTheBuffersOfOthersAlone) {
    Start();
    m_Wnd.m_bFree = false;
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5);
    CReceiver Gone;
    Gone.CreateMessageOnly();
    rvCOM::Notify(&Gone, RV_NOTIFY_RAWDATA, 5);
    Receive({0x10, 5, 1});
    Gone.DestroyWindow();
    m_Loop.RunPosted();
    EXPECT_THAT(Gone.m_Deliveries, IsEmpty());
    ASSERT_EQ(m_Wnd.m_Deliveries.size(), 1U);
    EXPECT_TRUE(rvCOM::FreeBuffer(m_Wnd.m_Deliveries[0].m_Handle));
}

// The handler of a frame destroys its window: under the address sanitizer the read afterwards tells.
TEST_F(CRvComTest, AHandlerThatDestroysItsWindowMayReadItsFrameToTheEnd) {
    Start();
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5);
    m_Wnd.m_bFree = false;
    std::uint8_t Last = 0;
    m_Wnd.m_OnFrame = [this, &Last](const std::uint8_t* pBuffer) {
        m_Wnd.DestroyWindow();
        Last = pBuffer[6];
    };
    Deliver({0x10, 5, 1, 0x42});
    EXPECT_EQ(Last, 0x42);
    EXPECT_EQ(rvCOM::GetBuffersOut(), 0U);
}

TEST_F(CRvComTest, ClosingTheTransportDropsBuffersAndRegistrations) {
    Start();
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5);
    m_Wnd.m_bFree = false;
    Deliver({0x10, 5, 1});
    Receive({0x11, 5, 1});
    rvCOM::SetLink(nullptr);
    EXPECT_EQ(m_Script.m_pLink, nullptr);
    EXPECT_EQ(m_Script.m_nClosed, 1);
    EXPECT_FALSE(rvCOM::IsLinkOpen());
    EXPECT_EQ(rvCOM::GetBuffersOut(), 0U);
    // The message on its way still finds its frame.
    m_Loop.RunPosted();
    EXPECT_THAT(GetFrames(m_Wnd), ElementsAre(Bytes{0x10, 5, 1}, Bytes{0x11, 5, 1}));
    Start();
    Deliver({0x12, 5, 1});
    EXPECT_EQ(m_Wnd.m_Deliveries.size(), 2U) << "no longer registered";
}

TEST_F(CRvComTest, AnotherLinkKeepsTheRegistrationsAndCountsAnew) {
    Start();
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5);
    Deliver({0x10, 5, 1});
    CLinkScript Other;
    rvCOM::SetLink(std::make_unique<CFakeLink>(Other));
    m_Loop.RunPosted();
    EXPECT_EQ(m_Script.m_pLink, nullptr);
    EXPECT_EQ(rvCOM::GetStatistics().m_FramesReceived, 0U);
    Other.m_pLink->OnBytes(LineDiscipline::Encode(Bytes{0x11, 5, 1}));
    m_Loop.RunPosted();
    EXPECT_THAT(GetFrames(m_Wnd), ElementsAre(Bytes{0x10, 5, 1}, Bytes{0x11, 5, 1}));
    rvCOM::SetLink(nullptr);
}

TEST_F(CRvComTest, ALinkThatCannotBeOpenedIsTriedAgainAfterGrowingPauses) {
    m_Script.m_nRefuse = 8;
    Start();
    m_Loop.Advance(60000);
    EXPECT_THAT(m_Script.m_OpenedAt, ElementsAre(0, 500, 1500, 3500, 7500, 15500, 25500, 35500, 45500));
    EXPECT_TRUE(rvCOM::IsLinkOpen());
    EXPECT_EQ(rvCOM::GetStatistics().m_LinkLost, 0U);
}

TEST_F(CRvComTest, ALostLinkIsOpenedAgain) {
    CLogCapture Log;
    Start();
    m_Loop.Advance(20000);
    m_Script.m_nRefuse = 2;
    m_Script.m_pLink->Lose("cable out");
    EXPECT_FALSE(rvCOM::IsLinkOpen());
    m_Loop.Advance(60000);
    EXPECT_THAT(m_Script.m_OpenedAt, ElementsAre(0, 20500, 21500, 23500));
    EXPECT_TRUE(rvCOM::IsLinkOpen());
    EXPECT_EQ(rvCOM::GetStatistics().m_LinkLost, 1U);
    EXPECT_THAT(Log.GetTexts("Warning"),
                ElementsAre("fake is lost: cable out",
                            "fake can't be opened and is tried again: no such device", "fake is open again"));
}

TEST_F(CRvComTest, ThePausesBeginAnewOnlyAfterTenSecondsOfHolding) {
    Start();
    const auto LoseAfter = [this](std::uint32_t Held) {
        const std::uint64_t OpenedAt = m_Script.m_OpenedAt.back();
        m_Loop.Advance(static_cast<std::uint32_t>(OpenedAt + Held - m_Loop.Now()));
        m_Script.m_pLink->Lose("flapping");
        const std::uint64_t LostAt = m_Loop.Now();
        m_Loop.Advance(10000);
        return m_Script.m_OpenedAt.back() - LostAt;
    };
    // Each time the link is open at once again, so that it has held less than 10 s by the next loss.
    EXPECT_EQ(LoseAfter(0), 500U);
    EXPECT_EQ(LoseAfter(9999), 1000U);
    EXPECT_EQ(LoseAfter(9999), 2000U);
    EXPECT_EQ(LoseAfter(9999), 4000U);
    EXPECT_EQ(LoseAfter(10000), 500U);
    EXPECT_EQ(LoseAfter(9999), 1000U);
}

TEST_F(CRvComTest, AnOutageIsToldOnceNotAtEveryTry) {
    CLogCapture Log;
    m_Script.m_nRefuse = 20;
    Start();
    m_Loop.Advance(60000);
    EXPECT_EQ(Log.GetTexts("Warning").size(), 1U);
    m_Script.m_Reason = "permission denied";
    m_Loop.Advance(60000);
    EXPECT_THAT(Log.GetTexts("Warning"),
                ElementsAre(HasSubstr("no such device"), HasSubstr("permission denied")));
    EXPECT_EQ(rvCOM::GetOutageReason(), "permission denied");
}

TEST_F(CRvComTest, AFrameCutByALostLinkDoesNotSpoilTheFirstOneAfterIt) {
    Start();
    rvCOM::Notify(&m_Wnd, RV_NOTIFY_RAWDATA, 5);
    m_Script.m_pLink->OnBytes(Bytes{0xC0, 0x10, 5, 1, 0xDB});
    m_Script.m_pLink->Lose("cable out");
    m_Loop.Advance(500);
    ASSERT_TRUE(rvCOM::IsLinkOpen());
    const Bytes Line = LineDiscipline::Encode(Bytes{0x11, 5, 1});
    m_Script.m_pLink->OnBytes(std::span(Line).subspan(1));  // without the END that would cut it off anyway
    m_Loop.RunPosted();
    EXPECT_THAT(GetFrames(m_Wnd), ElementsAre(Bytes{0x11, 5, 1}));
    EXPECT_EQ(rvCOM::GetStatistics().m_BadCrc, 0U);
}

TEST_F(CRvComTest, ClosingWhileAPauseRunsEndsTheTrying) {
    m_Script.m_nRefuse = 1;
    Start();
    rvCOM::SetLink(nullptr);
    m_Loop.Advance(60000);
    EXPECT_THAT(m_Script.m_OpenedAt, ElementsAre(0));
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
}

TEST_F(CRvComTest, AQuietTransportLeavesNoTimerBehind) {
    Start();
    m_Script.m_pLink->OnBytes(Bytes{0xC0, 1, 5, 3, 0, 0, 0xC0});
    m_Script.m_pLink->Lose("cable out");
    m_Loop.Run();  // would not end with a timer running
    EXPECT_TRUE(rvCOM::IsLinkOpen());
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
}

TEST_F(CRvComTest, BadFramesAreToldNowAndThenWithTheCounters) {
    CLogCapture Log;
    Start();
    const Bytes Bad = {0xC0, 1, 5, 3, 0, 0, 0xC0};
    for (int i = 0; i < 1000; ++i) {
        m_Script.m_pLink->OnBytes(Bad);
    }
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre(HasSubstr("bad frames on fake: 1 since")));
    m_Loop.Advance(59999);
    m_Script.m_pLink->OnBytes(Bad);
    EXPECT_EQ(Log.GetTexts("Warning").size(), 1U);
    m_Loop.Advance(1);
    m_Script.m_pLink->OnBytes(Bad);
    EXPECT_THAT(Log.GetTexts("Warning"),
                ElementsAre(HasSubstr(": 1 since"),
                            HasSubstr(": 1001 since the last line (in all 1002 with a bad CRC, "
                                      "0 too short, 0 too long; 0 good)")));
    m_Script.m_pLink->OnBytes(Bad);
    m_Script.m_pLink->Lose("cable out");
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre(HasSubstr(": 1 since"), HasSubstr(": 1001 since"),
                                                     HasSubstr(": 1 since"), HasSubstr("fake is lost")))
        << "what isn't told yet goes with the link's end";
}
