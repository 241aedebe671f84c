#include <quor/assert.h>

#include "support.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <streambuf>
#include <thread>

namespace quor_test {

// Fails deep in the stack, where the compiler expects neither a loop nor a jump nor the end.
void (*volatile g_assert)(const char*, int, const char*, const char*) = quor::LoggedAssert;
__attribute__((noinline)) void Fail(int depth) {
    if (depth > 0) {
        Fail(depth - 1);
    } else {
        g_assert("spool.cpp", 52, "void Drain()", "queue not empty");
    }
    __asm__ volatile("");
}

namespace {

std::string MaskedStack(const std::string& file) {
    std::istringstream lines(Masked(ReadFile(file)));
    std::string text;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t digits = line.find_first_not_of("0123456789");
        const bool isEntry = digits > 0 && digits < line.size() && line.find(". ") == digits;
        text += (isEntry ? line.substr(0, digits) + ". #" : line) + "\n";
    }
    return text;
}

std::string Expected(const std::string& before) {
    std::string text =
        before +
        "\n*** Please use this output when reporting a bug.\n\n*** ASSERTION FAILURE: "
        "spool.cpp:52 in function: void Drain()\n*** REASON: queue not empty\n\n";
    for (int index = 0; index < 64; ++index) {
        text += std::to_string(index) + ". #\n";
    }
    return text + "\n";
}

// Where std::cout goes: text is refused, and nobody reads what is still to be flushed.
struct StuckBuffer : std::streambuf {
    int sync() override { return pause(); }
};

enum Host { c_reporting, c_silent, c_onAFullDisk, c_unheard };

void Become(Host host) {
    quor::TraceFile::Init("trace.log", "");
    quor::TraceFile::GetInstance().SetPrintLine(false);
    quor::TraceFile::GetInstance().SetPrintFile(true);
    quor::TraceFile::GetInstance().Start(host == c_reporting ? quor::Low : quor::Off);
    quor::Log::Init(host == c_reporting ? "app.log" : "");
    g_hooks.diskFull = host == c_onAFullDisk;
    int ends[2];
    if (host == c_unheard) {  // standard error is a pipe without a reader
        Pipe::Check(pipe(ends) == 0 && dup2(ends[1], STDERR_FILENO) != -1 && close(ends[0]) == 0);
    }
    signal(SIGPIPE, SIG_DFL);
    const std::ios_base::iostate bad = std::ios_base::badbit;
    host == c_onAFullDisk ? std::cerr.exceptions(bad) : std::cerr.setstate(bad);
    static StuckBuffer stuck;
    std::cout.rdbuf(&stuck);
    std::cout.exceptions(bad);
}

TEST(LoggedAssertDeathTest, ReportsToItsFileOrStandardErrorAndToTraceAndLogThenAborts) {
    for (const bool hasFolder : {true, false}) {
        for (const Host kind : {c_reporting, c_silent, c_onAFullDisk, c_unheard}) {
            const Folder folder;
            std::filesystem::create_directory(hasFolder ? "reports" : "other");
            Child host([kind](Pipe& parent) {
                const Redirected standardError(STDERR_FILENO, "errors");
                Become(kind);
                std::thread([&parent] {
                    parent.Send(quor::GetPid());
                    parent.Send(quor::GetTid());
                    pthread_cancel(pthread_self());  // must not keep the report back
                    Fail(80);
                }).join();
            });
            const auto process = std::to_string(host.Receive<pid_t>());
            const auto thread = std::to_string(host.Receive<pid_t>());
            const std::string report = "reports/assert_" + process + "_" + thread + ".log";
            EXPECT_EQ(host.Exit(), -SIGABRT);
            const bool logs = kind == c_reporting;
            const bool inFile = hasFolder && kind != c_onAFullDisk;
            const std::string said =
                (inFile ? "** Logged assert to file: " + report + "\n" : Expected("")) +
                "synced\npaused 200000000 ns\n";
            EXPECT_EQ(MaskedStack(report), inFile ? Expected("") : "") << kind;
            EXPECT_EQ(MaskedStack("errors"), kind == c_unheard ? "" : said) << kind;
            const std::string traced =
                TraceOpening("started") +
                (inFile ? "[#: #] assert: Assert message logged to: " + report + "\n" : "") +
                Expected("[#: #] log: ") + Expected("[#: #] log: Critical: ");
            EXPECT_EQ(MaskedStack("trace.log"), logs ? traced : "") << kind;
            const std::string log = MaskedStack("app.log");
            EXPECT_EQ(log.substr(std::min(log.find("[#] Critical: "), log.size())),
                      logs ? Expected("[#] Critical: ") : "")
                << kind;
        }
    }
}

TEST(LoggedAssertDeathTest, MacroEvaluatesItsConditionOnceAndNamesIt) {
    int count = 0;
    QUOR_ASSERT(++count == 1);
    EXPECT_EQ(count, 1);
    EXPECT_EXIT(
        QUOR_ASSERT(std::pair<int, int>(count, 1).first == 0), testing::KilledBySignal(SIGABRT),
        "FAILURE: assert_test:[0-9]+ in function: .*TestBody.*\n\\*\\*\\* REASON: Assertion "
        "condition: std::pair<int, int>\\(count, 1\\).first == 0\n\n"
        "0. .*zelvarquor.*\\(quor::LoggedAssert\\(char const\\*, int, char const\\*, char");
}

}  // namespace
}  // namespace quor_test
