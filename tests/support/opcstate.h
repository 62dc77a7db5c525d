#pragma once
#include "platform/rvopc/inprocessopcserver.h"
#include "platform/rvopc/opcconnection.h"
#include "platform/rvopc/opcdatabase.h"

/// No link items, no connection and an empty server while it lives and afterwards.
class CCleanOpcState {
public:
    CCleanOpcState() { Clean(); }
    ~CCleanOpcState() { Clean(); }
    CCleanOpcState(const CCleanOpcState&) = delete;
    CCleanOpcState& operator=(const CCleanOpcState&) = delete;

    CInProcessOpcServer& GetServer() const { return *CInProcessOpcServer::Find(""); }

private:
    void Clean() const {
        COpcDatabase::GetInstance()->Clear();
        COpcDatabase::GetInstance()->SetSelectedOpcServer("");
        COPCConnection::CreateInstance()->SetConnector(nullptr);
        COPCConnection::CreateInstance()->Disconnect();
        GetServer().Reset();
    }
};
