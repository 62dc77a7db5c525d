#pragma once
#include <cstdint>
#include <optional>

#include "console/operator.h"
#include "console/session.h"
#include "contract/ncrequests.h"
#include "platform/rvopc/inprocessopcserver.h"
#include "platform/system/timer.h"

/// An NC in this process that drives one procedure: it requests it, does what its notifications ask for,
/// confirms by requests, and ends it. One request at a time, written again when the item couldn't be.
class CNcHand : public IFOperatorPanel {
public:
    static constexpr const char* REQUEST = "request";
    static CInProcessOpcServer& GetServer();
    /// Before the session is made: the module listens to the item.
    static void LinkItems();

    explicit CNcHand(CConsoleSession& rSession);
    void Start(NcRequests::Request Procedure);

    CSituation Look() override { return m_rSession.Look(); }
    void PressKey(const MenuKeys::CKey& rKey) override;
    void Say(const std::string& /*rText*/) override {}

private:
    void GoOn();
    /// False while the answer to the last one is still to come, or nobody takes it.
    bool Ask(NcRequests::Request Wanted);

    CConsoleSession& m_rSession;
    COperator m_Operator;
    CTimer m_Timer;
    NcRequests::Request m_Procedure = NcRequests::ePreBalance;
    bool m_bBegun = false;
};
