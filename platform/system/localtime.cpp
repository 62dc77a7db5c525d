#include "platform/system/localtime.h"

#include <array>
#include <ctime>

std::string FormatLocalTime(std::chrono::sys_seconds Moment, const char* pFormat) {
    const auto Seconds = static_cast<std::time_t>(Moment.time_since_epoch().count());
    std::tm Local{};
    tzset();  // the zone may have been changed since
    if (localtime_r(&Seconds, &Local) == nullptr) {
        return {};
    }
    std::array<char, 64> Text{};
    return {Text.data(), std::strftime(Text.data(), Text.size(), pFormat, &Local)};
}
