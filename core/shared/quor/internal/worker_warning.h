#ifndef QUOR_INTERNAL_WORKER_WARNING_H
#define QUOR_INTERNAL_WORKER_WARNING_H

#include <ostream>
#include <string>

namespace quor::internal {

// The line that is traced when code of the host throws on a thread of `name`. `error` is null for
// anything but a std::exception. Nothing is allocated: often it is memory that has run out.
struct WorkerWarning {
    const std::string& name;
    const char* error;
};

inline std::ostream& operator<<(std::ostream& stream, const WorkerWarning& warning) {
    stream << "WARNING: WorkerThread " << warning.name;
    return warning.error != nullptr ? stream << ". Error: " << warning.error
                                    : stream << ". Unknown exception.";
}

}  // namespace quor::internal

#endif
