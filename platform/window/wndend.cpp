#include "platform/window/wndend.h"

#include <utility>
#include <vector>

namespace {

std::vector<std::function<void(const CWnd&)>>& GetListeners() {
    static std::vector<std::function<void(const CWnd&)>> Listeners;
    return Listeners;
}

}  // namespace

void AddWindowEndListener(std::function<void(const CWnd&)> Listener) {
    GetListeners().push_back(std::move(Listener));
}

void TellWindowEnd(const CWnd& rWnd) {
    for (const auto& rListener : GetListeners()) {
        rListener(rWnd);
    }
}
