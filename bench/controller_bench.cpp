// How long do the start of a controller, and its stop in the middle of a pass, take?
#include <quor/thread_controller.h>
#include <semaphore.h>

#include <chrono>
#include <condition_variable>
#include <thread>

#include "bench.h"

namespace quor_bench {
namespace {

// A loop that blocks until it is cancelled, made of bare primitives.
struct BareLoop {
    BareLoop() { sem_init(&pass, 0, 0); }
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;
    ~BareLoop() { sem_destroy(&pass); }

    void Set(bool value) {
        const std::lock_guard<std::mutex> lock(mutex);
        running = value;
        condition.notify_all();
    }
    void WaitFor(bool value) {
        std::unique_lock<std::mutex> lock(mutex);
        condition.wait(lock, [&] { return running == value; });
    }
    void Start() {
        std::thread([this] {
            Set(true);
            sem_wait(&pass);
            Set(false);
        }).detach();
        WaitFor(true);
    }
    void Stop() {
        std::thread([this] { sem_post(&pass); }).detach();
        WaitFor(false);
    }

    sem_t pass{};
    std::mutex mutex;
    std::condition_variable condition;
    bool running = false;
};

struct Controlled {
    Controlled()
        : controller(
              "bench", [this] { sem_wait(&pass); }, [this] { sem_post(&pass); }) {
        sem_init(&pass, 0, 0);
    }
    void Start() { controller.Start(); }
    void Stop() { controller.Stop(); }

    sem_t pass{};
    ThreadController controller;
};

// The half that is not measured leaves time for its thread to come to rest.
template <typename Loop, bool MeasuresStart>
void StartAndStop(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    // Never destroyed: the last cancelling thread may still look at it.
    static Loop& loop = *new Loop;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        loop.Start();
        const Clock::time_point started = Clock::now();
        std::this_thread::sleep_for(std::chrono::microseconds(200));
        const Clock::time_point stop = Clock::now();
        loop.Stop();
        const auto taken = MeasuresStart ? started - start : Clock::now() - stop;
        state.SetIterationTime(std::chrono::duration<double>(taken).count());
    }
}
BENCHMARK(StartAndStop<BareLoop, true>)->Name("start of a controller/floor")->UseManualTime();
BENCHMARK(StartAndStop<Controlled, true>)->Name("start of a controller/quor")->UseManualTime();
BENCHMARK(StartAndStop<BareLoop, false>)->Name("stop of a controller/floor")->UseManualTime();
BENCHMARK(StartAndStop<Controlled, false>)->Name("stop of a controller/quor")->UseManualTime();

}  // namespace
}  // namespace quor_bench
