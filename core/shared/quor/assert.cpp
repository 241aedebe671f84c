#include <quor/assert.h>

#include <quor/internal/joined.h>
#include <quor/internal/numbered_stack.h>
#include <quor/log.h>
#include <quor/process.h>

#include <pthread.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

namespace quor {
namespace {

constexpr int c_stackDepth = 64;
constexpr unsigned c_longestReport = 60;  // seconds
constexpr timespec c_lastPause = {0, 200'000'000};
constexpr const char* c_function =
    "void quor::LoggedAssert(const char*, int, const char*, const char*)";

// Takes one step of the report. Whatever it meets, the next one is taken too.
template <typename Step>
void Try(const Step& step) {
    try {
        step();
    } catch (...) {
        // The process ends the same way.
    }
}

std::string AssertFileName() {
    return internal::Joined({QUOR_ASSERT_DIRECTORY, "/assert_", GetPid(), "_", GetTid(), ".log"});
}

std::string FailureText(const char* file, int line, const char* function, const char* reason) {
    return internal::Joined({"\n*** Please use this output when reporting a bug.\n\n",
                             "*** ASSERTION FAILURE: ", file, ":", line, " in function: ", function,
                             "\n*** REASON: ", reason, "\n"});
}

// The report when memory or streams fail: nothing here allocates.
void WriteShortReport(const char* file, int line, const char* reason) {
    char number[16] = {};
    std::to_chars(number, std::end(number) - 1, line);
    const char* const parts[] = {
        "\n*** ASSERTION FAILURE: ", file, ":", number, "\n*** REASON: ", reason, "\n"};
    for (const char* const part : parts) {
        static_cast<void>(!write(STDERR_FILENO, part, std::strlen(part)));
    }
}

// Returns whether std::cerr took everything.
bool WriteReport(const std::string& failure, const std::string& stack) {
    std::cerr.clear();
    std::cerr << failure << std::endl << stack << std::endl;
    return std::cerr.good();
}

// Returns whether the report is in its file or on standard error.
bool Report(const std::string& failure, const std::string& stack) {
    std::string fileName;
    // Never destroyed: an assertion on another thread may have taken its buffer for the one to
    // give back to std::cerr.
    std::ofstream* file = nullptr;
    Try([&] {
        fileName = AssertFileName();
        file = new std::ofstream(fileName);
    });
    bool inFile = file != nullptr && file->is_open();
    std::streambuf* const previous = std::cerr.rdbuf();
    // Neither what the host wants to be thrown nor what std::cout still holds, whose reader may be
    // gone or asleep, may keep the report back.
    std::cerr.exceptions(std::ios_base::goodbit);
    std::cerr.tie(nullptr);
    if (inFile) {
        std::cerr.rdbuf(file->rdbuf());
    }
    bool reported = WriteReport(failure, stack);
    if (inFile && !reported) {  // the disk is full
        inFile = false;
        std::cerr.rdbuf(previous);
        reported = WriteReport(failure, stack);
    }
    if (inFile && TraceGateOpen(Low)) {
        Try([&] {
            TraceWrite(Low, c_function, "assert", __LINE__,
                       internal::Joined({"Assert message logged to: ", fileName}));
        });
    }
    Try([&] { LogCritical(internal::Joined({failure, "\n", stack})); });
    if (inFile) {
        std::cerr.rdbuf(previous);
        std::cerr << "** Logged assert to file: " << fileName << std::endl;
        file->close();
    }
    return reported;
}

// The report may wait for a mutex whose holder, or for a pipe whose reader, never moves again. The
// process ends all the same, later.
void LimitReport() {
    signal(SIGALRM, [](int /*number*/) { std::abort(); });
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGALRM);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    alarm(c_longestReport);
}

// Neither cancellation nor a signal that a write causes may end the thread before its report.
void ShieldThread() {
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    sigaddset(&signals, SIGXFSZ);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

}  // namespace

__attribute__((noinline)) void LoggedAssert(const char* file, int line, const char* function,
                                            const char* reason) noexcept {
    ShieldThread();
    LimitReport();
    std::string failure;
    std::string stack;
    Try([&] { failure = FailureText(file, line, function, reason); });
    try {  // not by Try(), whose frames would be in the stack
        stack = internal::NumberedStack(GetExecutionStack(c_stackDepth));
    } catch (...) {
        // The failure is reported without a stack.
    }
    if (!Report(failure, stack) || failure.empty()) {
        WriteShortReport(file, line, reason);
    }
    sync();
    nanosleep(&c_lastPause, nullptr);
    std::abort();
}

}  // namespace quor
