#include "threads.h"

#include <dlfcn.h>
#include <pthread.h>

#include <cerrno>
#include <map>
#include <numeric>
#include <sstream>
#include <stdexcept>

namespace quor_test {

std::atomic<const char*> g_threadScript{""};

ThreadTap::ThreadTap(quor::TraceLevel_e level) : TraceTap(level) {
    quor::TraceFile::GetInstance().SetPrintFile(true);
    quor::TraceFile::GetInstance().SetPrintLine(false);
}

std::string ThreadTap::Lines(const std::string& module, bool byThread) {
    std::istringstream trace(ReadFile("trace.log"));
    std::map<std::string, std::size_t> threads;
    std::vector<std::string> groups(9);
    for (std::string line; std::getline(trace, line);) {
        if (line[0] != '[' || line.find(": ** in: ") != std::string::npos) {
            continue;
        }
        const auto thread =
            threads.emplace(line.substr(0, line.find(':')), threads.size()).first->second;
        const std::size_t file = line.find("] ") + 2;
        const bool ofModule = line.compare(file, module.size() + 2, module + ": ") == 0;
        groups.at(byThread ? thread : 0) +=
            std::to_string(thread) + " " + line.substr(ofModule ? file + module.size() + 2 : file) +
            "\n";
    }
    return std::accumulate(groups.begin(), groups.end(), std::string());
}

std::string Scope(const std::string& function, const std::string& inner) {
    return "0 ==> " + function + "\n" + inner + "0 <== " + function + "\n";
}

const std::vector<WayOut> c_waysOut = {
    {[] { throw std::runtime_error("boom"); }, ". Error: boom\n", "std::exception: boom\n"},
    {[] { throw 1; }, ". Unknown exception.\n", "unknown exception.\n"},
    {[] { pthread_exit(nullptr); }, "", ""},
    {[] { pthread_cancel(pthread_self()); }, "", ""},
};

void Flag::Raise() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_raised = true;
    m_condition.notify_all();
}

void Flag::Await() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_condition.wait(lock, [this] { return m_raised; });
}

}  // namespace quor_test

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                              void* (*body)(void*), void* argument) noexcept {
    static const auto create =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    const char* const script = quor_test::g_threadScript;
    if (*script == '\0') {
        return create(thread, attributes, body, argument);
    }
    quor_test::g_threadScript = script + 1;
    return *script == '-' ? EAGAIN : create(thread, attributes, body, argument);
}
