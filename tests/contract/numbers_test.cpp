// The numbers that other programs have been told: whoever changes one breaks machines in the field.
#include <gtest/gtest.h>

#include "contract/actions.h"
#include "contract/hostmessages.h"
#include "contract/menus.h"
#include "contract/ncnotification.h"
#include "contract/ncrequests.h"
#include "contract/pages.h"
#include "contract/prebalcodes.h"
#include "contract/softkeymask.h"
#include "contract/warnings.h"

TEST(ContractNumbers, MessagesToTheModule) {
    EXPECT_EQ(WM_RV_RAWDATA_FIRST, 1035U);
    EXPECT_EQ(WM_RV_RAWDATA_LAST, 1040U);
    EXPECT_EQ(WM_RV_INITWINDOW, 1045U);
    EXPECT_EQ(WM_RV_MODULEACTION, 1058U);
    EXPECT_EQ(WM_RV_DESTROYPENDING, 1088U);
    EXPECT_EQ(WM_RV_PREBALANCINGSTATE, 1123U);
    EXPECT_EQ(WM_RV_QUERYPROGRESS, 1152U);
    EXPECT_EQ(WM_RV_STORECHANGED, 1153U);
    EXPECT_EQ(WM_RV_QUERYCONFIGURATION, 1154U);
    EXPECT_EQ(WM_RV_LANGUAGECHANGED, 1155U);
    EXPECT_EQ(WM_RV_QUERYREADINGS, 1156U);
}

TEST(ContractNumbers, MessagesToTheHost) {
    EXPECT_EQ(WM_RV_HELPORMENU, 1065U);
    EXPECT_EQ(WM_RV_SETMENU, 1075U);
    EXPECT_EQ(WM_RV_SOFTKEYENABLE, 1122U);
    EXPECT_EQ(WM_RV_BALANCINGACTIVITY, 1124U);
    EXPECT_EQ(WM_RV_RESULTSAVED, 1151U);
    EXPECT_EQ(Pages::eSettings, 111U);
    EXPECT_EQ(Pages::eScrewTable, 127U);
    EXPECT_EQ(SoftkeyMask::ePages, 12);
    EXPECT_EQ(SoftkeyMask::eScrewPage, 16);
    EXPECT_EQ(SoftkeyMask::eReBalancing, 64);
}

TEST(ContractNumbers, Actions) {
    EXPECT_EQ(Actions::eNextTab, 1);
    EXPECT_EQ(Actions::eValue, 2);
    EXPECT_EQ(Actions::eAccept, 3);
    EXPECT_EQ(Actions::eItem, 4);
    EXPECT_EQ(Actions::eExpand, 81);
    EXPECT_EQ(Actions::eStart, 102);
    EXPECT_EQ(Actions::eSave, 103);
    EXPECT_EQ(Actions::eRebalance, 4499);
    EXPECT_EQ(Actions::eNext, 4500);
    EXPECT_EQ(Actions::eTerminate, 4501);
    EXPECT_EQ(Actions::eExtras, 4502);
    EXPECT_EQ(Actions::eIncrement, 4507);
    EXPECT_EQ(Actions::eDecrement, 4508);
    EXPECT_EQ(Actions::eCheckWeights, 4509);
    EXPECT_EQ(Actions::eTerminateAlso, 4510);
    EXPECT_EQ(Actions::eIncWeight1, 4511);
    EXPECT_EQ(Actions::eDecWeight1, 4512);
    EXPECT_EQ(Actions::eIncWeight2, 4513);
    EXPECT_EQ(Actions::eDecWeight2, 4514);
    EXPECT_EQ(Actions::eTogglePlane, 4515);
    EXPECT_EQ(Actions::eNeutralPosition, 4516);
    EXPECT_EQ(Actions::eChangeWeights, 4517);
    EXPECT_EQ(Actions::eNeutralAdjusted, 4518);
    EXPECT_EQ(Actions::eAdoptPosition, 4519);
    EXPECT_EQ(Actions::eIncActiveWeight, 4520);
    EXPECT_EQ(Actions::eDecActiveWeight, 4521);
    EXPECT_EQ(Actions::eSelectWeight, 4522);
    EXPECT_EQ(Actions::eSelectStep, 4523);
    EXPECT_EQ(Actions::eTogglePlaneAlso, 4524);
    EXPECT_EQ(Actions::eIncrementDown, 1);
    EXPECT_EQ(Actions::eDecrementDown, 2);
    EXPECT_EQ(Actions::eCommit, 5);
}

TEST(ContractNumbers, Menus) {
    EXPECT_EQ(Menus::eNone, -1);
    EXPECT_EQ(Menus::eConfirm, 0);
    EXPECT_EQ(Menus::eChangeTestScrew, 3);
    EXPECT_EQ(Menus::eWait, 4);
    EXPECT_EQ(Menus::eFinal, 5);
    EXPECT_EQ(Menus::eChangeBothWeights, 6);
    EXPECT_EQ(Menus::eFailed, 7);
    EXPECT_EQ(Menus::eConfirmOrCheckWeights, 8);
    EXPECT_EQ(Menus::eChangeBothWeightsOfTwoPlanes, 9);
    EXPECT_EQ(Menus::eScrewsOfOnePlane, 12);
    EXPECT_EQ(Menus::eScrewsOfTwoPlanes, 13);
    EXPECT_EQ(Menus::eStopWithScrews, 14);
    EXPECT_EQ(Menus::eNeutralStoredWeights, 19);
    EXPECT_EQ(Menus::eChangeOfTwoPlanesWeight1By1, 20);
    EXPECT_EQ(Menus::eChangeOfTwoPlanesWeight2By1, 21);
    EXPECT_EQ(Menus::eChangeOfTwoPlanesWeight1By10, 22);
    EXPECT_EQ(Menus::eChangeOfTwoPlanesWeight2By10, 23);
    EXPECT_EQ(Menus::eChangeWeight1By1, 24);
    EXPECT_EQ(Menus::eChangeWeight2By1, 25);
    EXPECT_EQ(Menus::eChangeWeight1By10, 26);
    EXPECT_EQ(Menus::eChangeWeight2By10, 27);
    EXPECT_EQ(Menus::eStopWithWeights, 28);
    EXPECT_EQ(Menus::eStopWithStoredWeights, 29);
    EXPECT_EQ(Menus::eNeutralWeights, 30);
    EXPECT_EQ(Menus::eSetWeights, 32);
    EXPECT_EQ(Menus::eSetScrews, 33);
}

// What the NC is told.
TEST(ContractNumbers, StepsActionsAndWarnings) {
    EXPECT_EQ(CPreBalCodes::eInactive, 0);
    EXPECT_EQ(CPreBalCodes::eParameter, 1);
    EXPECT_EQ(CPreBalCodes::eParameterWithReBal, 2);
    EXPECT_EQ(CPreBalCodes::eSetup, 3);
    EXPECT_EQ(CPreBalCodes::eReBalActive, 4);
    EXPECT_EQ(CPreBalCodes::eFailure, 5);
    EXPECT_EQ(CPreBalCodes::eSetupAborted, 6);
    EXPECT_EQ(CPreBalCodes::eSetupSuccess, 7);
    EXPECT_EQ(CPreBalCodes::eRebalSuccess, 8);
    EXPECT_EQ(CPreBalCodes::eSetupOverTarget, 9);
    EXPECT_EQ(CPreBalCodes::eRebalOverTarget, 10);
    EXPECT_EQ(CPreBalCodes::eSetSpindleSpeed, 1);
    EXPECT_EQ(CPreBalCodes::eSpindleStart, 2);
    EXPECT_EQ(CPreBalCodes::eSpindleStop, 3);
    EXPECT_EQ(CPreBalCodes::eSetWeights, 4);
    EXPECT_EQ(CPreBalCodes::eMeasure, 5);
    EXPECT_EQ(CPreBalCodes::eMeasurementValuesOK, 6);
    EXPECT_EQ(Warnings::eSetChanged, 1U);
    EXPECT_EQ(Warnings::eWrongRPM, 2U);
    EXPECT_EQ(Warnings::eOutOfLock, 3U);
    EXPECT_EQ(Warnings::eWrongRPMAndOutOfLock, 4U);
    EXPECT_EQ(Warnings::eNoInfluence, 5U);
    EXPECT_EQ(Warnings::eCapacity, 6U);
    EXPECT_EQ(Warnings::eRebalanceNotPossible, 7U);
    EXPECT_EQ(Warnings::eOverTarget, 8U);
    EXPECT_EQ(Warnings::eSetNotUsable, 9U);
    EXPECT_EQ(Warnings::eStopSpindle, 10U);
    EXPECT_EQ(Warnings::eModuleStateChanged, 11U);
}

TEST(ContractNumbers, RequestsOfTheNc) {
    EXPECT_EQ(NcRequests::ePreBalance, 1);
    EXPECT_EQ(NcRequests::eReBalance, 2);
    EXPECT_EQ(NcRequests::eNext, 3);
    EXPECT_EQ(NcRequests::eEnd, 4);
    EXPECT_EQ(NcRequests::eDone, 0);
    EXPECT_EQ(NcRequests::eRefused, -1);
}

TEST(ContractNumbers, PlacesOfANotification) {
    EXPECT_EQ(CNcNotification::GetPlace(0, 0), 2U);
    EXPECT_EQ(CNcNotification::GetPlace(0, 2), 6U);
    EXPECT_EQ(CNcNotification::GetPlace(1, 0), 8U);
    EXPECT_EQ(CNcNotification::GetPlace(1, 2) + 1, CNcNotification::SIZE - 1);
}
