#pragma once
#include <functional>
#include <memory>

/// Watches a file descriptor through the toolkit's event loop, until it goes. Window thread only.
class IFDescriptorWatch {
public:
    virtual ~IFDescriptorWatch() = default;
    /// A watch starts enabled.
    virtual void SetEnabled(bool bEnabled) = 0;
};

enum class DescriptorEvent { eReadable, eWritable };

/// Calls Handler again and again while the descriptor, which must outlive the watch, is what is waited for.
/// The handler must not end the watch.
std::unique_ptr<IFDescriptorWatch> WatchDescriptor(int Handle, DescriptorEvent Awaited,
                                                   std::function<void()> Handler);
