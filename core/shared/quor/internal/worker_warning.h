#ifndef QUOR_INTERNAL_WORKER_WARNING_H
#define QUOR_INTERNAL_WORKER_WARNING_H

#include <string>

namespace quor::internal {

// Returns the line that is traced when code of the host throws on a thread of `name`. `error` is
// null for anything but a std::exception.
inline std::string WorkerWarning(const std::string& name, const char* error) {
    return "WARNING: WorkerThread " + name +
           (error != nullptr ? std::string(". Error: ") + error : ". Unknown exception.");
}

}  // namespace quor::internal

#endif
