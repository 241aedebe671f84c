#include "waits.h"

#include <algorithm>

#include "line.h"
#include "text.h"
#include "workers.h"

namespace timeline {
namespace {

enum Rank_e { eStop, eWait, eGivenUp };

// A controller starts its cancel function again after each of its sleeps, of 100 ms if nobody set
// them otherwise; threads that are merely started one after the other follow faster.
constexpr std::int64_t c_shortestSleep = c_second / 100;
constexpr int c_manyCancels = 3;

constexpr std::string_view c_barrier = "in a Synchronizer for its counter to become 0";

bool EndsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// "... state changed from  A into B while waiting to exit from C": the wait goes on while B is C;
// one "for entering into C", while it is not.
bool GoesOn(std::string_view text) {
    const std::size_t into = text.find(" into ");
    const std::size_t wanted = text.find_last_of(' ');
    if (into == std::string_view::npos || wanted <= into + 6) {
        return false;
    }
    const std::string_view changed = text.substr(into + 6, text.find(' ', into + 6) - into - 6);
    const bool isWanted = changed == text.substr(wanted + 1);
    return StartsWith(text, "WaitOnStateExit") ? isWanted : !isWanted;
}

std::string ThreadText(std::int64_t thread) {
    return "thread " + std::to_string(thread);
}

}  // namespace

void Waits::Enter(const Thread& thread, const Call& call) {
    State& state = m_threads[thread];
    state.m_what.clear();
    state.m_hasSpoken = true;
    if (!thread.m_worker.empty() && call.m_function->m_text == c_workerBody) {
        m_workers[thread.m_worker].m_thread = thread.m_id;
    }
}

void Waits::Leave(const Thread& thread, const Call& call) {
    if (call.m_ending != Call::eReturned) {
        return;
    }
    m_threads[thread].m_what.clear();
    if (!thread.m_worker.empty() && call.m_function->m_text == c_workerBody) {
        EndWorker(thread.m_worker);
    }
}

void Waits::Tell(const Thread& thread, const Message& message) {
    const std::string_view text = message.m_text;
    State& state = m_threads[thread];
    state.m_id = thread.m_id;
    TakeSeries(state, message);
    TakeWorker(thread, message);
    if (StartsWith(text, "Increment: after") || StartsWith(text, "Decrement: after")) {
        m_lastCount = "; the last one traced was " + OneLine(text.substr(16)) + ", by " +
                      ThreadText(thread.m_id);
    }
    if (StartsWith(text, "waiting for condition: iteration:")) {
        Wait(state, message, c_barrier);
    } else if (StartsWith(text, "WaitOnState") && GoesOn(text)) {
        Wait(state, message,
             "for a ThreadController " + std::string(text.substr(text.rfind(" to ") + 1)));
    } else if (StartsWith(text, "waiting finished:")) {
        state.m_isPaused = true;  // one that waits again says so at once
    } else {
        if (text == "waiting failed:") {
            GiveUp(thread, state.m_what.empty() ? message.m_moment : state.m_since,
                   message.m_moment, ", waiting " + std::string(c_barrier) + m_lastCount);
        } else if (EndsWith(text, " state in a reasonable time.")) {
            GiveUp(thread, message.m_moment, message.m_moment, ": " + OneLine(text));
        }
        state.m_what.clear();
    }
}

std::vector<Waits::Finding> Waits::EndRun() {
    for (const auto& [worker, stop] : m_stopping) {
        const std::int64_t runner = m_workers[worker].m_thread;
        m_findings.push_back(
            {eStop, runner, stop.m_since,
             "worker " + Printable(worker) + (runner >= 0 ? ", " + ThreadText(runner) + "," : "") +
                 " was asked to stop by " + ThreadText(stop.m_asker) + ", and not destroyed"});
    }
    for (const State& state : m_threads) {
        if (!state.m_what.empty() && !state.m_isPaused) {
            m_findings.push_back({eWait, state.m_id, state.m_since,
                                  ThreadText(state.m_id) + " waits " + state.m_what +
                                      (state.m_what == c_barrier ? m_lastCount : "")});
        }
    }
    for (const auto& [site, series] : m_series) {
        if (series.m_count >= c_manyCancels && series.m_shortestGap >= c_shortestSleep &&
            series.m_longestGap <= 2 * series.m_shortestGap) {
            m_findings.push_back(
                {eStop, -1, series.m_begin,
                 std::to_string(series.m_count) + " new threads, one every " +
                     DurationText(series.m_longestGap) + " or so, said nothing but \"" +
                     OneLine(series.m_text) +
                     "\": so does a ThreadController that cancels its loop in vain"});
        }
    }
    std::stable_sort(m_findings.begin(), m_findings.end(),
                     [](const Finding& left, const Finding& right) {
                         return std::make_pair(left.m_rank, left.m_since.m_elapsed) <
                                std::make_pair(right.m_rank, right.m_since.m_elapsed);
                     });
    std::vector<Finding> findings = std::move(m_findings);
    *this = Waits();
    return findings;
}

void Waits::TakeWorker(const Thread& thread, const Message& message) {
    const std::string_view asked = WorkerOf(message.m_text, "REQUEST TO STOP");
    const std::string_view stopped = WorkerOf(message.m_text, "STOPPED");
    const std::string_view gone = WorkerOf(message.m_text, "DESTROYED");
    const std::string_view created = WorkerOf(message.m_text, "CREATED");
    if (!created.empty()) {
        m_workers[std::string(created)] = Worker();
    } else if (!asked.empty() && !m_workers[std::string(asked)].m_hasEnded) {
        m_stopping.emplace(asked, Stop{message.m_moment, thread.m_id});
    } else if (!stopped.empty() || !gone.empty()) {
        EndWorker(std::string(gone.empty() ? stopped : gone));
    }
}

void Waits::EndWorker(const std::string& worker) {
    m_workers[worker].m_hasEnded = true;
    m_stopping.erase(worker);
}

void Waits::Wait(State& state, const Message& message, std::string_view what) {
    if (state.m_what.empty()) {
        state.m_since = message.m_moment;
    }
    state.m_what = what;
    state.m_isPaused = false;
}

void Waits::GiveUp(const Thread& thread, const Moment& since, const Moment& now,
                   const std::string& what) {
    m_findings.push_back(
        {eGivenUp, thread.m_id, since,
         ThreadText(thread.m_id) + " gave up at " + TimeOfDayText(now.m_wall) + what});
}

void Waits::TakeSeries(State& state, const Message& message) {
    if (state.m_hasSpoken) {
        m_series.erase(state.m_soleSite);
        state.m_soleSite = nullptr;
        return;
    }
    state.m_hasSpoken = true;
    state.m_soleSite = message.m_site;
    Series& series = m_series[message.m_site];
    if (series.m_count++ == 0) {
        series.m_begin = message.m_moment;
    } else {
        const std::int64_t gap = message.m_moment.m_elapsed - series.m_last.m_elapsed;
        series.m_shortestGap = std::min(series.m_shortestGap, gap);
        series.m_longestGap = std::max(series.m_longestGap, gap);
    }
    series.m_last = message.m_moment;
    series.m_text = message.m_text;
}

}  // namespace timeline
