#pragma once
// A machine without a protocol around it.
#include <string>
#include <vector>

#include "rvlib/rvprt/reason.h"
#include "tests/support/frames.h"

/// The transaction that every request gets.
constexpr std::uint32_t LONE_TRANSACTION = 77;

/// What a machine needs around it.
template <class Family, class Machine>
class CLone : public Family::template Completed<Machine> {
public:
    using Machine::StateToString;
    void SetTransaction(std::uint32_t Id) { this->m_TransactionID = Id; }
    void SetState(std::uint32_t State) { this->m_State = State; }

private:
    std::uint32_t SendRequestToProtocol(std::uint32_t, std::uint8_t*, std::uint32_t, std::uint32_t,
                                        std::int32_t, CWnd*) override {
        return LONE_TRANSACTION;
    }
    std::uint8_t GetModuleAddress() const override { return 5; }
    const char* GetLogID() const override { return "Lone"; }
};

template <class Family>
class CLoneModuleStates : public CLone<Family, typename Family::ModuleStates> {
public:
    std::vector<Reason> m_Reasons;

private:
    void OnModuleState(Reason Why, const typename Family::ModuleStates::Message*) override {
        m_Reasons.push_back(Why);
    }
};

template <class Family>
class CLoneSetStates : public CLone<Family, typename Family::SetStates> {
public:
    std::vector<Reason> m_Reasons;

private:
    void OnSetRequest(Reason Why, const typename Family::SetStates::Message*) override {
        m_Reasons.push_back(Why);
    }
};

template <class Machine>
int PutAnswer(Machine& rMachine, const std::string& rHex, std::uint32_t Id = LONE_TRANSACTION) {
    const std::vector<std::uint8_t> Frame = Bytes(rHex);
    return rMachine.PutResponseFromProtocol(Id, Frame.data(), static_cast<std::uint32_t>(Frame.size()));
}
