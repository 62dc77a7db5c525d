#pragma once
#include <gmock/gmock.h>

#include <deque>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <variant>
#include <vector>

#include "platform/rvopc/networkopcserver.h"
#include "platform/system/virtualeventloop.h"
#include "tests/support/logcapture.h"

/// A gateway by hand: the test says when there is one and what it sends.
class CFakeGateway : public IFOpcGateway {
public:
    void Start() override { ++m_nStarts; }
    bool SendLine(const std::string& rLine) override {
        if (m_bOpen) {
            m_Sent.push_back(nlohmann::json::parse(rLine));
        }
        return m_bOpen;
    }
    /// The next of what is to happen during a wait; when there is nothing more, time runs out.
    bool Wait(std::uint32_t Milliseconds) override {
        if (m_Coming.empty()) {
            IFEventLoop::Current().Sleep(Milliseconds);
            return false;
        }
        const auto Next = std::move(m_Coming.front());
        m_Coming.pop_front();
        Next();
        return true;
    }

    int m_nStarts = 0;
    bool m_bOpen = false;
    std::vector<nlohmann::json> m_Sent;
    std::deque<std::function<void()>> m_Coming;
};

class CNetworkOpcServerTest : public testing::Test {
protected:
    CNetworkOpcServerTest() {
        auto pGateway = std::make_unique<CFakeGateway>();
        m_pGateway = pGateway.get();
        COpcConfiguration Configuration;
        Configuration.m_Server = "opc.tcp://nc:4840";
        Configuration.m_User = "balancing";
        Configuration.m_Password = "secret";
        m_pServer = std::make_unique<CNetworkOpcServer>(std::move(pGateway), Configuration, "/cnf/opcua");
    }

    /// A new gateway is there; without connection to the NC so far.
    void OpenGateway() {
        m_pGateway->m_bOpen = true;
        m_pGateway->OnOpened();
    }
    void LoseGateway() {
        m_pGateway->m_bOpen = false;
        m_pGateway->OnLost("it was killed");
    }
    void Say(const nlohmann::json& rLine) { m_pGateway->OnLine(rLine.dump()); }
    void SayConnected() { Say({{"state", {{"connected", true}}}}); }
    void SayLost(const std::string& rReason = "timeout") {
        Say({{"state", {{"connected", false}, {"reason", rReason}}}});
    }
    void SayChanged(const std::string& rNode, std::int32_t Value) {
        Say({{"changed", {{"id", LastIdOf("subscribe", rNode)}, {"value", {{"int32", Value}}}}}});
    }
    void SayWritten(const std::string& rNode) { Say({{"written", {{"id", LastIdOf("write", rNode)}}}}); }
    void SayWriteFailed(unsigned Id) { Say({{"written", {{"id", Id}, {"error", "BadTypeMismatch"}}}}); }
    void SayRead(const nlohmann::json& rValue) {
        Say({{"value", {{"id", m_pGateway->m_Sent.back()["read"]["id"]}, {"value", rValue}}}});
    }

    /// Gateway there and connected, nothing remembered of it.
    void Connect() {
        OpenGateway();
        SayConnected();
        m_pGateway->m_Sent.clear();
    }
    /// Id of the last order of that kind for the node.
    unsigned LastIdOf(const std::string& rOrder, const std::string& rNode) const {
        for (auto Line = m_pGateway->m_Sent.rbegin(); Line != m_pGateway->m_Sent.rend(); ++Line) {
            if (Line->contains(rOrder) && (*Line)[rOrder]["node"] == rNode) {
                return (*Line)[rOrder]["id"];
            }
        }
        ADD_FAILURE() << "no " << rOrder << " of " << rNode;
        return 0;
    }
    /// Writes sent so far, "node=value".
    std::vector<std::string> GetWrites() const {
        std::vector<std::string> Writes;
        for (const nlohmann::json& rLine : m_pGateway->m_Sent) {
            if (rLine.contains("write")) {
                Writes.push_back(rLine["write"]["node"].get<std::string>() + "=" +
                                 rLine["write"]["value"].begin().value().dump());
            }
        }
        return Writes;
    }
    std::vector<std::string> GetOrders() const {
        std::vector<std::string> Orders;
        for (const nlohmann::json& rLine : m_pGateway->m_Sent) {
            Orders.push_back(rLine.begin().key());
        }
        return Orders;
    }
    std::shared_ptr<void> Listen(const std::string& rItem) {
        return m_pServer->Subscribe(rItem, 100, [this](const COpcValue* pValue) {
            m_Told.push_back(pValue != nullptr ? std::get<std::int32_t>(*pValue) : UNREADABLE);
        });
    }
    IFOpcServer::FailureHandler Note(const std::string& rName) {
        return [this, rName] { m_Failed.push_back(rName); };
    }
    const std::vector<std::int32_t>& GetTold() {
        m_Loop.RunPosted();
        return m_Told;
    }
    const std::vector<std::string>& GetFailed() {
        m_Loop.RunPosted();
        return m_Failed;
    }

    static constexpr std::int32_t UNREADABLE = -999;

    CVirtualEventLoop m_Loop;
    CLogCapture m_Log{true};
    CFakeGateway* m_pGateway = nullptr;
    std::unique_ptr<CNetworkOpcServer> m_pServer;
    std::vector<std::int32_t> m_Told;
    std::vector<std::string> m_Failed;
};
