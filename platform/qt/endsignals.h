#pragma once
#include <functional>
#include <memory>
#include <string>

class QSocketNotifier;

/// The requests of the system and of people to end this process: SIGINT, SIGTERM, and SIGHUP unless the
/// process was started to outlive its terminal. While this object lives they don't end the process
/// themselves; it has to do so, in good order. Programs that it starts see the signals as ever. One object at
/// a time.
class CEndSignals {
public:
    CEndSignals();
    ~CEndSignals();
    CEndSignals(const CEndSignals&) = delete;
    CEndSignals& operator=(const CEndSignals&) = delete;

    /// Name of the one that came first, "SIGTERM"; empty before.
    static std::string GetName();
    /// Calls OnSignal from Qt's loop when one has come, or has come already. What waits in that loop looks at
    /// its condition then. The application must have been made.
    void Watch(std::function<void()> OnSignal);

private:
    std::unique_ptr<QSocketNotifier> m_pNotifier;
};
