// The states of the machines that the system never enters: the module could be asked more than it is.
#include <gmock/gmock.h>

#include <map>

#include "tests/rvlib/rvprt/statemachine/families.h"
#include "tests/rvlib/rvprt/statemachine/lonemachine.h"
#include "tests/support/logcapture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Lanner::CCommonStates;
using Lanner::CSetStates;

/// Notes the callbacks of every state.
class CNotingSetStates : public CLone<CLannerFamily, CSetStates> {
public:
    std::vector<std::string> m_Calls;

private:
    void Note(const char* pWhat, Reason Why, const Lanner::CSet* pSet) {
        m_Calls.push_back(std::string(pWhat) + " " + Comm::ReasonToString(Why) +
                          (pSet != nullptr ? " " + std::to_string(pSet->m_Set) : " null"));
    }
    void OnSetRequest(Reason Why, const Lanner::CSet* p) override { Note("Set", Why, p); }
    void OnMinSetValues(Reason Why, const Lanner::CSet* p) override { Note("Min", Why, p); }
    void OnMaxSetValues(Reason Why, const Lanner::CSet* p) override { Note("Max", Why, p); }
    void OnDefaultSetValues(Reason Why, const Lanner::CSet* p) override { Note("Default", Why, p); }
};

class CNotingCommonStates : public CLone<CLannerFamily, CCommonStates> {
public:
    std::vector<std::string> m_Calls;

private:
    void Note(const char* pWhat, Reason Why, const void* p) {
        m_Calls.push_back(std::string(pWhat) + " " + Comm::ReasonToString(Why) +
                          (p != nullptr ? "" : " null"));
    }
    void OnBalConfiguration(Reason Why, const Lanner::CBalConfiguration* p) override { Note("Bal", Why, p); }
    void OnQueryMinBalConfiguration(Reason Why, const Lanner::CBalConfiguration* p) override {
        Note("MinBal", Why, p);
    }
    void OnQueryDefaultBalConfiguration(Reason Why, const Lanner::CBalConfiguration* p) override {
        Note("DefaultBal", Why, p);
    }
    void OnMaxQueryBalConfiguration(Reason Why, const Lanner::CBalConfiguration* p) override {
        Note("MaxBal", Why, p);
    }
    void OnModuleConfiguration(Reason Why, const Lanner::CModuleConfiguration* p) override {
        Note("Module", Why, p);
    }
    void OnQueryMinModuleConfiguration(Reason Why, const Lanner::CModuleConfiguration* p) override {
        Note("MinModule", Why, p);
    }
    void OnQueryDefaultModuleConfiguration(Reason Why, const Lanner::CModuleConfiguration* p) override {
        Note("DefaultModule", Why, p);
    }
    void OnQueryMaxModuleConfiguration(Reason Why, const Lanner::CModuleConfiguration* p) override {
        Note("MaxModule", Why, p);
    }
    void OnQueryModuleIdentification(Reason Why, const Lanner::CModuleIdentification* p) override {
        Note("Identification", Why, p);
    }
    void OnModuleDiagnosisData(Reason Why, const Lanner::CModuleDiagnosisData* p) override {
        Note("DiagnosisData", Why, p);
    }
    void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t*) override {
        Note("RPM", Why, pPlane);
    }
    void OnUnbalanceAmplitude(Reason Why, const std::uint32_t* pPlane, const std::uint32_t*) override {
        Note("Amplitude", Why, pPlane);
    }
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t*,
                             const std::uint32_t*) override {
        Note("XY", Why, pPlane);
    }
    void OnDiagnosis(Reason Why, const DiagnosisBlock* pBlock) override { Note("Diagnosis", Why, pBlock); }
};

/// A machine that waits in a state for an answer.
template <class Machine>
Machine& WaitIn(Machine& rMachine, std::uint32_t State) {
    rMachine.SetTransaction(LONE_TRANSACTION);
    rMachine.SetState(State);
    rMachine.m_Calls.clear();
    return rMachine;
}

/// A state, the name that the log gives it, and the callback that it leads to.
struct CStateCase {
    std::uint32_t m_State;
    const char* m_pName;
    const char* m_pCall;
    std::string m_Answer;
    const char* m_pResponse;  ///< line in the log
    const char* m_pCalling;   ///< line in the log before a failure is reported
};

const std::string eBalBody = " 06 00 10 27 11 12 13 14 21 22 23 24 5A 66";
const std::string eModuleBody = " 97 32 05 0A 00 00";
const std::string eDiagnosisBody = " 2D 37 00 04 05 01 06 01 07 01 08 01 09 01 0A 01";

const std::vector<CStateCase>& CommonCases() {
    static const std::vector<CStateCase> Cases{
        {1, "eQueryBalConfiguration", "Bal", "11 05 01 00" + eBalBody, "--> BalConfigurationResponse(0x11-0)",
         "calling OnBalConfiguration(eError, NULL)"},
        {2, "eSetBalConfiguration", "Bal", "11 05 01 00" + eBalBody, "--> BalConfigurationResponse(0x11-0)",
         "calling OnBalConfiguration(eError, NULL)"},
        {3, "eQueryMinBalConfiguration", "MinBal", "11 05 01 01" + eBalBody,
         "--> QueryMinBalConfigurationResponse(0x11-1)", "calling OnQueryMinBalConfiguration(eError, NULL)"},
        {4, "eQueryDefaultBalConfiguration", "DefaultBal", "11 05 01 02" + eBalBody,
         "--> QueryDefaultBalConfigurationResponse(0x11-2)",
         "calling OnQueryDefaultBalConfiguration(eError, NULL)"},
        {5, "eQueryMaxBalConfiguration", "MaxBal", "11 05 01 03" + eBalBody,
         "--> QueryMaxBalConfigurationResponse(0x11-3)", "calling OnMaxQueryBalConfiguration(eError, NULL)"},
        {6, "eQueryModuleConfiguration", "Module", "11 05 01 04" + eModuleBody,
         "--> QueryModuleConfigurationResponse(0x11-4)", "calling OnModuleConfiguration(eError, NULL)"},
        {7, "eSetModuleConfiguration", "Module", "11 05 01 04" + eModuleBody,
         "--> QueryModuleConfigurationResponse(0x11-4)", "calling OnModuleConfiguration(eError, NULL)"},
        {8, "eQueryMinModuleConfiguration", "MinModule", "11 05 01 05" + eModuleBody,
         "--> QueryMinModuleConfigurationResponse(0x11-5)",
         "calling OnQueryMinModuleConfiguration(eError, NULL)"},
        {9, "eQueryDefaultModuleConfiguration", "DefaultModule", "11 05 01 06" + eModuleBody,
         "--> QueryDefaultModuleConfigurationResponse(0x11-6)",
         "calling OnQueryDefaultModuleConfiguration(eError, NULL)"},
        {10, "eQueryMaxModuleConfiguration", "MaxModule", "11 05 01 07" + eModuleBody,
         "--> QueryMaxModuleConfigurationResponse(0x11-7)",
         "calling OnQueryMaxModuleConfiguration(eError, NULL)"},
        {11, "eQueryModuleIdentification", "Identification", Identification(5, 49),
         "--> ModuleIdentificationResponse(0x11-8)", "calling OnQueryModuleIdentification(eError, NULL)"},
        {12, "eQueryModuleDiagnosisData", "DiagnosisData", "11 05 01 09" + eDiagnosisBody,
         "--> ModuleDiagnosisDataResponse(0x11-9)", "calling OnModuleDiagnosisData(eError, NULL)"},
        {13, "eSetModuleDiagnosisData", "DiagnosisData", "11 05 01 09" + eDiagnosisBody,
         "--> ModuleDiagnosisDataResponse(0x11-9)", "calling OnModuleDiagnosisData(eError, NULL)"},
        {14, "eQueryRPMData", "RPM", "1C 05 01 00 B8 0B", "--> RPMDataResponse received(0x1C)...",
         "calling OnRPMData(eError, NULL, NULL)"},
        {15, "eQueryUnbalanceAmplitude", "Amplitude", "1D 05 01 00 B8 0B",
         "--> UnbalanceAmplitudeResponse received(0x1D)...",
         "calling OnUnbalanceAmplitude(eError, NULL, NULL)"},
        {16, "eQueryUnbalanceCoordinates", "XY", "1E 05 01 00 20 01 80 FF",
         "--> UnbalanceCoordonatesResponse received(0x1E)...",
         "calling OnUnbalanceXYValues(eError, NULL, NULL, NULL)"},
        {17, "eQueryDiagnosis", "Diagnosis", "1F 05 01 AA BB CC", "--> DiagnosisResponse received(0x1F)...",
         "calling OnDiagnosis(eError, NULL)"},
    };
    return Cases;
}

}  // namespace

TEST(LannerCommonStates, EachStateReportsItsAnswer) {
    CNotingCommonStates Machine;
    for (const CStateCase& rCase : CommonCases()) {
        SCOPED_TRACE(rCase.m_pName);
        EXPECT_STREQ(Machine.StateToString(rCase.m_State), rCase.m_pName);
        const CLogCapture Log(true);
        EXPECT_EQ(PutAnswer(WaitIn(Machine, rCase.m_State), rCase.m_Answer), 1);
        EXPECT_THAT(Machine.m_Calls, ElementsAre(std::string(rCase.m_pCall) + " eSuccess"));
        EXPECT_THAT(Log.GetTexts("Protocol"), ElementsAre(rCase.m_pResponse));
        EXPECT_THAT(Log.GetAssertions(), IsEmpty());
        EXPECT_EQ(Machine.GetState(), CCommonStates::eIdle);
    }
    EXPECT_STREQ(Machine.StateToString(CCommonStates::eIdle), "eIdle");
}

TEST(LannerCommonStates, EachStateReportsAFailureInItsOwnCallback) {
    CNotingCommonStates Machine;
    for (const CStateCase& rCase : CommonCases()) {
        SCOPED_TRACE(rCase.m_pName);
        const CLogCapture Log(true);
        EXPECT_EQ(PutAnswer(WaitIn(Machine, rCase.m_State), Cut(rCase.m_Answer, 5)), 1);
        EXPECT_THAT(Machine.m_Calls, ElementsAre(std::string(rCase.m_pCall) + " eError null"));
        EXPECT_THAT(Log.GetTexts("ProtocolDetail"), Contains(rCase.m_pCalling));
        EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Invalid response received"));
    }
}

TEST(LannerCommonStates, EachStateReportsASilenceInItsOwnCallback) {
    CNotingCommonStates Machine;
    for (const CStateCase& rCase : CommonCases()) {
        EXPECT_EQ(WaitIn(Machine, rCase.m_State).PutRequestTimeoutProtocol(LONE_TRANSACTION), 1);
        EXPECT_THAT(Machine.m_Calls, ElementsAre(std::string(rCase.m_pCall) + " eTimeout null"));
    }
}

// The smallest frame for each sub-code, and one byte less. The identification asks twice, and its first test
// is one short.
TEST(LannerCommonStates, ConfigurationsHaveASmallestLength) {
    const std::map<std::uint32_t, std::size_t> Smallest{{1, 18},  {2, 18},  {3, 18}, {4, 18}, {5, 18},
                                                        {6, 10},  {7, 10},  {8, 10}, {9, 10}, {10, 10},
                                                        {11, 48}, {12, 20}, {13, 20}};
    CNotingCommonStates Machine;
    for (const auto& [State, nSize] : Smallest) {
        SCOPED_TRACE(State);
        const CLogCapture Log;
        const CStateCase& rCase = CommonCases().at(State - 1);
        PutAnswer(WaitIn(Machine, State), Cut(rCase.m_Answer, nSize - 1));
        EXPECT_THAT(Machine.m_Calls, ElementsAre(std::string(rCase.m_pCall) + " eError null"));
        EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("not enough data", "Invalid response received"));
        const std::size_t nGood = State == CCommonStates::eQueryModuleIdentification ? nSize + 1 : nSize;
        PutAnswer(WaitIn(Machine, State), Cut(rCase.m_Answer, nGood));
        EXPECT_THAT(Machine.m_Calls, ElementsAre(std::string(rCase.m_pCall) + " eSuccess"));
    }
}

TEST(LannerCommonStates, AnotherSubCodeAssertsAndGivesError) {
    CNotingCommonStates Machine;
    for (std::uint32_t State = 1; State <= 13; ++State) {
        const CLogCapture Log;
        const CStateCase& rCase = CommonCases().at(State - 1);
        std::vector<std::uint8_t> Frame = Bytes(rCase.m_Answer);
        Frame[3] = 0x0A;
        PutAnswer(WaitIn(Machine, State), Hex(Frame));
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("invalid request type")) << rCase.m_pName;
        EXPECT_THAT(Machine.m_Calls, ElementsAre(std::string(rCase.m_pCall) + " eError null"));
    }
}

TEST(LannerCommonStates, EachStateAssertsTheCommandOfItsAnswer) {
    CNotingCommonStates Machine;
    for (const CStateCase& rCase : CommonCases()) {
        const CLogCapture Log;
        PutAnswer(WaitIn(Machine, rCase.m_State), "20" + rCase.m_Answer.substr(2));
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("invalid response")) << rCase.m_pName;
        EXPECT_THAT(Machine.m_Calls, ElementsAre(std::string(rCase.m_pCall) + " eSuccess"));
    }
}

TEST(LannerCommonStates, AmplitudeNeedsAPlane) {
    CNotingCommonStates Machine;
    const CLogCapture Log;
    PutAnswer(WaitIn(Machine, CCommonStates::eQueryUnbalanceAmplitude), "1D 05 01 02 B8 0B");
    EXPECT_THAT(Machine.m_Calls, ElementsAre("Amplitude eError null"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("invalid data", "Invalid response received"));
}

TEST(LannerModuleStates, AnswersToASettingAreTreatedLikeThoseToTheQuery) {
    CLoneModuleStates<CLannerFamily> Machine;
    EXPECT_STREQ(Machine.StateToString(Lanner::CModuleStates::eSetModuleState), "eSetModuleState");
    const CLogCapture Log;
    Machine.SetTransaction(LONE_TRANSACTION);
    Machine.SetState(Lanner::CModuleStates::eSetModuleState);
    EXPECT_EQ(PutAnswer(Machine, "08 05 01 01 00 00 00 00 00 00"), 1);
    EXPECT_EQ(Machine.GetState(), 0U);
    Machine.SetTransaction(LONE_TRANSACTION);
    Machine.SetState(Lanner::CModuleStates::eSetModuleState);
    EXPECT_EQ(Machine.PutRequestTimeoutProtocol(LONE_TRANSACTION), 1);
    EXPECT_THAT(Machine.m_Reasons, ElementsAre(Comm::eSuccess, Comm::eTimeout));
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
}

namespace {

struct CSetCase {
    std::uint32_t m_State;
    const char* m_pName;
    const char* m_pCall;
    const char* m_pFailure;
    const char* m_pResponse;
    const char* m_pCalling;
};

// The missing parenthesis of the last three is meant.
const CSetCase SetCases[] = {
    {1, "eSet", "Set", "--> SetFailure (Set: 2, Reason: 7 (0x10))", "--> SetResponse (0x10)",
     "calling OnSetRequest(Reason=eError, pSet=NULL)"},
    {2, "eSetQueryMinValues", "Min", "--> QueryMinValues Failure (Set: 2, Reason: 7 (0x10)",
     "--> QueryMinValuesResponse (0x10)", "calling OnMinSetValues(Reason=eError, pSet=NULL)"},
    {3, "eSetQueryMaxValues", "Max", "--> QueryMaxValues Failure (Set: 2, Reason: 7 (0x10)",
     "--> QueryMaxValuesResponse (0x10)", "calling OnMaxSetValues(Reason=eError, pSet=NULL)"},
    {4, "eQueryDefaultValues", "Default", "--> QueryDefaultValues Failure (Set: 2, Reason: 7 (0x10)",
     "--> QueryDefaultValuesResponse (0x10)", "calling OnDefaultSetValues(Reason=eError, pSet=NULL)"},
};

}  // namespace

TEST(LannerSetStates, EachStateReportsItsAnswer) {
    for (const CSetCase& rCase : SetCases) {
        CNotingSetStates Machine;
        EXPECT_STREQ(Machine.StateToString(rCase.m_State), rCase.m_pName);
        const CLogCapture Log(true);
        EXPECT_EQ(PutAnswer(WaitIn(Machine, rCase.m_State), "10 05 01 02 03 01 08 00 00 06 01 01 41"), 1);
        EXPECT_THAT(Machine.m_Calls, ElementsAre(std::string(rCase.m_pCall) + " eSuccess 3"));
        EXPECT_THAT(Log.GetTexts("Protocol"), ElementsAre(rCase.m_pResponse));
        EXPECT_THAT(Log.GetTexts("ProtocolDetail"), Contains("Mode: TwoPlane"));
        EXPECT_EQ(Machine.GetState(), 0U);
        // Limits and defaults say nothing about the planes in force.
        EXPECT_EQ(Machine.GetSwap(), rCase.m_State == CSetStates::eSet ? 1U : 0U) << rCase.m_pName;
    }
}

TEST(LannerSetStates, EachStateReportsAFailureInItsOwnCallback) {
    for (const CSetCase& rCase : SetCases) {
        CNotingSetStates Machine;
        const CLogCapture Log(true);
        EXPECT_EQ(PutAnswer(WaitIn(Machine, rCase.m_State), "10 05 01 02 02 07"), 1);
        EXPECT_THAT(Machine.m_Calls, ElementsAre(std::string(rCase.m_pCall) + " eError null"));
        EXPECT_THAT(Log.GetTexts("Protocol"), ElementsAre(rCase.m_pFailure));
        EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Set Failure Code: 0x07"));
        EXPECT_THAT(Log.GetTexts("ProtocolDetail"), Contains(rCase.m_pCalling));
    }
}

TEST(LannerSetStates, EachStateReportsASilenceInItsOwnCallback) {
    for (const CSetCase& rCase : SetCases) {
        CNotingSetStates Machine;
        EXPECT_EQ(WaitIn(Machine, rCase.m_State).PutRequestTimeoutProtocol(LONE_TRANSACTION), 1);
        EXPECT_THAT(Machine.m_Calls, ElementsAre(std::string(rCase.m_pCall) + " eTimeout null"));
    }
}
