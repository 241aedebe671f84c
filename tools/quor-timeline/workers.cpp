#include "workers.h"

#include <algorithm>

#include "line.h"
#include "sinks.h"

namespace timeline {

void Workers::Enter(Thread& thread, const Call& call) {
    const bool isBody = call.m_function->m_text == c_workerBody;
    if (!isBody && call.m_depth > 0) {
        return;
    }
    thread.m_worker.clear();  // the kernel uses ids of threads again
    if (isBody && m_started.size() == 1) {
        thread.m_worker = m_started.front();
        m_started.clear();
    } else if (isBody && !m_started.empty() && ++m_nameless == m_started.size()) {
        m_started.clear();
        m_nameless = 0;
    }
}

void Workers::Take(Thread& thread, const Message& message) {
    const std::string_view started = WorkerOf(message.m_text, "START");
    const std::string_view stopped = WorkerOf(message.m_text, "STOPPED");
    const std::string_view destroyed = WorkerOf(message.m_text, "DESTROYED");
    if (!started.empty()) {
        m_started.emplace_back(started);
    } else if (!stopped.empty()) {
        thread.m_worker = stopped;  // it is the worker's own thread that says so
    } else if (!destroyed.empty() && m_nameless == 0) {
        m_started.erase(std::remove(m_started.begin(), m_started.end(), destroyed),
                        m_started.end());  // its body was entered unseen
    }
}

std::string_view WorkerOf(std::string_view text, std::string_view event) {
    constexpr std::string_view c_subject = "Worker thread: ";
    constexpr std::size_t c_separator = 2;  // ": "
    const std::size_t around = c_subject.size() + c_separator + event.size();
    if (!StartsWith(text, c_subject) || text.size() <= around ||
        text.substr(text.size() - event.size()) != event ||
        text.substr(text.size() - event.size() - c_separator, c_separator) != ": ") {
        return {};
    }
    return text.substr(c_subject.size(), text.size() - around);
}

}  // namespace timeline
