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
    /// How often somebody there has asked for something: an NC that acts.
    std::uint32_t GetRequestCount() const { return m_nRequests; }
    enum class State {
        eNone,  ///< none is configured
        eConnecting,
        eConnected,
        eLost
    };
    State GetState() const;
    /// Why there is no connection (CNcTrouble); empty if there is one, or nothing particular is known.
    std::string GetTrouble() const;

    /// Called through the event loop on each new notification and each change of the warning.
    std::function<void()> OnChanged;
    /// Called through the event loop when the NC has named the rotor, or has taken its name back (empty).
    std::function<void(const std::string& rName)> OnRotorName;

private:
    class CServer;

    void TakeNotification(const std::vector<std::int32_t>& rValues);
    void TakeWarning(std::int32_t Warning);
    void TakeRotorName(const COpcValue& rValue);
    /// Takes it in when the module has finished what it is doing.
    void Later(std::function<void()> Take);

    std::shared_ptr<CServer> m_pServer;
    CNcNotification m_Notification;
    std::uint32_t m_Warning = 0;
    std::uint32_t m_nRequests = 0;
    bool m_bRotorNamed = false;  ///< by the NC
    CLifetime m_Lifetime;
};
