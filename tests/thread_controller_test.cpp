#include <quor/exception.h>
#include <quor/thread_controller.h>

#include "threads.h"
#include "thrown.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace quor_test {
namespace {

using quor::ThreadController;

constexpr std::uint32_t c_anHour = 3'600'000;

void Nothing() {}

class OpenController : public ThreadController {
public:
    using ThreadController::m_mutex;
    using ThreadController::m_state;
    using ThreadController::SetState;
    using ThreadController::ThreadController;
    using ThreadController::WaitOnStateEnter;
};

// Each pass of the loop blocks until one call of the cancel function.
struct Blocker {
    std::shared_ptr<Flag> flag = std::make_shared<Flag>();
    quor::LoopFnc loop = [flag = flag] { flag->Await(); };
    quor::CancelLoopFnc cancel = [flag = flag] { flag->Raise(); };
};

void AwaitState(const ThreadController& controller, ThreadController::State_e state) {
    while (controller.GetState() != state) {
        std::this_thread::yield();
    }
}

TEST(ThreadController, MovesAsItsTableSays) {
    // For each wanted state the outcomes by current state: 'm' moves, the others are texts.
    constexpr const char* c_currentByWanted[] = {"DDDm", "mARA", "BmBB", "SCmC"};
    const std::map<char, std::string> texts = {
        {'A', " could not be started since it is not in eStopped state."},
        {'B', " could be started only from eStarting state. Current state: "},
        {'C', " is not running, thus it could not be terminated."},
        {'D', " could be stopped from eTerminating state. Current state: "},
        {'R', " is already running."},
        {'S', " is already stopped."}};
    OpenController controller("c", Nothing, Nothing);
    for (int pair = 0; pair < 16; ++pair) {
        const auto wanted = static_cast<ThreadController::State_e>(pair / 4);
        const auto current = static_cast<ThreadController::State_e>(pair % 4);
        const char key = c_currentByWanted[wanted][current];
        const ThreadTap trace(quor::High);
        controller.m_state = current;
        std::string outcome;
        try {
            outcome = controller.SetState(wanted) ? "" : "0 c" + texts.at(key) + "\n";
        } catch (const quor::Exception& e) {
            const std::string state = key == 'B' || key == 'D' ? std::to_string(current) : "";
            EXPECT_EQ(e.what(), "c" + texts.at(key) + state);
            outcome = std::string("0 exception: ** Thrown quor::Exception: ") + e.what() + "\n";
        }
        EXPECT_EQ(outcome.empty(), key == 'm') << pair;
        EXPECT_EQ(ThreadTap::Lines("thread_controller"), outcome) << pair;
        EXPECT_EQ(controller.m_state, key == 'm' ? wanted : current) << pair;
    }
    controller.m_state = ThreadController::eStopped;
}

TEST(ThreadController, StartsStopsAndRestartsByNotificationAndOneCancelAlone) {
    struct Row {
        std::function<void(ThreadController&)> operation;
        bool stops, starts;
        std::string scope;  // of an asynchronous operation
    };
    const Row rows[] = {{&ThreadController::Stop, false, false, ""},
                        {&ThreadController::Restart, false, true, ""},
                        {&ThreadController::Start, false, false, ""},
                        {&ThreadController::Restart, true, true, ""},
                        {&ThreadController::Stop, true, false, ""},
                        {&ThreadController::Start, false, true, ""},
                        {&ThreadController::AsyncStop, true, false, "AsyncStop"},
                        {&ThreadController::AsyncStart, false, true, "AsyncStart"},
                        {&ThreadController::AsyncRestart, true, true, "AsyncRestart"}};
    const std::string run = "> void quor::ThreadController::Run()\n";
    const std::string exit = "WaitOnStateExit state changed from  ";
    const std::string stop = exit + "3 into 0 while waiting to exit from 3\n";
    const std::string start = exit + "1 into 2 while waiting to exit from 1\n";
    const ScopedValue period(cStopSleepPeriodMs, c_anHour);
    const Blocker blocker;
    OpenController controller("c", blocker.loop, blocker.cancel);
    for (const Row& row : rows) {
        const ThreadTap trace(quor::High);
        std::unique_lock<std::mutex> lock(controller.m_mutex, std::defer_lock);
        row.scope.empty() ? void() : lock.lock();  // a derived class may hold it
        row.operation(controller);
        row.scope.empty() ? void() : lock.unlock();
        const std::string waits = (row.stops ? stop : "") + (row.starts ? start : "");
        const std::string loops = std::string(row.stops ? "-\n<==" + run.substr(1) : "") +
                                  (row.starts ? "-\n==" + run : "");
        const std::string expected =
            row.scope.empty()
                ? waits + loops
                : Scope("void quor::ThreadController::" + row.scope + "()") + loops + "-\n" + waits;
        EXPECT_EQ(ThreadTap::ByThread("thread_controller", expected), expected);
    }
}

TEST(ThreadController, EndsItsLoopHoweverAPassEndsAndCanStartAgain) {
    for (const WayOut& way : c_waysOut) {
        const ThreadTap trace;
        Blocker blocker;
        const auto leave = [&way] {
            way.leave();
            pthread_testcancel();
        };
        const auto second = [&leave, pass = 0]() mutable { ++pass % 2 == 0 ? leave() : void(); };
        ThreadController failing("c", second, Nothing);
        ThreadController cancelled(
            "c", [=] { blocker.loop(), leave(); }, blocker.cancel);
        for (int life = 0; life < 2; ++life) {
            EXPECT_TRUE(failing.Start());
            AwaitState(failing, ThreadController::eStopped);
            EXPECT_TRUE(cancelled.Start());
            EXPECT_TRUE(cancelled.Stop());
            EXPECT_EQ(cancelled.GetState(), ThreadController::eStopped);
        }
        const std::string warning =
            way.workerWarning.empty() ? "" : "-\nWARNING: WorkerThread c" + way.workerWarning;
        const std::string warnings = warning + warning + warning + warning;
        EXPECT_EQ(ThreadTap::ByThread("thread_controller", warnings), warnings);
    }
}

TEST(ThreadController, CancelsEveryPeriodOnFreshCopiesHoweverTheyEnd) {
    const ScopedValue period(cStopSleepPeriodMs, 1U);
    const ThreadTap trace;
    const Blocker blocker;
    const auto calls = std::make_shared<std::atomic<std::size_t>>(0);
    ThreadController controller("c", blocker.loop, [calls, blocker, own = 0]() mutable {
        EXPECT_EQ(++own, 1);
        const std::size_t call = (*calls)++;
        call < c_waysOut.size() ? c_waysOut[call].leave() : blocker.cancel();
        pthread_testcancel();
    });
    controller.Start();
    EXPECT_TRUE(controller.Stop());  // can return only because of the fifth call
    const std::string warnings =
        "-\nWARNING: WorkerThread c. Error: boom\n-\nWARNING: WorkerThread c. Unknown exception.\n";
    EXPECT_EQ(ThreadTap::ByThread("thread_controller", warnings), warnings);
}

// A cancel function whose next copy ends in a way out.
struct Trap {
    Trap(const Blocker& inner, std::atomic<const WayOut*>& next) : blocker(inner), way(next) {}
    Trap(const Trap& other) : blocker(other.blocker), way(other.way) {
        if (const WayOut* const now = way.exchange(nullptr)) {
            now->leave();
            pthread_testcancel();
        }
    }
    void operator()() const { blocker.cancel(); }
    const Blocker blocker;
    std::atomic<const WayOut*>& way;
};

TEST(ThreadController, CanBeDestroyedHoweverTheCopyOfItsCancelFunctionEnds) {
    const ScopedValue period(cStopSleepPeriodMs, 1U);
    static std::atomic<const WayOut*> next{nullptr};  // outlives the detached threads
    for (const WayOut& way : c_waysOut) {
        const bool throws = !way.workerWarning.empty();
        const ThreadTap trace;
        const Blocker blocker;
        auto controller =
            std::make_unique<ThreadController>("c", blocker.loop, Trap(blocker, next));
        controller->Start();
        next = &way;
        controller->AsyncStop();
        while (next != nullptr) {
            std::this_thread::yield();
        }
        RunCancelled([&controller] { controller.reset(); });
        const std::string warning = throws ? "-\nWARNING: WorkerThread c" + way.workerWarning : "";
        EXPECT_EQ(ThreadTap::ByThread("thread_controller", warning), warning);
    }
}

TEST(ThreadController, OnlyStartCompletesTheStopOfAnother) {
    const ScopedValue period(cStopSleepPeriodMs, c_anHour);
    const Blocker blocker;
    Flag cancelled;
    std::atomic<int> calls{0};
    ThreadController controller(
        "c", blocker.loop, [&, blocker] { ++calls == 1 ? cancelled.Raise() : blocker.cancel(); });
    controller.Start();
    controller.AsyncStop();
    cancelled.Await();
    EXPECT_TRUE(controller.Stop());
    controller.Restart();
    EXPECT_EQ(controller.GetState(), ThreadController::eTerminating);
    EXPECT_TRUE(controller.Start());
    EXPECT_EQ(controller.GetState(), ThreadController::eRunning);
}

TEST(ThreadController, WaitOnStateEnterGivesUpAfterSoManyWaits) {
    const std::string early =
        "0 WaitOnStateEnter state changed from  1 into 1 while waiting for entering into 0\n";
    const std::string gaveUp = "0 c didn't come into 0 state in a reasonable time.\n";
    struct Row {
        ThreadController::State_e current;
        std::uint32_t retries;
        time_t step;  // of the clock, between two readings
        std::string trace;
    };
    const ScopedValue period(cStopSleepPeriodMs, c_anHour);
    const auto calls = std::make_shared<std::atomic<int>>(0);
    OpenController controller("c", Nothing, [calls] { ++*calls; });
    cStopSleepPeriodMs = 0;  // too late for this controller
    for (const Row& row :
         {Row{ThreadController::eStopped, 0, 1, gaveUp}, Row{ThreadController::eStopped, 1, 1, ""},
          Row{ThreadController::eStarting, 2, 1, early + early + gaveUp},
          Row{ThreadController::eStarting, 2, 3'600, gaveUp},
          Row{ThreadController::eTerminating, 2, 3'600, gaveUp}}) {
        const ThreadTap trace(quor::High);
        const ScopedValue retries(cRetryCounter, row.retries);
        const FakeClock clock(1'000, row.step);  // so early that no wait sleeps
        std::unique_lock<std::mutex> lock(controller.m_mutex);
        controller.m_state = row.current;
        EXPECT_EQ(controller.WaitOnStateEnter(ThreadController::eStopped, lock), row.trace.empty());
        EXPECT_EQ(ThreadTap::Lines("thread_controller"), row.trace);
        controller.m_state = ThreadController::eStopped;
    }
    while (*calls < 2) {
        std::this_thread::yield();
    }
}

TEST(ThreadController, RefusesAMissingFunction) {
    const std::string refused = "c has no loop function or no cancel function.";
    EXPECT_EQ(Thrown([] { ThreadController("c", nullptr, Nothing); }), refused);
    EXPECT_EQ(Thrown([] { ThreadController("c", Nothing, nullptr); }), refused);
}

// Of one whose loop goes on, and of one whose loop ends by itself.
TEST(ThreadController, IsGoneWithItsLoopAtOnceInAStormFromFourThreads) {
    const ScopedValue period(cStopSleepPeriodMs, 1U);
    const std::function<void(ThreadController&)> operations[] = {
        &ThreadController::Start,        &ThreadController::Stop,
        &ThreadController::Restart,      &ThreadController::AsyncStop,
        &ThreadController::AsyncRestart, &ThreadController::AsyncStart};
    for (int round = 0; round < 200; ++round) {
        std::atomic<bool> ended{false};
        std::optional<ThreadController> controller(
            std::in_place, "c",
            [&ended, fails = round % 2 == 0] {
                EXPECT_FALSE(ended);
                fails ? throw 1 : std::this_thread::yield();
            },
            Nothing);
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&, thread] {
                for (int pass = 0; pass < 6; ++pass) {
                    operations[(thread * (round + 1) + pass) % 6](*controller);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        controller.reset();
        ended = true;
    }
}

}  // namespace
}  // namespace quor_test
