#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "console/situation.h"

class CInProcessOpcServer;

/// The console's place in the NC's stead: an OPC server in this process with the module's items, whose
/// notifications and warnings the console listens to. Must stand before the module's window is created.
class CNcPanel {
public:
    CNcPanel();
    ~CNcPanel();
    CNcPanel(const CNcPanel&) = delete;
    CNcPanel& operator=(const CNcPanel&) = delete;

    const CNotification& GetNotification() const { return m_Notification; }
    std::uint32_t GetWarning() const { return m_Warning; }

    /// Called on each notification and each change of the warning.
    std::function<void()> OnChanged;

private:
    std::shared_ptr<CInProcessOpcServer> m_pServer;
    std::shared_ptr<void> m_pNotifications;
    std::shared_ptr<void> m_pWarnings;
    CNotification m_Notification;
    std::uint32_t m_Warning = 0;
};
