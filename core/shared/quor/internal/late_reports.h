#ifndef QUOR_INTERNAL_LATE_REPORTS_H
#define QUOR_INTERNAL_LATE_REPORTS_H

#include <string>

namespace quor::internal {

// Held by a thread around a mutex of the library under which a file may be closed. Whatever may run
// code of the host then waits until the thread's outermost one is destroyed: the host may have led
// std::cerr into its log or trace.
class LateReports {
public:
    LateReports();
    LateReports(const LateReports&) = delete;
    LateReports& operator=(const LateReports&) = delete;
    ~LateReports();

    // Whether the calling thread holds one.
    static bool IsHeld();
    // Says on std::cerr that the trailer of `fileName` could not be written: at once, or when the
    // calling thread no longer holds one of these. Then the name is left out if memory is short,
    // and an exception of the stream stays inside.
    static void LostTrailer(const std::string& fileName);
};

}  // namespace quor::internal

#endif
