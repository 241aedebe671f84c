#ifndef QUOR_INTERNAL_TRACE_FILE_INTERNALS_H
#define QUOR_INTERNAL_TRACE_FILE_INTERNALS_H

#include <quor/internal/cancellation_off.h>
#include <quor/internal/late_reports.h>
#include <quor/internal/line_buffer.h>
#include <quor/trace_file.h>

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>

namespace quor::internal {

// The state machine of the trace (trace_file.cpp), its lines (trace_line.cpp), and how it begins
// and ends with the process (trace_lifetime.cpp).
struct TraceFileInternals {
    // Holds the trace's mutex, and back whatever has to wait until it is free: cancellation, too.
    struct Access {
        explicit Access(TraceFile& trace) : m_lock(trace.m_mutex) {}

        const CancellationOff m_cancellationOff;
        const LateReports m_reports;
        const std::lock_guard<std::mutex> m_lock;
    };

    // The process is exiting, and the trace stays stopped for good.
    static std::atomic<bool> s_ended;

    // With an Access:
    static void SetState(TraceFile& trace, TraceLevel_e level, bool active);
    static void Start(TraceFile& trace, TraceLevel_e level);
    static void Stop(TraceFile& trace);
    static std::string NameToOpen(const TraceFile& trace);
    static std::string GeneratedName(const TraceFile& trace);
    // Writes `text` with thread and time of day alone.
    static void WriteEntry(TraceFile& trace, std::string_view text);
    static std::string LineHead(const TraceFile& trace);

    // Without one:
    static TraceFile& MakeInstance();
    static void End(TraceFile& trace) noexcept;
    // Standard output is about to be closed; writes out what the host has left in its buffers.
    static void FlushBeforeClose(TraceFile& trace);
    // Write one line, if the trace takes this level: thread and time of day, the source's file and
    // line where the trace shows them, and the text, which holds no NUL. Throw std::system_error if
    // the mutex cannot be locked, and std::bad_alloc for a text that has to be copied to the heap:
    // a long one, or one without room in front of it for the name of its file.
    static void WriteLine(TraceFile& trace, TraceLevel_e level, const char* file, int line,
                          const RoomyText& text);
    static void WriteText(TraceLevel_e level, const char* file, int line, std::string_view text,
                          std::size_t gap = c_lineGap);
};

}  // namespace quor::internal

#endif
