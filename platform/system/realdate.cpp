#include "platform/system/realdate.h"

std::chrono::sys_seconds GetRealDate() {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}
