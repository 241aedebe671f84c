#ifndef QUOR_INTERNAL_LATE_REPORTS_H
#define QUOR_INTERNAL_LATE_REPORTS_H

#include <string>

namespace quor::internal {

struct LateReport;

// What a thread has to say, and how many LateReports it holds.
struct PendingReports {
    unsigned guards;
    bool nameless;  // one whose name there was no memory for
    LateReport* first;
};
extern __thread PendingReports t_pendingReports;

void SayPendingReports() noexcept;

// Held by a thread around a mutex of the library under which a file may be closed. Whatever may run
// code of the host then waits until the thread's outermost one is destroyed: the host may have led
// std::cerr into its log or trace.
class LateReports {
public:
    LateReports() { ++t_pendingReports.guards; }
    LateReports(const LateReports&) = delete;
    LateReports& operator=(const LateReports&) = delete;
    ~LateReports() {
        const PendingReports& pending = t_pendingReports;
        if (--t_pendingReports.guards == 0 && (pending.first != nullptr || pending.nameless)) {
            SayPendingReports();
        }
    }

    // Whether the calling thread holds one.
    static bool IsHeld() { return t_pendingReports.guards != 0; }
    // Says on std::cerr that the trailer of `fileName` could not be written: at once, or when the
    // calling thread no longer holds one of these. Then the name is left out if memory is short,
    // and an exception of the stream stays inside.
    static void LostTrailer(const std::string& fileName);
};

}  // namespace quor::internal

#endif
