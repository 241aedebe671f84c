#include "support.h"

#include <pthread.h>

#include <iostream>
#include <sstream>

namespace quor_test {

TEST(Log, KeepsAHeaderAndALineForEachMessageInAFileThatMayDisappear) {
    const ScopedZone zone("XYZ-2");
    const Folder folder;
    EXPECT_TRUE(Log::Init("app.log"));
    EXPECT_EQ(Masked(ReadFile("app.log")), LogOpening());
    EXPECT_TRUE(Log::Init("app.log"));
    const int writes = g_hooks.Calls(Call::eWrite);
    Log::GetInstance().Info("a");
    Log::GetInstance().Warning("b\nc");
    Log::GetInstance().Error("d");
    Log::GetInstance().Critical("e");
    EXPECT_EQ(g_hooks.Calls(Call::eWrite) - writes, 4);
    EXPECT_EQ(
        Masked(ReadFile("app.log")),
        LogOpening() + "[#] Info    : a\n[#] Warning : b\nc\n[#] Error   : d\n[#] Critical: e\n");
    std::filesystem::remove("app.log");
    const FakeClock clock(0);
    Log::GetInstance().Info("f");
    EXPECT_EQ(Masked(ReadFile("app.log")), LogOpening() + "[#] Info    : f\n");
    EXPECT_NE(ReadFile("app.log").find("\n[1970-01-01 02:00:00] Info"), std::string::npos);
}

TEST(Log, WritesToStandardOutputWhileThereIsNeitherFileNorTrace) {
    const Folder folder;
    {
        const Redirected output(STDOUT_FILENO, "output");
        for (const char* name : {"", "missing/app.log"}) {
            EXPECT_FALSE(Log::Init(name));
            Log::GetInstance().Warning("a");
            Log::GetInstance().Warning("b");
            const TraceTap trace;
            Log::GetInstance().Warning("traced");
        }
        std::filesystem::create_directory("missing");
        Log::GetInstance().Warning("c");
    }
    EXPECT_EQ(ReadFile("output"), "Warning : a\nWarning : b\nWarning : a\nWarning : b\n");
    EXPECT_EQ(Masked(ReadFile("missing/app.log")), LogOpening() + "[#] Warning : c\n");
}

// Standard output of a host in which every write is a cancellation point.
struct Cancelling : std::stringbuf {
    Cancelling() { std::cout.rdbuf(this); }
    ~Cancelling() override { std::cout.rdbuf(previous); }
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        pthread_testcancel();
        return std::stringbuf::xsputn(text, size);
    }
    std::streambuf* const previous = std::cout.rdbuf();
};

TEST(Log, FinishesTheMessageOfACancelledThread) {
    EXPECT_FALSE(Log::Init(""));
    Cancelling output;
    RunCancelled([] { Log::GetInstance().Warning("a"); });
    Log::GetInstance().Warning("b");
    EXPECT_EQ(output.str(), "Warning : a\nWarning : b\n");
}

TEST(Log, CopiesMessagesIntoTheRunningTrace) {
    TraceTap trace;
    EXPECT_TRUE(Log::Init("app.log"));
    TraceFile::GetInstance().SetPrintFile(true);
    TraceFile::GetInstance().SetPrintLine(false);
    Log::GetInstance().Info("a");
    LogCritical("b");
    TraceFile::GetInstance().Pause();
    LogCritical("c");
    EXPECT_EQ(trace.News(),
              "[#: #] log: Info    : a\n[#: #] log: b\n[#: #] log: Critical: b\n"
              "[#: #] *** Tracing paused. ***\n");
    EXPECT_EQ(Masked(ReadFile("app.log")),
              LogOpening() + "[#] Info    : a\n[#] Critical: b\n[#] Critical: c\n");
}

TEST(LogDeathTest, CriticalMessagesOnlyReachTheTraceWhileThereIsNoLog) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto report = [](const std::function<void()>& end) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        TraceFile::GetInstance().Start(Low);
        LogCritical("x");
        std::ios_base::sync_with_stdio(false);
        std::cout << "of ";
        std::printf("the host");
        end();
        _exit(Log::m_enabled ? 1 : 0);
    };
    const std::string closed = "[0-9]: x\n(.+\n)?of the host\n-+\n.+ Trace stopped";
    EXPECT_EXIT(report([] { TraceFile::GetInstance().Stop(); }), testing::ExitedWithCode(0),
                closed);
    EXPECT_EXIT(report([] { std::exit(0); }), testing::ExitedWithCode(0), closed);
    EXPECT_EXIT(report([] { TraceFile::GetInstance().SetLevel(Off); }), testing::ExitedWithCode(0),
                "of the host.+ changed to 0\n\n-+\n.+ Trace stopped");
}

}  // namespace quor_test
