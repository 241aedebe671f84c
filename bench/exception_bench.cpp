// What does an exception cost while the trace is off, and what while it is on?
#include <cxxabi.h>
#include <dlfcn.h>
#include <quor/exception.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "bench.h"

namespace quor_bench {

void BuildRuntimeError(benchmark::State& state) {
    for (auto _ : state) {
        const std::runtime_error error(c_text);
        benchmark::DoNotOptimize(error.what());
    }
}
BENCHMARK(BuildRuntimeError)->Name("exception untraced/floor");

void BuildUnreported(benchmark::State& state) {
    for (auto _ : state) {
        const Exception error(c_text, true);
        benchmark::DoNotOptimize(error.what());
    }
}
BENCHMARK(BuildUnreported)->Name("exception untraced/quor");

// Its place, which lies in this program, and two lines.
__attribute__((noinline)) void ReportPlaceOfCaller() {
    Dl_info info{};
    dladdr(__builtin_return_address(0), &info);
    char* const name = abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, nullptr);
    char place[500];
    const int length = std::snprintf(place, sizeof(place), "** in: %s(%s) [%p]", info.dli_fname,
                                     name, info.dli_saddr);
    std::free(name);
    const std::string text = "** Thrown quor::Exception: " + c_text;
    FloorOfLine::Write(text.data(), text.size());
    FloorOfLine::Write(place, static_cast<std::size_t>(length));
}

void ReportByHand(benchmark::State& state) {
    for (auto _ : state) {
        ReportPlaceOfCaller();
    }
}
BENCHMARK(ReportByHand)
    ->Name("exception traced/floor")
    ->Setup(FloorOfLine::Open)
    ->Teardown(FloorOfLine::Close);

void Report(benchmark::State& state) {
    for (auto _ : state) {
        const Exception error(c_text, true);
        benchmark::DoNotOptimize(error.what());
    }
}
BENCHMARK(Report)->Name("exception traced/quor")->Setup(StartTrace)->Teardown(StopTrace);

}  // namespace quor_bench
