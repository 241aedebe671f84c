#include <quor/assert.h>

#include <quor/log.h>
#include <quor/process.h>

#include <pthread.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <vector>

namespace quor {
namespace {

constexpr int c_stackDepth = 64;
constexpr timespec c_lastPause = {0, 200'000'000};
constexpr const char* c_function =
    "void quor::LoggedAssert(const char*, int, const char*, const char*)";

std::string AssertFileName() {
    return std::string(QUOR_ASSERT_DIRECTORY) + "/assert_" + std::to_string(GetPid()) + "_" +
           std::to_string(GetTid()) + ".log";
}

std::string FailureText(const char* file, int line, const char* function, const char* reason) {
    return std::string("\n*** Please use this output when reporting a bug.\n\n") +
           "*** ASSERTION FAILURE: " + file + ":" + std::to_string(line) +
           " in function: " + function + "\n*** REASON: " + reason + "\n";
}

std::string StackText(const std::vector<std::string>& stack) {
    std::string text;
    int index = 0;
    for (const std::string& entry : stack) {
        text += std::to_string(index++) + ". " + entry + "\n";
    }
    return text;
}

void Report(const std::string& failure, const std::string& stack) {
    const std::string fileName = AssertFileName();
    std::streambuf* const previous = std::cerr.rdbuf();
    // Never destroyed: an assertion on another thread may have taken its buffer for the one to
    // give back to std::cerr.
    std::ofstream& file = *new std::ofstream(fileName);
    if (file.is_open()) {
        std::cerr.rdbuf(file.rdbuf());
    }
    // What failed on the stream before, and a host's wish for exceptions, must not cost the report.
    std::cerr.exceptions(std::ios_base::goodbit);
    std::cerr.clear();
    std::cerr << failure << std::endl << stack << std::endl;
    if (file.is_open() && TraceGateOpen(Low)) {
        TraceWrite(Low, c_function, "assert", __LINE__, "Assert message logged to: " + fileName);
    }
    LogCritical(failure + "\n" + stack);
    if (file.is_open()) {
        std::cerr.rdbuf(previous);
        std::cerr << "** Logged assert to file: " << fileName << std::endl;
        file.close();
    }
}

}  // namespace

__attribute__((noinline)) void LoggedAssert(const char* file, int line, const char* function,
                                            const char* reason) noexcept {
    // Cancelled here, the thread would take the report with it.
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    try {
        Report(FailureText(file, line, function, reason),
               StackText(GetExecutionStack(c_stackDepth)));
    } catch (...) {
        // Whatever the report met, the process ends the same way.
    }
    sync();
    nanosleep(&c_lastPause, nullptr);
    std::abort();
}

}  // namespace quor
