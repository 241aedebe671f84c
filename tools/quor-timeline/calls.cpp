#include "calls.h"

#include <algorithm>

namespace timeline {
namespace {

// No clock of a trace gets there; a file that is none must not make times overflow.
constexpr std::int64_t c_endOfTime = 100'000 * c_day;

// So many calls without exit may lie in the one that an exit ends. Searched further, a file with
// many entries and many exits of others would take hours.
constexpr std::ptrdiff_t c_reach = 1000;

}  // namespace

void Calls::Take(const Line& line) {
    switch (line.m_kind) {
        case Line::eBanner:
            EndRun();
            m_process = Process();
            break;
        case Line::eStart:
        case Line::eName:
        case Line::eProcess:
            if (m_isAtBegin) {
                TakeFact(line);
            }
            break;
        case Line::eEnter:
            Enter(line, Now(line.m_time));
            break;
        case Line::eExit:
            Exit(line, Now(line.m_time));
            break;
        case Line::eThrown:
            m_sink.Thrown(line.m_thread, Now(line.m_time), line.m_text);
            break;
        case Line::eRecord:
            m_sink.Record(line.m_thread, Now(line.m_time), line.m_text);
            break;
        case Line::eStray:
            ++m_strayLines;
            break;
        case Line::eInside:
            break;
    }
}

void Calls::TakeFact(const Line& line) {
    if (line.m_kind == Line::eStart) {
        m_midnight = line.m_time - line.m_time % c_day;
        m_lastTimeOfDay = line.m_time % c_day;
        m_now = line.m_time;
    } else if (line.m_kind == Line::eName) {
        m_process.m_name = line.m_text;
    } else {
        m_process.m_id = line.m_thread;
        m_process.m_start = m_now;
        m_sink.Run(m_process);
    }
}

void Calls::Pass(const Line& line) {
    if (line.IsOfThread()) {
        Now(line.m_time);
    }
}

void Calls::EndRun() {
    for (auto& [thread, stack] : m_stacks) {
        while (!stack.empty()) {
            Pop(thread, stack, m_now, true);
        }
    }
    m_stacks.clear();
    m_sink.EndRun();
    m_lastTimeOfDay = -1;
    m_isAtBegin = true;
}

std::int64_t Calls::Now(std::int64_t timeOfDay) {
    const std::int64_t back = m_lastTimeOfDay - timeOfDay;
    if (m_lastTimeOfDay >= 0 && back > c_day / 2) {
        m_midnight += c_day;
    } else if (m_lastTimeOfDay >= 0 && back > 0) {
        ++m_clockSteps;
        m_midnight += back;
    }
    m_midnight = std::min(m_midnight, c_endOfTime);
    m_lastTimeOfDay = timeOfDay;
    m_isAtBegin = false;
    m_now = std::max(m_now, m_midnight + timeOfDay);
    return m_now;
}

void Calls::Enter(const Line& line, std::int64_t now) {
    Call call;
    call.m_function = Name(line.m_text);
    call.m_site = Name(line.m_site);
    call.m_begin = now;
    m_stacks[line.m_thread].push_back(call);
    m_sink.Enter(line.m_thread, call);
}

void Calls::Exit(const Line& line, std::int64_t now) {
    Stack& stack = m_stacks[line.m_thread];
    const auto end =
        stack.rbegin() + std::min<std::ptrdiff_t>(stack.rend() - stack.rbegin(), c_reach);
    const auto match = std::find_if(stack.rbegin(), end, [&line](const Call& call) {
        return *call.m_function == line.m_text && *call.m_site == line.m_site;
    });
    if (match == end) {
        ++m_unmatchedExits;
        return;
    }
    for (auto deeper = match - stack.rbegin(); deeper > 0; --deeper) {
        Pop(line.m_thread, stack, now, true);
    }
    Pop(line.m_thread, stack, now, false);
}

void Calls::Pop(std::int64_t thread, Stack& stack, std::int64_t now, bool cut) {
    Call call = stack.back();
    stack.pop_back();
    call.m_end = now;
    call.m_cut = cut;
    m_cutCalls += cut ? 1 : 0;
    if (!stack.empty()) {
        stack.back().m_inner += call.m_end - call.m_begin;
    }
    m_sink.Leave(thread, call);
}

const std::string* Calls::Name(std::string_view text) {
    const auto found = m_names.find(text);
    if (found != m_names.end()) {
        return found->second.get();
    }
    auto owned = std::make_unique<const std::string>(text);
    const std::string* const name = owned.get();
    m_names.emplace(*name, std::move(owned));
    return name;
}

}  // namespace timeline
