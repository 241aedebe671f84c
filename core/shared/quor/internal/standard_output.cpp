#include <quor/internal/standard_output.h>

#include <quor/internal/cancellation_off.h>

#include <cstdio>
#include <iostream>

namespace quor::internal {

void FlushStandardOutput() noexcept {
    const CancellationOff cancellationOff;
    try {
        std::cout.flush();
    } catch (...) {
        // The host asked its stream for exceptions. It is about to be closed anyway.
    }
    std::fflush(stdout);
}

}  // namespace quor::internal
