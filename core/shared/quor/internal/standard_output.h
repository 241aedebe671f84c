#ifndef QUOR_INTERNAL_STANDARD_OUTPUT_H
#define QUOR_INTERNAL_STANDARD_OUTPUT_H

#include <quor/internal/cancellation_off.h>

#include <cstdio>
#include <iostream>

namespace quor::internal {

// Writes out what the host has left in the buffers of standard output, before descriptor 1 is
// closed. May run code of the host, so no mutex of the library may be held. Throws nothing.
inline void FlushStandardOutput() noexcept {
    const CancellationOff cancellationOff;
    try {
        std::cout.flush();
    } catch (...) {
        // The host asked its stream for exceptions. It is about to be closed anyway.
    }
    std::fflush(stdout);
}

}  // namespace quor::internal

#endif
