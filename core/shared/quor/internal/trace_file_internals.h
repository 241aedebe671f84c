#ifndef QUOR_INTERNAL_TRACE_FILE_INTERNALS_H
#define QUOR_INTERNAL_TRACE_FILE_INTERNALS_H

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
    // Holds the trace's mutex, and back whatever has to wait until it is free.
    struct Access {
        explicit Access(TraceFile& trace) : m_lock(trace.m_mutex) {}

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
    // Writes one line, if the trace takes this level: thread and time of day, the source's file and
    // line where the trace shows them, and `text`, which holds no NUL. Keeps errno. Throws
    // std::system_error if the mutex cannot be locked; with room in front of the text, throws
    // std::bad_alloc only if the file's name does not fit in.
    static void WriteLine(TraceLevel_e level, const char* file, int line, std::string_view text);
    static void WriteLine(TraceLevel_e level, const char* file, int line, const RoomyText& text);
};

}  // namespace quor::internal

#endif
