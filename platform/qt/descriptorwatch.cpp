#include "platform/system/descriptorwatch.h"

#include <QSocketNotifier>
#include <utility>

namespace {

class CDescriptorWatch : public IFDescriptorWatch {
public:
    CDescriptorWatch(int Handle, QSocketNotifier::Type Awaited, std::function<void()> Handler)
        : m_Notifier(Handle, Awaited) {
        QObject::connect(&m_Notifier, &QSocketNotifier::activated,
                         [Handler = std::move(Handler)] { Handler(); });
    }
    void SetEnabled(bool bEnabled) override { m_Notifier.setEnabled(bEnabled); }

private:
    QSocketNotifier m_Notifier;
};

}  // namespace

std::unique_ptr<IFDescriptorWatch> WatchDescriptor(int Handle, DescriptorEvent Awaited,
                                                   std::function<void()> Handler) {
    return std::make_unique<CDescriptorWatch>(
        Handle, Awaited == DescriptorEvent::eReadable ? QSocketNotifier::Read : QSocketNotifier::Write,
        std::move(Handler));
}
