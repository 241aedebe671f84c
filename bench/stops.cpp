// Stops a thousand workers and a thousand controllers in the middle of a wait, and says how long
// the longest stop took, and how many came near the period in which an unheard wish is repeated.
#include <quor/thread_controller.h>
#include <quor/worker_pool.h>
#include <quor/worker_thread.h>
#include <semaphore.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

namespace {

constexpr int c_stops = 1000;
constexpr double c_nearThePeriod = 50;  // milliseconds; the period is 100

struct Waiting : quor::WorkerThread {
    using WorkerThread::WorkerThread;
    void Main() override {
        while (!StopRequested()) {
            TimedWait(0, 50'000'000);  // a stop that came before it is not noticed
        }
    }
};

struct Pool : quor::WorkerPool {
    quor::WorkerThread* CreateWorker(const std::string& name) override { return new Waiting(name); }
};

template <typename Start, typename Stop>
void Measure(const char* what, const Start& start, const Stop& stop) {
    using Clock = std::chrono::steady_clock;
    double longest = 0;
    int near = 0;
    for (int pass = 0; pass < c_stops; ++pass) {
        start();
        std::this_thread::sleep_for(std::chrono::microseconds(500));  // until it waits
        const Clock::time_point begin = Clock::now();
        stop();
        const std::chrono::duration<double, std::milli> taken = Clock::now() - begin;
        longest = std::max(longest, taken.count());
        near += taken.count() > c_nearThePeriod ? 1 : 0;
    }
    std::printf("%d stops of a %-12s longest %7.3f ms, above %.0f ms: %d\n", c_stops, what, longest,
                c_nearThePeriod, near);
}

}  // namespace

int main() {
    Pool pool;
    Measure(
        "worker", [&] { pool.GetWorker("waiting")->Start(); }, [&] { pool.Terminate("waiting"); });
    sem_t pass{};
    sem_init(&pass, 0, 0);
    quor::ThreadController controller(
        "bench", [&] { sem_wait(&pass); }, [&] { sem_post(&pass); });
    Measure(
        "controller", [&] { controller.Start(); }, [&] { controller.Stop(); });
}
