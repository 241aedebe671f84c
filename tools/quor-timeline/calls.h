#ifndef QUOR_TIMELINE_CALLS_H
#define QUOR_TIMELINE_CALLS_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "line.h"

namespace timeline {

/// One call of a function by one thread. Times are nanoseconds since 1970, as if local time were
/// UTC.
struct Call {
    const std::string* m_function = nullptr;  // as long as the Calls that made it
    const std::string* m_site = nullptr;      // file and line of the entry; the same
    std::int64_t m_begin = 0;
    std::int64_t m_end = 0;
    std::int64_t m_inner = 0;  // the part of it that passed in calls of its own
    bool m_cut = false;        // its exit is missing: it ends with what it lies in, or with the run
};

/// What is made of the calls. Calls of one thread nest: what was entered last leaves first.
class Sink {
public:
    Sink() = default;
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    virtual ~Sink() = default;

    /// A new process: all calls of the one before have left.
    virtual void Run(long /*process*/) {}
    virtual void Enter(long /*thread*/, const Call& /*call*/) {}
    virtual void Leave(long /*thread*/, const Call& /*call*/) {}
    virtual void Thrown(long /*thread*/, std::int64_t /*time*/, std::string_view /*place*/) {}
    /// The end of all files.
    virtual void Finish() {}
};

/// Pairs entries and exits, and hands them to a sink in the order of time.
///
/// Pairs match by thread, text and line, also where the level was changed in the middle of a call:
/// an exit without its entry is dropped, an entry without its exit ends with the call around it, or
/// with the run. The day is counted on at a step back of more than twelve hours; a smaller step
/// back is one of the clock, during which no time passes. Needs memory for the open calls and for
/// the names, not for the file.
class Calls {
public:
    /// `sink` must outlive the object.
    explicit Calls(Sink& sink) : m_sink(sink) {}

    void Take(const Line& line);
    /// Ends the run, at the end of a file too.
    void EndRun();

    unsigned long m_brokenLines = 0;
    unsigned long m_unmatchedExits = 0;
    unsigned long m_cutCalls = 0;
    unsigned long m_clockSteps = 0;

private:
    using Stack = std::vector<Call>;

    std::int64_t Now(std::int64_t timeOfDay);
    void Enter(const Line& line, std::int64_t now);
    void Exit(const Line& line, std::int64_t now);
    void Pop(long thread, Stack& stack, std::int64_t now, bool cut);
    const std::string* Name(std::string_view text);

    Sink& m_sink;
    std::map<long, Stack> m_stacks;
    // Keys are the texts that the values own, so that a name is looked up without a copy.
    std::unordered_map<std::string_view, std::unique_ptr<const std::string>> m_names;
    std::int64_t m_midnight = 0;        // of the current day
    std::int64_t m_lastTimeOfDay = -1;  // none yet in this run
    std::int64_t m_skipped = 0;         // by which the clock was set back
    std::int64_t m_now = 0;
};

}  // namespace timeline

#endif
