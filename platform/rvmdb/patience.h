#pragma once
#include <chrono>

namespace PreBalDB {

/// How long the present thread waits for stores in all: from the making of the outermost of these to its end,
/// whatever number of operations that takes, and for a single operation outside of any. The window thread
/// makes one for each message that it handles. The time is real, also under virtual time: it is a disk or a
/// server that is waited for.
class CPatience {
public:
    static constexpr std::chrono::milliseconds LIMIT{3000};

    CPatience();
    ~CPatience();
    CPatience(const CPatience&) = delete;
    CPatience& operator=(const CPatience&) = delete;

    static std::chrono::steady_clock::duration GetRest();
    static void Spend(std::chrono::steady_clock::duration Time);
};

}  // namespace PreBalDB
