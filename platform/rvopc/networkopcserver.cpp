#include "platform/rvopc/networkopcserver.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "platform/rvlog/log.h"
#include "platform/rvopc/opclines.h"
#include "platform/system/eventloop.h"

using nlohmann::json;

namespace {

CLogComponent* g_pLog = CLogComponent::Register("rvOPC", {});

std::string ToLine(const char* pOrder, json Parameters) {
    return json{{pOrder, std::move(Parameters)}}.dump(-1, ' ', false, json::error_handler_t::replace);
}

json ToJson(const COpcValue& rValue) {
    struct {
        json operator()(std::int32_t Value) const { return {{"int32", Value}}; }
        json operator()(double Value) const { return {{"double", Value}}; }
        json operator()(const std::string& rText) const { return {{"string", rText}}; }
        json operator()(const std::vector<std::int32_t>& rValues) const { return {{"int32s", rValues}}; }
    } const Convert;
    return std::visit(Convert, rValue);
}

/// The value of an answer; nothing if the item can't be read.
std::optional<COpcValue> ToValue(const json& rAnswer) {
    const auto pValue = rAnswer.find("value");
    if (pValue == rAnswer.end() || !pValue->is_object() || pValue->size() != 1) {
        return std::nullopt;
    }
    const std::string Kind = pValue->begin().key();
    const json& rValue = pValue->begin().value();
    if (Kind == "int32") {
        return rValue.get<std::int32_t>();
    }
    if (Kind == "double") {
        return rValue.get<double>();
    }
    if (Kind == "string") {
        return rValue.get<std::string>();
    }
    if (Kind == "int32s") {
        return rValue.get<std::vector<std::int32_t>>();
    }
    return std::nullopt;
}

/// A number is the same whatever type the server's node gives it: what was written as a whole number comes
/// back from a node of floating point.
bool IsSame(const std::optional<COpcValue>& rLeft, const COpcValue& rRight) {
    const auto ToNumber = [](const COpcValue& rValue) {
        return std::holds_alternative<std::string>(rValue) ? std::nullopt : OpcValueToNumber(rValue);
    };
    if (!rLeft) {
        return false;
    }
    const std::optional<double> Left = ToNumber(*rLeft);
    return Left ? Left == ToNumber(rRight) : *rLeft == rRight;
}

/// The exacting values of the linked items, by node.
std::map<std::string, COpcValue> FindExacting(const COpcConfiguration& rConfiguration) {
    std::map<std::string, COpcValue> Exacting;
    for (const auto& [rKey, rValue] : rConfiguration.m_Exacting) {
        if (const auto Item = rConfiguration.m_LinkItems.find(rKey);
            Item != rConfiguration.m_LinkItems.end()) {
            Exacting[Item->second] = rValue;
        }
    }
    return Exacting;
}

void Log(const json& rRecord) {
    const std::string Level = rRecord.value("level", "");
    const std::string Text = rRecord.value("text", "");
    if (Level == "error") {
        RV_ERROR(g_pLog, "gateway: %s", Text.c_str());
    } else if (Level == "warning") {
        RV_WARNING(g_pLog, "gateway: %s", Text.c_str());
    } else {
        RV_INFORMATION(g_pLog, "gateway: %s", Text.c_str());
    }
}

}  // namespace

CNetworkOpcServer::CNetworkOpcServer(std::unique_ptr<IFOpcGateway> pGateway,
                                     const COpcConfiguration& rConfiguration,
                                     const std::string& rPkiDirectory)
    : m_pGateway(std::move(pGateway)),
      m_ConnectLine(OpcLines::MakeConnect(rConfiguration, rPkiDirectory)),
      m_Exacting(FindExacting(rConfiguration)) {
    m_pGateway->OnOpened = [this] { OnGatewayOpened(); };
    m_pGateway->OnLine = [this](const std::string& rLine) { OnLine(rLine); };
    m_pGateway->OnLost = [this](const std::string& rWhy) { OnLost(rWhy); };
    m_pGateway->Start();
}

CNetworkOpcServer::~CNetworkOpcServer() {
    m_Lifetime.End();
}

void CNetworkOpcServer::OnGatewayOpened() {
    m_pGateway->SendLine(m_ConnectLine);
    for (const auto& [Number, rpSubscription] : m_Subscriptions) {
        if (const std::shared_ptr<CSubscription> pSubscription = rpSubscription.lock()) {
            SendSubscription(*pSubscription);
        }
    }
}

void CNetworkOpcServer::OnLine(const std::string& rLine) {
    // What comes is a program's of ours, but a program's all the same.
    try {
        const json Line = json::parse(rLine);
        for (const auto& [Kind, rContent] : Line.get_ref<const json::object_t&>()) {
            if (Kind == "state") {
                rContent.at("connected").get<bool>()
                    ? OnConnected()
                    : OnLost(rContent.value("reason", ""), rContent.value("kind", ""));
            } else if (Kind == "changed") {
                OnChanged(rContent.at("id").get<Id>(), ToValue(rContent), rContent.value("error", ""));
            } else if (Kind == "checked") {
                OnChecked(rContent.at("id").get<Id>(), rContent.value("error", ""));
            } else if (Kind == "written") {
                OnWritten(rContent.at("id").get<Id>(), rContent.value("error", ""));
            } else if (Kind == "value" && rContent.at("id").get<Id>() == m_ReadId) {
                m_ReadAnswer.emplace(ToValue(rContent));
            } else if (Kind == "log") {
                Log(rContent);
            }
        }
    } catch (const json::exception&) {
        RV_ERROR(g_pLog, "the gateway sent a line that can't be understood: %.200s", rLine.c_str());
    }
}

void CNetworkOpcServer::OnConnected() {
    if (m_LastReason.empty()) {
        RV_INFORMATION(g_pLog, "connected to the NC");
    } else {
        // As visible as the outage that it ends.
        RV_WARNING(g_pLog, "connected to the NC again");
    }
    m_State = State::eConnected;
    m_LastReason.clear();
    m_Trouble.clear();
    m_Checks.clear();
    for (const auto& [rItem, rValue] : m_Exacting) {
        m_Checks[++m_LastId] = rItem;
        m_pGateway->SendLine(ToLine("check", {{"id", m_LastId}, {"node", rItem}, {"value", ToJson(rValue)}}));
    }
    // In the order in which they were made: the NC must not see a step before the answer that precedes it.
    std::map<std::uint32_t, std::pair<const std::string, CItem>*> ToWrite;
    for (auto& rEntry : m_Items) {
        const CItem& rItem = rEntry.second;
        if (rItem.m_bUnsent || (rItem.m_nSubscriptions == 0 && rItem.m_Written)) {
            ToWrite[rItem.m_Order] = &rEntry;
        }
    }
    for (const auto& [Order, pEntry] : ToWrite) {
        SendWrite(pEntry->first, pEntry->second, std::exchange(pEntry->second.m_OnFailure, nullptr));
    }
}

void CNetworkOpcServer::OnLost(const std::string& rWhy, const std::string& rKind) {
    m_Trouble = rKind;
    if (std::exchange(m_LastReason, rWhy) != rWhy) {
        RV_WARNING(g_pLog, "no connection to the NC: %s", rWhy.c_str());
    }
    m_State = State::eLost;
    for (auto& [rName, rItem] : m_Items) {
        rItem.m_Told.reset();
        PostFailure(std::exchange(rItem.m_OnFailure, nullptr));
    }
    for (auto& [Number, rWrite] : std::exchange(m_Writes, {})) {
        OnWriteFailed(rWrite);
    }
    for (const auto& [Number, rpSubscription] : m_Subscriptions) {
        if (const std::shared_ptr<CSubscription> pSubscription = rpSubscription.lock()) {
            pSubscription->m_bFresh = true;
        }
    }
}

bool CNetworkOpcServer::IsNews(CItem& rItem, const COpcValue& rValue) {
    if (rItem.m_bUnsent && !rItem.m_Known) {
        return false;
    }
    if (IsSame(rItem.m_Known, rValue)) {
        return false;
    }
    if (std::exchange(rItem.m_bUnsent, false)) {
        PostFailure(std::exchange(rItem.m_OnFailure, nullptr));
        // A write whose answer got lost may have arrived all the same.
        return !IsSame(rItem.m_Written, rValue);
    }
    return true;
}

void CNetworkOpcServer::OnChecked(Id Check, const std::string& rError) {
    const auto Node = m_Checks.extract(Check);
    if (!Node.empty() && !rError.empty()) {
        RV_ERROR(g_pLog, "%s can't take everything that has to be written to it: %s", Node.mapped().c_str(),
                 rError.c_str());
    }
}

void CNetworkOpcServer::OnChanged(Id Subscription, std::optional<COpcValue> Value,
                                  const std::string& rError) {
    const auto Position = m_Subscriptions.find(Subscription);
    const std::shared_ptr<CSubscription> pSubscription =
        Position != m_Subscriptions.end() ? Position->second.lock() : nullptr;
    if (pSubscription == nullptr) {
        return;  // ended while this was on its way
    }
    if (!Value) {
        RV_WARNING(g_pLog, "%s can't be read: %s", pSubscription->m_Item.c_str(), rError.c_str());
        Post(pSubscription, std::nullopt);
        return;
    }
    CItem& rItem = m_Items[pSubscription->m_Item];
    const bool bLook = std::exchange(pSubscription->m_bFresh, false);
    // What one subscription was told is news for the item's others too.
    const bool bTell = !bLook || IsSame(rItem.m_Told, *Value) || IsNews(rItem, *Value);
    rItem.m_Known = Value;
    if (bTell) {
        rItem.m_Told = Value;
        Post(pSubscription, std::move(Value));
    }
}

void CNetworkOpcServer::OnWritten(Id Write, const std::string& rError) {
    auto Node = m_Writes.extract(Write);
    if (Node.empty()) {
        return;
    }
    CPendingWrite& rWrite = Node.mapped();
    if (!rError.empty()) {
        RV_WARNING(g_pLog, "%s can't be written: %s", rWrite.m_Item.c_str(), rError.c_str());
        OnWriteFailed(rWrite);
        return;
    }
    if (const auto Item = m_Items.find(rWrite.m_Item); Item != m_Items.end()) {
        Item->second.m_Known = rWrite.m_Value;
    }
}

void CNetworkOpcServer::OnWriteFailed(CPendingWrite& rWrite) {
    // A value that a later one has followed is not worth another attempt.
    const auto Item = m_Items.find(rWrite.m_Item);
    if (Item != m_Items.end() && Item->second.m_Order == rWrite.m_Order) {
        Item->second.m_bUnsent = true;
    }
    PostFailure(std::move(rWrite.m_OnFailure));
}

bool CNetworkOpcServer::Write(const std::string& rItem, const COpcValue& rValue, FailureHandler OnFailure) {
    CItem& rState = m_Items[rItem];
    rState.m_Written = rValue;
    rState.m_Order = ++m_nWrites;
    if (m_State == State::eConnected) {
        SendWrite(rItem, rState, std::move(OnFailure));
        return true;
    }
    rState.m_bUnsent = true;
    if (m_State == State::eConnecting) {
        rState.m_OnFailure = std::move(OnFailure);
        return true;
    }
    return false;
}

void CNetworkOpcServer::SendWrite(const std::string& rItem, CItem& rState, FailureHandler OnFailure) {
    rState.m_bUnsent = false;
    const Id Number = ++m_LastId;
    m_Writes[Number] = {rItem, *rState.m_Written, rState.m_Order, std::move(OnFailure)};
    m_pGateway->SendLine(
        ToLine("write", {{"id", Number}, {"node", rItem}, {"value", ToJson(*rState.m_Written)}}));
}

std::optional<COpcValue> CNetworkOpcServer::Read(const std::string& rItem) {
    const std::uint64_t Deadline = IFEventLoop::Current().Now() + READ_TIMEOUT;
    const auto Wait = [&] {
        const std::uint64_t Now = IFEventLoop::Current().Now();
        return Now < Deadline && m_pGateway->Wait(static_cast<std::uint32_t>(Deadline - Now));
    };
    while (m_State == State::eConnecting && Wait()) {
    }
    if (m_State != State::eConnected) {
        return std::nullopt;
    }
    m_ReadAnswer.reset();
    m_ReadId = ++m_LastId;
    m_pGateway->SendLine(ToLine("read", {{"id", m_ReadId}, {"node", rItem}}));
    while (!m_ReadAnswer && m_State == State::eConnected && Wait()) {
    }
    m_ReadId = 0;
    return std::exchange(m_ReadAnswer, std::nullopt).value_or(std::nullopt);
}

std::shared_ptr<void> CNetworkOpcServer::Subscribe(const std::string& rItem, std::uint32_t UpdateRate,
                                                   ChangeHandler Handler) {
    const auto End = [this, pAlive = m_Lifetime.GetToken()](CSubscription* pSubscription) {
        const std::unique_ptr<CSubscription> pOwned(pSubscription);
        if (!pAlive.expired()) {
            Unsubscribe(*pSubscription);
        }
    };
    const std::shared_ptr<CSubscription> pSubscription(new CSubscription, End);
    pSubscription->m_Id = ++m_LastId;
    pSubscription->m_Item = rItem;
    pSubscription->m_UpdateRate = UpdateRate;
    pSubscription->m_Handler = std::move(Handler);
    pSubscription->m_bFresh = m_State != State::eConnected;
    m_Subscriptions[pSubscription->m_Id] = pSubscription;
    ++m_Items[rItem].m_nSubscriptions;
    SendSubscription(*pSubscription);
    return pSubscription;
}

void CNetworkOpcServer::SendSubscription(const CSubscription& rSubscription) {
    m_pGateway->SendLine(ToLine(
        "subscribe",
        {{"id", rSubscription.m_Id}, {"node", rSubscription.m_Item}, {"rate", rSubscription.m_UpdateRate}}));
}

void CNetworkOpcServer::Unsubscribe(const CSubscription& rSubscription) {
    m_Subscriptions.erase(rSubscription.m_Id);
    const auto Item = m_Items.find(rSubscription.m_Item);
    if (--Item->second.m_nSubscriptions == 0) {
        PostFailure(std::move(Item->second.m_OnFailure));
        m_Items.erase(Item);
    }
    m_pGateway->SendLine(ToLine("unsubscribe", {{"id", rSubscription.m_Id}}));
}

void CNetworkOpcServer::Post(const std::weak_ptr<CSubscription>& rSubscription,
                             std::optional<COpcValue> Value) {
    IFEventLoop::Current().Post([rSubscription, Value = std::move(Value)] {
        // Held during the call: a handler may end its own subscription.
        if (const std::shared_ptr<CSubscription> pSubscription = rSubscription.lock()) {
            pSubscription->m_Handler(Value ? &*Value : nullptr);
        }
    });
}

void CNetworkOpcServer::PostFailure(FailureHandler OnFailure) {
    if (OnFailure) {
        IFEventLoop::Current().Post(std::move(OnFailure));
    }
}
