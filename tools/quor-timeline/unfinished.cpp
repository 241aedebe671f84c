#include "unfinished.h"

#include "text.h"

namespace timeline {
namespace {

bool StartsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// Takes `end` from the end of the text, when it is there.
bool TakeEnd(std::string_view& text, std::string_view end) {
    if (text.size() < end.size() || text.substr(text.size() - end.size()) != end) {
        return false;
    }
    text.remove_suffix(end.size());
    return true;
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

}  // namespace

void Unfinished::Take(std::int64_t thread, std::int64_t time, std::string_view text) {
    constexpr std::string_view c_worker = "Worker thread: ";
    if (StartsWith(text, "waiting for condition: iteration:")) {
        TakeWait(thread, time, "a Synchronizer");
    } else if (StartsWith(text, "WaitOnState") && GoesOn(text)) {
        TakeWait(thread, time, "a ThreadController");
    } else if (StartsWith(text, "waiting finished:")) {
        Pause(thread);
    } else {
        GoOn(thread);
    }
    std::string_view subject = text;
    if (StartsWith(text, c_worker)) {
        TakeWorker(time, text.substr(c_worker.size()));
    } else if (TakeEnd(subject, " state in a reasonable time.")) {
        AddFinding(time, std::string(text));
    }
}

void Unfinished::GoOn(std::int64_t thread) {
    m_waiting.erase(thread);
}

void Unfinished::EndRun() {
    for (const auto& [worker, since] : m_stopping) {
        AddFinding(since, "worker " + worker + " was asked to stop, and not destroyed");
    }
    for (const auto& [thread, wait] : m_waiting) {
        if (!wait.m_isPaused) {
            AddFinding(wait.m_since,
                       "thread " + std::to_string(thread) + " waits for " + wait.m_what);
        }
    }
    m_stopping.clear();
    m_waiting.clear();
}

void Unfinished::TakeWorker(std::int64_t time, std::string_view text) {
    if (TakeEnd(text, ": REQUEST TO STOP")) {
        m_stopping.emplace(text, time);
    } else if (TakeEnd(text, ": DESTROYED")) {
        m_stopping.erase(std::string(text));
    }
}

void Unfinished::TakeWait(std::int64_t thread, std::int64_t time, const std::string& what) {
    m_waiting.try_emplace(thread, Wait{time, what, false}).first->second.m_isPaused = false;
}

// One that waits again says so at once; one that does not has come to its end.
void Unfinished::Pause(std::int64_t thread) {
    const auto wait = m_waiting.find(thread);
    if (wait != m_waiting.end()) {
        wait->second.m_isPaused = true;
    }
}

void Unfinished::AddFinding(std::int64_t time, const std::string& text) {
    m_findings.push_back(MomentText(time) + ": " + Printable(text));
}

}  // namespace timeline
