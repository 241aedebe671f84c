#include "calls.h"

#include <algorithm>
#include <cstdlib>

namespace timeline {
namespace {

// So many calls without exit may lie in the one that an exit ends, and so far out recursion is
// recognised. Searched further, a file with many entries would take hours.
constexpr std::size_t c_reach = 1000;

// Of a message of many lines.
constexpr std::size_t c_longestMessage = 1 << 16;

// A rotation writes the trailer and the next banner at once; a restart takes longer.
constexpr std::int64_t c_longestGap = c_second;

}  // namespace

void Calls::Take(const Line& line, const Position& position) {
    if (line.m_kind == Line::eMore) {
        if (m_pending.m_thread != nullptr && m_pending.m_text.size() < c_longestMessage) {
            (m_pending.m_text += '\n') += line.m_text;
        }
        return;
    }
    if (line.m_isGlued || line.m_kind == Line::eStray) {
        m_sink.Count(eStrayLine, m_clock.Now());
    }
    if (line.IsOfThread()) {
        TakeOfThread(line, position);
    } else {
        TakeFact(line);
    }
}

void Calls::TakeFact(const Line& line) {
    if (line.m_kind == Line::eBanner) {
        TellPending();
        m_banner = Banner();
    } else if (line.m_kind == Line::eEnd && m_isRunning) {
        TellPending();
        m_clock.TakeDated(line.m_moment);
        m_run.m_hasTrailer = true;
    } else if (line.m_kind == Line::eStart && m_banner) {
        m_banner->m_start = line.m_moment;
    } else if (line.m_kind == Line::eName && m_banner) {
        m_banner->m_name = line.m_text;
    } else if (line.m_kind == Line::eProcess && m_banner) {
        const Banner banner = *m_banner;
        m_banner.reset();
        const bool goesOn = m_isRunning && m_run.m_hasTrailer &&
                            m_run.m_process == line.m_process &&
                            std::abs(banner.m_start - m_clock.Now().m_wall) <= c_longestGap;
        if (goesOn) {
            m_run.m_hasTrailer = false;
        } else {
            EndRun();
            m_clock.Set(banner.m_start < 0 ? m_clock.Now().m_wall : banner.m_start);
            BeginRun(banner.m_name, line.m_process);
        }
    }
}

void Calls::TakeOfThread(const Line& line, const Position& position) {
    TellPending();
    if (m_banner) {  // one that names no process
        EndRun();
        m_clock.Set(m_banner->m_start < 0 ? m_clock.Now().m_wall : m_banner->m_start);
        m_banner.reset();
    }
    const Moment now = MoveTo(line);
    if (!m_isRunning) {
        BeginRun("", 0);
    }
    const auto [entry, isNew] = m_threads.try_emplace(line.m_thread);
    ThreadState& state = entry->second;
    if (isNew) {
        state.m_thread.m_id = line.m_thread;
        state.m_thread.m_slot = m_threads.size() - 1;
    }
    if (line.m_kind == Line::eMessage) {
        m_pending.m_thread = &state;
        m_pending.m_moment = now;
        m_pending.m_site = m_names.Get(line.m_site);
        m_pending.m_text = line.m_text;
        return;
    }
    TellThrown(state, {});
    if (line.m_kind == Line::eEnter) {
        Enter(state, line, position);
    } else {
        Exit(state, line);
    }
}

void Calls::Pass(const Line& line) {
    TellPending();
    if (line.IsOfThread()) {
        MoveTo(line);
    }
}

void Calls::Finish(std::int64_t now) {
    TellPending();
    if (m_isRunning && !m_run.m_hasTrailer && now > m_clock.Now().m_wall) {
        m_clock.TakeDated(now);
    }
    EndRun();
    m_sink.Finish();
}

void Calls::BeginRun(const std::string& name, std::int64_t process) {
    const int number = m_run.m_number + 1;
    m_run = Run();
    m_run.m_number = number;
    m_run.m_name = name;
    m_run.m_process = process;
    m_run.m_begin = m_clock.Now();
    m_isRunning = true;
    m_isDated = true;
    m_sink.BeginRun(m_run);
}

void Calls::EndRun() {
    if (!m_isRunning) {
        return;
    }
    for (auto& [id, state] : m_threads) {
        TellThrown(state, {});
        while (!state.m_stack.empty()) {
            Pop(state, Call::eRunEnded, 0);
        }
    }
    m_run.m_end = m_clock.Now();
    m_sink.EndRun(m_run);
    m_threads.clear();
    m_workers = Workers();
    m_isRunning = false;
}

Moment Calls::MoveTo(const Line& line) {
    if (!m_isDated) {
        m_clock.Set(m_firstDay + line.m_timeOfDay);
        m_isDated = true;
    }
    m_hasSeenThreads = true;
    m_hasSeenCalls = m_hasSeenCalls || line.m_kind == Line::eEnter;
    const Moment now = m_clock.Take(line.m_timeOfDay);
    if (m_isRunning && m_clock.LastStepBack() > 0) {
        m_sink.Count(eClockStep, now);
        m_sink.StepBack(now, m_clock.LastStepBack());
    }
    m_run.m_hasTrailer = false;
    return now;
}

void Calls::Enter(ThreadState& state, const Line& line, const Position& position) {
    Call call;
    call.m_function = m_names.Get(line.m_text);
    call.m_site = m_names.Get(line.m_site);
    call.m_position = position;
    call.m_begin = m_clock.Now();
    call.m_depth = state.m_stack.size();
    const auto end = state.m_stack.rbegin() +
                     static_cast<std::ptrdiff_t>(std::min(state.m_stack.size(), c_reach));
    call.m_isRecursive = std::any_of(state.m_stack.rbegin(), end, [&call](const Call& outer) {
        return outer.m_function == call.m_function;
    });
    m_workers.Enter(state.m_thread, call);
    state.m_stack.push_back(call);
    m_sink.Enter(state.m_thread, call);
}

void Calls::Exit(ThreadState& state, const Line& line) {
    std::vector<Call>& stack = state.m_stack;
    // The call itself lies behind all those in its reach.
    const auto end =
        stack.rbegin() + static_cast<std::ptrdiff_t>(std::min(stack.size(), c_reach + 1));
    const auto match = std::find_if(stack.rbegin(), end, [&line](const Call& call) {
        return call.m_function->m_text == line.m_text && call.m_site->m_text == line.m_site;
    });
    if (match == end) {
        m_sink.Count(eUnmatchedExit, m_clock.Now());
        return;
    }
    const auto depth = static_cast<std::size_t>(stack.rend() - match) - 1;
    while (stack.size() > depth + 1) {
        Pop(state, Call::eCutOff, depth + 1);
    }
    Pop(state, Call::eReturned, 0);
}

void Calls::Pop(ThreadState& state, Call::Ending_e ending, std::size_t cutDepth) {
    std::vector<Call>& stack = state.m_stack;
    Call call = stack.back();
    stack.pop_back();
    call.m_end = m_clock.Now();
    call.m_ending = ending;
    call.m_cutDepth = cutDepth;
    if (!stack.empty()) {
        stack.back().m_inner += call.Duration();
    }
    m_sink.Leave(state.m_thread, call);
    if (ending != Call::eReturned) {
        m_sink.Count(eCutCall, call.m_end);
    }
}

void Calls::TellPending() {
    if (m_pending.m_thread == nullptr) {
        return;
    }
    ThreadState& state = *m_pending.m_thread;
    m_pending.m_thread = nullptr;
    std::string& text = m_pending.m_text;
    text.resize(text.find_last_not_of('\n') + 1);  // the trailer begins with an empty line
    if (state.m_thrown) {
        const std::string_view place = FindPlace(text);
        TellThrown(state, place);
        if (!place.empty() || StartsWith(text, "0. ")) {
            return;
        }
    }
    Message message;
    message.m_moment = m_pending.m_moment;
    message.m_site = m_pending.m_site;
    message.m_kind = TakeKind(m_pending.m_site->m_text, text);
    message.m_text = text;
    if (message.m_kind == Message::eThrown) {
        state.m_thrownText = text;
        state.m_thrown = message;
        return;
    }
    m_workers.Take(state.m_thread, message);
    m_sink.Tell(state.m_thread, message);
}

void Calls::TellThrown(ThreadState& state, std::string_view place) {
    if (state.m_thrown) {
        state.m_thrown->m_text = state.m_thrownText;
        state.m_thrown->m_place = place;
        m_sink.Tell(state.m_thread, *state.m_thrown);
        state.m_thrown.reset();
    }
}

}  // namespace timeline
