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
#include "sinks.h"

namespace timeline {

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
    /// Takes of the line only what it says about the time.
    void Pass(const Line& line);
    /// Ends the run, at the end of a file too.
    void EndRun();

    unsigned long m_strayLines = 0;
    unsigned long m_unmatchedExits = 0;
    unsigned long m_cutCalls = 0;
    unsigned long m_clockSteps = 0;

private:
    using Stack = std::vector<Call>;

    void TakeFact(const Line& line);
    std::int64_t Now(std::int64_t timeOfDay);
    void Enter(const Line& line, std::int64_t now);
    void Exit(const Line& line, std::int64_t now);
    void Pop(std::int64_t thread, Stack& stack, std::int64_t now, bool cut);
    const std::string* Name(std::string_view text);

    Sink& m_sink;
    Process m_process;        // what its block has told so far
    bool m_isAtBegin = true;  // no entry yet in this run: only then its block counts
    std::map<std::int64_t, Stack> m_stacks;
    // Keys are the texts that the values own, so that a name is looked up without a copy.
    std::unordered_map<std::string_view, std::unique_ptr<const std::string>> m_names;
    std::int64_t m_midnight = 0;        // of the current day, and what the clock was set back by
    std::int64_t m_lastTimeOfDay = -1;  // none yet in this run
    std::int64_t m_now = 0;
};

}  // namespace timeline

#endif
