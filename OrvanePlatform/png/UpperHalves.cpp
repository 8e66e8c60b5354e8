#include "OrvanePlatform/png/UpperHalves.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace orvane::png {

#if defined(__x86_64__)

namespace {

__attribute__((target("avx"))) void zeroUpperHalves() {
    _mm256_zeroupper();
}

} // namespace

void clearUpperHalves() {
    if (__builtin_cpu_supports("avx") != 0)
        zeroUpperHalves();
}

#else

void clearUpperHalves() {}

#endif

} // namespace orvane::png
