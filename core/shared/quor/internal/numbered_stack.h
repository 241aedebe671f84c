#ifndef QUOR_INTERNAL_NUMBERED_STACK_H
#define QUOR_INTERNAL_NUMBERED_STACK_H

#include <quor/internal/joined.h>
#include <string>
#include <vector>

namespace quor::internal {

// Returns the entries of a stack as lines, innermost first: "0. frame\n1. frame\n".
inline std::string NumberedStack(const std::vector<std::string>& stack) {
    std::string text;
    int index = 0;
    for (const std::string& frame : stack) {
        text += Joined({index++, ". ", frame, "\n"});
    }
    return text;
}

}  // namespace quor::internal

#endif
