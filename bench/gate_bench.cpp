// What does a trace site cost while the gate is closed?
#include <atomic>

#include "bench.h"

namespace quor_bench {

std::atomic<int> g_word{-1};

void ReadAWord(benchmark::State& state) {
    for (auto _ : state) {
        if (g_word.load(std::memory_order_relaxed) >= 1) {
            StopTrace(state);
        }
    }
}
BENCHMARK(ReadAWord)->Name("closed gate/floor");

void ClosedGate(benchmark::State& state) {
    for (auto _ : state) {
        QUOR_TRACE(Low, "pass " << state.iterations());
    }
}
BENCHMARK(ClosedGate)->Name("closed gate/quor");

#define QUOR_TEN_TIMES(statement) \
    statement;                    \
    statement;                    \
    statement;                    \
    statement;                    \
    statement;                    \
    statement;                    \
    statement;                    \
    statement;                    \
    statement;                    \
    statement

void ReadTenWords(benchmark::State& state) {
    for (auto _ : state) {
        QUOR_TEN_TIMES(if (g_word.load(std::memory_order_relaxed) >= 1) StopTrace(state));
    }
}
BENCHMARK(ReadTenWords)->Name("ten closed gates/floor");

void TenClosedGates(benchmark::State& state) {
    for (auto _ : state) {
        QUOR_TEN_TIMES(QUOR_TRACE(Low, "pass " << state.iterations()));
    }
}
BENCHMARK(TenClosedGates)->Name("ten closed gates/quor");

void ReadTwoWords(benchmark::State& state) {
    for (auto _ : state) {
        if (g_word.load(std::memory_order_relaxed) >= 1) {
            StartTrace(state);
        }
        if (g_word.load(std::memory_order_relaxed) >= 1) {
            StopTrace(state);
        }
    }
}
BENCHMARK(ReadTwoWords)->Name("closed tracer/floor");

void ClosedTracer(benchmark::State& state) {
    for (auto _ : state) {
        QUOR_TRACE_FNC();
    }
}
BENCHMARK(ClosedTracer)->Name("closed tracer/quor");

}  // namespace quor_bench
