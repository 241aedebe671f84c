#include "window.h"

#include <algorithm>
#include <stdexcept>

#include "line.h"

namespace timeline {
namespace {

std::int64_t MomentOrTimeOfDay(const std::string& text) {
    const std::int64_t timeOfDay = TimeOfDay(text);
    const std::int64_t time = timeOfDay < 0 ? Moment(text) : timeOfDay;
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

Window::Window(Sink& sink, const std::string& from, const std::string& to)
    : m_sink(sink),
      m_from(from.empty() ? INT64_MIN : MomentOrTimeOfDay(from)),
      m_to(to.empty() ? INT64_MAX : MomentOrTimeOfDay(to)) {}

void Window::Run(const Process& process) {
    Begin(process.m_start);
    m_sink.Run(process);
}

void Window::Enter(std::int64_t thread, const Call& call) {
    Begin(call.m_begin);
    Stack& stack = m_stacks[thread];
    stack.push_back({call, false});
    if (IsWithin(call.m_begin)) {
        Show(thread, stack);
    }
}

void Window::Leave(std::int64_t thread, const Call& call) {
    Stack& stack = m_stacks[thread];
    if (call.m_begin <= m_to && call.m_end >= m_from) {
        Show(thread, stack);
        Call shown = stack.back().m_call;
        shown.m_end = std::min(call.m_end, m_to);
        shown.m_cut = call.m_cut;
        if (stack.size() > 1) {
            stack[stack.size() - 2].m_call.m_inner += shown.m_end - shown.m_begin;
        }
        m_sink.Leave(thread, shown);
    }
    stack.pop_back();
}

void Window::Thrown(std::int64_t thread, std::int64_t time, std::string_view place) {
    Begin(time);
    if (IsWithin(time)) {
        m_sink.Thrown(thread, time, place);
    }
}

void Window::Record(std::int64_t thread, std::int64_t time, std::string_view text) {
    Begin(time);
    if (IsWithin(time)) {
        m_sink.Record(thread, time, text);
    }
}

void Window::EndRun() {
    m_stacks.clear();
    m_sink.EndRun();
}

void Window::Begin(std::int64_t time) {
    if (!m_isFixed) {
        m_isFixed = true;
        m_from = Fix(m_from, time);
        m_to = Fix(m_to, std::max(time, m_from));
    }
}

bool Window::IsWithin(std::int64_t time) {
    return time >= m_from && time <= m_to;
}

// The calls that were open when the window began appear when they are first needed.
void Window::Show(std::int64_t thread, Stack& stack) {
    const auto isShown = [](const Frame& frame) { return frame.m_isShown; };
    auto frame = std::find_if(stack.rbegin(), stack.rend(), isShown).base();
    for (; frame != stack.end(); ++frame) {
        frame->m_isShown = true;
        frame->m_call.m_begin = std::max(frame->m_call.m_begin, m_from);
        m_sink.Enter(thread, frame->m_call);
    }
}

}  // namespace timeline
