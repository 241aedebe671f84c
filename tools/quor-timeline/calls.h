#ifndef QUOR_TIMELINE_CALLS_H
#define QUOR_TIMELINE_CALLS_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "clock.h"
#include "line.h"
#include "names.h"
#include "sinks.h"
#include "workers.h"

namespace timeline {

/// Pairs entries and exits, gathers messages of several lines, and hands all of it to a sink.
///
/// Pairs match by thread, text and line, also where the level was changed in the middle of a call:
/// an exit without its entry is dropped, an entry without its exit ends with the call around it, or
/// with the run. A run goes on where a banner of the same process follows a trailer within a
/// second, as after a rotation. Needs memory for the open calls, the threads of a run and the
/// names, not for the file.
class Calls {
public:
    /// `sink` must outlive the object. `firstDay` dates lines before the first banner.
    Calls(Sink& sink, std::int64_t firstDay) : m_sink(sink), m_firstDay(firstDay) {}

    void Take(const Line& line, const Position& position);
    /// Takes of the line only what it says about the time.
    void Pass(const Line& line);
    /// Ends the run at the end of all files; at `now`, nanoseconds since 1970 as if local time were
    /// UTC, when that is later than the last line and the trace is still being written.
    void Finish(std::int64_t now = 0);

    /// There were messages, but no entry of a function, passed or taken.
    bool IsBelowHigh() const { return m_hasSeenThreads && !m_hasSeenCalls; }

private:
    struct ThreadState {
        Thread m_thread;
        std::vector<Call> m_stack;
        std::optional<Message> m_thrown;  // its place is yet to come
        std::string m_thrownText;         // of m_thrown
    };
    struct Pending {
        ThreadState* m_thread = nullptr;  // none: no message is gathered
        Moment m_moment;
        const Name* m_site = nullptr;
        std::string m_text;
    };
    struct Banner {
        std::int64_t m_start = -1;
        std::string m_name;
    };

    void TakeFact(const Line& line);
    void TakeOfThread(const Line& line, const Position& position);
    void BeginRun(const std::string& name, std::int64_t process);
    void EndRun();
    Moment MoveTo(const Line& line);
    void Enter(ThreadState& state, const Line& line, const Position& position);
    void Exit(ThreadState& state, const Line& line);
    void Pop(ThreadState& state, Call::Ending_e ending, std::size_t cutDepth);
    void TellPending();
    void TellThrown(ThreadState& state, std::string_view place);

    Sink& m_sink;
    const std::int64_t m_firstDay;
    bool m_isDated = false;  // the clock was set
    Clock m_clock;
    Run m_run;
    bool m_isRunning = false;
    bool m_hasSeenThreads = false;
    bool m_hasSeenCalls = false;
    std::optional<Banner> m_banner;  // what is known of the one that is being read
    std::map<std::int64_t, ThreadState> m_threads;
    Pending m_pending;
    Workers m_workers;
    Names m_names;
};

}  // namespace timeline

#endif
