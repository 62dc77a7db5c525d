#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/rvcom/bytelink.h"

/// Base of the links: brings their callbacks through the event loop, in order, so that they never come from
/// inside a call and may close or destroy the link that calls. What is still on its way when the link is
/// closed or opened anew is dropped.
class CQueuedLink : public IFByteLink {
public:
    ~CQueuedLink() override = default;
    CQueuedLink(const CQueuedLink&) = delete;
    CQueuedLink& operator=(const CQueuedLink&) = delete;

    bool IsOpen() const override { return m_bOpen; }

protected:
    CQueuedLink() = default;

    /// Drops callbacks on their way; the link counts as closed. For Open() and Close().
    void Restart();
    void PostOpened();
    void PostBytes(std::vector<std::uint8_t> Bytes);
    void PostClosed(std::string Reason);

private:
    void PostCall(std::function<void()> Call);

    bool m_bOpen = false;
    /// Queued calls hold it weakly; a new one makes them stale.
    std::shared_ptr<int> m_pEpoch = std::make_shared<int>();
};
