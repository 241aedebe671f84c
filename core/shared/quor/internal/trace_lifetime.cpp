#include <quor/internal/cancellation_off.h>
#include <quor/internal/log_file_internals.h>
#include <quor/internal/standard_output.h>
#include <quor/internal/trace_file_internals.h>

#include <time.h>

namespace quor {

using Internals = internal::TraceFileInternals;

namespace {

constexpr timespec c_wait = {0, 1'000'000};
constexpr int c_waits = 100;

// A thread that is gone, or that a signal handler interrupted, may hold the mutex for ever.
bool LockForAMoment(std::unique_lock<std::mutex>& lock) {
    for (int waits = 0; !lock.try_lock(); ++waits) {
        if (waits == c_waits) {
            return false;
        }
        nanosleep(&c_wait, nullptr);
    }
    return true;
}

// Ends the trace among the static objects of the process.
struct AtExit {
    explicit AtExit(TraceFile& traceFile) : m_traceFile(traceFile) {}
    AtExit(const AtExit&) = delete;
    AtExit& operator=(const AtExit&) = delete;
    ~AtExit() { Internals::End(m_traceFile); }

    TraceFile& m_traceFile;
};

}  // namespace

std::atomic<bool> Internals::s_ended{false};

// The object itself stays: a thread may wait for its mutex while the process exits.
TraceFile& TraceFile::GetInstance() {
    static TraceFile& instance = Internals::MakeInstance();
    return instance;
}

TraceFile& Internals::MakeInstance() {
    auto& instance = *new TraceFile;
    static const AtExit atExit(instance);
    return instance;
}

// The gate closes first, so that threads that still trace do not keep the mutex busy.
void Internals::End(TraceFile& trace) noexcept {
    const CancellationOff cancellationOff;
    s_ended = true;
    SetState(trace, trace.m_level, false);
    const LateReports reports;
    std::unique_lock<std::mutex> lock(trace.m_mutex, std::defer_lock);
    try {
        if (LockForAMoment(lock) && LogFileInternals::IsOnStandardOutput(trace)) {
            lock.unlock();
            FlushStandardOutput();
            LockForAMoment(lock);
        }
        if (lock.owns_lock()) {
            Stop(trace);
        }
    } catch (...) {
        // Memory is short: the file is closed without its trailer.
    }
}

}  // namespace quor
