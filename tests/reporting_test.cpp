// The trace, the log and exceptions together, on many threads.
#include "support.h"

#include <quor/exception.h>
#include <quor/synchronizer.h>
#include <quor/worker_thread.h>

#include <iostream>
#include <sstream>

namespace quor_test {

// What two of the threads do takes no other lock, which would hide that theirs is missing.
void Report(int thread, int pass) {
    if (thread == 2) {
        return TraceFile::Init("trace.log", "");
    }
    if (thread == 3) {
        return TraceFile::GetInstance().Start(High);
    }
    const TraceFnc scope("void Report()", "reporting", 1);
    QUOR_TRACE(Low, "thread " << thread << " pass " << pass);
    if (thread < 2) {
        Log::GetInstance().Info("pass");
        const Exception reported("pass", true);
    }
}

// Lets the other threads on, so that the thread sanitizer sees them beside each step.
void Yield() {
    for (int turn = 0; turn < 10; ++turn) {
        std::this_thread::yield();
    }
}

// Returns what was in the file that it rotates.
std::string SwitchTheTrace() {
    TraceFile& file = TraceFile::GetInstance();
    for (const TraceLevel_e level : {Detail, Low, Off, Medium, High}) {
        file.SetLevel(level);
        file.DumpStack();
        file.Pause();
        file.Continue();
        Yield();
    }
    file.Stop();
    Yield();
    file.Start(High);
    rename("trace.log", "rotated.log");
    file.Reopen();
    return ReadFile("rotated.log");
}

TEST(Reporting, KeepsEveryLineWholeAndInOrderWhileTheTraceIsSwitchedAndRotated) {
    const ScopedZone zone("UTC0");
    const TraceTap trace;
    EXPECT_TRUE(Log::Init("app.log"));
    std::string text;
    {
        const FakeClock clock(0, 1);  // every stamp is another second of one day
        std::atomic<int> logging{2};
        std::atomic<bool> switching{true};
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 8; ++thread) {
            threads.emplace_back([thread, &logging, &switching] {
                for (int pass = 0; thread < 2 ? pass < 100 : switching.load(); ++pass) {
                    Report(thread, pass);
                }
                logging -= thread < 2 ? 1 : 0;
            });
        }
        for (int round = 0; round < 5 || logging > 0; ++round) {
            text += SwitchTheTrace();
        }
        switching = false;
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    const auto whole = testing::MatchesRegex(
        "\\[[0-9]{5,}: [0-9:]{8}\\.0{9}] (\\*\\*\\* Trac[a-z0-9 ]+(\\. \\*\\*\\*)?|0\\. .+|   1: "
        "(==>|<==) void "
        "Report\\(\\)| *[0-9]+: (thread . pass [0-9]+|Info    : pass|\\*\\* Thrown "
        "quor::Exception: pass|"
        "\\*\\* in: .+))|[0-9]+\\. .+|-{79}|\\* .+|");
    std::istringstream lines(text + ReadFile("trace.log"));
    std::string last;
    for (std::string line; std::getline(lines, line);) {
        ASSERT_THAT(line, whole);
        if (line[0] == '[') {
            const std::string stamp = line.substr(line.find(' '), 9);
            EXPECT_LT(last < " 23" ? last : "", stamp);  // the day may end
            last = stamp;
        }
    }
    std::string log = "-\n\n";
    for (int pass = 0; pass < 200; ++pass) {
        log += "[#] Info    : pass\n";
    }
    EXPECT_NE(Masked(ReadFile("app.log")).find(log), std::string::npos);
}

// Standard error as a daemon keeps it that wants all in its log.
struct ToLog : std::stringbuf {
    explicit ToLog(std::function<void()> toUse) : use(std::move(toUse)) { std::cerr.rdbuf(this); }
    ~ToLog() override { std::cerr.rdbuf(previous); }
    int sync() override {
        Log::GetInstance().Error(str());
        use();
        return 0;
    }
    const std::function<void()> use;
    std::streambuf* const previous = std::cerr.rdbuf();
};

TEST(Reporting, SaysThatTheDiskIsFullAlsoWhereStandardErrorGoesIntoTheLog) {
    const TraceTap trace;
    EXPECT_TRUE(Log::Init("app.log"));
    Synchronizer barrier(1, 1, 1);
    WorkerThread worker("w");
    const std::function<void()> reports[] = {
        [] { QUOR_TRACE(Low, "lost"); }, [] { Log::GetInstance().Info("lost"); },
        [&barrier] { barrier.Increment(); }, [&worker] { worker.Start(); }};
    for (const auto& report : reports) {
        const ToLog errors([&barrier, &worker] { barrier.Reset(worker.StopRequested() ? 1 : 0); });
        TraceFile::GetInstance().Stop();
        TraceFile::GetInstance().Start(Low);
        const ScopedValue full(g_hooks.diskFull, true);
        report();
        EXPECT_EQ(errors.str(), "Unable to write to log file: trace.log\n");
    }
}

}  // namespace quor_test
