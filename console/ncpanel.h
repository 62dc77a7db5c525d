#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "console/opcsetup.h"
#include "console/situation.h"
#include "platform/system/lifetime.h"

/// The console's place in the NC's stead: hears the notifications and warnings that the module publishes,
/// whether an NC takes them over the network or nobody does. Must stand before the module's window is
/// created.
class CNcPanel {
public:
    /// Without a setup the module's items lie in this process.
    explicit CNcPanel(const std::optional<COpcSetup>& rSetup);
    ~CNcPanel();
    CNcPanel(const CNcPanel&) = delete;
    CNcPanel& operator=(const CNcPanel&) = delete;

    const CNcNotification& GetNotification() const { return m_Notification; }
    std::uint32_t GetWarning() const { return m_Warning; }

    /// Called through the event loop on each new notification and each change of the warning.
    std::function<void()> OnChanged;

private:
    class CServer;

    void TakeNotification(const std::vector<std::int32_t>& rValues);
    void TakeWarning(std::int32_t Warning);
    /// Takes it in when the module has finished what it is doing.
    void Later(std::function<void()> Take);

    std::shared_ptr<CServer> m_pServer;
    CNcNotification m_Notification;
    std::uint32_t m_Warning = 0;
    CLifetime m_Lifetime;
};
