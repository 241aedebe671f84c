#ifndef QUOR_INTERNAL_FRAME_TEXT_H
#define QUOR_INTERNAL_FRAME_TEXT_H

#include <cstdlib>
#include <memory>
#include <string>

namespace quor::internal {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
using CText = std::unique_ptr<char, Free>;

// Returns the readable form of a mangled name, or null.
CText Demangle(const char* mangled);

// Returns the text that a frame with this return address has in GetExecutionStack(), or an empty
// one if memory is short.
std::string FrameText(void* address);

}  // namespace quor::internal

#endif
