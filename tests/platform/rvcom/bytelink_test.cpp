#include "platform/rvcom/bytelink.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <QTemporaryDir>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <numeric>

#include "contract/hostmessages.h"
#include "platform/qt/qteventloop.h"
#include "platform/rvcom/linediscipline.h"
#include "platform/rvcom/rvcom.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/messages.h"
#include "platform/window/wnd.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Every value a byte can have, over and over.
Bytes MakePattern(std::size_t nSize) {
    Bytes Pattern(nSize);
    for (std::size_t i = 0; i < nSize; ++i) {
        Pattern[i] = static_cast<std::uint8_t>(i % 256 ^ (i / 256 % 256));
    }
    return Pattern;
}

/// A link and what it told.
struct CObserved {
    explicit CObserved(std::unique_ptr<IFByteLink> pLink) : m_pLink(std::move(pLink)) {
        m_pLink->OnBytes = [this](std::span<const std::uint8_t> Portion) {
            EXPECT_FALSE(m_bInCall);
            m_Bytes.insert(m_Bytes.end(), Portion.begin(), Portion.end());
        };
        m_pLink->OnOpened = [this] {
            EXPECT_FALSE(m_bInCall);
            ++m_nOpened;
        };
        m_pLink->OnClosed = [this](const std::string& rReason) {
            EXPECT_FALSE(m_bInCall);
            m_Reasons.push_back(rReason);
        };
    }
    /// Callbacks must not come from inside a call of the link.
    void Open() {
        m_bInCall = true;
        m_pLink->Open();
        m_bInCall = false;
    }
    bool Write(const Bytes& rBytes) {
        m_bInCall = true;
        const bool bDone = m_pLink->Write(rBytes);
        m_bInCall = false;
        return bDone;
    }
    void Close() {
        m_bInCall = true;
        m_pLink->Close();
        m_bInCall = false;
    }
    IFByteLink* operator->() const { return m_pLink.get(); }

    std::unique_ptr<IFByteLink> m_pLink;
    Bytes m_Bytes;
    int m_nOpened = 0;
    std::vector<std::string> m_Reasons;
    bool m_bInCall = false;
};

std::unique_ptr<IFByteLink> Make(const std::string& rDescription) {
    std::string Error;
    auto pLink = MakeByteLink(rDescription, Error);
    EXPECT_NE(pLink, nullptr) << Error;
    EXPECT_EQ(Error, "");
    return pLink;
}

std::unique_ptr<IFByteLink> MakeListener(const std::string& rDescription) {
    std::string Error;
    auto pLink = MakeListeningLink(rDescription, Error);
    EXPECT_NE(pLink, nullptr) << Error;
    EXPECT_EQ(Error, "");
    return pLink;
}

std::string GetError(const std::string& rDescription) {
    std::string Error;
    EXPECT_EQ(MakeByteLink(rDescription, Error), nullptr) << rDescription;
    return Error;
}

std::string GetListenerError(const std::string& rDescription) {
    std::string Error;
    EXPECT_EQ(MakeListeningLink(rDescription, Error), nullptr) << rDescription;
    return Error;
}

int GetOption(int Handle, int Level, int Option) {
    int Value = 0;
    socklen_t nSize = sizeof Value;
    EXPECT_EQ(getsockopt(Handle, Level, Option, &Value, &nSize), 0);
    return Value;
}

/// The descriptor of this process that is connected to a port of this machine; -1 if there is none.
int FindConnectionTo(std::uint16_t Port) {
    for (const auto& rEntry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int Handle = std::stoi(rEntry.path().filename().string());
        sockaddr_in Peer{};
        socklen_t nSize = sizeof Peer;
        if (getpeername(Handle, reinterpret_cast<sockaddr*>(&Peer), &nSize) == 0 &&
            Peer.sin_family == AF_INET && ntohs(Peer.sin_port) == Port) {
            return Handle;
        }
    }
    return -1;
}

/// Links that need the real loop.
class CRealLinkTest : public testing::Test {
protected:
    static constexpr std::uint32_t eTimeout = 5000;

    template <typename T>
    bool Wait(T Done) {
        return m_Loop.RunUntil(Done, eTimeout);
    }
    /// Lets everything that is queued now happen.
    void Settle() {
        for (int i = 0; i < 20; ++i) {
            bool bReached = false;
            m_Loop.Post([&bReached] { bReached = true; });
            Wait([&bReached] { return bReached; });
        }
    }
    void ExpectExchange(CObserved& rLeft, CObserved& rRight, std::size_t nSize) {
        const Bytes Pattern = MakePattern(nSize);
        const Bytes Answer(Pattern.rbegin(), Pattern.rend());
        rLeft.m_Bytes.clear();
        rRight.m_Bytes.clear();
        EXPECT_TRUE(rLeft.Write(Pattern));
        EXPECT_TRUE(rRight.Write(Answer));
        EXPECT_TRUE(Wait([&] { return rLeft.m_Bytes.size() >= nSize && rRight.m_Bytes.size() >= nSize; }));
        EXPECT_EQ(rRight.m_Bytes, Pattern);
        EXPECT_EQ(rLeft.m_Bytes, Answer);
    }

    CQtEventLoop m_Loop;
};

class CTcpLinkTest : public CRealLinkTest {
protected:
    CTcpLinkTest() { m_Server.Open(); }
    void Connect(CObserved& rClient) {
        const int nBefore = m_Server.m_nOpened;
        rClient.Open();
        ASSERT_TRUE(Wait([&] { return rClient->IsOpen() && m_Server.m_nOpened > nBefore; }));
    }

    CObserved m_Server{MakeListener("tcp:127.0.0.1:0")};
};

class CPseudoTerminalTest : public CRealLinkTest {
protected:
    CPseudoTerminalTest() : m_Path(m_Directory.filePath("spindle").toStdString()) {}
    void Open(CObserved& rLink) {
        const int nBefore = rLink.m_nOpened;
        rLink.Open();
        ASSERT_TRUE(Wait([&] { return rLink.m_nOpened > nBefore || !rLink.m_Reasons.empty(); }));
        ASSERT_THAT(rLink.m_Reasons, IsEmpty());
    }

    QTemporaryDir m_Directory;
    std::string m_Path;
};

}  // namespace

TEST(ByteLinkDescription, NamesTellWhatALinkIsConnectedTo) {
    EXPECT_EQ(Make("serial:/dev/ttyS0")->GetName(), "serial:/dev/ttyS0:115200");
    EXPECT_EQ(Make("serial:/dev/ttyS0:9600")->GetName(), "serial:/dev/ttyS0:9600");
    EXPECT_EQ(Make("tcp:192.168.0.10:4001")->GetName(), "tcp:192.168.0.10:4001");
    EXPECT_EQ(Make("tcp:[::1]:4001")->GetName(), "tcp:[::1]:4001");
    EXPECT_EQ(MakeListener("pty:/tmp/spindle")->GetName(), "pty:/tmp/spindle");
}

TEST(ByteLinkDescription, ADevicePathMayHoldColons) {
    EXPECT_EQ(Make("serial:/dev/serial/by-path/pci-0000:00:14.0-usb-0:1:1.0-port0")->GetName(),
              "serial:/dev/serial/by-path/pci-0000:00:14.0-usb-0:1:1.0-port0:115200");
}

TEST(ByteLinkDescription, ErrorsTellWhatIsWrongAndWhatWouldBeRight) {
    EXPECT_THAT(GetError(""), HasSubstr("serial:PATH[:BAUD] or tcp:HOST:PORT"));
    EXPECT_THAT(GetError("sim"), HasSubstr("\"sim\" is no link"));
    EXPECT_THAT(GetError("pty:/tmp/x"), HasSubstr("is no link")) << "only for listening";
    EXPECT_THAT(GetError("serial:"), HasSubstr("path of the serial port is missing"));
    EXPECT_THAT(GetError("serial::9600"), HasSubstr("path of the serial port is missing"));
    for (const char* pBaud : {"0", "4000001", "99999999999", ""}) {
        EXPECT_THAT(GetError(std::string("serial:/dev/ttyS0:") + pBaud), HasSubstr("is no baud rate"))
            << pBaud;
    }
    for (const char* pEndpoint :
         {"", "host", "host:", ":4001", "host:0", "host:65536", "host:4001x", "host:-1", "::1:4001"}) {
        EXPECT_THAT(GetError(std::string("tcp:") + pEndpoint), HasSubstr("a port from 1 to 65535"))
            << pEndpoint;
    }
    EXPECT_THAT(GetListenerError("tcp:127.0.0.1:65536"),
                HasSubstr("a port from 0 (takes a free one) to 65535"));
    EXPECT_THAT(GetListenerError("pty:"), HasSubstr("path of the pseudo terminal is missing"));
    EXPECT_THAT(GetListenerError("serial:/dev/ttyS0"), HasSubstr("tcp:HOST:PORT or pty:PATH"));
}

TEST(LinkPair, CarriesBytesThroughTheLoopUnchanged) {
    CVirtualEventLoop Loop;
    CLinkPair Pair = MakeLinkPair();
    CObserved First(std::move(Pair.m_pFirst));
    CObserved Second(std::move(Pair.m_pSecond));
    First.Open();
    Second.Open();
    EXPECT_FALSE(First->IsOpen()) << "only once the loop has run";
    EXPECT_FALSE(First.Write({1}));
    Loop.RunPosted();
    EXPECT_EQ(First.m_nOpened, 1);
    EXPECT_TRUE(First.Write(MakePattern(1000)));
    EXPECT_TRUE(First.Write({0xC0}));
    EXPECT_TRUE(Second.Write({3, 2, 1}));
    EXPECT_THAT(Second.m_Bytes, IsEmpty());
    Loop.RunPosted();
    Bytes Expected = MakePattern(1000);
    Expected.push_back(0xC0);
    EXPECT_EQ(Second.m_Bytes, Expected);
    EXPECT_THAT(First.m_Bytes, ElementsAre(3, 2, 1));
}

TEST(LinkPair, WhatIsSentToAClosedEndIsLost) {
    CVirtualEventLoop Loop;
    CLinkPair Pair = MakeLinkPair();
    CObserved First(std::move(Pair.m_pFirst));
    CObserved Second(std::move(Pair.m_pSecond));
    First.Open();
    Loop.RunPosted();
    EXPECT_TRUE(First.Write({1}));
    Second.Open();
    Loop.RunPosted();
    EXPECT_TRUE(First.Write({2}));
    Second.Close();
    Loop.RunPosted();
    Second.Open();
    Loop.RunPosted();
    EXPECT_TRUE(First.Write({3}));
    Loop.RunPosted();
    EXPECT_THAT(Second.m_Bytes, ElementsAre(3));
    EXPECT_THAT(Second.m_Reasons, IsEmpty()) << "an own Close isn't reported";
}

TEST(LinkPair, AnEndMayOutliveTheOtherAndItsBytesOnTheWay) {
    CVirtualEventLoop Loop;
    CLinkPair Pair = MakeLinkPair();
    CObserved First(std::move(Pair.m_pFirst));
    Pair.m_pSecond->Open();
    First.Open();
    Loop.RunPosted();
    EXPECT_TRUE(First.Write({1}));
    EXPECT_TRUE(Pair.m_pSecond->Write(Bytes{2}));
    Pair.m_pSecond.reset();
    EXPECT_TRUE(First.Write({3}));
    Loop.RunPosted();
    EXPECT_THAT(First.m_Bytes, ElementsAre(2));
}

TEST(LinkPair, ACallbackMayDestroyItsLink) {
    CVirtualEventLoop Loop;
    CLinkPair Pair = MakeLinkPair();
    Pair.m_pFirst->Open();
    Pair.m_pSecond->Open();
    Loop.RunPosted();
    int nCalls = 0;
    Pair.m_pSecond->OnBytes = [&](std::span<const std::uint8_t>) {
        ++nCalls;
        Pair.m_pSecond.reset();
    };
    EXPECT_TRUE(Pair.m_pFirst->Write(Bytes{1}));
    EXPECT_TRUE(Pair.m_pFirst->Write(Bytes{2}));
    Loop.RunPosted();
    EXPECT_EQ(nCalls, 1) << "the second portion was on its way to a link that is gone";
}

TEST_F(CTcpLinkTest, ListensFromOpenOnAndTellsThePortTaken) {
    EXPECT_THAT(m_Server->GetName(), StartsWith("tcp:127.0.0.1:"));
    EXPECT_NE(m_Server->GetName(), "tcp:127.0.0.1:0");
    EXPECT_FALSE(m_Server->IsOpen()) << "nobody is there yet";
    EXPECT_FALSE(m_Server.Write({1}));
}

TEST_F(CTcpLinkTest, CarriesBytesBothWays) {
    CObserved Client(Make(m_Server->GetName()));
    Connect(Client);
    ExpectExchange(Client, m_Server, 1);
    ExpectExchange(Client, m_Server, 256);
    ExpectExchange(Client, m_Server, 1000000);
}

TEST_F(CTcpLinkTest, TheListenerTakesAClientAgainAfterTheLastOneHasGone) {
    CObserved Client(Make(m_Server->GetName()));
    const std::string Name = m_Server->GetName();
    Connect(Client);
    Client.Close();
    ASSERT_TRUE(Wait([&] { return m_Server.m_Reasons.size() == 1; }));
    EXPECT_FALSE(m_Server->IsOpen());
    EXPECT_THAT(Client.m_Reasons, IsEmpty());
    EXPECT_EQ(m_Server->GetName(), Name) << "still listening at the same port";
    Connect(Client);
    ExpectExchange(Client, m_Server, 100);
}

TEST_F(CTcpLinkTest, TheClientNoticesThatTheServerHasGone) {
    CObserved Client(Make(m_Server->GetName()));
    Connect(Client);
    EXPECT_TRUE(m_Server.Write({1, 2, 3}));
    Settle();
    m_Server.Close();
    ASSERT_TRUE(Wait([&] { return !Client.m_Reasons.empty(); }));
    EXPECT_FALSE(Client->IsOpen());
    EXPECT_FALSE(Client.Write({1}));
    EXPECT_THAT(Client.m_Bytes, ElementsAre(1, 2, 3)) << "what came before the end isn't lost";
    Settle();
    EXPECT_EQ(Client.m_Reasons.size(), 1U) << "told once";
}

/// Nothing on loopback can vanish without a word, so this looks at what the system was told: at the
/// descriptor of this process that is connected to the listener.
TEST_F(CTcpLinkTest, APeerThatVanishesWithoutAWordIsMissedWithinTenSeconds) {
    CObserved Client(Make(m_Server->GetName()));
    Connect(Client);
    const std::string Name = m_Server->GetName();
    const int Handle =
        FindConnectionTo(static_cast<std::uint16_t>(std::stoi(Name.substr(Name.rfind(':') + 1))));
    ASSERT_GE(Handle, 0);
    EXPECT_NE(GetOption(Handle, SOL_SOCKET, SO_KEEPALIVE), 0);
    const int Idle = GetOption(Handle, IPPROTO_TCP, TCP_KEEPIDLE) * 1000;
    const int Asking =
        GetOption(Handle, IPPROTO_TCP, TCP_KEEPINTVL) * 1000 * GetOption(Handle, IPPROTO_TCP, TCP_KEEPCNT);
    const int Unacknowledged = GetOption(Handle, IPPROTO_TCP, TCP_USER_TIMEOUT);
    EXPECT_GT(Unacknowledged, 0) << "what is sent would be repeated for a quarter of an hour";
    EXPECT_LE(Idle + Asking, 10000);
    // At worst something is sent just before the idle time has shown the loss, and begins its own limit.
    EXPECT_LE(std::max(Idle + Asking, Unacknowledged) + Unacknowledged, 10000);
}

TEST_F(CTcpLinkTest, AFurtherClientIsTurnedAway) {
    CObserved Client(Make(m_Server->GetName()));
    Connect(Client);
    CObserved Further(Make(m_Server->GetName()));
    Further.Open();
    ASSERT_TRUE(Wait([&] { return !Further.m_Reasons.empty(); }));
    EXPECT_EQ(m_Server.m_nOpened, 1);
    ExpectExchange(Client, m_Server, 100);
}

TEST_F(CTcpLinkTest, AClosedPortIsToldWithWhatToLookAt) {
    CObserved Client(Make(m_Server->GetName()));
    m_Server.Close();
    Client.Open();
    ASSERT_TRUE(Wait([&] { return !Client.m_Reasons.empty(); }));
    EXPECT_EQ(Client.m_nOpened, 0);
    EXPECT_THAT(Client.m_Reasons,
                ElementsAre(HasSubstr("refused; is the device on, and are host and port its own?")));
}

TEST_F(CTcpLinkTest, APortInUseIsToldWithWhatToLookAt) {
    CObserved Second(MakeListener(m_Server->GetName()));
    Second.Open();
    ASSERT_TRUE(Wait([&] { return !Second.m_Reasons.empty(); }));
    EXPECT_THAT(Second.m_Reasons,
                ElementsAre(HasSubstr("; give an address of this machine and a free port")));
}

TEST_F(CTcpLinkTest, ClosingBeforeTheConnectionStandsCallsNothing) {
    CObserved Client(Make(m_Server->GetName()));
    Client.Open();
    Client.Close();
    Settle();
    EXPECT_EQ(Client.m_nOpened, 0);
    EXPECT_THAT(Client.m_Reasons, IsEmpty());
}

TEST_F(CTcpLinkTest, ACallbackMayDestroyItsLink) {
    CObserved Client(Make(m_Server->GetName()));
    Connect(Client);
    bool bGone = false;
    Client->OnBytes = [&](std::span<const std::uint8_t>) {
        Client.m_pLink.reset();
        bGone = true;
    };
    EXPECT_TRUE(m_Server.Write({1}));
    EXPECT_TRUE(Wait([&] { return bGone; }));
    EXPECT_TRUE(Wait([&] { return !m_Server.m_Reasons.empty(); })) << "and the connection went with it";
}

TEST_F(CPseudoTerminalTest, ASerialLinkTalksThroughIt) {
    CObserved Device(MakeListener("pty:" + m_Path));
    Open(Device);
    CObserved Client(Make("serial:" + m_Path));
    Open(Client);
    ExpectExchange(Client, Device, 1);
    // Control characters included: a terminal that isn't raw would change or swallow some.
    ExpectExchange(Client, Device, 256);
    ExpectExchange(Client, Device, 20000);
}

TEST_F(CPseudoTerminalTest, ClientsMayComeAndGo) {
    CObserved Device(MakeListener("pty:" + m_Path));
    Open(Device);
    for (int i = 0; i < 3; ++i) {
        CObserved Client(Make("serial:" + m_Path + ":9600"));
        Open(Client);
        ExpectExchange(Client, Device, 256);
        Client.Close();
        Settle();
        EXPECT_TRUE(Device->IsOpen());
    }
    EXPECT_THAT(Device.m_Reasons, IsEmpty());
    EXPECT_EQ(Device.m_nOpened, 1);
}

TEST_F(CPseudoTerminalTest, TheClientNoticesOnceThatTheDeviceHasGone) {
    auto pDevice = std::make_unique<CObserved>(MakeListener("pty:" + m_Path));
    Open(*pDevice);
    CObserved Client(Make("serial:" + m_Path));
    Open(Client);
    pDevice.reset();
    ASSERT_TRUE(Wait([&] { return !Client.m_Reasons.empty(); }));
    Settle();
    EXPECT_EQ(Client.m_Reasons.size(), 1U);
    EXPECT_FALSE(Client->IsOpen());
    EXPECT_FALSE(Client.Write({1}));
    // And finds it again when it is back.
    CObserved Back(MakeListener("pty:" + m_Path));
    Open(Back);
    Client.m_Reasons.clear();
    Open(Client);
    ExpectExchange(Client, Back, 100);
}

TEST_F(CPseudoTerminalTest, AMissingSerialPortIsToldWithWhatToLookAt) {
    CObserved Client(Make("serial:" + m_Path));
    Client.Open();
    ASSERT_TRUE(Wait([&] { return !Client.m_Reasons.empty(); }));
    EXPECT_THAT(Client.m_Reasons, ElementsAre(HasSubstr("is the path right, the device plugged in")));
    Settle();
    EXPECT_EQ(Client.m_Reasons.size(), 1U);
}

TEST_F(CPseudoTerminalTest, TheLinkGoesWithIt) {
    {
        CObserved Device(MakeListener("pty:" + m_Path));
        Open(Device);
        EXPECT_THAT(std::filesystem::read_symlink(m_Path).string(), StartsWith("/dev/pts/"));
    }
    EXPECT_FALSE(std::filesystem::is_symlink(m_Path));
}

TEST_F(CPseudoTerminalTest, ALinkLeftByAProgramThatWasKilledIsReplaced) {
    std::filesystem::create_symlink("/dev/pts/99999", m_Path);
    CObserved Device(MakeListener("pty:" + m_Path));
    Open(Device);
    EXPECT_NE(std::filesystem::read_symlink(m_Path), "/dev/pts/99999");
}

TEST_F(CPseudoTerminalTest, AFileOrForeignLinkAtItsPathIsNotTouched) {
    std::ofstream(m_Path) << "precious";
    const std::string Link = m_Path + "-link";
    std::filesystem::create_symlink(m_Path, Link);
    for (const std::string& rPath : {m_Path, Link}) {
        CObserved Device(MakeListener("pty:" + rPath));
        Device.Open();
        ASSERT_TRUE(Wait([&] { return !Device.m_Reasons.empty(); }));
        EXPECT_THAT(Device.m_Reasons[0], HasSubstr("give a path that is free"));
    }
    EXPECT_EQ(std::filesystem::file_size(m_Path), 8U);
    EXPECT_EQ(std::filesystem::read_symlink(Link), m_Path);
}

TEST_F(CPseudoTerminalTest, AMissingDirectoryIsTold) {
    CObserved Device(MakeListener("pty:" + m_Path + "/missing/spindle"));
    Device.Open();
    ASSERT_TRUE(Wait([&] { return !Device.m_Reasons.empty(); }));
    EXPECT_THAT(Device.m_Reasons[0], HasSubstr("give a path in an existing directory"));
}

TEST_F(CPseudoTerminalTest, WithoutAReaderItLosesBytesRatherThanMemory) {
    CObserved Device(MakeListener("pty:" + m_Path));
    Open(Device);
    bool bRefused = false;
    for (int i = 0; i < 1000 && !bRefused; ++i) {
        bRefused = !Device.Write(Bytes(1000, 0x55));
    }
    EXPECT_TRUE(bRefused);
}

// The transport over a line, frames both ways and a window that receives.
TEST_F(CPseudoTerminalTest, TheTransportTalksThroughIt) {
    class CReceiver : public CWnd {
    public:
        std::vector<Bytes> m_Frames;

    protected:
        LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override {
            if (Message == WM_RV_RAWDATA_FIRST) {
                const auto* pBuffer = reinterpret_cast<const std::uint8_t*>(wParam);
                m_Frames.emplace_back(pBuffer + 3, pBuffer + lParam);
                rvCOM::FreeBuffer(static_cast<std::uint16_t>(pBuffer[0] | (pBuffer[1] << 8)));
            }
            return 0;
        }
    };
    CReceiver Wnd;
    Wnd.CreateMessageOnly();
    CObserved Device(MakeListener("pty:" + m_Path));
    Open(Device);
    LineDiscipline::CDecoder Decoder([&](std::span<const std::uint8_t> Frame) {
        // The device answers with addresses exchanged.
        Bytes Answer(Frame.begin(), Frame.end());
        std::swap(Answer[1], Answer[2]);
        Device->Write(LineDiscipline::Encode(Answer));
    });
    Device->OnBytes = [&Decoder](std::span<const std::uint8_t> Portion) { Decoder.Put(Portion); };

    rvCOM::SetLink(Make("serial:" + m_Path));
    rvCOM::Notify(&Wnd, RV_NOTIFY_RAWDATA, 5);
    ASSERT_TRUE(Wait([] { return rvCOM::IsLinkOpen(); }));
    const Bytes Request = {0x10, 1, 5, 0xC0, 0xDB};
    EXPECT_NE(rvCOM::SendRawData(Request.data(), 5), 0);
    ASSERT_TRUE(Wait([&] { return !Wnd.m_Frames.empty(); }));
    EXPECT_THAT(Wnd.m_Frames, ElementsAre(Bytes{0x10, 5, 1, 0xC0, 0xDB}));
    rvCOM::SetLink(nullptr);
}
