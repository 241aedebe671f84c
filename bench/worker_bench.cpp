// How long does a worker take from its start to its end, and how fast does it obey a stop?
#include <quor/worker_pool.h>
#include <quor/worker_thread.h>

#include <chrono>
#include <condition_variable>
#include <thread>

#include "bench.h"

namespace quor_bench {

void ThreadLife(benchmark::State& state) {
    for (auto _ : state) {
        std::thread([] {}).join();
    }
}
BENCHMARK(ThreadLife)->Name("life of a worker/floor")->UseRealTime();

struct Waiting : WorkerThread {
    using WorkerThread::WorkerThread;
    void Main() override {
        while (!StopRequested()) {
            TimedWait(0, 50'000'000);  // a stop that came before it is not noticed
        }
    }
};

struct Pool : WorkerPool {
    WorkerThread* CreateWorker(const std::string& name) override {
        return name == "idle" ? new WorkerThread(name) : new Waiting(name);
    }
};

void WorkerLife(benchmark::State& state) {
    Pool pool;
    for (auto _ : state) {
        pool.GetWorker("idle")->Start();
        pool.Terminate("idle");
    }
}
BENCHMARK(WorkerLife)->Name("life of a worker/quor")->UseRealTime();

// Long enough for a thread to fall asleep; not part of the result.
void LetSleep() {
    std::this_thread::sleep_for(std::chrono::microseconds(200));
}

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

void WakeAndJoin(benchmark::State& state) {
    for (auto _ : state) {
        std::mutex mutex;
        std::condition_variable condition;
        bool stop = false;
        std::thread thread([&] {
            std::unique_lock<std::mutex> lock(mutex);
            condition.wait(lock, [&] { return stop; });
        });
        LetSleep();
        const Clock::time_point begin = Clock::now();
        {
            const std::lock_guard<std::mutex> lock(mutex);
            stop = true;
        }
        condition.notify_all();
        thread.join();
        state.SetIterationTime(SecondsSince(begin));
    }
}
BENCHMARK(WakeAndJoin)->Name("stop of a worker/floor")->UseManualTime();

void StopAndJoin(benchmark::State& state) {
    Pool pool;
    for (auto _ : state) {
        pool.GetWorker("waiting")->Start();
        LetSleep();
        const Clock::time_point begin = Clock::now();
        pool.Terminate("waiting");
        state.SetIterationTime(SecondsSince(begin));
    }
}
BENCHMARK(StopAndJoin)->Name("stop of a worker/quor")->UseManualTime();

}  // namespace quor_bench
