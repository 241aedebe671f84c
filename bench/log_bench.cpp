// What does a log message cost when its file exists?
#include <fcntl.h>
#include <quor/log.h>
#include <unistd.h>

#include <cstring>

#include "bench.h"

namespace quor_bench {

void BareCalls(benchmark::State& state) {
    const std::string line = "[2020-01-31 08:00:00] Info    : " + c_text + "\n";
    close(open("floor.log", O_WRONLY | O_CREAT | O_APPEND, 0666));
    for (auto _ : state) {
        const int fd = open("floor.log", O_WRONLY | O_APPEND);
        lseek(fd, 0, SEEK_END);
        benchmark::DoNotOptimize(write(fd, line.data(), line.size()));
        close(fd);
    }
}
BENCHMARK(BareCalls)->Name("log message/floor");

void LogMessage(benchmark::State& state) {
    Log::Init("bench.log");
    for (auto _ : state) {
        Log::GetInstance().Info(c_text);
    }
}
BENCHMARK(LogMessage)->Name("log message/quor");

}  // namespace quor_bench
