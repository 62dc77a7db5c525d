// What the conversation makes of the module's answers and reports.
#include <gmock/gmock.h>
#include <array>

#include "tests/rvdlm/m_rtr/rtr_trim/conversationfixture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST_F(ModuleConversation, EachAnswerAsksTheNextQuestion) {
    Start();
    Identify(Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("set"));
    ReportSet(MakeSet(), Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("set", "state"));
    ReportState(0, 0, 0, Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("set", "state", "rpm"));
    ReportRPM(0, 3000, Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("set", "state", "rpm", "xy"));
    ReportXY(0, 1, 2, Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("set", "state", "rpm", "xy"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(ModuleConversation, ReportsAreUsedButAskNothing) {
    Start();
    Identify(Comm::eIndication);
    ReportSet(MakeSet());
    ReportState(0, 0);
    ReportRPM(0, 3000);
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
    EXPECT_EQ(GetMachineName(), "0#3#255-0-123456-4711-2");
    EXPECT_EQ(m_pConversation->GetSet().Name, "WHEEL");
    EXPECT_EQ(m_pConversation->GetCurrentRPM(), 3000);
    EXPECT_EQ(m_pConversation->GetOutOfLock(), 0);
    EXPECT_EQ(m_pConversation->GetInvalidRPM(), 0);
}

TEST_F(ModuleConversation, ATimeoutDoesNothingMore) {
    Start();
    for (const Reason Why : {Comm::eTimeout, Comm::eError}) {
        m_pConversation->OnQueryModuleIdentification(Why, nullptr, nullptr);
        m_pConversation->OnSetRequest(Why, nullptr);
        m_pConversation->OnModuleState(Why, nullptr, nullptr, nullptr, nullptr, nullptr);
        m_pConversation->OnRPMData(Why, nullptr, nullptr);
        m_pConversation->OnUnbalanceXYValues(Why, nullptr, nullptr, nullptr);
        // Data that come with a failure don't count either.
        Identify(Why);
        ReportSet(MakeSet(), Why);
        ReportRPM(0, 3000, Why);
    }
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    EXPECT_EQ(GetMachineName(), "");
}

TEST_F(ModuleConversation, AnAnswerWithoutDataIsIgnored) {
    Start();
    const std::string Article = "123456";
    m_pConversation->OnQueryModuleIdentification(Comm::eSuccess, &Article, nullptr);
    m_pConversation->OnSetRequest(Comm::eSuccess, nullptr);
    m_pConversation->OnRPMData(Comm::eSuccess, nullptr, nullptr);
    m_pConversation->OnUnbalanceXYValues(Comm::eSuccess, nullptr, nullptr, nullptr);
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
    EXPECT_EQ(GetMachineName(), "");
}

TEST_F(ModuleConversation, FailingQueriesAreAsserted) {
    Start();
    m_Module.m_Sent = 0;
    Identify();
    ReportSet(MakeSet(), Comm::eSuccess);
    ReportState(0, 0, 0, Comm::eSuccess);
    ReportRPM(0, 0, Comm::eSuccess);
    EXPECT_THAT(m_Log.GetAssertions(),
                ElementsAre("QueryActiveSet() failed!", "QueryModuleState() failed!",
                            "QueryRPMData() failed!", "QueryUnbalanceXYValues() failed!"));
    EXPECT_THAT(TakeShownMessages(), IsEmpty()) << "for the log, not for the operator";
}

TEST_F(ModuleConversation, IdentificationBeginsTheMachineName) {
    Start();
    Identify(Comm::eSuccess, "123456", 4711);
    EXPECT_EQ(GetMachineName(), "123456-4711");
    Identify(Comm::eSuccess, "654321", 1);
    EXPECT_EQ(GetMachineName(), "123456-4711");
}

// The key of a module whose serial fills both halves: written as a signed number.
TEST_F(ModuleConversation, SerialNumbersArePrintedSigned) {
    Start();
    Identify(Comm::eSuccess, "123456", 0xFFFF0001);
    EXPECT_EQ(GetMachineName(), "123456--65535");
}

TEST_F(ModuleConversation, AnIdentificationWithTheSetKnownAsksNothing) {
    Open();
    Identify(Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
}

// input # sensor 1 # sensor 2 - mode - article - serial - set
TEST_F(ModuleConversation, TheFirstSetCompletesTheMachineNameForPlaneOne) {
    Start();
    Identify();
    ReportSet(MakeSet());
    EXPECT_EQ(GetMachineName(), "0#3#255-0-123456-4711-2");
}

TEST_F(ModuleConversation, TheFirstSetCompletesTheMachineNameForPlaneTwo) {
    Start(ePlane2);
    Identify();
    ReportSet(MakeSet());
    EXPECT_EQ(GetMachineName(), "1#4#255-1-123456-4711-2");
}

TEST_F(ModuleConversation, TheFirstSetCompletesTheMachineNameForTwoPlanes) {
    Start(eTwoPlane);
    Identify();
    ReportSet(MakeSet());
    EXPECT_EQ(GetMachineName(), "0#3#4-2-123456-4711-2");
}

TEST_F(ModuleConversation, ASwappedSetIsMarkedInTheMachineName) {
    Start();
    Identify();
    CSet Set = MakeSet(11);
    Set.Swap = 1;
    ReportSet(Set);
    EXPECT_EQ(GetMachineName(), "0#3#255-0s-123456-4711-11");
}

TEST_F(ModuleConversation, ASetThatLacksASensorIsAssertedAndUsed) {
    Start();
    Identify();
    CSet Set = MakeSet();
    Set.SensorAdaptionPlane1 = 255;
    ReportSet(Set);
    EXPECT_THAT(m_Log.GetAssertions(),
                Contains("current set configuration does not fit with balancing mode!"));
    EXPECT_EQ(GetMachineName(), "0#255#255-0-123456-4711-2");
    EXPECT_THAT(m_Told, ElementsAre("machine 0#255#255-0-123456-4711-2 of 0 255 255"));
}

// A mode needs the sensors of its planes and the speed of the first of them; what it doesn't use may be
// unknown.
TEST_F(ModuleConversation, AModeNeedsItsOwnSensorsAndInputOnly) {
    using Field = std::uint8_t CSet::*;
    constexpr std::array<Field, 4> FIELDS{&CSet::RPMInputPlane1, &CSet::SensorAdaptionPlane1,
                                          &CSet::RPMInputPlane2, &CSet::SensorAdaptionPlane2};
    struct CNeed {
        CPreBalDatabase::BalancingMode m_Mode;
        std::array<bool, 4> m_bNeeded;
    };
    for (const CNeed& rNeed :
         {CNeed{ePlane1, {true, true, false, false}}, CNeed{ePlane2, {false, false, true, true}},
          CNeed{eTwoPlane, {true, true, false, true}}}) {
        for (std::size_t i = 0; i <= FIELDS.size(); ++i) {
            Start(rNeed.m_Mode);
            Identify();
            CSet Set = MakeSet();
            if (i < FIELDS.size()) {
                Set.*FIELDS[i] = 255;
            }
            ReportSet(Set);
            const std::vector<std::string> Assertions = m_Log.GetAssertions();
            EXPECT_EQ(
                std::ranges::count(Assertions, "current set configuration does not fit with balancing mode!"),
                i < FIELDS.size() && rNeed.m_bNeeded[i] ? 1 : 0)
                << "mode " << rNeed.m_Mode << ", field " << i;
        }
    }
}

TEST_F(ModuleConversation, ASetBeforeTheIdentificationOpensNothing) {
    Start();
    ReportSet(MakeSet());
    EXPECT_EQ(GetMachineName(), "");
    EXPECT_THAT(m_Told, IsEmpty());
}

TEST_F(ModuleConversation, ASetThatDiffersOnlyInItsNameDoesNotAbort) {
    Run();
    CSet Set = MakeSet();
    Set.Name = "OTHER";
    ReportSet(Set);
    EXPECT_THAT(GetCalls(), IsEmpty());
}

class CChangedSetTest : public ModuleConversation, public testing::WithParamInterface<int> {};

// Each of the fields that count.
TEST_P(CChangedSetTest, Aborts) {
    Run();
    CSet Set = MakeSet();
    const std::array<std::uint8_t*, 8> Fields{&Set.Number,
                                              &Set.Mode,
                                              &Set.RPMInputPlane1,
                                              &Set.RPMInputPlane2,
                                              &Set.RPMFactorPlane1,
                                              &Set.RPMFactorPlane2,
                                              &Set.SensorAdaptionPlane1,
                                              &Set.SensorAdaptionPlane2};
    const auto Field = static_cast<std::size_t>(GetParam());
    if (Field < Fields.size()) {
        *Fields[Field] = 77;
    } else {
        Set.Swap = 1;
    }
    m_pConversation->OnSetRequest(Comm::eIndication, &Set);
    EXPECT_THAT(GetCalls(), ElementsAre("AbortBalancing 1"));
    EXPECT_THAT(m_Log.GetTexts("Error"), ElementsAre("Set has been changed! calling AbortBalancing()..."));
}

std::string GetFieldName(const testing::TestParamInfo<int>& rInfo) {
    constexpr std::array NAMES{"Number",
                               "Mode",
                               "RPMInputPlane1",
                               "RPMInputPlane2",
                               "RPMFactorPlane1",
                               "RPMFactorPlane2",
                               "SensorAdaptionPlane1",
                               "SensorAdaptionPlane2",
                               "Swap"};
    return NAMES.at(static_cast<std::size_t>(rInfo.param));
}

INSTANTIATE_TEST_SUITE_P(Fields, CChangedSetTest, testing::Range(0, 9), GetFieldName);

TEST_F(ModuleConversation, TheChainGoesOnAfterAChangedSet) {
    Run();
    ReportSet(MakeSet(3), Comm::eSuccess);
    EXPECT_THAT(GetCalls(), ElementsAre("AbortBalancing 1"));
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("state"));
}

// The window keeps the first set: the same other one aborts again, and the first one is welcome.
TEST_F(ModuleConversation, EveryLaterReportOfAnotherSetAbortsAgain) {
    Open();
    ReportSet(MakeSet(3));
    ReportSet(MakeSet(3));
    EXPECT_THAT(GetCalls(), ElementsAre("AbortBalancing 1", "AbortBalancing 1"));
    ReportSet(MakeSet(2));
    EXPECT_THAT(GetCalls(), IsEmpty());
}

TEST_F(ModuleConversation, AWrongModuleStateAborts) {
    Run();
    ReportState(0, 0, 1, Comm::eSuccess);
    EXPECT_THAT(GetCalls(), ElementsAre("AbortBalancing 11"));
    EXPECT_THAT(m_Log.GetTexts("Error"),
                ElementsAre("Module state has been changed! calling AbortBalancing()..."));
    // The chain goes on all the same.
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("rpm"));
}

TEST_F(ModuleConversation, AWrongModuleStateWithoutProcedureStartsOneToShowTheFailure) {
    Open();
    ReportState(0, 0, 1);
    EXPECT_THAT(GetCalls(), ElementsAre("AbortBalancing 11"));
}

TEST_F(ModuleConversation, FlagsOfPlaneOneReachTheProcedure) {
    Run();
    const std::uint32_t Zero = 0;
    const std::uint32_t One = 1;
    m_pConversation->OnModuleState(Comm::eIndication, &One, &Zero, &Zero, &One, &Zero);
    EXPECT_THAT(GetCalls(), ElementsAre("OutOfLock 1", "InvalidRPM 0"));
}

TEST_F(ModuleConversation, FlagsOfPlaneTwoReachTheProcedure) {
    Run(ePlane2);
    const std::uint32_t Zero = 0;
    const std::uint32_t One = 1;
    m_pConversation->OnModuleState(Comm::eIndication, &One, &Zero, &Zero, &One, &Zero);
    EXPECT_THAT(GetCalls(), ElementsAre("OutOfLock 0", "InvalidRPM 1"));
}

TEST_F(ModuleConversation, FlagsOfTwoPlanesAreJoined) {
    Run(eTwoPlane);
    const std::uint32_t Zero = 0;
    const std::uint32_t One = 1;
    m_pConversation->OnModuleState(Comm::eIndication, &One, &Zero, &Zero, &Zero, &Zero);
    m_pConversation->OnModuleState(Comm::eIndication, &Zero, &Zero, &Zero, &One, &Zero);
    m_pConversation->OnModuleState(Comm::eIndication, &Zero, &Zero, &Zero, &Zero, &Zero);
    EXPECT_THAT(GetCalls(), ElementsAre("OutOfLock 1", "InvalidRPM 0", "OutOfLock 0", "InvalidRPM 1",
                                        "OutOfLock 0", "InvalidRPM 0"));
}

TEST_F(ModuleConversation, MissingFlagsAreAsserted) {
    Run();
    const std::uint32_t Zero = 0;
    m_pConversation->OnModuleState(Comm::eIndication, &Zero, nullptr, nullptr, nullptr, nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
    EXPECT_THAT(GetCalls(), IsEmpty());
    // Plane 2 and the lock of the panel aren't looked at here.
    m_pConversation->OnModuleState(Comm::eIndication, &Zero, &Zero, nullptr, nullptr, nullptr);
    EXPECT_THAT(GetCalls(), ElementsAre("OutOfLock 0", "InvalidRPM 0"));
}

TEST_F(ModuleConversation, TheChainGoesOnAfterMissingFlags) {
    Open();
    m_pConversation->OnModuleState(Comm::eSuccess, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("rpm"));
}

TEST_F(ModuleConversation, SpeedReachesTheProcedureAndTheStatusLine) {
    Run();
    ReportRPM(0, 2999);
    EXPECT_THAT(GetCalls(), ElementsAre("CurrentRPM 2999"));
    EXPECT_THAT(m_Told, ElementsAre("speed"));
}

TEST_F(ModuleConversation, SpeedOfTheOtherPlaneIsIgnored) {
    Run();
    ReportRPM(1, 2999);
    EXPECT_THAT(GetCalls(), IsEmpty());
}

TEST_F(ModuleConversation, SpeedOfPlaneOneIsIgnoredWithTwoPlanes) {
    Run(eTwoPlane);
    ReportRPM(1, 2999);
    EXPECT_THAT(GetCalls(), IsEmpty());
    ReportRPM(0, 3000);
    EXPECT_THAT(GetCalls(), ElementsAre("CurrentRPM 3000"));
}

TEST_F(ModuleConversation, SpeedOfPlaneTwoRulesInItsMode) {
    Run(ePlane2);
    ReportRPM(0, 2999);
    ReportRPM(1, 3000);
    EXPECT_THAT(GetCalls(), ElementsAre("CurrentRPM 3000"));
}

// 0xFFFF is -1 in the low 16 bits.
TEST_F(ModuleConversation, ReadingsAreSignedAndGoToTheirPlane) {
    Run();
    ReportXY(0, 0xFFFF, 5);
    ReportXY(1, 0x8000, 0x7FFF);
    ReportXY(2, 1, 1);
    EXPECT_THAT(GetCalls(), ElementsAre("CurrentXYValuePlane1 -1 5", "CurrentXYValuePlane2 -32768 32767"));
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
}

TEST_F(ModuleConversation, ReadingsAreAskedForOnDemand) {
    Open();
    m_pConversation->QueryReadings();
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("xy"));
    m_Module.m_Sent = 0;
    m_pConversation->QueryReadings();
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("QueryUnbalanceXYValues() failed!"));
}

TEST_F(ModuleConversation, WithoutAMapperNothingIsAskedAndFramesAreDropped) {
    m_pConversation = std::make_unique<CModuleConversation>(MakeCallbacks());
    EXPECT_EQ(m_pConversation->GetMapper(), nullptr);
    m_pConversation->Begin({5}, ePlane1);
    Identify();
    ReportSet(MakeSet(), Comm::eSuccess);
    m_pConversation->QueryReadings();
    AnswerInLock();
    EXPECT_THAT(m_Module.m_Calls, IsEmpty());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(ModuleConversation, TheBeginningAsksWhoIsThere) {
    MakeAnew();
    EXPECT_NE(m_pConversation->GetMapper(), nullptr);
    m_pConversation->Begin({5}, ePlane1);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("identification"));
    m_Module.m_Sent = 0;
    m_pConversation->Begin({5}, ePlane1);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("QueryModuleIdentification() failed!"));
}

TEST_F(ModuleConversation, UntilItIsToldNothingIsKnown) {
    Start();
    EXPECT_EQ(GetMachineName(), "");
    EXPECT_EQ(m_pConversation->GetSet().Number, 255);
    EXPECT_FALSE(m_pConversation->IsSetUsable());
    EXPECT_EQ(m_pConversation->GetCurrentRPM(), 0xFFFF);
    EXPECT_EQ(m_pConversation->GetOutOfLock(), 1);
    EXPECT_EQ(m_pConversation->GetInvalidRPM(), 1);
}

TEST_F(ModuleConversation, FramesGoToTheMapperButForEmptyOnesAndTheReservedCommand) {
    Start();
    const std::array<std::uint8_t, 3> Frame{0x1C, 5, 1};
    const std::array<std::uint8_t, 3> Reserved{4, 5, 1};
    m_pConversation->OnFrame(Frame);
    m_pConversation->OnFrame(Reserved);
    m_pConversation->OnFrame({});
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("frame 28 5 1"));
}

TEST_F(ModuleConversation, TheWindowLearnsOfTheMachineOnce) {
    Start(eTwoPlane);
    Identify();
    ReportSet(MakeSet());
    ReportSet(MakeSet());
    ReportSet(MakeSet(3));
    EXPECT_THAT(m_Told, ElementsAre("machine 0#3#4-2-123456-4711-2 of 0 3 4"));
}

TEST_F(ModuleConversation, BehindTheEndMachineAndSetBeginAnew) {
    Open();
    m_pConversation->End();
    EXPECT_EQ(GetMachineName(), "");
    EXPECT_EQ(m_pConversation->GetSet().Number, 255);
    m_bConfiguration = false;
    m_pConversation->Begin({5}, ePlane2);
    Identify(Comm::eSuccess, "222222", 8);
    ReportSet(MakeSet(5), Comm::eSuccess);
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("identification", "set", "state"));
    EXPECT_THAT(m_Told, ElementsAre("machine 1#4#255-1-222222-8-5 of 1 4 255"));
}

// A set before the first one differs from what is known, too; but then there is nothing to show an abort
// with.
TEST_F(ModuleConversation, TheFirstSetAbortsNothing) {
    Start();
    Identify();
    ReportSet(MakeSet());
    EXPECT_EQ(m_Procedure.Get(), nullptr);
    EXPECT_THAT(m_Log.GetTexts("Error"), IsEmpty());
}

TEST_F(ModuleConversation, AChangedSetWithoutConfigurationAbortsNothing) {
    Open();
    m_bConfiguration = false;
    ReportSet(MakeSet(3), Comm::eSuccess);
    EXPECT_EQ(m_Procedure.Get(), nullptr);
    EXPECT_THAT(m_Log.GetTexts("Error"), IsEmpty());
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("state"));
}

TEST_F(ModuleConversation, AWrongStateWithoutConfigurationIsAssertedAndTheChainGoesOn) {
    Start();
    ReportState(0, 0, 1, Comm::eSuccess);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
    EXPECT_THAT(m_Log.GetTexts("Error"), IsEmpty());
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("rpm"));
}

// The flags of such a report aren't looked at.
TEST_F(ModuleConversation, AWrongStateChangesNoFlag) {
    Run();
    ReportState(0, 0, 1);
    EXPECT_EQ(m_pConversation->GetOutOfLock(), 1);
    EXPECT_EQ(m_pConversation->GetInvalidRPM(), 1);
}

TEST_F(ModuleConversation, ASetWhoseSpeedsAreNotTheRotorsIsTold) {
    for (std::uint8_t CSet::*pFactor : {&CSet::RPMFactorPlane1, &CSet::RPMFactorPlane2}) {
        Start();
        Identify();
        CSet Set = MakeSet();
        Set.*pFactor = 2;
        ReportSet(Set);
        EXPECT_FALSE(m_pConversation->IsSetUsable());
        EXPECT_EQ(m_Told.size(), 2U);
        EXPECT_EQ(m_Told.back(), "unusable set");
    }
    Open();
    EXPECT_TRUE(m_pConversation->IsSetUsable());
    ReportSet(MakeSet());
    EXPECT_THAT(m_Told, IsEmpty());
}

TEST_F(ModuleConversation, SpeedWithoutProcedureIsKeptAndPaintsNothing) {
    Open();
    ReportRPM(0, 2999);
    EXPECT_EQ(m_pConversation->GetCurrentRPM(), 2999);
    EXPECT_THAT(m_Told, IsEmpty());
}

TEST_F(ModuleConversation, ReadingsWithoutProcedureGoNowhere) {
    Open();
    ReportXY(0, 1, 2);
    EXPECT_THAT(GetCalls(), IsEmpty());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

}  // namespace
