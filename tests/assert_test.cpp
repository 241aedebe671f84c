#include <quor/assert.h>

#include "support.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <thread>

// The library's code once more, for a folder of the test.
#define LoggedAssert LoggedAssertInReports
#undef QUOR_ASSERT_DIRECTORY
#define QUOR_ASSERT_DIRECTORY "reports"
#include "../core/shared/quor/assert.cpp"  // NOLINT(bugprone-suspicious-include)
#undef LoggedAssert

namespace quor_test {

// Fails deep in the stack, where the compiler expects neither a loop nor a jump nor the end.
void (*volatile g_assert)(const char*, int, const char*, const char*) = quor::LoggedAssertInReports;
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

std::string Expected(const std::string& before, const std::string& after) {
    std::string text =
        before +
        "\n*** Please use this output when reporting a bug.\n\n*** ASSERTION FAILURE: "
        "spool.cpp:52 in function: void Drain()\n*** REASON: queue not empty\n\n";
    for (int index = 0; index < 64; ++index) {
        text += std::to_string(index) + ". #\n";
    }
    return text + after;
}

TEST(LoggedAssertDeathTest, ReportsToItsFileOrStandardErrorAndToTraceAndLogThenAborts) {
    for (const bool hasFolder : {true, false}) {
        for (const bool silent : {true, false}) {
            const Folder folder;
            std::filesystem::create_directory(hasFolder ? "reports" : "other");
            Child host([silent](Pipe& parent) {
                const Redirected standardError(STDERR_FILENO, "errors");
                quor::TraceFile::Init("trace.log", "");
                quor::TraceFile::GetInstance().SetPrintLine(false);
                quor::TraceFile::GetInstance().SetPrintFile(true);
                quor::TraceFile::GetInstance().Start(silent ? quor::Off : quor::Low);
                quor::Log::Init("app.log");
                quor::Log::m_enabled = !silent;
                std::cerr.setstate(std::ios_base::badbit);  // from an earlier failure
                std::thread([&parent] {
                    parent.Send(quor::GetPid());
                    parent.Send(quor::GetTid());
                    Fail(80);
                }).join();
            });
            const auto process = std::to_string(host.Receive<pid_t>());
            const auto thread = std::to_string(host.Receive<pid_t>());
            const std::string report = "reports/assert_" + process + "_" + thread + ".log";
            EXPECT_EQ(host.Exit(), -SIGABRT);
            EXPECT_EQ(MaskedStack(report), hasFolder ? Expected("", "\n") : "");
            EXPECT_EQ(MaskedStack("errors"), hasFolder
                                                 ? "** Logged assert to file: " + report + "\n"
                                                 : Expected("", "\n"));
            const std::string moved =
                hasFolder ? "[#: #] assert: Assert message logged to: " + report + "\n" : "";
            EXPECT_EQ(MaskedStack("trace.log"),
                      silent ? ""
                             : TraceOpening("started") + moved + Expected("[#: #] log: ", "\n") +
                                   Expected("[#: #] log: Critical: ", "\n"));
            const std::string log = MaskedStack("app.log");
            const std::size_t message = log.find("[#] Critical: ");
            EXPECT_EQ(log.substr(std::min(message, log.size())),
                      silent ? "" : Expected("[#] Critical: ", "\n"));
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
