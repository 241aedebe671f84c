// How long does a signal take to the handler on its thread?
#include <quor/signal_handler.h>
#include <semaphore.h>
#include <signal.h>
#include <unistd.h>

#include <thread>

#include "bench.h"

namespace quor_bench {
namespace {

sem_t g_caught;
sem_t g_handled;

struct Semaphores {
    Semaphores() {
        sem_init(&g_caught, 0, 0);
        sem_init(&g_handled, 0, 0);
    }
};
const Semaphores g_semaphores;

void Catch(int /*number*/) {
    sem_post(&g_caught);
}

void BareSignal(benchmark::State& state) {
    signal(SIGUSR2, Catch);
    static std::thread* const thread = new std::thread([] {
        for (;;) {
            sem_wait(&g_caught);
            sem_post(&g_handled);
        }
    });
    benchmark::DoNotOptimize(thread);
    for (auto _ : state) {
        kill(getpid(), SIGUSR2);
        while (sem_wait(&g_handled) != 0) {
        }
    }
}
BENCHMARK(BareSignal)->Name("signal/floor")->UseRealTime();

struct Handler : SignalHandler {
    void HandleSignal(int /*number*/) override { sem_post(&g_handled); }
};

void Signal(benchmark::State& state) {
    static Handler handler;
    const int signals[] = {SIGUSR1, 0};
    SignalHandlerThread* const thread = SignalHandlerThread::InstallHandler(handler, signals);
    for (auto _ : state) {
        kill(getpid(), SIGUSR1);
        while (sem_wait(&g_handled) != 0) {
        }
    }
    thread->Stop();
    delete thread;
}
BENCHMARK(Signal)->Name("signal/quor")->UseRealTime();

}  // namespace
}  // namespace quor_bench
