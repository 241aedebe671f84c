#include "threads.h"

#include <quor/process.h>
#include <quor/trace_file.h>

#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <sstream>
#include <thread>

namespace quor_test {

namespace {

const std::string c_life = "Worker thread: ";

using Line = std::pair<std::size_t, std::string>;  // the thread's number, the text

std::vector<Line> LinesOfThreads(const std::string& module) {
    std::istringstream trace(ReadFile("trace.log"));
    std::map<long, std::size_t> numbers = {{quor::GetTid(), 0}};
    std::vector<Line> lines;
    for (std::string line; std::getline(trace, line);) {
        if (line[0] == '[' && line.find(": ** in: ") == std::string::npos) {
            const long thread = std::stol(line.substr(1));
            const std::size_t number = numbers.emplace(thread, numbers.size()).first->second;
            line.erase(0, line.find("] ") + 2);
            line.erase(0, line.rfind(module + ": ", 0) == 0 ? module.size() + 2 : 0);
            lines.emplace_back(number, line + "\n");
        }
    }
    return lines;
}

}  // namespace

ThreadTap::ThreadTap(quor::TraceLevel_e level) : TraceTap(level) {
    quor::TraceFile::GetInstance().SetPrintFile(true);
    quor::TraceFile::GetInstance().SetPrintLine(false);
}

std::string ThreadTap::Lines(const std::string& module) {
    std::string text;
    for (const auto& [thread, line] : LinesOfThreads(module)) {
        const std::size_t life = line.find(c_life);
        text += std::to_string(thread) + " " + (life == 0 ? line.substr(c_life.size()) : line);
    }
    return text;
}

std::string ThreadTap::ByThread(const std::string& module, const std::string& expected) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    for (;;) {
        std::vector<std::string> threads(1);
        for (const auto& [thread, line] : LinesOfThreads(module)) {
            threads.resize(std::max(threads.size(), thread + 1), "-\n");
            threads[thread] += line;
        }
        std::sort(threads.begin() + 1, threads.end());
        std::string text;
        for (const std::string& lines : threads) {
            text += lines;
        }
        if (text == expected || std::chrono::steady_clock::now() > end) {
            return text;
        }
        std::this_thread::yield();
    }
}

std::string Scope(const std::string& function, const std::string& inner) {
    return "==> " + function + "\n" + inner + "<== " + function + "\n";
}

const std::vector<WayOut> c_waysOut = {
    {[] { throw std::runtime_error("boom"); }, ". Error: boom\n", "std::exception: boom\n"},
    {[] { throw 1; }, ". Unknown exception.\n", "unknown exception.\n"},
    {[] { pthread_exit(nullptr); }, "", ""},
#ifndef __SANITIZE_ADDRESS__  // which keeps the marks of frames that a cancellation removes
    {[] { pthread_cancel(pthread_self()); }, "", ""},
#endif
};

void Flag::Raise() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_raised = true;
    m_condition.notify_all();
}

void Flag::Await() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_condition.wait(lock, [this] { return std::exchange(m_raised, false); });
}

}  // namespace quor_test
