#ifndef QUOR_TRACE_H
#define QUOR_TRACE_H

#include <quor/detail/cxx17.h>
#include <quor/detail/file_stem.h>
#include <quor/detail/trace_gate.h>
#include <quor/detail/trace_message.h>
#include <quor/trace_level.h>

#include <string>

/// @file
/// Trace sites. They need no other header; quor/trace_file.h opens and closes the trace.

/// Leaves out sites above this level at compile time; their messages are still type-checked. Define
/// it before the first include, or for the whole program. The default keeps every site.
#ifndef QUOR_TRACE_MAX_LEVEL
#define QUOR_TRACE_MAX_LEVEL ::quor::Detail
#endif

/// Traces a stream expression at a level:
///
///     QUOR_TRACE(quor::Low, "Worker thread: " << m_name << ": START");
///
/// Evaluates `level` once, and the message only while the gate is open, before any lock is taken:
/// the message may itself trace. Numbers print without the digit grouping of the host's locale, and
/// manipulators do not reach the next message. The macro is one statement and keeps errno.
/// Propagates exceptions from the message expression; nothing is written in that case. If memory
/// runs out, the line is dropped.
#define QUOR_TRACE(level, ...) QUOR_TRACE_SITE_(__COUNTER__, level, __VA_ARGS__)

/// Traces the entry into the enclosing scope here, and the exit from it, at level High.
#define QUOR_TRACE_FNC()                                                            \
    const ::quor::TraceFnc QUOR_JOIN_(quorTraceFnc_, __LINE__)(__PRETTY_FUNCTION__, \
                                                               QUOR_FILE_STEM_(), __LINE__)

// The names end in a number of their own, since a message may hold a lambda that traces.
#define QUOR_TRACE_SITE_(number, level, ...)                                                  \
    QUOR_TRACE_BODY_(QUOR_JOIN_(quorLevel_, number), QUOR_JOIN_(quorMessage_, number), level, \
                     __VA_ARGS__)
#define QUOR_TRACE_BODY_(siteLevel, siteMessage, level, ...)                                \
    do {                                                                                    \
        const ::quor::TraceLevel_e siteLevel = (level);                                     \
        if (siteLevel <= QUOR_TRACE_MAX_LEVEL && ::quor::TraceGateOpen(siteLevel)) {        \
            ::quor::detail::TraceMessage siteMessage;                                       \
            siteMessage.Stream() << __VA_ARGS__;                                            \
            siteMessage.Write(siteLevel, __PRETTY_FUNCTION__, QUOR_FILE_STEM_(), __LINE__); \
        }                                                                                   \
    } while (false)
#define QUOR_JOIN_(left, right) QUOR_JOIN_EXPANDED_(left, right)
#define QUOR_JOIN_EXPANDED_(left, right) left##right

namespace quor {

/// Returns whether the trace runs, at `level` or a more verbose one. For Off: whether it runs at
/// all. A trace whose file is gone, after a failed write or Continue() without a file, counts as
/// running. One relaxed read in place and no call; any thread, at any time of the process's life.
inline bool TraceGateOpen(TraceLevel_e level) noexcept {
    return detail::g_traceGate.load(std::memory_order_relaxed) >= static_cast<int>(level);
}

/// Returns the trace's level, whether or not the trace runs.
TraceLevel_e TraceActiveLevel();

/// Writes one trace line without testing the gate: it appears while a file is open, also a paused
/// one, and `level` is at most the trace's. `function` is not printed; `file` and `line` are where
/// the trace's options ask for them. Any thread; keeps errno. Throws std::bad_alloc, and
/// std::system_error if the trace's mutex cannot be locked.
void TraceWrite(TraceLevel_e level, const char* function, const char* file, int line,
                const std::string& text);

// What programs inline the library also exports.
#ifndef QUOR_TRACE_FNC_INLINE_
#define QUOR_TRACE_FNC_INLINE_ inline
#endif

/// Marks the entry into a scope and the exit from it in the trace, at level High: "==> " or "<== "
/// and the function's text.
///
/// The gate is tested at either end, so a change of level in between leaves one without the other.
/// The texts are not copied and must outlive the object. Throws nothing.
class __attribute__((visibility("default"))) TraceFnc {
public:
    /// Marks the entry. `function` is a __PRETTY_FUNCTION__, `file` a source file's name, `line` a
    /// __LINE__.
    TraceFnc(const char* function, const char* file, int line) noexcept;
    TraceFnc(const TraceFnc&) = delete;
    TraceFnc& operator=(const TraceFnc&) = delete;
    /// Marks the exit.
    virtual ~TraceFnc();

private:
    // Static: an object whose address goes nowhere is not even built while the gate is closed.
    static void Write(const char* arrow, const char* function, const char* file, int line) noexcept;

    const char* m_function;
    const char* m_file;
    int m_line;
};

// NOLINTBEGIN(misc-definitions-in-headers): inline but in the library
QUOR_TRACE_FNC_INLINE_ TraceFnc::TraceFnc(const char* function, const char* file, int line) noexcept
    : m_function(function), m_file(file), m_line(line) {
    if (TraceGateOpen(High)) {
        Write("==> ", m_function, m_file, m_line);
    }
}

QUOR_TRACE_FNC_INLINE_ TraceFnc::~TraceFnc() {
    if (TraceGateOpen(High)) {
        Write("<== ", m_function, m_file, m_line);
    }
}
// NOLINTEND(misc-definitions-in-headers)

}  // namespace quor

#endif
