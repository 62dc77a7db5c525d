// Each symptom of a line on the simulator, under virtual time.
#include <gmock/gmock.h>

#include <map>

#include "platform/rvcom/queuedlink.h"
#include "tests/console/linkcheckfixture.h"

namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using Names = std::vector<std::string>;

class LinkCheckTest : public CLinkCheckTestBase {};

/// A link that never opens, for a reason.
class CBrokenLink : public CQueuedLink {
public:
    explicit CBrokenLink(std::optional<LinkTrouble> Trouble) : m_Trouble(Trouble) {}
    void Open() override {
        if (m_Trouble) {
            PostClosed("no way");
        }
    }
    void Close() override { Restart(); }
    bool Write(std::span<const std::uint8_t>) override { return false; }
    std::string GetName() const override { return "broken"; }
    LinkTrouble GetTrouble() const override { return m_Trouble.value_or(LinkTrouble::eOther); }

private:
    std::optional<LinkTrouble> m_Trouble;
};

CCheckReport CheckBroken(std::optional<LinkTrouble> Trouble) {
    const CVirtualEventLoop Loop;
    CLinkFacts Facts;
    CLinkCheck({}, [Trouble](std::uint32_t) { return std::make_unique<CBrokenLink>(Trouble); }).Run(Facts);
    return MakeLinkReport(Facts);
}

}  // namespace

TEST_F(LinkCheckTest, AModuleThatMeasuresIsFoundWell) {
    Connect();
    Turn();
    const CCheckReport Report = Check();
    EXPECT_THAT(GetProblems(Report), testing::IsEmpty());
    EXPECT_THAT(GetNotes(Report), testing::IsEmpty());
    EXPECT_EQ(
        GetText(Report, "link-module"),
        "Module 5 is a Kestrel, article 486107, serial number 14205, software 33; its active set is 1.");
    EXPECT_EQ(GetText(Report, "link-speed"), "Module 5 tells 3000 rpm.");
    EXPECT_EQ(GetText(Report, "link-in-lock"), "Module 5, plane 1 is in lock.");
    EXPECT_EQ(GetText(Report, "link-readings"), "Module 5, plane 1 sends 20.0 readings a second.");
    EXPECT_EQ(GetText(Report, "link-start"), "A run starts with --link sim --modules kestrel --addresses 5.");
    EXPECT_TRUE(Report.IsReady());
}

TEST_F(LinkCheckTest, ItTakesTenSecondsOfWhichSomeOnlyListen) {
    Connect();
    Turn();
    const std::uint64_t Begin = m_Loop.Now();
    bool bAskedEarly = false;
    m_Loop.SetTimer(1000, [&](std::uint32_t Id) {
        m_Loop.KillTimer(Id);
        bAskedEarly = m_pSimulator->Carry({{"state", json::object()}})["received"] != 0;
    });
    Check();
    EXPECT_FALSE(bAskedEarly);
    EXPECT_EQ(m_Loop.Now() - Begin, 10000U);
}

TEST_F(LinkCheckTest, NothingThatAModuleHoldsIsChanged) {
    Connect(CRotorFile::eLanner);
    Turn();
    const auto GetModules = [this] { return m_pSimulator->Carry({{"state", json::object()}})["modules"]; };
    const json Before = GetModules();
    Check();
    EXPECT_EQ(GetModules(), Before);
}

TEST_F(LinkCheckTest, ALannerModuleShowsBothPlanes) {
    Connect(CRotorFile::eLanner);
    Turn();
    const CCheckReport Report = Check();
    EXPECT_THAT(GetProblems(Report), testing::IsEmpty());
    EXPECT_THAT(GetText(Report, "link-module"), HasSubstr("Module 9 is a Lanner, article 51204A"));
    const std::string Lines = testing::PrintToString(Report.ToLines());
    EXPECT_THAT(Lines, HasSubstr("Module 9, plane 1 sends 20.0 readings"));
    EXPECT_THAT(Lines, HasSubstr("Module 9, plane 2 sends 20."));
    EXPECT_EQ(GetText(Report, "link-start"), "A run starts with --link sim --modules lanner --addresses 9.");
}

TEST_F(LinkCheckTest, TwoModulesAreAPair) {
    Connect(CRotorFile::eKestrelPair);
    Turn();
    EXPECT_EQ(GetText(Check(), "link-start"),
              "A run starts with --link sim --modules kestrel-pair --addresses 5,6.");
}

TEST_F(LinkCheckTest, ARotorThatStandsIsNoObstacle) {
    Connect();
    const CCheckReport Report = Check();
    EXPECT_EQ(GetNotes(Report), Names{"link-standing"});
    EXPECT_TRUE(Report.IsReady());
    EXPECT_THAT(GetGood(Report), Not(Contains("link-in-lock")));
}

TEST_F(LinkCheckTest, NotAByteMeansCablePortOrPower) {
    Connect();
    m_pSimulator->GetLink().Close();
    const std::uint64_t Begin = m_Loop.Now();
    const CCheckReport Report = Check();
    EXPECT_EQ(GetProblems(Report), Names{"link-no-bytes"});
    EXPECT_THAT(GetAdvice(Report, "link-no-bytes"), HasSubstr("power"));
    EXPECT_TRUE(Report.ToJson()["facts"]["all_addresses_asked"]);
    EXPECT_LE(m_Loop.Now() - Begin, 10000U + CLinkCheck::LONGEST_SEARCH);
}

TEST_F(LinkCheckTest, AModuleAtAnotherAddressThanGivenIsNamedWithItsOption) {
    Connect(CRotorFile::eKestrel, {7});
    Turn();
    const CCheckReport Report = Check({5});
    EXPECT_THAT(GetProblems(Report), testing::ElementsAre("link-address-silent", "link-other-address"));
    EXPECT_THAT(GetAdvice(Report, "link-other-address"), HasSubstr("--addresses 7;"));
}

TEST_F(LinkCheckTest, AModuleAtAnUnusualAddressCanRunOnceItIsGiven) {
    Connect(CRotorFile::eKestrel, {7});
    Turn();
    const CCheckReport Report = Check();
    EXPECT_EQ(GetNotes(Report), Names{"link-further-address"});
    EXPECT_TRUE(Report.IsReady());
    EXPECT_THAT(GetText(Report, "link-start"), HasSubstr("--addresses 7."));
}

TEST_F(LinkCheckTest, AModuleThatOnlyAnswersIsFoundAtAnyAddress) {
    Connect(CRotorFile::eKestrel, {254});
    Carry({{"fault", {{"kind", "drop"}, {"next", 1000000}, {"only", "indications"}}}});
    Turn();
    const CCheckReport Report = Check();
    EXPECT_THAT(GetText(Report, "link-module"), HasSubstr("Module 254 is a Kestrel"));
    EXPECT_EQ(GetProblems(Report), Names{"link-no-readings"});
}

TEST_F(LinkCheckTest, OneOfTwoModulesIsMissed) {
    Connect();
    Turn();
    const CCheckReport Report = Check({5, 6});
    EXPECT_EQ(GetProblems(Report), Names{"link-address-silent"});
    EXPECT_THAT(GetText(Report, "link-address-silent"), HasSubstr("6"));
}

TEST_F(LinkCheckTest, ManyDamagedFramesAreANoisyLine) {
    Connect();
    Turn();
    Carry({{"fault", {{"kind", "corrupt"}, {"next", 80}, {"only", "indications"}}}});
    const CCheckReport Report = Check();
    EXPECT_EQ(GetProblems(Report), Names{"link-bad-frames"});
    EXPECT_THAT(GetText(Report, "link-bad-frames"), testing::StartsWith("7"));
    EXPECT_THAT(GetAdvice(Report, "link-bad-frames"), HasSubstr("120 ohms"));
}

TEST_F(LinkCheckTest, AFewDamagedFramesAreANoteAndOneIsNothing) {
    for (const int nDamaged : {1, 5}) {
        Connect();
        Turn();
        Carry({{"fault", {{"kind", "corrupt"}, {"next", nDamaged}, {"at", 500}}}});
        CCheckReport Report = Check();
        EXPECT_TRUE(Report.IsReady());
        EXPECT_EQ(GetNotes(Report), nDamaged == 1 ? Names{} : Names{"link-some-bad-frames"}) << nDamaged;
    }
}

TEST_F(LinkCheckTest, ExchangedWiresGiveBytesWithoutFrames) {
    Connect();
    Carry({{"line", {{"inverted", true}}}});
    Turn();
    const CCheckReport Report = Check();
    EXPECT_EQ(GetProblems(Report), Names{"link-no-frames-behind-server"});
    EXPECT_THAT(GetAdvice(Report, "link-no-frames-behind-server"), HasSubstr("wires A and B"));
}

TEST_F(LinkCheckTest, AnEchoOfItsOwnFramesIsToldFromAModule) {
    Connect();
    Carry({{"line", {{"echo", true}}}});
    Turn();
    const CCheckReport Report = Check();
    EXPECT_EQ(GetNotes(Report), Names{"link-echo"});
    EXPECT_TRUE(Report.IsReady());
}

TEST_F(LinkCheckTest, NothingButAnEchoIsNoModule) {
    Connect();
    Carry({{"line", {{"echo", true}}}});
    Carry({{"fault", {{"kind", "silence_ms"}, {"value", 60000}}}});
    const CCheckReport Report = Check();
    EXPECT_EQ(GetProblems(Report), Names{"link-only-echo"});
}

TEST_F(LinkCheckTest, ASecondComputerOnTheLineIsFoundByItsQuestions) {
    Connect();
    Turn();
    SendEvery(700, {0x08, 0x02, 0x05});
    const CCheckReport Report = Check();
    EXPECT_EQ(GetProblems(Report), Names{"link-other-master"});
    EXPECT_THAT(GetText(Report, "link-other-master"), HasSubstr("under address 2"));
    EXPECT_EQ(Report.ToJson()["facts"]["modules"].size(), 1U);
}

TEST_F(LinkCheckTest, ASecondComputerUnderTheSameAddressIsFoundToo) {
    Connect();
    Turn();
    SendEvery(430, {0x1C, 0x01, 0x05});
    EXPECT_EQ(GetProblems(Check()), Names{"link-other-master"});
}

TEST_F(LinkCheckTest, AnswersToSomebodyElseBetrayHim) {
    Connect();
    Turn();
    SendEvery(700, {0x1C, 0x05, 0x03, 0xB8, 0x0B});
    const CCheckReport Report = Check();
    EXPECT_EQ(GetProblems(Report), Names{"link-other-master"});
    EXPECT_THAT(GetText(Report, "link-other-master"), HasSubstr("under address 3"));
}

TEST_F(LinkCheckTest, ALineThatIsLostMeanwhileEndsTheCheck) {
    Connect();
    Turn();
    const std::uint64_t Begin = m_Loop.Now();
    CarryAfter(5000, {{"fault", {{"kind", "cut_ms"}, {"value", 60000}}}});
    const CCheckReport Report = Check();
    EXPECT_EQ(GetProblems(Report), Names{"link-lost"});
    EXPECT_LT(m_Loop.Now() - Begin, 5100U);
}

TEST_F(LinkCheckTest, UnderVirtualTimeItSaysTheSameEachTime) {
    std::vector<std::string> Reports;
    for (int nTime = 0; nTime < 2; ++nTime) {
        CVirtualEventLoop Loop;
        Reports.push_back(CheckLink({.m_Link = "sim"}).ToJson().dump());
    }
    EXPECT_EQ(Reports[0], Reports[1]);
}

TEST_F(LinkCheckTest, FindingsComeInTheLanguageInUse) {
    Connect();
    SetLanguage("de");
    EXPECT_THAT(Check().ToLines(), Contains(HasSubstr("Hinweis: Der Rotor steht")));
}

TEST(LinkTroubles, EachHasItsFinding) {
    using Trouble = LinkTrouble;
    const std::map<Trouble, std::string> FINDINGS = {
        {Trouble::eRefused, "link-refused"},         {Trouble::eNoSuchHost, "link-no-such-host"},
        {Trouble::eUnreachable, "link-unreachable"}, {Trouble::eNoAnswer, "link-no-answer"},
        {Trouble::eClosed, "link-closed"},           {Trouble::eOther, "link-not-opened"}};
    for (const auto& [What, rName] : FINDINGS) {
        const CCheckReport Report = CheckBroken(What);
        EXPECT_EQ(GetProblems(Report), Names{rName});
        EXPECT_THAT(GetAdvice(Report, rName), Not(testing::IsEmpty()));
    }
}

TEST(LinkTroubles, WhatNeverOpensEndsAfterAWhile) {
    EXPECT_EQ(GetProblems(CheckBroken(std::nullopt)), Names{"link-no-answer"});
}
