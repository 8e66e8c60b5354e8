#pragma once

#include <cstdio>
#include <cstdlib>

namespace orvane::fuzz {

/// Ends the process, which is what the fuzzer takes for a finding, unless `holds`.
inline void check(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

} // namespace orvane::fuzz
