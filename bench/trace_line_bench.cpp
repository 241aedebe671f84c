// What does an open trace line cost, and a message built at its site, on one thread and on more?
#include <fcntl.h>
#include <unistd.h>

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

// The same beside a system call alone: what a program without a trace would not pay.
void BareWrite(benchmark::State& state) {
    const std::string line(33 + c_text.size() + 1, 'x');
    const int fd = open("bare.trace", O_WRONLY | O_CREAT | O_APPEND, 0666);
    for (auto _ : state) {
        benchmark::DoNotOptimize(write(fd, line.data(), line.size()));
    }
    close(fd);
}
BENCHMARK(BareWrite)->Name("trace line by a bare write/floor");
BENCHMARK(TraceLine)
    ->Name("trace line by a bare write/quor")
    ->Setup(StartTrace)
    ->Teardown(StopTrace);

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
