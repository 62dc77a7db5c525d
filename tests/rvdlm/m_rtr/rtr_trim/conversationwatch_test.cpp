// What the conversation makes of readings that stay away.
#include <gmock/gmock.h>

#include "tests/rvdlm/m_rtr/rtr_trim/conversationfixture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Before sampling the modules are asked for their state too, where it matters.
TEST_F(ModuleConversation, SamplingAsksForTheStateOfAProcedureThatDependsOnIt) {
    RunWatched();
    m_Procedure.m_Record.m_bDependsOnModuleState = false;
    m_pConversation->QueryReadings();
    EXPECT_THAT(m_Sent, IsEmpty());
    m_Procedure.m_Record.m_bDependsOnModuleState = true;
    m_pConversation->QueryReadings();
    EXPECT_THAT(m_Sent, ElementsAre("08 01 05"));
    EXPECT_THAT(m_Module.m_Calls, ElementsAre("xy", "xy"));
}

TEST_F(ModuleConversation, ReadingsThatStayAwayCountAsALostLock) {
    RunWatched();
    m_Loop.Advance(5000);
    EXPECT_THAT(GetCalls(), ElementsAre("OutOfLock 1"));
    EXPECT_THAT(m_Log.GetTexts("Warning"), ElementsAre("readings stay away: measuring waits"));
    EXPECT_EQ(m_pConversation->GetOutOfLock(), 0) << "as the module told";
    // Whatever the module says of its lock meanwhile.
    ReportState(0, 0);
    EXPECT_THAT(GetCalls(), ElementsAre("OutOfLock 1", "InvalidRPM 0"));
}

TEST_F(ModuleConversation, ReadingsThatComeAgainEndTheSilenceOnceTheStateIsKnown) {
    RunWatched();
    m_Loop.Advance(5000);
    Forget();
    ReportXY(0, 1, 2);
    m_Loop.Advance(250);
    EXPECT_THAT(GetCalls(), ElementsAre("CurrentXYValuePlane1 1 2"));
    AnswerInLock();
    EXPECT_THAT(GetCalls(), ElementsAre("OutOfLock 0")) << "with the frame, not with the next look";
    EXPECT_THAT(m_Log.GetTexts("Information"), Contains("readings come again"));
}

TEST_F(ModuleConversation, TheWatchLooksOnlyWhileARunLasts) {
    RunWatched();
    m_pConversation->EndWatch();
    m_Loop.Advance(60000);
    EXPECT_THAT(GetCalls(), IsEmpty());
    EXPECT_THAT(m_Sent, IsEmpty());
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
}

TEST_F(ModuleConversation, AWatchThatBeginsAgainHasOneTimer) {
    RunWatched();
    m_pConversation->BeginWatch();
    EXPECT_EQ(m_Loop.GetTimerCount(), 1U);
}

// What a timer calls for has nobody above it who could take an exception.
TEST_F(ModuleConversation, WhatTheTimerCallsForIsGuarded) {
    RunWatched();
    m_Loop.Advance(500);
    EXPECT_THAT(m_Guarded, ElementsAre("OnTimer", "OnTimer"));
}

// Of the planes in use: plane 1 tells readings, plane 2 doesn't.
TEST_F(ModuleConversation, ThePlanesOfTheModeAreWatched) {
    for (const auto& [Mode, bSilent] :
         {std::pair{ePlane1, false}, std::pair{ePlane2, true}, std::pair{eTwoPlane, true}}) {
        Run(Mode);
        ReportState(0, 0);
        ReportRPM(Mode == ePlane2 ? 1 : 0, 3000);
        m_pConversation->BeginWatch();
        m_Log.Clear();
        for (int i = 0; i < 50; ++i) {
            ReportXY(0, 1, 2);
            AnswerInLock();
            m_Loop.Advance(100);
        }
        EXPECT_EQ(!m_Log.GetTexts("Warning").empty(), bSilent) << "mode " << Mode;
    }
}

}  // namespace
