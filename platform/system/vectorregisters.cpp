#include "platform/system/vectorregisters.h"

#if defined(__x86_64__)
#include <immintrin.h>

namespace {

__attribute__((target("avx"))) void ZeroUpperHalves() {
    _mm256_zeroupper();
}

}  // namespace

void ReleaseVectorRegisters() {
    static const bool HAS_THEM = __builtin_cpu_supports("avx") != 0;
    if (HAS_THEM) {
        ZeroUpperHalves();
    }
}
#else
void ReleaseVectorRegisters() {}
#endif
