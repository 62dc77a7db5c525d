// What the gateway to the NC says: lines of any bytes, while items are written, read and subscribed to. A
// line that begins with "!" isn't the gateway's but a turn of ours, by its second character.
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "fuzz/fuzzing.h"
#include "platform/rvopc/networkopcserver.h"
#include "platform/system/linesplitter.h"
#include "platform/system/virtualeventloop.h"

namespace {

/// The other end: what it gets must be lines.
class CFuzzGateway : public IFOpcGateway {
public:
    void Start() override {}
    bool SendLine(const std::string& rLine) override {
        Require(!rLine.empty() && rLine.find('\n') == std::string::npos);
        return true;
    }
    bool Wait(std::uint32_t /*Milliseconds*/) override { return false; }
};

/// Each value that was taken either arrives, or its failure is told; never both.
class CConversation {
public:
    CConversation() {
        auto pGateway = std::make_unique<CFuzzGateway>();
        m_pGateway = pGateway.get();
        COpcConfiguration Configuration;
        Configuration.m_Server = "opc.tcp://127.0.0.1:4840";
        m_pServer = std::make_unique<CNetworkOpcServer>(std::move(pGateway), Configuration, "/pki");
    }
    void Take(const std::string& rLine) {
        if (!rLine.starts_with('!')) {
            m_pGateway->OnLine(rLine);
        } else if (rLine.size() > 1) {
            DoTurn(rLine[1], rLine.substr(2));
        }
        m_Loop.Advance(10);
    }

private:
    void DoTurn(char Turn, const std::string& rItem) {
        switch (Turn) {
            case 'w':
            case 'd':
            case 't':
                Write(Turn, rItem);
                break;
            case 's':
                m_Subscriptions[rItem] = m_pServer->Subscribe(rItem, 100, [](const COpcValue* pValue) {
                    Require(pValue == nullptr || !pValue->valueless_by_exception());
                });
                break;
            case 'u':
                m_Subscriptions.erase(rItem);
                break;
            case 'r':
                m_pServer->Read(rItem);
                break;
            case 'o':
                m_pGateway->OnOpened();
                break;
            case 'l':
                m_pGateway->OnLost(rItem);
                Require(!m_pServer->IsConnected());
                break;
            default:
                break;
        }
    }
    void Write(char Type, const std::string& rItem) {
        const COpcValue Value = Type == 'w'   ? COpcValue(std::int32_t{7})
                                : Type == 'd' ? COpcValue(1.5)
                                              : COpcValue(std::string("text"));
        auto pTold = std::make_shared<bool>(false);
        m_pServer->Write(rItem, Value, [pTold] { Require(!std::exchange(*pTold, true)); });
    }

    CVirtualEventLoop m_Loop;
    CFuzzGateway* m_pGateway = nullptr;
    std::unique_ptr<CNetworkOpcServer> m_pServer;
    std::map<std::string, std::shared_ptr<void>> m_Subscriptions;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    OpenAllTopics();
    CConversation Conversation;
    CLineSplitter Lines([&Conversation](const std::string& rLine) { Conversation.Take(rLine); }, [] {});
    Lines.Put({pData, nSize});
    return 0;
}
