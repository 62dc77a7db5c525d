#pragma once
#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "rvdlm/m_rtr/rtr_trim/ncdesk.h"
#include "tests/rvdlm/m_rtr/rtr_trim/lonesequence.h"
#include "tests/support/logcapture.h"
#include "tests/support/opcstate.h"
#include "tests/support/testinstallation.h"

/// A desk whose window is not there: requests come to it straight from the item.
class NCDesk : public testing::Test, private CPreBalFromNCInterface {
protected:
    inline static const COpcValue eDone{0};
    inline static const COpcValue eRefused{-1};
    static constexpr const char* REQUESTS = "PreBalInterfaceFromNC";
    static constexpr const char* NOTIFICATIONS = "PreBalInterfaceToNC";
    static constexpr const char* WARNINGS = "PreBalInterfaceToNCWarnings";

    static void Link(const char* pKey, const char* pItem) {
        COpcDatabase::GetInstance()->SetOpcLinkItem(pKey, pItem);
    }
    static void LinkAll() {
        for (const char* pKey : {REQUESTS, NOTIFICATIONS, WARNINGS}) {
            Link(pKey, pKey);
        }
    }
    CNCDeskCallbacks MakeCallbacks() {
        CNCDeskCallbacks Callbacks;
        Callbacks.m_GetProcedure = [this] { return m_Procedure.Get(); };
        Callbacks.m_HasConfiguration = [this] { return m_bConfiguration; };
        Callbacks.m_IsCalibrated = [this] { return m_bCalibrated; };
        Callbacks.m_SaveConfiguration = [this] { m_Told.emplace_back("save"); };
        Callbacks.m_Start = [this](CNCDeskCallbacks::StartOperation pStart) {
            m_Procedure.Begin();
            m_Told.emplace_back("start");
            return (m_Procedure.Get()->*pStart)(1500, 0, 1);
        };
        Callbacks.m_End = [this] {
            m_Told.emplace_back("end");
            m_Procedure.End();
            return m_bKept;
        };
        Callbacks.m_Guard = [this](const char* pName, const std::function<void()>& rOperation) {
            m_Told.emplace_back(pName);
            try {
                rOperation();
            } catch (const std::exception&) {
                m_Told.emplace_back("failed");
            }
        };
        return Callbacks;
    }
    void Connect() {
        m_pDesk = std::make_unique<CNCDesk>(MakeCallbacks());
        m_pDesk->Connect(*this);
        m_Loop.RunPosted();
    }
    /// Connected, and a configuration on hand.
    void Serve() {
        Connect();
        m_bConfiguration = true;
        m_Log.Clear();
    }
    /// The same with all items linked.
    void Open() {
        LinkAll();
        Serve();
    }
    void Run() {
        Open();
        m_Procedure.Begin();
        m_Log.Clear();
    }
    void Request(std::int32_t Value) {
        m_Opc.GetServer().Write(REQUESTS, Value);
        m_Loop.RunPosted();
    }
    COpcValue GetAnswer() const { return m_Opc.GetServer().Read(REQUESTS).value_or(-999); }
    std::vector<std::string> GetCalls() { return m_Procedure.TakeCalls(); }

    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CCleanOpcState m_Opc;
    CLogCapture m_Log{true};
    CLoneSequence m_Procedure;
    bool m_bConfiguration = false;
    bool m_bCalibrated = false;
    bool m_bKept = true;
    std::vector<std::string> m_Told;
    std::unique_ptr<CNCDesk> m_pDesk;

private:
    void OnValueFromNCChanged(std::int32_t Value) override { m_pDesk->OnValueFromNCChanged(Value); }
};
