#pragma once
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "platform/window/messagebox.h"
#include "rvdlm/m_rtr/rtr_trim/moduleconversation.h"
#include "tests/rvdlm/m_rtr/rtr_trim/fakemodule.h"
#include "tests/rvdlm/m_rtr/rtr_trim/lonesequence.h"
#include "tests/support/frames.h"
#include "tests/support/logcapture.h"
#include "tests/support/testinstallation.h"

/// A conversation with a mapper that only remembers, and a window that is not there.
class ModuleConversation : public testing::Test {
protected:
    using CPreBalDatabase = PreBalDB::CPreBalDatabase;
    static constexpr auto ePlane1 = CPreBalDatabase::eModePlane1;
    static constexpr auto ePlane2 = CPreBalDatabase::eModePlane2;
    static constexpr auto eTwoPlane = CPreBalDatabase::eModeTwoPlane;

    ModuleConversation() { TakeShownMessages(); }
    ~ModuleConversation() override {
        m_pConversation.reset();
        EXPECT_EQ(m_Loop.GetTimerCount(), 0U) << "a timer was left behind";
    }
    CConversationCallbacks MakeCallbacks() {
        CConversationCallbacks Callbacks;
        Callbacks.m_Send = [this](std::span<const std::uint8_t> Frame) { m_Sent.push_back(Hex(Frame)); };
        Callbacks.m_GetProcedure = [this] { return m_Procedure.Get(); };
        Callbacks.m_GetProcedureToAbort = [this] {
            if (m_bConfiguration && m_Procedure.Get() == nullptr) {
                m_Procedure.Begin();
            }
            return m_Procedure.Get();
        };
        Callbacks.m_OnMachineKnown = [this](const CSources& rSources) {
            Tell("machine " + m_pConversation->GetMachineName() + " of " + std::to_string(rSources.m_Input) +
                 " " + std::to_string(rSources.m_Sensor1) + " " + std::to_string(rSources.m_Sensor2));
        };
        Callbacks.m_OnUnusableSet = [this] { Tell("unusable set"); };
        Callbacks.m_OnSpeed = [this] { Tell("speed"); };
        Callbacks.m_Guard = [this](const char* pName, const std::function<void()>& rOperation) {
            m_Guarded.emplace_back(pName);
            rOperation();
        };
        return Callbacks;
    }
    void MakeAnew() {
        m_pConversation = std::make_unique<CModuleConversation>(MakeCallbacks());
        m_pConversation->SetMapper(std::make_unique<CFakeModule>(m_Module));
        m_Procedure.End();
    }
    /// The beginning, and nothing told yet.
    void Start(CPreBalDatabase::BalancingMode Mode = ePlane1) {
        MakeAnew();
        m_pConversation->Begin({5}, Mode);
        Forget();
    }
    /// Module and set are told, as far as the configuration.
    void Open(CPreBalDatabase::BalancingMode Mode = ePlane1) {
        Start(Mode);
        Identify();
        ReportSet(MakeSet());
        m_bConfiguration = true;
        Forget();
    }
    /// The same, and a procedure runs.
    void Run(CPreBalDatabase::BalancingMode Mode = ePlane1) {
        Open(Mode);
        m_Procedure.Begin();
        m_Log.Clear();
    }
    /// The same in lock at 3000 rpm, and the modules are watched.
    void RunWatched() {
        Run();
        ReportState(0, 0);
        ReportRPM(0, 3000);
        m_pConversation->BeginWatch();
        Forget();
    }
    void Forget() {
        m_Log.Clear();
        m_Module.m_Calls.clear();
        m_Sent.clear();
        m_Told.clear();
        m_Procedure.TakeCalls();
    }
    void Identify(Reason Why = Comm::eSuccess, const std::string& rArticle = "123456",
                  std::uint32_t Serial = 4711) {
        m_pConversation->OnQueryModuleIdentification(Why, &rArticle, &Serial);
    }
    void ReportSet(const CSet& rSet, Reason Why = Comm::eIndication) {
        m_pConversation->OnSetRequest(Why, &rSet);
    }
    void ReportState(std::uint32_t OutOfLock, std::uint32_t InvalidRPM, std::uint32_t WrongState = 0,
                     Reason Why = Comm::eIndication) {
        m_pConversation->OnModuleState(Why, &OutOfLock, &InvalidRPM, &OutOfLock, &InvalidRPM, &WrongState);
    }
    void ReportRPM(std::uint32_t Plane, std::uint32_t RPM, Reason Why = Comm::eIndication) {
        m_pConversation->OnRPMData(Why, &Plane, &RPM);
    }
    void ReportXY(std::uint32_t Plane, std::uint32_t x, std::uint32_t y, Reason Why = Comm::eIndication) {
        m_pConversation->OnUnbalanceXYValues(Why, &Plane, &x, &y);
    }
    /// Module 5 says that it is in lock, in answer to a question.
    void AnswerInLock() {
        const std::array<std::uint8_t, 8> Frame{0x08, 5, 1, 7, 0, 0, 0, 0};
        m_pConversation->OnFrame(Frame);
    }
    const std::string& GetMachineName() const { return m_pConversation->GetMachineName(); }
    std::vector<std::string> GetCalls() { return m_Procedure.TakeCalls(); }
    void Tell(std::string What) { m_Told.push_back(std::move(What)); }

    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CLogCapture m_Log{true};
    CFakeModuleRecord m_Module;
    CLoneSequence m_Procedure;
    bool m_bConfiguration = false;
    std::vector<std::string> m_Sent;
    std::vector<std::string> m_Told;
    std::vector<std::string> m_Guarded;
    std::unique_ptr<CModuleConversation> m_pConversation;
};
