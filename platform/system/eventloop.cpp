#include "platform/system/eventloop.h"

#include <atomic>
#include <stdexcept>

namespace {

// Other threads look here when they post.
std::atomic<IFEventLoop*> g_pCurrent{nullptr};

}  // namespace

IFEventLoop& IFEventLoop::Current() {
    IFEventLoop* pLoop = g_pCurrent.load();
    if (pLoop == nullptr) {
        throw std::logic_error("there is no event loop");
    }
    return *pLoop;
}

bool IFEventLoop::HasCurrent() {
    return g_pCurrent.load() != nullptr;
}

IFEventLoop* IFEventLoop::SetCurrent(IFEventLoop* pLoop) {
    return g_pCurrent.exchange(pLoop);
}
