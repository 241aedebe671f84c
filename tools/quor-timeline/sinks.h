#ifndef QUOR_TIMELINE_SINKS_H
#define QUOR_TIMELINE_SINKS_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace timeline {

class Output;

/// One call of a function by one thread. Times are nanoseconds since 1970, as if local time were
/// UTC.
struct Call {
    const std::string* m_function = nullptr;  // as long as the Calls that made it, and one for
    const std::string* m_site = nullptr;      // each text; the site is file and line of the entry
    std::int64_t m_begin = 0;
    std::int64_t m_end = 0;
    std::int64_t m_inner = 0;  // the part of it that passed in calls of its own
    bool m_cut = false;        // its exit is missing: it ends with what it lies in, or with the run
};

/// What a trace says of the process that wrote it.
struct Process {
    std::string m_name;
    std::int64_t m_id = 0;
    std::int64_t m_start = 0;
};

/// What is made of the calls. Calls of one thread nest: what was entered last leaves first. In a
/// run, time does not go back.
class Sink {
public:
    Sink() = default;
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    virtual ~Sink() = default;

    virtual void Run(const Process& /*process*/) {}
    virtual void Enter(std::int64_t /*thread*/, const Call& /*call*/) {}
    virtual void Leave(std::int64_t /*thread*/, const Call& /*call*/) {}
    virtual void Thrown(std::int64_t /*thread*/, std::int64_t /*time*/,
                        std::string_view /*place*/) {}
    /// A line that is none of these.
    virtual void Record(std::int64_t /*thread*/, std::int64_t /*time*/, std::string_view /*text*/) {
    }
    /// All calls have left.
    virtual void EndRun() {}
    /// The end of all files.
    virtual void Finish() {}
};

// Each writes to `output`, which must outlive it.

/// Tables for the terminal: per thread its functions with calls, total, own, shortest, longest and
/// mean time; the places of thrown exceptions; what had not come to its end.
std::unique_ptr<Sink> MakeSummary(Output& output);
/// A line "thread;outer;inner NANOSECONDS" per stack, with its own time, for flame graphs.
std::unique_ptr<Sink> MakeFolded(Output& output);
/// Chrome trace events, as JSON: for Perfetto and chrome://tracing.
std::unique_ptr<Sink> MakeChrome(Output& output);
/// A profile per thread, as JSON for speedscope. The events wait in a temporary file until all
/// threads are known. Throws std::system_error.
std::unique_ptr<Sink> MakeSpeedscope(Output& output);

}  // namespace timeline

#endif
