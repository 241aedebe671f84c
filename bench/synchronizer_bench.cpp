// How long does the last Decrement() take to the waiter?
#include <quor/synchronizer.h>

#include <chrono>
#include <condition_variable>
#include <thread>

#include "bench.h"

namespace quor_bench {
namespace {

struct BareCounter {
    bool Wait() {
        std::unique_lock<std::mutex> lock(mutex);
        return condition.wait_for(lock, std::chrono::seconds(10), [this] { return counter == 0; });
    }
    void Decrement() {
        const std::lock_guard<std::mutex> lock(mutex);
        if (--counter == 0) {
            condition.notify_all();
        }
    }

    std::mutex mutex;
    std::condition_variable condition;
    int counter = 1;
};

struct Counter : Synchronizer {
    Counter() : Synchronizer(1, 1, 10'000) {}
};

template <typename Barrier>
void LastDecrement(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    for (auto _ : state) {
        Barrier barrier;
        Clock::time_point end;
        std::thread waiter([&] {
            barrier.Wait();
            end = Clock::now();
        });
        std::this_thread::sleep_for(std::chrono::microseconds(200));
        const Clock::time_point begin = Clock::now();
        barrier.Decrement();
        waiter.join();
        state.SetIterationTime(std::chrono::duration<double>(end - begin).count());
    }
}
BENCHMARK(LastDecrement<BareCounter>)->Name("synchronizer/floor")->UseManualTime();
BENCHMARK(LastDecrement<Counter>)->Name("synchronizer/quor")->UseManualTime();

}  // namespace
}  // namespace quor_bench
