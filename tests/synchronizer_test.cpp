#include <quor/exception.h>
#include <quor/synchronizer.h>

#include "threads.h"

#include <gtest/gtest.h>

#include <future>

namespace quor_test {
namespace {

using quor::Synchronizer;

std::string Refusal(unsigned int iterations, unsigned int timeoutMs) {
    try {
        return std::to_string(Synchronizer(1, iterations, timeoutMs).Timeout());
    } catch (const quor::Exception& e) {
        return e.what();
    }
}

TEST(Synchronizer, RefusesAProductOfMoreThanTenSecondsInThirtyTwoBits) {
    const std::string refused = "Internal error: Specified timeout is too long. ";
    EXPECT_EQ(Refusal(20, 250), "5000");
    EXPECT_EQ(Refusal(100, 100), "10000");
    EXPECT_EQ(Refusal(101, 100), refused + "10100>10000");
    EXPECT_EQ(Refusal(0x10000, 0x10000), "0");
    EXPECT_EQ(Refusal(3, 0x80000001), refused + "2147483651>10000");
    const ThreadTap trace;
    EXPECT_EQ(Refusal(1, 12'000), refused + "12000>10000");
    EXPECT_EQ(ThreadTap::Lines("exception"),
              "0 ** Thrown quor::Exception: " + refused + "12000>10000\n");
}

TEST(Synchronizer, WaitsAnIterationAfterTheOtherAndLooksAtTheLimitFirst) {
    struct Row {
        unsigned int counter, iterations;
        bool result;
        const char* trace;
    };
    for (const Row& row : {Row{0, 1, true, ""}, Row{0, 0, false, "0 waiting failed:\n"},
                           Row{1, 2, false,
                               "0 waiting for condition: iteration:0\n0 waiting finished:0\n"
                               "0 waiting for condition: iteration:1\n0 waiting finished:1\n"
                               "0 waiting failed:\n"}}) {
        const ThreadTap trace;
        EXPECT_EQ(Synchronizer(row.counter, row.iterations, 1).Wait(), row.result);
        EXPECT_EQ(ThreadTap::Lines("synchronizer"), row.trace);
    }
}

// Events: + Increment, - Decrement, 0 Reset(0), 1 Reset(1), c Cancel, t the time is up.
void Do(char event, Synchronizer& barrier, FakeClock& clock) {
    switch (event) {
        case '+':
            return barrier.Increment();
        case '-':
            return barrier.Decrement();
        case 'c':
            return barrier.Cancel();
        case 't':
            return clock.Advance(10);
        default:
            return barrier.Reset(event == '0' ? 0 : 1);
    }
}

TEST(Synchronizer, OnlyDecrementToZeroAndCancelWakeAllWaiters) {
    struct Row {
        std::string events;
        unsigned int iterations;
        bool result;
        std::string waiter;  // what each of two traces after "iteration:0"
        std::string caller;
    };
    for (const Row& row :
         {Row{"-", 1, true, "", "Decrement: before1\nDecrement: after0\n"},
          Row{"0-", 1, true, "", "Decrement: before0\nDecrement: after0\n"},
          Row{"+--", 1, true, "",
              "Increment: before1\nIncrement: after2\nDecrement: before2\n"
              "Decrement: after1\nDecrement: before1\nDecrement: after0\n"},
          Row{"1c", 1, false, "", ""}, Row{"0tc", 2, true, "waiting finished:0\n", ""},
          Row{"0tc", 1, false, "waiting finished:0\nwaiting failed:\n", ""}}) {
        const ThreadTap trace;
        FakeClock clock(time(nullptr) + 86'400);  // no wait ends by itself
        Synchronizer barrier(1, row.iterations, 5'000);
        const auto wait = [&barrier] { return barrier.Wait(); };
        std::future<bool> first = std::async(std::launch::async, wait);
        std::future<bool> second = std::async(std::launch::async, wait);
        const std::string asleep = "-\nwaiting for condition: iteration:0\n";
        EXPECT_EQ(ThreadTap::ByThread("synchronizer", asleep + asleep), asleep + asleep);
        barrier.Reset(1);  // free only while both sleep
        for (const char event : row.events) {
            Do(event, barrier, clock);
        }
        EXPECT_EQ(std::make_pair(first.get(), second.get()),
                  std::make_pair(row.result, row.result));
        const std::string all = row.caller + asleep + row.waiter + asleep + row.waiter;
        EXPECT_EQ(ThreadTap::ByThread("synchronizer", all), all);
    }
}

TEST(Synchronizer, CountsWhatThreadsAddAtOnce) {
    Synchronizer barrier(0, 1, 1);
    const auto add = [&barrier] {
        for (int count = 0; count < 10'000; ++count) {
            barrier.Increment();
        }
    };
    std::future<void> other = std::async(std::launch::async, add);
    add();
    other.get();
    for (int count = 1; count < 20'000; ++count) {
        barrier.Decrement();
    }
    EXPECT_FALSE(barrier.Wait());
    barrier.Decrement();
    EXPECT_TRUE(barrier.Wait());
}

}  // namespace
}  // namespace quor_test
