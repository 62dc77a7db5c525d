#include "platform/rvcom/linespeed.h"

// Not <termios.h>, whose structure of the same name knows only the usual rates.
#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <sys/ioctl.h>

std::uint32_t GetLineSpeed(int Descriptor) {
    termios2 Mode{};
    return ::ioctl(Descriptor, TCGETS2, &Mode) == 0 ? Mode.c_ospeed : 0;
}
