#ifndef QUOR_TIMELINE_WAITS_H
#define QUOR_TIMELINE_WAITS_H

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "sinks.h"

namespace timeline {

/// Finds in the library's own messages what waits, stops and joins never came to their end: workers
/// that were asked to stop and not destroyed, waits of a ThreadController or a Synchronizer that
/// are the last thing their threads tell of, waits that were given up, and a controller that
/// cancels again and again. A waiting thread may have gone on without a message.
class Waits {
public:
    struct Finding {
        int m_rank;             // smaller is worse
        std::int64_t m_thread;  // that is stuck; -1: unknown
        Moment m_since;
        std::string m_text;
    };

    void Enter(const Thread& thread, const Call& call);
    void Leave(const Thread& thread, const Call& call);
    void Tell(const Thread& thread, const Message& message);
    std::vector<Finding> EndRun();

private:
    struct State {
        std::int64_t m_id = 0;
        Moment m_since;
        std::string m_what;                // that is waited for; empty: nothing
        bool m_isPaused = false;           // an iteration has ended: it may have come
        const Name* m_soleSite = nullptr;  // of its only message
        bool m_hasSpoken = false;
    };
    struct Stop {
        Moment m_since;
        std::int64_t m_asker;
    };
    struct Worker {
        std::int64_t m_thread = -1;  // that runs it; -1: unknown
        bool m_hasEnded = false;     // its thread has left its body
    };
    // Threads that said one thing only, all at one site, as a cancel function's threads do.
    struct Series {
        int m_count = 0;
        Moment m_begin;
        Moment m_last;
        std::int64_t m_shortestGap = INT64_MAX;
        std::int64_t m_longestGap = 0;
        std::string m_text;
    };

    void TakeWorker(const Thread& thread, const Message& message);
    void EndWorker(const std::string& worker);
    static void Wait(State& state, const Message& message, std::string_view what);
    void GiveUp(const Thread& thread, const Moment& since, const Moment& now,
                const std::string& what);
    void TakeSeries(State& state, const Message& message);

    std::map<std::string, Stop, std::less<>> m_stopping;
    std::map<std::string, Worker, std::less<>> m_workers;
    ByThread<State> m_threads;
    std::map<const Name*, Series> m_series;
    std::string m_lastCount;
    std::vector<Finding> m_findings;
};

}  // namespace timeline

#endif
