// What does an open trace line cost, and a message built at its site, on one thread and on more?
#include "bench.h"

namespace quor_bench {

void BareLine(benchmark::State& state) {
    for (auto _ : state) {
        FloorOfLine::Write(c_text.data(), c_text.size());
    }
}
BENCHMARK(BareLine)
    ->Name("trace line/floor")
    ->Setup(FloorOfLine::Open)
    ->Teardown(FloorOfLine::Close)
    ->ThreadRange(1, 4)
    ->UseRealTime();

void TraceLine(benchmark::State& state) {
    for (auto _ : state) {
        TraceWrite(Low, "f", "file", 76, c_text);
    }
}
BENCHMARK(TraceLine)
    ->Name("trace line/quor")
    ->Setup(StartTrace)
    ->Teardown(StopTrace)
    ->ThreadRange(1, 4)
    ->UseRealTime();

// The floor of a message is the line with the same text, ready made.
void BareMessage(benchmark::State& state) {
    const std::string text = "pass 12345 of worker " + c_text;
    for (auto _ : state) {
        FloorOfLine::Write(text.data(), text.size());
    }
}
BENCHMARK(BareMessage)
    ->Name("message/floor")
    ->Setup(FloorOfLine::Open)
    ->Teardown(FloorOfLine::Close)
    ->ThreadRange(1, 4)
    ->UseRealTime();

void Message(benchmark::State& state) {
    for (auto _ : state) {
        QUOR_TRACE(Low, "pass " << 12345 << " of worker " << c_text);
    }
}
BENCHMARK(Message)
    ->Name("message/quor")
    ->Setup(StartTrace)
    ->Teardown(StopTrace)
    ->ThreadRange(1, 4)
    ->UseRealTime();

}  // namespace quor_bench
