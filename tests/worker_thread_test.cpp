#include <quor/exception.h>

#include "threads.h"

#include <gtest/gtest.h>

#include <climits>
#include <future>
#include <system_error>
#include <thread>

namespace quor_test {
namespace {

TEST(WorkerThread, TracesItsLifeAndEndsOnlyItsThreadHoweverMainEnds) {
    std::vector<WayOut> ways = c_waysOut;
    ways.push_back({[] {}, "", ""});
    for (const WayOut& way : ways) {
        const ThreadTap trace(quor::High);
        Pool pool([&way](Worker& worker) {
            way.leave();
            worker.TimedWait(0, 1'000'000);  // cancelled here, it must let go of the mutex
        });
        pool.GetWorker("w")->Start();
        trace.WaitFor("<== void quor::WorkerThread::operator()()");
        pool.Terminate("w");
        const std::string warning =
            way.workerWarning.empty()
                ? ""
                : "WARNING: WorkerThread w" + way.workerWarning + "Worker thread: w: STOPPED\n";
        const std::string life =
            Scope("quor::WorkerThread::WorkerThread(const std::string&)",
                  "Worker thread: w: CREATED\n") +
            Scope("void quor::WorkerThread::Start()", "Worker thread: w: START\n") +
            Scope("void quor::WorkerThread::Stop()", "Worker thread: w: REQUEST TO STOP\n") +
            Scope("virtual quor::WorkerThread::~WorkerThread()", "Worker thread: w: DESTROYED\n") +
            "-\n" + Scope("void quor::WorkerThread::operator()()", warning);
        EXPECT_EQ(ThreadTap::ByThread("worker_thread", life), life);
    }
}

TEST(WorkerThread, TimedWaitIsTrueWhenTheClockHasReachedTheDeadline) {
    struct Row {
        unsigned long seconds, nanoseconds;
        time_t step;  // between readings of the clock, of which there are two or three
        bool timeRanOut;
    };
    const Worker worker("w", nullptr);
    for (const Row& row : {Row{0, 0, 0, true}, Row{0, 1, 0, false}, Row{0, 1, 1, true},
                           Row{10, 0, 4, false}, Row{10, 0, 10, true}, Row{10, 1, 5, false},
                           Row{8, 2'000'000'000, 4, false}, Row{8, 2'000'000'000, 10, true}}) {
        const FakeClock clock(1'000, row.step);  // so early that no wait sleeps
        EXPECT_EQ(worker.TimedWait(row.seconds, row.nanoseconds), row.timeRanOut)
            << row.seconds << " s " << row.nanoseconds << " ns, clock moves " << row.step;
    }
    EXPECT_TRUE(worker.TimedWait(0, 1'000'000));
}

TEST(WorkerThread, StopWakesTheLongestWait) {
    std::promise<bool> timeRanOut;
    Pool pool(
        [&](Worker& worker) { timeRanOut.set_value(worker.TimedWait(ULONG_MAX, ULONG_MAX)); });
    quor::WorkerThread& worker = *pool.GetWorker("w");
    worker.Start();
    EXPECT_FALSE(worker.StopRequested());
    std::future<bool> result = timeRanOut.get_future();
    while (result.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
        worker.Stop();  // one that comes before the wait is lost
    }
    EXPECT_FALSE(result.get());
    EXPECT_TRUE(worker.StopRequested());
    pool.TerminateAll();
}

TEST(WorkerThread, StartsAgainAfterARefusedThreadButNotTwice) {
    Flag goOn;
    Pool pool([&goOn](Worker&) { goOn.Await(); });
    quor::WorkerThread& worker = *pool.GetWorker("w");
    worker.Stop();
    g_hooks.Plan(Hooks::Bit(Call::eThread), 1);
    EXPECT_THROW(worker.Start(), std::system_error);
    worker.Start();
    EXPECT_THROW(worker.Start(), quor::Exception);
    EXPECT_TRUE(worker.StopRequested());
    goOn.Raise();
    pool.TerminateAll();
    std::atomic<int> ready{0}, refused{0};
    for (int round = 1; round <= 300; ++round) {
        const auto start = [&, &once = *pool.GetWorker("w")] {
            for (++ready; ready < 2 * round; std::this_thread::yield()) {
            }
            try {
                once.Start();
            } catch (const quor::Exception&) {
                ++refused;
            }
        };
        std::thread other(start);
        start();
        other.join();
        EXPECT_EQ(refused, round);
        goOn.Raise();
        pool.TerminateAll();
    }
}

TEST(WorkerThread, DestroyedWhileItRunsStopsAndJoinsButNeverItself) {
    const ThreadTap trace;
    Flag started;
    auto* worker = new Worker("w", [&started](Worker& self) {
        started.Raise();
        while (!self.StopRequested()) {
            self.TimedWait(0, 1'000);
        }
        QUOR_TRACE(quor::Low, "Main ends");
    });
    worker->Start();
    started.Await();
    RunCancelled([worker] { delete worker; });
    EXPECT_EQ(ThreadTap::Lines("worker_thread"),
              "0 w: CREATED\n0 w: START\n"
              "1 WARNING: Worker thread: w: destroyed before its thread was joined\n"
              "1 w: REQUEST TO STOP\n2 worker_thread_test: Main ends\n1 w: DESTROYED\n");
    (new Worker("v", [](Worker& self) { delete &self; }))->Start();
    trace.WaitFor("Worker thread: v: DESTROYED");
}

}  // namespace
}  // namespace quor_test
