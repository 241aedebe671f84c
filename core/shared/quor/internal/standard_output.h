#ifndef QUOR_INTERNAL_STANDARD_OUTPUT_H
#define QUOR_INTERNAL_STANDARD_OUTPUT_H

namespace quor::internal {

// Writes out what the host has left in the buffers of standard output, before descriptor 1 is
// closed. May run code of the host, so no mutex of the library may be held. Throws nothing.
void FlushStandardOutput() noexcept;

}  // namespace quor::internal

#endif
