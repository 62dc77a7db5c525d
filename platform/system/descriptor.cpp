#include "platform/system/descriptor.h"

#include <unistd.h>

bool CDescriptor::Close() {
    const int Handle = std::exchange(m_Handle, -1);
    return (Handle < 0) || (::close(Handle) == 0);
}
