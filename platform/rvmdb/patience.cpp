#include "platform/rvmdb/patience.h"

#include <algorithm>

namespace PreBalDB {

namespace {

using Duration = std::chrono::steady_clock::duration;

thread_local int nDepth = 0;
thread_local Duration Rest{};

}  // namespace

CPatience::CPatience() {
    if (nDepth++ == 0) {
        Rest = LIMIT;
    }
}

CPatience::~CPatience() {
    --nDepth;
}

Duration CPatience::GetRest() {
    return nDepth == 0 ? Duration(LIMIT) : Rest;
}

void CPatience::Spend(Duration Time) {
    Rest = std::max(Rest - Time, Duration::zero());
}

}  // namespace PreBalDB
