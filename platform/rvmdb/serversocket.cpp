#include "platform/rvmdb/serversocket.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

namespace PreBalDB {

namespace {

/// The operation of the client library that the driver works with. That library is there only with the
/// driver, and asked for only then: a console without a server needs neither.
int GetSocket(const void* pConnection) {
    using Operation = int (*)(const void*);
    void* const pLibrary = dlopen("libpq.so.5", RTLD_NOW | RTLD_NOLOAD);
    if (pLibrary == nullptr) {
        return -1;
    }
    const auto pOperation = reinterpret_cast<Operation>(dlsym(pLibrary, "PQsocket"));
    const int Handle = pOperation != nullptr ? pOperation(pConnection) : -1;
    dlclose(pLibrary);
    return Handle;
}

}  // namespace

void CServerSocket::Attach(const void* pConnection) {
    Detach();
    const int Handle = GetSocket(pConnection);
    const std::lock_guard Guard(m_Lock);
    m_Handle = Handle < 0 ? -1 : fcntl(Handle, F_DUPFD_CLOEXEC, 0);
}

void CServerSocket::Detach() {
    const std::lock_guard Guard(m_Lock);
    if (const int Handle = std::exchange(m_Handle, -1); Handle >= 0) {
        close(Handle);
    }
}

void CServerSocket::ShutDown() {
    const std::lock_guard Guard(m_Lock);
    if (m_Handle >= 0) {
        shutdown(m_Handle, SHUT_RDWR);
    }
}

}  // namespace PreBalDB
