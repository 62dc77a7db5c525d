// Links as a command line names them, on real pseudo terminals and sockets.
#include "console/checklink.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>

#include "console/command.h"
#include "console/serialport.h"
#include "platform/qt/qteventloop.h"
#include "platform/rvldb/gettext.h"
#include "simulator/simulator.h"
#include "tests/support/checkproblems.h"
#include "tests/support/tempdirectory.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using Names = std::vector<std::string>;

class CheckLinkTest : public testing::Test {
protected:
    CheckLinkTest() { SetLanguage("en"); }

    /// A simulated module at a pseudo terminal.
    void Connect(const json& rLine) {
        std::string Error;
        m_pSimulator = CSimulator::Create(CRotorFile::GetBuiltIn(), MakeListeningLink("pty:" + m_Port, Error),
                                          {}, Error);
        ASSERT_NE(m_pSimulator, nullptr) << Error;
        m_pSimulator->Open();
        ASSERT_EQ(m_pSimulator->Carry({{"line", rLine}}), json({{"ok", true}}));
        ASSERT_TRUE(m_Loop.RunUntil([this] { return m_pSimulator->GetLink().IsOpen(); }, 5000));
    }

    CQtEventLoop m_Loop;
    const CTempDirectory m_Directory;
    const std::string m_Port = m_Directory.At("module");
    std::unique_ptr<CSimulator> m_pSimulator;
};

}  // namespace

TEST_F(CheckLinkTest, TheBaudRateThatFitsIsFound) {
    Connect({{"baud", 19200}});
    const CCheckReport Report = CheckLink({.m_Link = "serial:" + m_Port, .m_Seconds = 4});
    EXPECT_EQ(GetProblems(Report), Names{"link-wrong-baud"});
    EXPECT_THAT(Report.Find("link-wrong-baud")->m_Text,
                HasSubstr("at 115200 baud, but the module speaks at 19200"));
    EXPECT_THAT(Report.Find("link-wrong-baud")->m_Advice, HasSubstr("serial:PATH:19200"));
    const json Facts = Report.ToJson()["facts"];
    EXPECT_EQ(Facts["fitting_baud"], 19200);
    EXPECT_GT(Facts["bytes"], 0) << "what it reports by itself came as garbage";
    EXPECT_EQ(Facts["modules"].at(0)["article"], "486107");
}

TEST_F(CheckLinkTest, AtTheFittingRateAllIsWell) {
    Connect({{"baud", 9600}});
    const CCheckReport Report = CheckLink({.m_Link = "serial:" + m_Port + ":9600", .m_Seconds = 4});
    EXPECT_THAT(GetProblems(Report), IsEmpty());
    EXPECT_EQ(Report.ToJson()["facts"]["bad_frames"], 0);
}

TEST_F(CheckLinkTest, ExchangedWiresFitNoRate) {
    Connect({{"inverted", true}, {"baud", 115200}});
    const CCheckReport Report = CheckLink({.m_Link = "serial:" + m_Port, .m_Seconds = 4});
    ASSERT_EQ(GetProblems(Report), Names{"link-no-frames"});
    EXPECT_THAT(Report.Find("link-no-frames")->m_Text, HasSubstr("nor at 57600, 38400"));
    EXPECT_THAT(Report.Find("link-no-frames")->m_Advice,
                testing::StartsWith("Exchange the two wires A and B"));
}

TEST_F(CheckLinkTest, APortThatIsNotThereAndAFileAreTold) {
    EXPECT_EQ(GetProblems(CheckLink({.m_Link = "serial:" + m_Directory.At("none")})), Names{"link-missing"});
    std::ofstream(m_Directory.At("file")) << "no port";
    EXPECT_EQ(GetProblems(CheckLink({.m_Link = "serial:" + m_Directory.At("file")})), Names{"link-no-port"});
    EXPECT_EQ(GetProblems(CheckLink({.m_Link = "serial:/dev/null"})), Names{"link-no-port"});
}

TEST_F(CheckLinkTest, APortWithoutARightNamesItsGroup) {
    CLinkFacts Facts;
    Facts.m_Trouble = CLinkFacts::Trouble::eNoRight;
    Facts.m_TroubleText = "Permission denied";
    Facts.m_Group = "dialout";
    const CCheckReport Report = MakeLinkReport(Facts);
    EXPECT_EQ(GetProblems(Report), Names{"link-no-right"});
    EXPECT_THAT(Report.Find("link-no-right")->m_Advice, HasSubstr("group dialout"));
}

TEST_F(CheckLinkTest, AServerThatRefusesIsTold) {
    std::string Error;
    auto pServer = MakeListeningLink("tcp:127.0.0.1:0", Error);
    pServer->Open();
    const std::string Link = pServer->GetName();
    pServer.reset();
    EXPECT_EQ(GetProblems(CheckLink({.m_Link = Link})), Names{"link-refused"});
}

TEST_F(CheckLinkTest, AServerThatServesSomebodyElseClosesAtOnce) {
    std::string Error;
    const auto pServer = MakeListeningLink("tcp:127.0.0.1:0", Error);
    pServer->Open();
    const auto pFirst = MakeByteLink(pServer->GetName(), Error);
    pFirst->Open();
    ASSERT_TRUE(m_Loop.RunUntil([&] { return pServer->IsOpen(); }, 5000));
    EXPECT_EQ(GetProblems(CheckLink({.m_Link = pServer->GetName()})), Names{"link-closed"});
}

TEST_F(CheckLinkTest, ATextThatNamesNoLinkIsRefused) {
    EXPECT_THROW(CheckLink({.m_Link = "usb"}), CCommandError);
    EXPECT_THROW(CheckLink({.m_Link = "serial:/dev/ttyS0:0"}), CCommandError);
}

TEST_F(CheckLinkTest, SpeedsOfAPseudoTerminalAreSeenFromItsOtherSide) {
    Connect(json::object());
    std::string Error;
    for (const std::uint32_t Baud : {4800U, 9600U, 230400U, 125000U}) {
        const auto pLink = MakeByteLink("serial:" + m_Port + ":" + std::to_string(Baud), Error);
        bool bOpened = false;
        pLink->OnOpened = [&bOpened] { bOpened = true; };
        pLink->Open();
        ASSERT_TRUE(m_Loop.RunUntil([&bOpened] { return bOpened; }, 5000));
        EXPECT_EQ(m_pSimulator->GetLink().GetPeerSpeed(), Baud);
    }
}
