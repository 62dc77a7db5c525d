#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "console/headline.h"
#include "console/linewatch.h"

class CConsoleSession;

/// Knows what the head line shows: listens to the line, the log and the module's messages, and asks nobody
/// for anything.
class CPanelObserver {
public:
    explicit CPanelObserver(CConsoleSession& rSession);
    ~CPanelObserver();
    CPanelObserver(const CPanelObserver&) = delete;
    CPanelObserver& operator=(const CPanelObserver&) = delete;

    CHeadState Look();
    /// Something for a person to read: the newest message.
    void Say(const std::string& rText) { m_Message = rText; }
    const std::string& GetMessage() const { return m_Message; }

private:
    Lights::CModuleFacts GetModuleFacts();
    Lights::CDatabaseFacts GetDatabaseFacts();

    CConsoleSession& m_rSession;
    CLineWatch m_Line;
    std::string m_Message;
    std::optional<std::uint64_t> m_OpenSince;  ///< of the link
    Lights::CDatabaseFacts m_Database;
    std::optional<std::uint64_t> m_DatabaseSeen;
    struct CStoreTrouble;
    std::shared_ptr<CStoreTrouble> m_pStoreTrouble;
    std::shared_ptr<void> m_pLogGuard;
};
