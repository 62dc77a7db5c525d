#pragma once
#include <cstdint>

/// What an NC asks for, and how it is answered in the same item. Never renumber.
namespace NcRequests {

enum Request : std::int32_t {
    ePreBalance = 1,
    eReBalance = 2,
    eNext = 3,
    eEnd = 4,
};

enum Answer : std::int32_t {
    eDone = 0,
    eRefused = -1,
};

}  // namespace NcRequests
