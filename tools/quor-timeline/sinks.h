#ifndef QUOR_TIMELINE_SINKS_H
#define QUOR_TIMELINE_SINKS_H

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "clock.h"
#include "message.h"
#include "names.h"

namespace timeline {

class Output;

/// A process that wrote the trace, from its banner to its last line or to its trailer.
struct Run {
    int m_number = 0;  // from 1
    std::string m_name;
    std::int64_t m_process = 0;  // 0: no banner told it
    Moment m_begin;
    Moment m_end;  // set when the run ends
    bool m_hasTrailer = false;
};

struct Thread {
    std::int64_t m_id = 0;
    std::size_t m_slot = 0;  // from 0 in each run, in the order of appearance
    std::string m_worker;    // the name of the worker it runs, once that is beyond doubt
};

/// What a sink keeps for each thread of a run.
template <typename State>
class ByThread {
public:
    State& operator[](const Thread& thread) {
        if (thread.m_slot >= m_states.size()) {
            m_states.resize(thread.m_slot + 1);
        }
        return m_states[thread.m_slot];
    }
    auto begin() { return m_states.begin(); }
    auto end() { return m_states.end(); }
    void Clear() { m_states.clear(); }

private:
    std::vector<State> m_states;
};

/// A line of the input; lines count from 1.
struct Position {
    const std::string* m_file = nullptr;
    std::int64_t m_line = 0;
};

/// One call of a function by one thread. The names live as long as the Calls that made it.
struct Call {
    enum Ending_e {
        eReturned,
        eCutOff,    // its exit is missing: it ends with a call around it that was left
        eRunEnded,  // its exit is missing: it ends with the run
        eWindowEnded
    };

    bool HasNoExit() const { return m_ending == eCutOff || m_ending == eRunEnded; }
    std::int64_t Duration() const { return m_end.m_elapsed - m_begin.m_elapsed; }
    std::int64_t Own() const { return Duration() - m_inner; }

    const Name* m_function = nullptr;
    const Name* m_site = nullptr;  // file and line of the entry
    Position m_position;           // of the entry
    Moment m_begin;
    Moment m_end;
    std::int64_t m_inner = 0;    // the part of it that passed in calls of its own
    std::size_t m_depth = 0;     // how many calls are around it
    std::size_t m_cutDepth = 0;  // HasNoExit(): from this depth on, calls of the stack have none
    Ending_e m_ending = eReturned;
    bool m_isRecursive = false;  // the same function is further out on the stack
};

/// Something in the trace that was not understood, or is not complete.
enum Fault_e { eStrayLine, eUnmatchedExit, eCutCall, eClockStep, c_faultKinds };

/// What is made of a trace. Calls of one thread nest: what was entered last leaves first. Elapsed
/// time never goes back within a run.
class Sink {
public:
    Sink() = default;
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    virtual ~Sink() = default;

    virtual void BeginRun(const Run& /*run*/) {}
    virtual void Enter(const Thread& /*thread*/, const Call& /*call*/) {}
    virtual void Leave(const Thread& /*thread*/, const Call& /*call*/) {}
    virtual void Tell(const Thread& /*thread*/, const Message& /*message*/) {}
    /// The clock was set back by so many nanoseconds.
    virtual void StepBack(const Moment& /*moment*/, std::int64_t /*by*/) {}
    virtual void Count(Fault_e fault, const Moment& /*moment*/) { ++m_faults[fault]; }
    /// All calls of the run have left.
    virtual void EndRun(const Run& /*run*/) {}
    /// The end of all files.
    virtual void Finish() {}

    std::array<std::int64_t, c_faultKinds> m_faults{};
};

/// How the outputs show what they show.
struct Style {
    enum Sort_e { eOwn, eTotal, eCalls, eMean, eLongest };

    NameFnc m_name = ShortName;
    Sort_e m_sort = eOwn;
    std::size_t m_top = 20;  // rows of a table; 0: all
    std::size_t m_last = 0;  // calls of each thread; 0: all
    bool m_hasColumns = false;
    bool m_hasColors = false;
    std::string m_host;
};

// Each writes to `output`, which must outlive it.

/// Tables for the terminal, for each run: what is stuck, what is slow, what was swallowed.
std::unique_ptr<Sink> MakeSummary(Output& output, const Style& style);
/// What had not come to its end when a run ended.
std::unique_ptr<Sink> MakeStuck(Output& output, const Style& style);
/// The calls in the order of time, indented, with messages and exceptions in place.
std::unique_ptr<Sink> MakeReplay(Output& output, const Style& style);
/// A line "thread;outer;inner NANOSECONDS" per stack, with its own time, for flame graphs.
std::unique_ptr<Sink> MakeFolded(Output& output, const Style& style);
/// Chrome trace events, as JSON.
std::unique_ptr<Sink> MakeChrome(Output& output, const Style& style);
/// A profile per thread, as JSON for speedscope. The events wait in a temporary file until all
/// threads are known. Throws std::system_error.
std::unique_ptr<Sink> MakeSpeedscope(Output& output, const Style& style);
/// One JSON object per line: calls, messages and exceptions, for database engines.
std::unique_ptr<Sink> MakeJsonLines(Output& output, const Style& style);

}  // namespace timeline

#endif
