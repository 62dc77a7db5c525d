#include "platform/window/messagebox.h"

#include <mutex>
#include <utility>

#include "platform/system/eventloop.h"

namespace {

constexpr std::size_t KEPT = 100;

struct CState {
    std::mutex m_Lock;
    std::vector<CShownMessage> m_Shown;
    std::function<void(const CShownMessage&)> m_Presenter;
};

CState& GetState() {
    static CState State;
    return State;
}

void Present(const CShownMessage& rMessage) {
    std::function<void(const CShownMessage&)> Presenter;
    {
        const std::lock_guard Guard(GetState().m_Lock);
        Presenter = GetState().m_Presenter;
    }
    if (Presenter) {
        Presenter(rMessage);
    }
}

}  // namespace

void ShowMessageBox(const std::string& rText, const std::string& rTitle) {
    CShownMessage Message{rTitle, rText};
    CState& rState = GetState();
    {
        const std::lock_guard Guard(rState.m_Lock);
        if (rState.m_Shown.size() == KEPT) {
            rState.m_Shown.erase(rState.m_Shown.begin());
        }
        rState.m_Shown.push_back(Message);
        if (!rState.m_Presenter) {
            return;
        }
    }
    // Through the loop: the caller may be another thread, or in the middle of painting.
    if (IFEventLoop::HasCurrent()) {
        IFEventLoop::Current().Post([Message = std::move(Message)] { Present(Message); });
    }
}

std::vector<CShownMessage> TakeShownMessages() {
    const std::lock_guard Guard(GetState().m_Lock);
    return std::exchange(GetState().m_Shown, {});
}

void SetMessageBoxPresenter(std::function<void(const CShownMessage&)> Presenter) {
    const std::lock_guard Guard(GetState().m_Lock);
    GetState().m_Presenter = std::move(Presenter);
}
