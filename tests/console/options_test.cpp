#include "console/options.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/system/version.h"

namespace {

std::optional<COptions> Parse(std::vector<const char*> Arguments, CCommandLineEnd& rEnd) {
    Arguments.insert(Arguments.begin(), "console");
    return ParseCommandLine(static_cast<int>(Arguments.size()), Arguments.data(), rEnd);
}

COptions ParseGood(const std::vector<const char*>& rArguments) {
    CCommandLineEnd End;
    const std::optional<COptions> Options = Parse(rArguments, End);
    EXPECT_TRUE(Options.has_value()) << End.m_Text;
    return Options.value_or(COptions{});
}

/// The one line that a refused command line gives.
std::string ParseBad(const std::vector<const char*>& rArguments) {
    CCommandLineEnd End;
    EXPECT_FALSE(Parse(rArguments, End).has_value());
    EXPECT_EQ(End.m_ExitCode, 3);
    EXPECT_EQ(End.m_Text.find('\n'), std::string::npos) << End.m_Text;
    return End.m_Text;
}

}  // namespace

TEST(OptionsTest, DefaultsAreTheSimulatorInThisProcess) {
    const COptions Options = ParseGood({});
    EXPECT_FALSE(Options.m_bHeadless);
    EXPECT_TRUE(Options.IsSimulated());
    EXPECT_FALSE(Options.IsVirtualTime());
    EXPECT_EQ(Options.m_Procedure, COptions::Procedure::ePrebalance);
}

TEST(OptionsTest, HeadlessOnTheSimulatorRunsInVirtualTimeUnlessRealTimeIsAskedFor) {
    EXPECT_TRUE(ParseGood({"--headless"}).IsVirtualTime());
    EXPECT_FALSE(ParseGood({"--headless", "--real-time"}).IsVirtualTime());
    EXPECT_FALSE(ParseGood({"--headless", "--link", "tcp:127.0.0.1:4000"}).IsVirtualTime());
}

TEST(OptionsTest, EveryOptionIsTaken) {
    const COptions Options = ParseGood({"--headless",
                                        "--rotor",
                                        "a.json",
                                        "--link",
                                        "serial:/dev/ttyS1:9600",
                                        "--machine",
                                        "tcp:localhost:99",
                                        "--modules",
                                        "kestrel-pair",
                                        "--addresses",
                                        "7,8",
                                        "--mode",
                                        "two-plane",
                                        "--method",
                                        "weights,screws",
                                        "--procedure",
                                        "prebalance+rebalance",
                                        "--config-dir",
                                        "c",
                                        "--report",
                                        "r.json",
                                        "--screenshots",
                                        "s",
                                        "--real-time"});
    EXPECT_EQ(Options.m_RotorFile, "a.json");
    EXPECT_EQ(Options.m_Link, "serial:/dev/ttyS1:9600");
    EXPECT_EQ(Options.m_Machine, "tcp:localhost:99");
    EXPECT_EQ(Options.m_Modules, "kestrel-pair");
    EXPECT_EQ(Options.m_Addresses, (std::vector<std::uint8_t>{7, 8}));
    EXPECT_EQ(Options.m_Mode, "two-plane");
    EXPECT_EQ(Options.m_Methods, (std::vector<std::string>{"weights", "screws"}));
    EXPECT_EQ(Options.m_Procedure, COptions::Procedure::ePrebalanceAndRebalance);
    EXPECT_EQ(Options.m_ConfigDirectory, "c");
    EXPECT_EQ(Options.m_ReportFile, "r.json");
    EXPECT_EQ(Options.m_ScreenshotDirectory, "s");
    EXPECT_TRUE(Options.m_bRealTime);
}

TEST(OptionsTest, UnknownOptionIsNamed) {
    EXPECT_NE(ParseBad({"--rotr", "a.json"}).find("--rotr"), std::string::npos);
}

TEST(OptionsTest, WrongLinkSaysWhatWouldBeRight) {
    EXPECT_NE(ParseBad({"--link", "usb:1"}).find("serial:PATH[:BAUD]"), std::string::npos);
}

TEST(OptionsTest, WrongChoicesAreRefused) {
    EXPECT_NE(ParseBad({"--modules", "falcon"}).find("falcon"), std::string::npos);
    EXPECT_NE(ParseBad({"--mode", "plane3"}).find("plane3"), std::string::npos);
    EXPECT_NE(ParseBad({"--method", "glue"}).find("glue"), std::string::npos);
    EXPECT_NE(ParseBad({"--procedure", "balance"}).find("balance"), std::string::npos);
}

TEST(OptionsTest, AddressesMustFitTheModules) {
    EXPECT_NE(ParseBad({"--addresses", "5,6"}).find("kestrel-pair"), std::string::npos);
    EXPECT_NE(ParseBad({"--addresses", "0"}).find("1 to 254"), std::string::npos);
    EXPECT_NE(ParseBad({"--addresses", "5,5", "--modules", "kestrel-pair"}).find("differ"),
              std::string::npos);
    for (const char* pBad : {"0", "255", "300", "-1", "five", "5.0", ""}) {
        EXPECT_NE(ParseBad({"--addresses", pBad}).find("1 to 254"), std::string::npos) << pBad;
    }
    ParseGood({"--addresses", "254,1", "--modules", "kestrel-pair"});
}

/// The modules may stand in the rotor file alone: whether two addresses fit is known when it is read.
TEST(OptionsTest, TwoAddressesMayFitTheModulesOfTheRotorFile) {
    EXPECT_EQ(ParseGood({"--addresses", "7,8", "--rotor", "pair.json"}).m_Addresses,
              (std::vector<std::uint8_t>{7, 8}));
    ParseBad({"--addresses", "7,8", "--rotor", "pair.json", "--modules", "lanner"});
    ParseBad({"--addresses", "7,8,9", "--rotor", "pair.json"});
}

TEST(OptionsTest, ChoicesAreTakenByNameOnly) {
    for (const char* pBad : {"0", "1", "2", "", "Prebalance"}) {
        EXPECT_NE(ParseBad({"--procedure", pBad}).find("prebalance+rebalance"), std::string::npos) << pBad;
        EXPECT_NE(ParseBad({"--nc", pBad}).find("opcua"), std::string::npos) << pBad;
    }
}

TEST(OptionsTest, AProcedureThatIsAskedForIsToldFromTheDefault) {
    EXPECT_FALSE(ParseGood({}).m_bProcedureGiven);
    const COptions Options = ParseGood({"--procedure", "prebalance"});
    EXPECT_TRUE(Options.m_bProcedureGiven);
    EXPECT_EQ(Options.m_Procedure, COptions::Procedure::ePrebalance);
}

TEST(OptionsTest, ProceduresHaveTheNamesOfTheCommandLine) {
    for (const char* pName : {"prebalance", "rebalance", "prebalance+rebalance"}) {
        EXPECT_STREQ(ToString(ParseGood({"--procedure", pName}).m_Procedure), pName);
    }
}

/// An empty text comes from a script whose variable isn't set: the default in its place would do something
/// else.
TEST(OptionsTest, EmptyNamesOfFilesAndDirectoriesAreRefused) {
    for (const char* pOption : {"--rotor", "--config-dir", "--report", "--screenshots"}) {
        EXPECT_NE(ParseBad({pOption, ""}).find("must not be empty"), std::string::npos) << pOption;
    }
}

TEST(OptionsTest, ControlLinkOfAnExternalMachineNeedsAnExternalLink) {
    EXPECT_NE(ParseBad({"--machine", "tcp:localhost:1"}).find("--link sim"), std::string::npos);
    EXPECT_NE(ParseBad({"--machine", "usb", "--link", "tcp:localhost:1"}).find("tcp:HOST:PORT"),
              std::string::npos);
}

TEST(OptionsTest, HelpEndsWithoutAnError) {
    CCommandLineEnd End;
    EXPECT_FALSE(Parse({"--help"}, End).has_value());
    EXPECT_EQ(End.m_ExitCode, 0);
    EXPECT_NE(End.m_Text.find("--headless"), std::string::npos);
}

TEST(OptionsTest, TheVersionIsTold) {
    CCommandLineEnd End;
    EXPECT_FALSE(Parse({"--version"}, End).has_value());
    EXPECT_EQ(End.m_ExitCode, 0);
    EXPECT_EQ(End.m_Text, std::string("console ") + GetProjectVersion());
}

TEST(OptionsTest, TheRotorHasTheNameThatItIsGiven) {
    EXPECT_EQ(ParseGood({}).m_RotorName, "");
    EXPECT_EQ(ParseGood({"--rotor-name", " Spindel 7\n"}).m_RotorName, "Spindel 7");
}

TEST(OptionsTest, ARunDrivenByAnNcTakesRealTime) {
    EXPECT_TRUE(ParseGood({"--headless"}).IsVirtualTime());
    const auto Options = ParseGood({"--headless", "--nc", "opcua", "--test-weight", "2.5"});
    EXPECT_TRUE(Options.IsDrivenByNc());
    EXPECT_FALSE(Options.IsVirtualTime());
    EXPECT_EQ(Options.m_TestWeight, 2.5);
    EXPECT_FALSE(ParseGood({"--nc", "panel"}).IsDrivenByNc());
}

/// An NC that is configured is spoken to whoever drives, so virtual time is out of the question.
TEST(OptionsTest, ANetworkKnowsRealTimeOnly) {
    auto Options = ParseGood({"--headless"});
    Options.m_Opc.emplace();
    EXPECT_FALSE(Options.IsVirtualTime());
}

TEST(OptionsTest, TheTestWeightIsTheNcsToAskFor) {
    EXPECT_NE(ParseBad({"--test-weight", "2.5"}).find("--nc opcua"), std::string::npos);
    for (const char* pBad : {"-1", "0", "inf", "nan", "heavy", ""}) {
        const std::string Text = ParseBad({"--nc", "opcua", "--test-weight", pBad});
        EXPECT_NE(Text.find("more than 0"), std::string::npos) << Text;
        EXPECT_LT(Text.size(), 120U) << Text;
    }
    EXPECT_NE(ParseBad({"--nc", "telepathy"}).find("telepathy"), std::string::npos);
}

TEST(OptionsTest, ALanguageThatIsThereIsTakenAndAnotherIsToldWithThoseThatAre) {
    EXPECT_EQ(ParseGood({"--language", "de"}).m_Language, "de");
    EXPECT_EQ(ParseGood({}).m_Language, "");
    EXPECT_NE(ParseBad({"--language", "xx"}).find("there is no language \"xx\"; there are de, en"),
              std::string::npos);
}

TEST(OptionsTest, WhatBelongsToTheWindowIsRefusedWithoutOne) {
    EXPECT_TRUE(ParseGood({"--full-screen"}).m_bFullScreen);
    EXPECT_TRUE(ParseGood({"--touch"}).m_bTouch);
    EXPECT_NE(ParseBad({"--headless", "--full-screen"}).find("--headless"), std::string::npos);
    EXPECT_NE(ParseBad({"--headless", "--touch"}).find("--headless"), std::string::npos);
}
