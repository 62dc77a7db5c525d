#include "platform/rvcom/queuedlink.h"

#include <utility>

#include "platform/system/eventloop.h"

void CQueuedLink::Restart() {
    m_bOpen = false;
    m_pEpoch = std::make_shared<int>();
}

void CQueuedLink::PostCall(std::function<void()> Call) {
    IFEventLoop::Current().Post([pEpoch = std::weak_ptr<int>(m_pEpoch), Call = std::move(Call)] {
        if (!pEpoch.expired()) {
            Call();
        }
    });
}

// The callbacks are copied before they run: they may destroy the link, and with it themselves.

void CQueuedLink::PostOpened() {
    PostCall([this] {
        m_bOpen = true;
        if (const auto Callback = OnOpened) {
            Callback();
        }
    });
}

void CQueuedLink::PostBytes(std::vector<std::uint8_t> Bytes) {
    if (Bytes.empty()) {
        return;
    }
    PostCall([this, Bytes = std::move(Bytes)] {
        if (const auto Callback = OnBytes) {
            Callback(Bytes);
        }
    });
}

void CQueuedLink::PostClosed(std::string Reason) {
    PostCall([this, Reason = std::move(Reason)] {
        m_bOpen = false;
        if (const auto Callback = OnClosed) {
            Callback(Reason);
        }
    });
}
