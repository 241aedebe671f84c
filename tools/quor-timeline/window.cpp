#include "window.h"

#include <algorithm>
#include <stdexcept>

#include "line.h"

namespace timeline {
namespace {

std::int64_t MomentOrTimeOfDay(const std::string& text, std::int64_t otherwise) {
    if (text.empty()) {
        return otherwise;
    }
    const std::int64_t timeOfDay = TimeOfDay(text);
    const std::int64_t time = timeOfDay < 0 ? ParseMoment(text) : timeOfDay;
    if (time < 0) {
        throw std::invalid_argument(text + ": neither HH:MM:SS nor YYYY-MM-DD HH:MM:SS");
    }
    return time;
}

// The first moment from `start` on that has that time of day.
std::int64_t Fix(std::int64_t time, std::int64_t start) {
    if (time < 0 || time >= c_day) {
        return time;
    }
    const std::int64_t sameDay = start - start % c_day + time;
    return sameDay < start ? sameDay + c_day : sameDay;
}

}  // namespace

Window::Window(Sink& sink, const Limits& limits)
    : m_sink(sink),
      m_limits(limits),
      m_from(MomentOrTimeOfDay(limits.m_from, INT64_MIN)),
      m_to(MomentOrTimeOfDay(limits.m_to, INT64_MAX)) {}

void Window::BeginRun(const Run& run) {
    m_isInRun = m_limits.m_run == 0 || m_limits.m_run == run.m_number;
    if (!m_isInRun) {
        return;
    }
    if (!m_isFixed) {
        m_isFixed = true;
        m_from = Fix(m_from, run.m_begin.m_wall);
        m_to = Fix(m_to, std::max(run.m_begin.m_wall, m_from));
    }
    m_last = m_begin = m_end = run.m_begin;
    m_isOpen = IsWithin(m_last.m_wall);
    m_sink.BeginRun(run);
}

void Window::Enter(const Thread& thread, const Call& call) {
    if (!m_isInRun) {
        return;
    }
    MoveTo(call.m_begin);
    Stack& stack = m_stacks[thread];
    stack.m_thread = &thread;
    stack.m_frames.push_back({call, false});
    if (m_isOpen && m_limits.m_shortest == 0) {
        Show(stack);
    }
}

void Window::Leave(const Thread& thread, const Call& call) {
    if (!m_isInRun) {
        return;
    }
    MoveTo(call.m_end);
    Stack& stack = m_stacks[thread];
    if (m_isOpen) {
        Hide(stack, call.m_end, call.m_ending, call.m_cutDepth);
    }
    stack.m_frames.pop_back();
}

void Window::Tell(const Thread& thread, const Message& message) {
    if (!m_isInRun) {
        return;
    }
    MoveTo(message.m_moment);
    if (m_isOpen) {
        Show(m_stacks[thread]);
    }
    if (IsWithin(message.m_moment.m_wall)) {
        m_sink.Tell(thread, message);
    }
}

void Window::StepBack(const Moment& moment, std::int64_t by) {
    if (m_isInRun) {
        MoveTo(moment);
        if (m_isOpen) {
            m_sink.StepBack(moment, by);
        }
    }
}

void Window::Count(Fault_e fault, const Moment& moment) {
    if (m_isInRun && IsWithin(moment.m_wall)) {
        m_sink.Count(fault, moment);
    }
}

void Window::EndRun(const Run& run) {
    if (m_isInRun) {
        MoveTo(run.m_end);
        Run shown = run;
        shown.m_end = m_isOpen ? run.m_end : m_end;
        m_stacks.Clear();
        m_sink.EndRun(shown);
    }
    m_isInRun = false;
}

// Between two lines the wall clock either runs on, and reaches the limits in between, or is set
// back, in no time.
void Window::MoveTo(const Moment& now) {
    if (now.m_elapsed < m_last.m_elapsed) {
        return;  // of a message whose text was complete only later
    }
    const Moment last = m_last;
    m_last = now;
    const bool isWithin = IsWithin(now.m_wall);
    const bool isForward = last.m_wall <= now.m_wall;
    if (!m_isOpen && (isWithin || (isForward && last.m_wall < m_from && now.m_wall > m_to))) {
        Open(isForward ? Moment{m_from, now.m_elapsed - (now.m_wall - m_from)} : now);
    }
    if (m_isOpen && !isWithin) {
        Close(isForward ? Moment{m_to, now.m_elapsed - (now.m_wall - m_to)}
                        : Moment{last.m_wall, now.m_elapsed});
    }
}

void Window::Open(const Moment& begin) {
    m_isOpen = true;
    m_begin = begin;
    for (Stack& stack : m_stacks) {
        for (Frame& frame : stack.m_frames) {
            frame.m_isShown = false;
            frame.m_call.m_inner = 0;
            frame.m_call.m_begin = begin;
        }
    }
}

void Window::Close(const Moment& end) {
    for (Stack& stack : m_stacks) {
        const Stack kept = stack;
        while (!stack.m_frames.empty()) {
            Hide(stack, end, Call::eWindowEnded, 0);
            stack.m_frames.pop_back();
        }
        stack = kept;
    }
    m_isOpen = false;
    m_end = end;
}

// Outer calls first; those that were open when the window began appear when they are needed.
void Window::Show(Stack& stack) {
    const auto isShown = [](const Frame& frame) { return frame.m_isShown; };
    auto frame = std::find_if(stack.m_frames.rbegin(), stack.m_frames.rend(), isShown).base();
    for (; frame != stack.m_frames.end(); ++frame) {
        frame->m_isShown = true;
        m_sink.Enter(*stack.m_thread, frame->m_call);
    }
}

// Ends the innermost call, which stays on the stack.
void Window::Hide(Stack& stack, const Moment& end, Call::Ending_e ending, std::size_t cutDepth) {
    Call call = stack.m_frames.back().m_call;
    call.m_end = end;
    if (!stack.m_frames.back().m_isShown && call.Duration() < m_limits.m_shortest) {
        return;
    }
    Show(stack);
    call.m_inner = stack.m_frames.back().m_call.m_inner;
    call.m_ending = ending;
    call.m_cutDepth = cutDepth;
    if (stack.m_frames.size() > 1) {
        stack.m_frames[stack.m_frames.size() - 2].m_call.m_inner += call.Duration();
    }
    m_sink.Leave(*stack.m_thread, call);
}

}  // namespace timeline
